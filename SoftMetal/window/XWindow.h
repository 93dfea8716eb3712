// SPDX-License-Identifier: Apache-2.0
// A window on an X server, with a connection of its own.
#pragma once

#include "window/Screen.h"
#include "window/XImage.h"

#include <SoftMetal/SoftMetal.hpp>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace softmetal
{

class XWindow final : public Screen
{
public:
    /// On the server that DISPLAY names. Null with one sentence in error when there is none that can show pictures.
    static std::shared_ptr<XWindow> open(const std::string& title, uint32_t width, uint32_t height, std::string& error);
    ~XWindow() override;

    void show(const abi::Texture& picture) override;
    void resize(uint32_t width, uint32_t height);

    /// What happened since the last call, after waiting for the first event at most so long. One resize stands for all
    /// that followed each other.
    std::vector<SoftMetal::WindowEvent> events(double milliseconds);

private:
    XWindow(const Xcb& calls, xcb_connection_t* connection);
    bool chooseScreen(int number, std::string& error);
    bool make(uint32_t width, uint32_t height);
    void setTitle(const std::string& title);
    void askForClose();
    void readKeyboard();
    bool hasExtension(const std::string& name) const;
    xcb_atom_t atom(const std::string& name) const;

    Reply<xcb_generic_event_t> firstEvent(double milliseconds) const;
    std::optional<SoftMetal::WindowEvent> translate(const xcb_generic_event_t& event);
    std::optional<SoftMetal::WindowEvent> pressed(const xcb_button_press_event_t& event, bool down) const;
    std::optional<SoftMetal::WindowEvent> typed(const xcb_key_press_event_t& event, bool down) const;
    std::optional<SoftMetal::WindowEvent> configured(const xcb_configure_notify_event_t& event);
    void showAgain();

    const Xcb& x_;
    xcb_connection_t* const connection_;
    xcb_window_t root_ = 0;
    xcb_visualid_t visual_ = 0;
    XTarget target_;
    xcb_atom_t protocols_ = 0, deleteWindow_ = 0;
    uint32_t width_ = 0, height_ = 0; // as the last event or request said
    std::vector<xcb_keysym_t> keysyms_;
    uint32_t keysymsPerKey_ = 0, firstKey_ = 0;
    bool saidClosed_ = false; // that the connection is gone

    std::mutex mutex_; // guards image_: frames come from queues' threads, exposures are answered on the caller's
    std::unique_ptr<XImage> image_;
};

} // namespace softmetal

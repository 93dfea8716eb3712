// SPDX-License-Identifier: Apache-2.0
// An X server without a monitor (Xvfb) for one test: its windows can be looked at, and events are made with xdotool.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>
#include <xcb/xcb.h>

namespace support
{

class VirtualScreen
{
public:
    struct Picture
    {
        int width = 0, height = 0;
        std::vector<uint8_t> rgb; // three bytes a pixel, top row first
        bool operator==(const Picture&) const = default;
    };

    VirtualScreen() = default;
    ~VirtualScreen();
    VirtualScreen(const VirtualScreen&) = delete;
    VirtualScreen& operator=(const VirtualScreen&) = delete;

    /// Why tests with a screen cannot run here: a sentence, empty when they can.
    static std::string whatIsMissing();

    /// On a display that no other server has. False when it does not come up.
    bool start(const std::string& options = "");
    void stop();
    const std::string& display() const { return display_; }

    /// The window of a title; 0 when there is none.
    xcb_window_t window(const std::string& title) const;
    Picture contents(xcb_window_t window) const; // empty when there is no such window
    void askToClose(xcb_window_t window) const;  // as a window manager does

    /// Arguments of xdotool: "mousemove 10 20 mousedown 1".
    bool act(const std::string& actions) const;

    /// Looks again and again until the condition holds, for half a minute.
    static bool becomes(const std::function<bool()>& condition);

private:
    std::string titleOf(xcb_window_t window) const;

    pid_t server_ = -1;
    std::string display_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = 0;
};

} // namespace support

// SPDX-License-Identifier: Apache-2.0
// What a window's user does, from X's events to ours.
#include "window/KeyTable.h"
#include "window/XWindow.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <poll.h>

namespace softmetal
{

using SoftMetal::EventKind;
using SoftMetal::WindowEvent;

namespace
{

constexpr uint8_t SentByClient = 0x80; // this bit of an event's kind says that another program made it
constexpr uint32_t UnicodeKeysym = 0x01000000;
constexpr uint8_t FirstScrollButton = 4, LastScrollButton = 7; // up, down, left, right: X has them as buttons
constexpr int LongestSleep = 10;

template <class Event>
const Event& as(const xcb_generic_event_t& event)
{
    return reinterpret_cast<const Event&>(event);
}

/// The character or one of SoftMetal's names; 0 for keys such as Shift.
uint32_t keyOf(xcb_keysym_t keysym)
{
    if ((keysym >= 0x20 && keysym <= 0x7E) || (keysym >= 0xA0 && keysym <= 0xFF)) return keysym;
    if ((keysym & 0xFF000000) == UnicodeKeysym) return keysym & 0xFFFFFF;
    auto row = std::find_if(KeyTable.begin(), KeyTable.end(), [=](const KeyRow& r) { return r.keysym == keysym; });
    return row == KeyTable.end() ? 0 : row->key;
}

WindowEvent at(EventKind kind, int x, int y)
{
    WindowEvent event;
    event.kind = kind;
    event.x = x;
    event.y = y;
    return event;
}

} // namespace

std::vector<WindowEvent> XWindow::events(double milliseconds)
{
    std::vector<WindowEvent> result;
    bool exposed = false;
    for (auto event = firstEvent(milliseconds); event; event.reset(x_.poll_for_event(connection_))) {
        if ((event->response_type & ~SentByClient) == XCB_EXPOSE) exposed = true;
        auto translated = translate(*event);
        if (!translated) continue;
        if (translated->kind == EventKind::Resized && !result.empty() && result.back().kind == EventKind::Resized)
            result.pop_back();
        result.push_back(*translated);
    }
    if (exposed) showAgain();
    if (x_.connection_has_error(connection_) && !std::exchange(saidClosed_, true))
        result.push_back(at(EventKind::Closed, 0, 0));
    return result;
}

/// A queue's thread that waits for an answer may take events off the connection and leave them in the library, where
/// poll does not see them: so each sleep is short.
Reply<xcb_generic_event_t> XWindow::firstEvent(double milliseconds) const
{
    using Clock = std::chrono::steady_clock;
    auto end = Clock::now() +
               std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double, std::milli>(milliseconds));
    for (;;) {
        Reply<xcb_generic_event_t> event(x_.poll_for_event(connection_));
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (event || left <= 0 || x_.connection_has_error(connection_)) return event;
        pollfd input{x_.get_file_descriptor(connection_), POLLIN, 0};
        ::poll(&input, 1, static_cast<int>(std::min<long long>(left, LongestSleep)));
    }
}

std::optional<WindowEvent> XWindow::translate(const xcb_generic_event_t& event)
{
    switch (event.response_type & ~SentByClient) {
    case XCB_BUTTON_PRESS:
        return pressed(as<xcb_button_press_event_t>(event), true);
    case XCB_BUTTON_RELEASE:
        return pressed(as<xcb_button_press_event_t>(event), false);
    case XCB_MOTION_NOTIFY: {
        const auto& motion = as<xcb_motion_notify_event_t>(event);
        return at(EventKind::MouseMoved, motion.event_x, motion.event_y);
    }
    case XCB_KEY_PRESS:
        return typed(as<xcb_key_press_event_t>(event), true);
    case XCB_KEY_RELEASE:
        return typed(as<xcb_key_press_event_t>(event), false);
    case XCB_CONFIGURE_NOTIFY:
        return configured(as<xcb_configure_notify_event_t>(event));
    case XCB_CLIENT_MESSAGE: {
        const auto& message = as<xcb_client_message_event_t>(event);
        if (message.type != protocols_ || message.data.data32[0] != deleteWindow_) return std::nullopt;
        return at(EventKind::Closed, 0, 0);
    }
    case XCB_MAPPING_NOTIFY:
        readKeyboard();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

/// A wheel's step is a press and a release: the press counts.
std::optional<WindowEvent> XWindow::pressed(const xcb_button_press_event_t& event, bool down) const
{
    bool scrolls = event.detail >= FirstScrollButton && event.detail <= LastScrollButton;
    if (scrolls && !down) return std::nullopt;
    WindowEvent result = at(scrolls ? EventKind::Scrolled
                            : down  ? EventKind::MouseDown
                                    : EventKind::MouseUp,
                            event.event_x, event.event_y);
    constexpr double Across[] = {0, 0, -1, 1}, Up[] = {1, -1, 0, 0};
    if (scrolls) {
        result.deltaX = Across[event.detail - FirstScrollButton];
        result.deltaY = Up[event.detail - FirstScrollButton];
    } else {
        result.button = event.detail;
    }
    return result;
}

std::optional<WindowEvent> XWindow::typed(const xcb_key_press_event_t& event, bool down) const
{
    size_t first = size_t{event.detail - firstKey_} * keysymsPerKey_;
    if (event.detail < firstKey_ || first + keysymsPerKey_ > keysyms_.size()) return std::nullopt;
    bool shift = (event.state & XCB_MOD_MASK_SHIFT) != 0 && keysymsPerKey_ > 1 && keysyms_[first + 1] != 0;
    WindowEvent result = at(down ? EventKind::KeyDown : EventKind::KeyUp, event.event_x, event.event_y);
    result.key = keyOf(keysyms_[first + (shift ? 1 : 0)]);
    if (result.key == 0) return std::nullopt;
    return result;
}

std::optional<WindowEvent> XWindow::configured(const xcb_configure_notify_event_t& event)
{
    if (event.width == width_ && event.height == height_) return std::nullopt;
    width_ = event.width;
    height_ = event.height;
    WindowEvent result = at(EventKind::Resized, 0, 0);
    result.width = width_;
    result.height = height_;
    return result;
}

void XWindow::readKeyboard()
{
    const xcb_setup_t& setup = *x_.get_setup(connection_);
    auto count = static_cast<uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    auto asked = x_.get_keyboard_mapping(connection_, setup.min_keycode, count);
    Reply<xcb_get_keyboard_mapping_reply_t> reply(x_.get_keyboard_mapping_reply(connection_, asked, nullptr));
    if (!reply) return;
    const xcb_keysym_t* keysyms = x_.get_keyboard_mapping_keysyms(reply.get());
    keysyms_.assign(keysyms, keysyms + x_.get_keyboard_mapping_keysyms_length(reply.get()));
    keysymsPerKey_ = reply->keysyms_per_keycode;
    firstKey_ = setup.min_keycode;
}

} // namespace softmetal

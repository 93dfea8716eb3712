// SPDX-License-Identifier: Apache-2.0
#include "window/XWindow.h"

#include "window/Pictures.h"

#include <cstdlib>
#include <utility>

namespace softmetal
{
namespace
{

constexpr uint32_t EventMask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
                               XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
                               XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;

/// Whether pixels of the visual are blue, green, red and an unused byte in memory.
bool fits(const xcb_visualtype_t& visual)
{
    return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 && visual.green_mask == 0xFF00 &&
           visual.blue_mask == 0xFF;
}

const xcb_visualtype_t* visualOf(const Xcb& x, const xcb_screen_t& screen)
{
    for (auto depth = x.screen_allowed_depths_iterator(&screen); depth.rem; x.depth_next(&depth)) {
        for (auto visual = x.depth_visuals_iterator(depth.data); visual.rem; x.visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual) return visual.data;
        }
    }
    return nullptr;
}

bool hasFourBytes(const Xcb& x, const xcb_setup_t& setup, uint8_t depth)
{
    const xcb_format_t* formats = x.setup_pixmap_formats(&setup);
    for (int i = 0; i < x.setup_pixmap_formats_length(&setup); ++i) {
        if (formats[i].depth == depth) return formats[i].bits_per_pixel == 32;
    }
    return false;
}

} // namespace

std::shared_ptr<XWindow> XWindow::open(const std::string& title, uint32_t width, uint32_t height, std::string& error)
{
    const Xcb* x = openXcb(error);
    if (!x) return nullptr;
    int number = 0;
    std::shared_ptr<XWindow> window(new XWindow(*x, x->connect(nullptr, &number)));
    if (x->connection_has_error(window->connection_)) {
        const char* display = std::getenv("DISPLAY");
        error = display ? "the X server \"" + std::string(display) + "\" does not answer"
                        : std::string("there is no X server: DISPLAY is not set");
        return nullptr;
    }
    if (!window->chooseScreen(number, error)) return nullptr;
    if (!window->make(width, height)) {
        error =
            "the X server refuses a window of " + std::to_string(width) + " x " + std::to_string(height) + " pixels";
        return nullptr;
    }
    window->setTitle(title);
    window->askForClose();
    window->readKeyboard();
    x->map_window(window->connection_, window->target_.window);
    x->flush(window->connection_);
    return window;
}

XWindow::XWindow(const Xcb& calls, xcb_connection_t* connection) : x_(calls), connection_(connection) {}

XWindow::~XWindow()
{
    image_.reset();
    x_.disconnect(connection_); // the window goes with it
}

bool XWindow::chooseScreen(int number, std::string& error)
{
    const xcb_setup_t& setup = *x_.get_setup(connection_);
    auto screens = x_.setup_roots_iterator(&setup);
    for (; number > 0 && screens.rem > 1; --number)
        x_.screen_next(&screens);
    const xcb_screen_t& screen = *screens.data;
    const xcb_visualtype_t* visual = visualOf(x_, screen);
    if (!visual || !fits(*visual) || !hasFourBytes(x_, setup, screen.root_depth) ||
        setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
    {
        error = "the X screen has " + std::to_string(screen.root_depth) +
                " bits a pixel, and only screens of four bytes a pixel, blue first, are known";
        return false;
    }
    root_ = screen.root;
    visual_ = screen.root_visual;
    target_.depth = screen.root_depth;
    return true;
}

bool XWindow::make(uint32_t width, uint32_t height)
{
    const uint32_t values[] = {XCB_GRAVITY_NORTH_WEST,
                               EventMask}; // a picture stays at the upper left while its window grows
    target_.window = x_.generate_id(connection_);
    auto request =
        x_.create_window_checked(connection_, target_.depth, target_.window, root_, 0, 0, static_cast<uint16_t>(width),
                                 static_cast<uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_,
                                 XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK, values);
    Reply<xcb_generic_error_t> refused(x_.request_check(connection_, request));
    if (refused || width > UINT16_MAX || height > UINT16_MAX) return false;
    target_.context = x_.generate_id(connection_);
    x_.create_gc(connection_, target_.context, target_.window, 0, nullptr);
    image_ = std::make_unique<XImage>(x_, connection_, x_.hasShm && hasExtension("MIT-SHM"));
    width_ = width;
    height_ = height;
    return true;
}

void XWindow::setTitle(const std::string& title)
{
    auto bytes = static_cast<uint32_t>(title.size());
    x_.change_property(connection_, XCB_PROP_MODE_REPLACE, target_.window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, bytes,
                       title.data());
    x_.change_property(connection_, XCB_PROP_MODE_REPLACE, target_.window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8,
                       bytes, title.data());
}

/// Window managers then send a message where they would end the connection.
void XWindow::askForClose()
{
    protocols_ = atom("WM_PROTOCOLS");
    deleteWindow_ = atom("WM_DELETE_WINDOW");
    x_.change_property(connection_, XCB_PROP_MODE_REPLACE, target_.window, protocols_, XCB_ATOM_ATOM, 32, 1,
                       &deleteWindow_);
}

bool XWindow::hasExtension(const std::string& name) const
{
    auto asked = x_.query_extension(connection_, static_cast<uint16_t>(name.size()), name.c_str());
    Reply<xcb_query_extension_reply_t> reply(x_.query_extension_reply(connection_, asked, nullptr));
    return reply && reply->present;
}

xcb_atom_t XWindow::atom(const std::string& name) const
{
    auto asked = x_.intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.c_str());
    Reply<xcb_intern_atom_reply_t> reply(x_.intern_atom_reply(connection_, asked, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// ---- pictures ------------------------------------------------------------------------------------------------------

void XWindow::show(const abi::Texture& picture)
{
    std::lock_guard lock(mutex_);
    image_->resize(picture.width, picture.height);
    copyForScreen(picture, image_->pixels(), image_->pitch());
    image_->put(target_);
}

void XWindow::showAgain()
{
    std::lock_guard lock(mutex_);
    image_->put(target_);
}

void XWindow::resize(uint32_t width, uint32_t height)
{
    if (width == width_ && height == height_) return;
    width_ = width;
    height_ = height;
    const uint32_t values[] = {width, height};
    x_.configure_window(connection_, target_.window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    x_.flush(connection_);
}

} // namespace softmetal

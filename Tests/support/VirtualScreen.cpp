// SPDX-License-Identifier: Apache-2.0
#include "support/VirtualScreen.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support
{
namespace
{

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <class T>
Reply<T> reply(T* answer)
{
    return Reply<T>(answer, &std::free);
}

bool isInstalled(const char* program)
{
    return std::system(("command -v " + std::string(program) + " > /dev/null 2>&1").c_str()) == 0;
}

xcb_atom_t atomOf(xcb_connection_t* connection, const char* name)
{
    auto asked = xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name);
    auto answer = reply(xcb_intern_atom_reply(connection, asked, nullptr));
    return answer ? answer->atom : 0;
}

/// The number that the server writes once it listens; empty when it ends instead.
std::string readNumber(int from)
{
    std::string number;
    char c = 0;
    while (read(from, &c, 1) == 1 && c != '\n')
        number += c;
    return number;
}

} // namespace

VirtualScreen::~VirtualScreen()
{
    stop();
}

std::string VirtualScreen::whatIsMissing()
{
    for (const char* program : {"Xvfb", "xdotool"}) {
        if (!isInstalled(program)) return std::string(program) + " is not installed: see packages-tools.txt";
    }
    return {};
}

bool VirtualScreen::start(const std::string& options)
{
    int ends[2];
    if (pipe(ends) != 0) return false;
    server_ = fork();
    if (server_ == 0) {
        int nothing = open("/dev/null", O_RDWR);
        for (int i = 0; i < 3; ++i)
            dup2(nothing, i);
        close(ends[0]);
        std::string command =
            "exec Xvfb -displayfd " + std::to_string(ends[1]) + " -screen 0 800x600x24 -nolisten tcp " + options;
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string number = readNumber(ends[0]);
    close(ends[0]);
    if (number.empty()) return false;
    display_ = ":" + number;
    connection_ = xcb_connect(display_.c_str(), nullptr);
    if (xcb_connection_has_error(connection_)) return false;
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    return true;
}

void VirtualScreen::stop()
{
    if (connection_) xcb_disconnect(connection_);
    connection_ = nullptr;
    if (server_ <= 0) return;
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
    server_ = -1;
}

std::string VirtualScreen::titleOf(xcb_window_t window) const
{
    auto asked = xcb_get_property(connection_, 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, 256);
    auto answer = reply(xcb_get_property_reply(connection_, asked, nullptr));
    if (!answer) return {};
    return {static_cast<const char*>(xcb_get_property_value(answer.get())),
            static_cast<size_t>(xcb_get_property_value_length(answer.get()))};
}

xcb_window_t VirtualScreen::window(const std::string& title) const
{
    auto tree = reply(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    if (!tree) return 0;
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    const xcb_window_t* last = first + xcb_query_tree_children_length(tree.get());
    const xcb_window_t* found = std::find_if(first, last, [&](xcb_window_t w) { return titleOf(w) == title; });
    return found == last ? 0 : *found;
}

VirtualScreen::Picture VirtualScreen::contents(xcb_window_t window) const
{
    Picture picture;
    auto size = reply(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    if (!size) return picture;
    auto asked = xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, size->width, size->height, ~0u);
    auto image = reply(xcb_get_image_reply(connection_, asked, nullptr));
    if (!image) return picture;
    picture.width = size->width;
    picture.height = size->height;
    const uint8_t* bytes = xcb_get_image_data(image.get());
    for (int i = 0; i < picture.width * picture.height; ++i, bytes += 4)
        picture.rgb.insert(picture.rgb.end(), {bytes[2], bytes[1], bytes[0]});
    return picture;
}

void VirtualScreen::askToClose(xcb_window_t window) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atomOf(connection_, "WM_PROTOCOLS");
    message.data.data32[0] = atomOf(connection_, "WM_DELETE_WINDOW");
    xcb_send_event(connection_, 0, window, 0, reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

bool VirtualScreen::act(const std::string& actions) const
{
    return std::system(("DISPLAY=" + display_ + " xdotool " + actions + " > /dev/null 2>&1").c_str()) == 0;
}

bool VirtualScreen::becomes(const std::function<bool()>& condition)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace support

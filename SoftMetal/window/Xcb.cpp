// SPDX-License-Identifier: Apache-2.0
#include "window/Xcb.h"

#include <mutex>

#include <dlfcn.h>

namespace softmetal
{
namespace
{

constexpr const char *CoreFile = "libxcb.so.1", *ShmFile = "libxcb-shm.so.0";

template <class Call>
bool find(void* library, const char* name, Call& call)
{
    call = reinterpret_cast<Call>(dlsym(library, name));
    return call != nullptr;
}

bool findCore(void* library, Xcb& x)
{
    return find(library, "xcb_connect", x.connect) && find(library, "xcb_disconnect", x.disconnect) &&
           find(library, "xcb_connection_has_error", x.connection_has_error) &&
           find(library, "xcb_get_file_descriptor", x.get_file_descriptor) &&
           find(library, "xcb_get_setup", x.get_setup) &&
           find(library, "xcb_setup_roots_iterator", x.setup_roots_iterator) &&
           find(library, "xcb_screen_next", x.screen_next) &&
           find(library, "xcb_screen_allowed_depths_iterator", x.screen_allowed_depths_iterator) &&
           find(library, "xcb_depth_next", x.depth_next) &&
           find(library, "xcb_depth_visuals_iterator", x.depth_visuals_iterator) &&
           find(library, "xcb_visualtype_next", x.visualtype_next) &&
           find(library, "xcb_setup_pixmap_formats", x.setup_pixmap_formats) &&
           find(library, "xcb_setup_pixmap_formats_length", x.setup_pixmap_formats_length) &&
           find(library, "xcb_get_maximum_request_length", x.get_maximum_request_length) &&
           find(library, "xcb_generate_id", x.generate_id) &&
           find(library, "xcb_create_window_checked", x.create_window_checked) &&
           find(library, "xcb_change_property", x.change_property) && find(library, "xcb_map_window", x.map_window) &&
           find(library, "xcb_configure_window", x.configure_window) && find(library, "xcb_create_gc", x.create_gc) &&
           find(library, "xcb_put_image_checked", x.put_image_checked) &&
           find(library, "xcb_request_check", x.request_check) && find(library, "xcb_flush", x.flush) &&
           find(library, "xcb_poll_for_event", x.poll_for_event) && find(library, "xcb_intern_atom", x.intern_atom) &&
           find(library, "xcb_intern_atom_reply", x.intern_atom_reply) &&
           find(library, "xcb_query_extension", x.query_extension) &&
           find(library, "xcb_query_extension_reply", x.query_extension_reply) &&
           find(library, "xcb_get_keyboard_mapping", x.get_keyboard_mapping) &&
           find(library, "xcb_get_keyboard_mapping_reply", x.get_keyboard_mapping_reply) &&
           find(library, "xcb_get_keyboard_mapping_keysyms", x.get_keyboard_mapping_keysyms) &&
           find(library, "xcb_get_keyboard_mapping_keysyms_length", x.get_keyboard_mapping_keysyms_length);
}

bool findShm(void* library, Xcb& x)
{
    return find(library, "xcb_shm_attach_checked", x.shm_attach_checked) &&
           find(library, "xcb_shm_detach_checked", x.shm_detach_checked) &&
           find(library, "xcb_shm_put_image_checked", x.shm_put_image_checked);
}

/// Shared memory is a faster way only: without its library, pictures go through the connection.
bool open(Xcb& x, std::string& error)
{
    void* core = dlopen(CoreFile, RTLD_NOW | RTLD_LOCAL);
    if (!core) {
        error = std::string("the X client library cannot be opened: ") + dlerror();
        return false;
    }
    if (!findCore(core, x)) {
        error = std::string("the X client library ") + CoreFile + " lacks a call that windows need";
        return false;
    }
    void* shm = dlopen(ShmFile, RTLD_NOW | RTLD_LOCAL);
    x.hasShm = shm && findShm(shm, x);
    return true;
}

} // namespace

const Xcb* openXcb(std::string& error)
{
    static std::mutex mutex;
    static Xcb opened{};
    static bool isOpen = false;
    std::lock_guard lock(mutex);
    if (!isOpen) isOpen = open(opened, error);
    return isOpen ? &opened : nullptr;
}

} // namespace softmetal

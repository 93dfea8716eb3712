// SPDX-License-Identifier: Apache-2.0
// The X client libraries, opened when the first window is made: a machine without a screen needs none of them.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <memory>
#include <string>

#include <stdlib.h>

namespace softmetal
{

/// The calls that windows make, under their names without "xcb_".
struct Xcb
{
    decltype(&xcb_connect) connect;
    decltype(&xcb_disconnect) disconnect;
    decltype(&xcb_connection_has_error) connection_has_error;
    decltype(&xcb_get_file_descriptor) get_file_descriptor;
    decltype(&xcb_get_setup) get_setup;
    decltype(&xcb_setup_roots_iterator) setup_roots_iterator;
    decltype(&xcb_screen_next) screen_next;
    decltype(&xcb_screen_allowed_depths_iterator) screen_allowed_depths_iterator;
    decltype(&xcb_depth_next) depth_next;
    decltype(&xcb_depth_visuals_iterator) depth_visuals_iterator;
    decltype(&xcb_visualtype_next) visualtype_next;
    decltype(&xcb_setup_pixmap_formats) setup_pixmap_formats;
    decltype(&xcb_setup_pixmap_formats_length) setup_pixmap_formats_length;
    decltype(&xcb_get_maximum_request_length) get_maximum_request_length;
    decltype(&xcb_generate_id) generate_id;
    decltype(&xcb_create_window_checked) create_window_checked;
    decltype(&xcb_change_property) change_property;
    decltype(&xcb_map_window) map_window;
    decltype(&xcb_configure_window) configure_window;
    decltype(&xcb_create_gc) create_gc;
    decltype(&xcb_put_image_checked) put_image_checked;
    decltype(&xcb_request_check) request_check;
    decltype(&xcb_flush) flush;
    decltype(&xcb_poll_for_event) poll_for_event;
    decltype(&xcb_intern_atom) intern_atom;
    decltype(&xcb_intern_atom_reply) intern_atom_reply;
    decltype(&xcb_query_extension) query_extension;
    decltype(&xcb_query_extension_reply) query_extension_reply;
    decltype(&xcb_get_keyboard_mapping) get_keyboard_mapping;
    decltype(&xcb_get_keyboard_mapping_reply) get_keyboard_mapping_reply;
    decltype(&xcb_get_keyboard_mapping_keysyms) get_keyboard_mapping_keysyms;
    decltype(&xcb_get_keyboard_mapping_keysyms_length) get_keyboard_mapping_keysyms_length;

    bool hasShm = false; // whether what follows is there
    decltype(&xcb_shm_attach_checked) shm_attach_checked;
    decltype(&xcb_shm_detach_checked) shm_detach_checked;
    decltype(&xcb_shm_put_image_checked) shm_put_image_checked;
};

/// Opened once and kept open. Null with one sentence in error when the libraries are not there. Thread-safe.
const Xcb* openXcb(std::string& error);

struct FreeReply
{
    void operator()(void* reply) const { free(reply); }
};
/// What the library hands out to be freed: replies, events, errors.
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

} // namespace softmetal

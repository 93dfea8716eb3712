// SPDX-License-Identifier: Apache-2.0
#include "window/XImage.h"

#include <algorithm>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace softmetal
{

XImage::XImage(const Xcb& calls, xcb_connection_t* connection, bool mayShare)
    : x_(calls), connection_(connection), mayShare_(mayShare)
{}
XImage::~XImage()
{
    drop();
}

void XImage::resize(uint32_t width, uint32_t height)
{
    if (width == width_ && height == height_) return;
    drop();
    width_ = width;
    height_ = height;
    size_t bytes = pitch() * height;
    if (!mayShare_ || !share(bytes)) own_.assign(bytes, 0);
}

/// The segment goes away by itself when both sides have let go of it, even when this process ends without a word.
bool XImage::share(size_t bytes)
{
    int memory = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    void* mapped = memory < 0 ? reinterpret_cast<void*>(-1) : shmat(memory, nullptr, 0);
    bool isMapped = mapped != reinterpret_cast<void*>(-1);
    segment_ = x_.generate_id(connection_);
    bool attached = isMapped && done(x_.shm_attach_checked(connection_, segment_, static_cast<uint32_t>(memory), 1));
    if (memory >= 0) shmctl(memory, IPC_RMID, nullptr);
    if (attached)
        shared_ = static_cast<uint8_t*>(mapped);
    else if (isMapped)
        shmdt(mapped);
    mayShare_ = attached; // a server on another machine cannot, now or later
    return attached;
}

void XImage::drop()
{
    own_.clear();
    if (!shared_) return;
    done(x_.shm_detach_checked(connection_, segment_));
    shmdt(shared_);
    shared_ = nullptr;
}

void XImage::put(const XTarget& target)
{
    if (width_ == 0 || height_ == 0) return;
    if (!shared_ || !putShared(target)) putInSlices(target);
}

bool XImage::putShared(const XTarget& target)
{
    auto w = static_cast<uint16_t>(width_), h = static_cast<uint16_t>(height_);
    return done(x_.shm_put_image_checked(connection_, target.window, target.context, w, h, 0, 0, w, h, 0, 0,
                                         target.depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0));
}

/// As many rows at a time as a request may carry.
void XImage::putInSlices(const XTarget& target)
{
    size_t room = size_t{4} * x_.get_maximum_request_length(connection_);
    auto most = static_cast<uint32_t>(std::clamp<size_t>(room / pitch(), 2, 32768) - 1); // a row's room is for the head
    for (uint32_t y = 0; y < height_; y += most) {
        uint32_t rows = std::min(most, height_ - y);
        done(x_.put_image_checked(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, target.window, target.context,
                                  static_cast<uint16_t>(width_), static_cast<uint16_t>(rows), 0,
                                  static_cast<int16_t>(y), 0, target.depth, static_cast<uint32_t>(rows * pitch()),
                                  pixels() + y * pitch()));
    }
}

bool XImage::done(xcb_void_cookie_t request)
{
    Reply<xcb_generic_error_t> error(x_.request_check(connection_, request));
    return !error && x_.connection_has_error(connection_) == 0;
}

} // namespace softmetal

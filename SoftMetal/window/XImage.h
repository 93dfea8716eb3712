// SPDX-License-Identifier: Apache-2.0
// The picture that a window shows last, in memory that the X server reads itself where it can.
#pragma once

#include "window/Xcb.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace softmetal
{

/// Where a picture goes.
struct XTarget
{
    xcb_window_t window = 0;
    xcb_gcontext_t context = 0;
    uint8_t depth = 0;
};

class XImage
{
public:
    XImage(const Xcb& calls, xcb_connection_t* connection, bool mayShare);
    ~XImage();
    XImage(const XImage&) = delete;
    XImage& operator=(const XImage&) = delete;

    /// Makes room for a picture of this size; what it held is lost.
    void resize(uint32_t width, uint32_t height);
    uint32_t width() const { return width_; }
    uint32_t height() const { return height_; }
    uint8_t* pixels() { return shared_ ? shared_ : own_.data(); }
    size_t pitch() const { return size_t{4} * width_; }

    /// Shows it, its first row on top. When this returns, the server has read the memory.
    void put(const XTarget& target);

private:
    bool share(size_t bytes);
    void drop();
    bool putShared(const XTarget& target);
    void putInSlices(const XTarget& target);
    bool done(xcb_void_cookie_t request);

    const Xcb& x_;
    xcb_connection_t* connection_;
    bool mayShare_;
    uint32_t width_ = 0, height_ = 0;
    uint8_t* shared_ = nullptr; // null: the picture lies in own_
    xcb_shm_seg_t segment_ = 0;
    std::vector<uint8_t> own_;
};

} // namespace softmetal

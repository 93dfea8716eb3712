// SPDX-License-Identifier: Apache-2.0
// What a scene needs of its surroundings: a current context with a colour and a depth buffer. One source file implements
// it for this library (HostZal.cpp), another for Mesa's software GL (HostMesa.cpp); a program links one of them.
#pragma once

#include "Image.h"

#include <memory>
#include <string>

namespace scenes {

class Host
{
public:
    virtual ~Host() = default;
    virtual std::string description() const = 0; // library and device, for people
    virtual void swap() = 0;                     // presents the frame

    /// The frame drawn so far, as the picture a user would see (top row first).
    Image read();

    int width() const { return width_; }
    int height() const { return height_; }

protected:
    Host(int width, int height) : width_(width), height_(height) {}

private:
    int width_, height_;
};

/// Makes the context current. Null with one sentence in error when there is no such GL here.
std::unique_ptr<Host> makeHost(int width, int height, std::string& error);

} // namespace scenes

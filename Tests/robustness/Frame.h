// SPDX-License-Identifier: Apache-2.0
// One frame as a host draws it, with everything it needs made in it and taken back at its end: buffers, a texture,
// programs, a framebuffer object that is drawn to, read back and drawn with, a swap. It goes through the public calls
// alone.
#pragma once

#include <SoftMetal/SoftMetal.hpp>

#include <ZALMetal/ZALMetalGL.h>

#include <ZALMetal/ZALMetal.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace robustness
{

inline constexpr GLsizei Side = 8; // of the framebuffer object
inline constexpr int Bgra8 = 80, Depth32 = 252;
inline constexpr double Width = 20, Height = 12;

/// What a host sees of a frame.
struct Seen
{
    std::vector<GLenum> errors;    // of the steps, in order
    std::vector<uint8_t> readBack; // of the framebuffer object
    std::vector<uint8_t> read;     // of the default framebuffer, before the swap
    std::vector<uint8_t> shown;    // what the layer presented last

    bool operator==(const Seen&) const = default;
};

/// For messages: the errors, and a sum of each picture.
void PrintTo(const Seen& seen, std::ostream* out);

/// A view, and a context with a layer on it where they could be made.
class Screen
{
public:
    /// Nothing is made yet.
    Screen() : view_(SoftMetal::newView(Width, Height)) {}
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();

    /// The first result that is not success. Frames need a queue.
    int make(MTL::CommandQueue* queue);

    /// Draws and gives what was seen. `during` is called when half of the frame has been recorded.
    Seen frame(void (*during)(NSView*) = nullptr);

    ZALMetalContext* context = nullptr;

private:
    GLenum makeObjects();
    void drawPattern();
    void drawWithFramebuffer();
    void deleteObjects();

    NSView* view_;
    MTL::CommandQueue* queue_ = nullptr;
    GLuint buffers_[2] = {}, textures_[2] = {}, programs_[4] = {}, framebuffer_ = 0;
};

} // namespace robustness

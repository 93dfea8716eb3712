// SPDX-License-Identifier: Apache-2.0
// The library as a machine for one vertex or one pixel: a point is drawn into float attachments and they are read back.
#pragma once

#include "assembly/Interpreter.h"
#include "support/ContextFixture.h"

#include <optional>
#include <random>

namespace assembly {

class Machine : public support::ContextTest
{
protected:
    static constexpr int Side = 8; // of the attachments, in pixels

    explicit Machine(SoftMetal::DeviceOptions options = {}) : ContextTest(std::move(options)) {}

    void SetUp() override;

    /// New values for attributes, locals and matrices, in the library and in inputs().
    void change(std::mt19937& random);
    Inputs& inputs() { return inputs_; }

    /// Loads both programs; the library's words when one is refused, else empty.
    std::string load(const std::string& vertex, const std::string& fragment);
    /// Draws the point: the colours of the pixel that it covers, by attachment; none when it covers no pixel.
    std::optional<std::array<Register, 8>> draw();
    /// Where the last point was, in pixels from the lower left; its depth.
    int column = 0, row = 0;

    /// A vertex program that hands its attributes on, and what a fragment program then finds.
    static const char* const PassVertex;
    Inputs fragmentInputs();

    /// Fails when a component that the interpreter wrote differs by more than the bound, relative to its size.
    static void expectClose(const Register& wanted, const Register& got, double bound, const std::string& what);

private:
    void makeTargets();
    void makeTextures();
    void setAttribute(GLuint index, const Register& value);
    Register sample(int unit, const std::string& target, const Register& at) const;

    Inputs inputs_;
    GLuint framebuffer_ = 0, targets_[8] = {}, programs_[2] = {}, buffer_ = 0;
    std::array<std::array<float, 4>, 16> attributes_{};
};

} // namespace assembly

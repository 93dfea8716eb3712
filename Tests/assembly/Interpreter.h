// SPDX-License-Identifier: Apache-2.0
// Assembly programs carried out one statement at a time, by the meaning of the language: no text is generated and no code
// of the library is used, so that what the library draws can be held against it. Arithmetic is in single precision.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace assembly {

/// A register. Integer registers hold whole numbers up to 32 bits, which a double has room for.
struct Register
{
    std::array<double, 4> v{};
    unsigned written = 0; // bit i: component i was given a value

    double operator[](size_t i) const { return v[i]; }
};

using Matrix = std::array<std::array<double, 4>, 4>; // by row

/// What a program reads from outside.
struct Inputs
{
    std::map<std::string, Register> registers; // "vertex.attrib[2]", "fragment.texcoord[0]", "program.local[7]", …
    std::map<std::string, Matrix> matrices;    // "modelview", "projection", "mvp", "texture[0]", …
    /// Unit, target word, coordinate.
    std::function<Register(int, const std::string&, const Register&)> sample;
};

struct Outcome
{
    std::map<std::string, Register> results; // "result.color[0]", "result.position", "result.depth", …
    bool killed = false;
};

/// A program that the interpreter cannot read: the test's fault.
class Unreadable : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

Outcome interpret(std::string_view program, const Inputs& inputs);

} // namespace assembly

// SPDX-License-Identifier: Apache-2.0
// Every way in which the device can refuse what the library asks for, one after the other.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace support
{

/// One call of one kind that fails; persistent: all of the kind after it as well.
struct Fault
{
    std::string point; // as SoftMetal::injectFault names it
    uint64_t call = 0; // 1 is the first
    bool persistent = false;

    std::string words() const { return point + " " + std::to_string(call) + (persistent ? " and all after it" : ""); }
};

/// What can fail, as SoftMetal::injectFault names it. Nil command buffers and encoders are left out: the library stops
/// the process where it gets one.
inline constexpr std::array FaultPoints = {
    "newBuffer",  "newTexture",  "newTextureView",         "newSamplerState", "newDepthStencilState", "newFence",
    "newLibrary", "newFunction", "newRenderPipelineState", "newCommandQueue", "nextDrawable",         "commit"};

/// Runs a round without faults and counts the calls of one point that could have failed; then one round for each of
/// them with that call failing, and one with it and all after it failing. A round is prepare, body, check; faults are
/// set during body alone, which is told of them (null: none). Gives the number of faulty rounds.
size_t forEachFault(const std::string& point, const std::function<void()>& prepare,
                    const std::function<void(const Fault*)>& body, const std::function<void(const Fault*)>& check);

} // namespace support

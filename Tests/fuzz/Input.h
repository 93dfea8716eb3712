// SPDX-License-Identifier: Apache-2.0
// Small values off the front of a fuzzer's input; the rest is text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fuzz
{

class Input
{
public:
    Input(const uint8_t* data, size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    /// The next byte; 0 at the end.
    uint8_t byte()
    {
        if (rest_.empty()) return 0;
        const char first = rest_.front();
        rest_.remove_prefix(1);
        return static_cast<uint8_t>(first);
    }
    /// Up to `most` bytes.
    std::string_view take(size_t most)
    {
        const std::string_view taken = rest_.substr(0, most);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

/// Stops the process, so that the fuzzer keeps the input, when something that must hold does not.
inline void require(bool holds)
{
    if (!holds) __builtin_trap();
}

} // namespace fuzz

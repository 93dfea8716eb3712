// SPDX-License-Identifier: Apache-2.0
// Names of what is kept on disk: SHA-256 over everything that decides what the compiler makes, so that two different
// requests never share a name.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace softmetal::shader {

using Digest = std::array<uint8_t, 32>;

/// Collects bytes; add() marks where a text ends, so that neighbours cannot run into one another.
class Digester
{
public:
    Digester& add(std::string_view text);
    Digester& add(uint64_t number);
    Digester& add(const Digest& digest) { return raw(digest); }
    /// The digest of what was added; nothing may be added afterwards.
    Digest finish();

private:
    Digester& raw(std::span<const uint8_t> bytes);
    void block(const uint8_t* bytes);

    std::array<uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<uint8_t, 64> pending_{};
    uint64_t length_ = 0; // bytes so far
};

/// 64 digits.
std::string hexadecimal(const Digest& digest);

} // namespace softmetal::shader

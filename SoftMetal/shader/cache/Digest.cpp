// SPDX-License-Identifier: Apache-2.0
// SHA-256 as FIPS 180-4 defines it.
#include "shader/cache/Digest.h"

#include <algorithm>
#include <bit>

namespace softmetal::shader
{
namespace
{

// The first 32 bits of the fractions of the cube roots of the first 64 primes.
constexpr std::array<uint32_t, 64> RoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};

uint32_t bigEndian(const uint8_t* bytes)
{
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | uint32_t{bytes[3]};
}

} // namespace

void Digester::block(const uint8_t* bytes)
{
    std::array<uint32_t, 64> w;
    for (size_t i = 0; i < 16; ++i)
        w[i] = bigEndian(bytes + i * 4);
    for (size_t i = 16; i < 64; ++i) {
        uint32_t early = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ w[i - 15] >> 3;
        uint32_t late = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ w[i - 2] >> 10;
        w[i] = w[i - 16] + early + w[i - 7] + late;
    }
    auto [a, b, c, d, e, f, g, h] = state_;
    for (size_t i = 0; i < 64; ++i) {
        uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) +
                         RoundConstants[i] + w[i];
        uint32_t second = (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
    }
    const std::array<uint32_t, 8> sum = {a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < sum.size(); ++i)
        state_[i] += sum[i];
}

Digester& Digester::raw(std::span<const uint8_t> bytes)
{
    while (!bytes.empty()) {
        size_t at = length_ % pending_.size();
        if (at == 0 && bytes.size() >= pending_.size()) {
            block(bytes.data());
            bytes = bytes.subspan(pending_.size());
            length_ += pending_.size();
            continue;
        }
        size_t taken = std::min(bytes.size(), pending_.size() - at);
        std::copy_n(bytes.begin(), taken, pending_.begin() + static_cast<std::ptrdiff_t>(at));
        bytes = bytes.subspan(taken);
        length_ += taken;
        if (at + taken == pending_.size()) block(pending_.data());
    }
    return *this;
}

Digester& Digester::add(uint64_t number)
{
    std::array<uint8_t, 8> bytes;
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(number >> i * 8);
    return raw(bytes);
}

Digester& Digester::add(std::string_view text)
{
    add(uint64_t{text.size()});
    return raw({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

Digest Digester::finish()
{
    const uint64_t bits = length_ * 8;
    std::array<uint8_t, 64> padding{0x80};
    raw(std::span(padding).first(1 + (119 - length_ % 64) % 64));
    std::array<uint8_t, 8> length;
    for (size_t i = 0; i < length.size(); ++i)
        length[i] = static_cast<uint8_t>(bits >> (56 - i * 8));
    raw(length);
    Digest result;
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<uint8_t>(state_[i / 4] >> (24 - i % 4 * 8));
    return result;
}

std::string hexadecimal(const Digest& digest)
{
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string text;
    for (uint8_t byte : digest)
        (text += Digits[byte >> 4]) += Digits[byte & 15];
    return text;
}

} // namespace softmetal::shader

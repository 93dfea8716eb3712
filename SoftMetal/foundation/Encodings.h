// SPDX-License-Identifier: Apache-2.0
// Text in the encodings that strings know. Inside it is always valid UTF-8.
#pragma once

#include <Foundation/NSString.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace softmetal {

/// Nothing when the bytes are not valid in the encoding, or it is not one of those known (ASCII, UTF-8, Latin 1).
std::optional<std::string> decode(std::string_view bytes, NS::StringEncoding encoding);

/// Nothing when the text has characters that the encoding lacks, or it is not one of those known.
std::optional<std::string> encode(std::string_view text, NS::StringEncoding encoding);

/// The code point whose first byte is at position, which is moved past it. The text is valid UTF-8.
char32_t nextCodePoint(std::string_view text, std::size_t& position);

/// Number of UTF-16 units that valid UTF-8 makes.
NS::UInteger utf16Length(std::string_view text);

} // namespace softmetal

// SPDX-License-Identifier: Apache-2.0
// Strings and errors, and what the other rooms need to make and read them.
#pragma once

#include "foundation/Object.h"

#include <string>

namespace softmetal {

/// Immutable; the text is valid UTF-8.
class StringObject final : public ObjectOf<NS::String>
{
public:
    explicit StringObject(std::string text = {}) : text_(std::move(text)) {}
    const std::string& text() const { return text_; }

    const char* className() const override { return "NSString"; }
    std::string description() const override { return text_; }
    Object* copy() const override { return sameAgain(*this); }
    bool isEqual(const Object* other) const override;
    NS::UInteger hash() const override { return std::hash<std::string>()(text_); }

private:
    std::string text_;
};

/// The caller owns the result.
NS::String* newString(std::string text);
NS::String* autoreleasedString(std::string text);

/// Text of a string, empty for null.
std::string textOf(const NS::String* string);

/// The caller owns the result; its localizedDescription is the message.
NS::Error* newError(const char* domain, NS::Integer code, std::string message);

/// Stores an autoreleased error where the caller of an API call wants it; where may be null.
void report(NS::Error** where, const char* domain, NS::Integer code, std::string message);

} // namespace softmetal

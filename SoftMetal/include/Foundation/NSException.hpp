// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: exceptions and a string question. The interface is the same on every platform and is included
// through <AppKit/AppKit.hpp>.
#pragma once

#include "NSObject.hpp"

#include <exception>
#include <string>

namespace NS
{

/// What raise() throws; what() is "name: reason".
class SOFTMETAL_API Exception : public std::exception
{
public:
    Exception(std::string name, std::string reason);
    ~Exception() override;
    const char* what() const noexcept override;
    const std::string& name() const { return name_; }
    const std::string& reason() const { return reason_; }

private:
    std::string name_, reason_, text_;
};

/// Raises an exception with name and reason; does not return.
[[noreturn]] SOFTMETAL_API void raise(const char* name, const char* reason);

/// Whether text begins with prefix, byte for byte. False for a null text.
SOFTMETAL_API bool hasPrefix(const String* text, const char* prefix);

}

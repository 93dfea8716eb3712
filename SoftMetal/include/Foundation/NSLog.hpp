// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: the system log and exceptions. The interface is the same on every platform.
#pragma once

#include "NSObject.hpp"

#include <stdexcept>
#include <string>

/// Writes one line to the system log. %@ takes an NS::Object* (its description; "(null)" for null); the rest is printf's.
SOFTMETAL_API void NSLog(const char* format, ...);

namespace NS
{

/// What raise() throws.
class SOFTMETAL_API Exception : public std::runtime_error
{
public:
    Exception(const std::string& name, const std::string& reason) : std::runtime_error(name + ": " + reason), name_(name) {}
    const std::string& name() const { return name_; }

private:
    std::string name_;
};

/// Raises an exception with name and reason; does not return.
[[noreturn]] SOFTMETAL_API void raise(const char* name, const char* reason);

}

// SPDX-License-Identifier: Apache-2.0
// printf's conversions, and %@ for objects.
#pragma once

#include <cstdarg>
#include <string>

namespace softmetal {

/// Known: @ d i u o x X c s p e E f F g G a A %, with flags, width and precision (also as *), and the lengths hh h l ll j
/// z t q L. What is not known is copied as it stands and takes no argument. %@ and %s give "(null)" for null.
std::string formatLine(const char* format, std::va_list& arguments);

} // namespace softmetal

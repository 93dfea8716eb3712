// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

class Dictionary;
using ErrorDomain = String*;

/// Why a call gave nothing.
class SOFTMETAL_API Error : public Copying<Error>
{
public:
    static Error* error(ErrorDomain domain, Integer code, Dictionary* userInfo);
    static Error* alloc();
    Error* init();
    Error* init(ErrorDomain domain, Integer code, Dictionary* userInfo);
    Integer code() const;
    ErrorDomain domain() const;
    String* localizedDescription() const;
};

}

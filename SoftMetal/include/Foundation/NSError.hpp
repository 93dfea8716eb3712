// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

class Array;
class Dictionary;

using ErrorDomain = String*;
extern SOFTMETAL_API const ErrorDomain CocoaErrorDomain;
extern SOFTMETAL_API const ErrorDomain POSIXErrorDomain;
extern SOFTMETAL_API const ErrorDomain OSStatusErrorDomain;
extern SOFTMETAL_API const ErrorDomain MachErrorDomain;

using ErrorUserInfoKey = String*;
extern SOFTMETAL_API const ErrorUserInfoKey UnderlyingErrorKey;
extern SOFTMETAL_API const ErrorUserInfoKey LocalizedDescriptionKey;
extern SOFTMETAL_API const ErrorUserInfoKey LocalizedFailureReasonErrorKey;
extern SOFTMETAL_API const ErrorUserInfoKey LocalizedRecoverySuggestionErrorKey;
extern SOFTMETAL_API const ErrorUserInfoKey LocalizedRecoveryOptionsErrorKey;

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
    Dictionary* userInfo() const; // never null
    /// The user information's description, else a sentence with domain and code.
    String* localizedDescription() const;
    Array* localizedRecoveryOptions() const;
    String* localizedRecoverySuggestion() const;
    String* localizedFailureReason() const;
};

}

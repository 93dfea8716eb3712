// SPDX-License-Identifier: Apache-2.0
#include "foundation/Collections.h"
#include "foundation/Strings.h"

#include <AppKit/AppKit.hpp>

namespace softmetal {
namespace {

class ErrorObject final : public ObjectOf<NS::Error>
{
public:
    ErrorObject(const NS::String* errorDomain, NS::Integer errorCode, const NS::Dictionary* info)
        : domain(castObject(errorDomain)), code(errorCode),
          userInfo(info ? Ref<DictionaryObject>(cast<DictionaryObject>(info)) : Ref<DictionaryObject>::adopt(new DictionaryObject))
    {}
    const ObjectRef domain;
    const NS::Integer code;
    const Ref<DictionaryObject> userInfo;

    const char* className() const override { return "NSError"; }
    Object* copy() const override { return sameAgain(*this); }
    std::string description() const override
    {
        return "Error Domain=" + domainText() + " Code=" + std::to_string(code) + " \"" + message() + "\"";
    }
    bool isEqual(const Object* other) const override
    {
        auto* error = dynamic_cast<const ErrorObject*>(other);
        return error && error->code == code && error->domainText() == domainText();
    }
    NS::UInteger hash() const override { return static_cast<NS::UInteger>(code); }

    std::string domainText() const { return domain ? domain->description() : "(null)"; }
    std::string message() const
    {
        const Object* text = userInfo->find(castObject(NS::LocalizedDescriptionKey));
        if (text) return text->description();
        return "The operation could not be completed. (" + domainText() + " error " + std::to_string(code) + ".)";
    }
};

NS::Object* info(const NS::Error* error, NS::ErrorUserInfoKey key)
{
    return reinterpret_cast<NS::Object*>(cast<ErrorObject>(error)->userInfo->find(castObject(key)));
}

} // namespace

NS::Error* newError(const char* domain, NS::Integer code, std::string message)
{
    auto text = Ref<StringObject>::adopt(new StringObject(std::move(message)));
    auto details = Ref<DictionaryObject>::adopt(new DictionaryObject);
    details->set(castObject(NS::LocalizedDescriptionKey), text.get());
    return api(new ErrorObject(NS::Private::constantString(domain), code, api(details.get())));
}

void report(NS::Error** where, const char* domain, NS::Integer code, std::string message)
{
    if (where) *where = newError(domain, code, std::move(message))->autorelease();
}

} // namespace softmetal

namespace NS {

using namespace softmetal;

const ErrorDomain CocoaErrorDomain = MTLSTR("NSCocoaErrorDomain");
const ErrorDomain POSIXErrorDomain = MTLSTR("NSPOSIXErrorDomain");
const ErrorDomain OSStatusErrorDomain = MTLSTR("NSOSStatusErrorDomain");
const ErrorDomain MachErrorDomain = MTLSTR("NSMachErrorDomain");

const ErrorUserInfoKey UnderlyingErrorKey = MTLSTR("NSUnderlyingError");
const ErrorUserInfoKey LocalizedDescriptionKey = MTLSTR("NSLocalizedDescription");
const ErrorUserInfoKey LocalizedFailureReasonErrorKey = MTLSTR("NSLocalizedFailureReason");
const ErrorUserInfoKey LocalizedRecoverySuggestionErrorKey = MTLSTR("NSLocalizedRecoverySuggestion");
const ErrorUserInfoKey LocalizedRecoveryOptionsErrorKey = MTLSTR("NSLocalizedRecoveryOptions");

// ---- Error -----------------------------------------------------------------------------------------------------------

Error* Error::error(ErrorDomain domain, Integer code, Dictionary* userInfo)
{
    return autoreleased(new ErrorObject(domain, code, userInfo));
}

Error* Error::alloc() { return api(new ErrorObject(nullptr, 0, nullptr)); }
Error* Error::init() { return this; }

Error* Error::init(ErrorDomain domain, Integer code, Dictionary* userInfo)
{
    release();
    return api(new ErrorObject(domain, code, userInfo));
}

Integer Error::code() const { return cast<ErrorObject>(this)->code; }
ErrorDomain Error::domain() const { return reinterpret_cast<String*>(cast<ErrorObject>(this)->domain.get()); }
Dictionary* Error::userInfo() const { return api(cast<ErrorObject>(this)->userInfo.get()); }
String* Error::localizedDescription() const { return autoreleasedString(cast<ErrorObject>(this)->message()); }
Array* Error::localizedRecoveryOptions() const { return static_cast<Array*>(info(this, LocalizedRecoveryOptionsErrorKey)); }
String* Error::localizedRecoverySuggestion() const { return static_cast<String*>(info(this, LocalizedRecoverySuggestionErrorKey)); }
String* Error::localizedFailureReason() const { return static_cast<String*>(info(this, LocalizedFailureReasonErrorKey)); }

// ---- exceptions ------------------------------------------------------------------------------------------------------

Exception::Exception(std::string name, std::string reason)
    : name_(std::move(name)), reason_(std::move(reason)), text_(name_ + ": " + reason_)
{}
Exception::~Exception() = default;
const char* Exception::what() const noexcept { return text_.c_str(); }

void raise(const char* name, const char* reason) { throw Exception(name ? name : "", reason ? reason : ""); }

} // namespace NS

// SPDX-License-Identifier: Apache-2.0
// Arrays, dictionaries, numbers, errors and file URLs: immutable objects that hold references.
#include "foundation/Strings.h"

#include <vector>

namespace softmetal {
namespace {

/// A copy of an immutable object is another reference to it.
template <class T>
Object* sameAgain(const T* object)
{
    auto* self = const_cast<T*>(object);
    self->retain();
    return self;
}

class ArrayObject final : public ObjectOf<NS::Array>
{
public:
    std::vector<Ref<Object>> items;

    const char* className() const override { return "NSArray"; }
    Object* copy() const override { return sameAgain(this); }
};

class DictionaryObject final : public ObjectOf<NS::Dictionary>
{
public:
    std::vector<std::pair<Ref<Object>, Ref<Object>>> entries; // key, object

    const char* className() const override { return "NSDictionary"; }
    Object* copy() const override { return sameAgain(this); }
};

class NumberObject final : public ObjectOf<NS::Number>
{
public:
    explicit NumberObject(double v, bool isWhole) : value(v), whole(isWhole) {}
    double value;
    bool whole;

    const char* className() const override { return "NSNumber"; }
    Object* copy() const override { return sameAgain(this); }
    std::string description() const override
    {
        return whole ? std::to_string(static_cast<long long>(value)) : std::to_string(value);
    }
    bool isEqual(const Object* other) const override
    {
        auto* number = dynamic_cast<const NumberObject*>(other);
        return number && number->value == value;
    }
    NS::UInteger hash() const override { return std::hash<double>()(value); }
};

class ErrorObject final : public ObjectOf<NS::Error>
{
public:
    Ref<Object> domain;
    NS::Integer code = 0;
    std::string message;

    const char* className() const override { return "NSError"; }
    Object* copy() const override { return sameAgain(this); }
    std::string description() const override
    {
        std::string name = domain ? domain->description() : "(null)";
        return "Error Domain=" + name + " Code=" + std::to_string(code) + " \"" + message + "\"";
    }
};

class UrlObject final : public ObjectOf<NS::URL>
{
public:
    std::string path;

    const char* className() const override { return "NSURL"; }
    Object* copy() const override { return sameAgain(this); }
    std::string description() const override { return "file://" + path; }
};

ArrayObject* arrayOf(const NS::Object* const* objects, NS::UInteger count)
{
    auto* array = new ArrayObject;
    for (NS::UInteger i = 0; i < count; ++i) array->items.emplace_back(castObject(objects[i]));
    return array;
}

DictionaryObject* dictionaryOf(const NS::Object* const* objects, const NS::Object* const* keys, NS::UInteger count)
{
    auto* dictionary = new DictionaryObject;
    for (NS::UInteger i = 0; i < count; ++i)
        dictionary->entries.emplace_back(Ref<Object>(castObject(keys[i])), Ref<Object>(castObject(objects[i])));
    return dictionary;
}

constexpr const char* DescriptionKey = "NSLocalizedDescription";

std::string descriptionIn(const NS::Dictionary* info)
{
    if (!info) return "The operation could not be completed.";
    NS::String* key = newString(DescriptionKey);
    auto* text = info->object<NS::Object>(key);
    key->release();
    return text ? castObject(text)->description() : "The operation could not be completed.";
}

ErrorObject* errorOf(const NS::String* domain, NS::Integer code, std::string message)
{
    auto* error = new ErrorObject;
    error->domain = Ref<Object>(castObject(domain));
    error->code = code;
    error->message = std::move(message);
    return error;
}

UrlObject* urlOf(const NS::String* path)
{
    auto* url = new UrlObject;
    url->path = textOf(path);
    return url;
}

} // namespace

NS::Error* newError(const char* domain, NS::Integer code, std::string message)
{
    NS::String* name = newString(domain);
    NS::Error* error = api(errorOf(name, code, std::move(message)));
    name->release();
    return error;
}

void report(NS::Error** where, const char* domain, NS::Integer code, std::string message)
{
    if (!where) return;
    *where = newError(domain, code, std::move(message));
    NS::Private::autorelease(*where);
}

} // namespace softmetal

namespace NS {

using namespace softmetal;

// ---- Array -----------------------------------------------------------------------------------------------------------

Array* Array::array() { return autoreleased(arrayOf(nullptr, 0)); }
Array* Array::array(const Object* object) { return autoreleased(arrayOf(&object, 1)); }
Array* Array::array(const Object* const* objects, UInteger count) { return autoreleased(arrayOf(objects, count)); }
Array* Array::alloc() { return api(new ArrayObject); }
Array* Array::init() { return this; }

Array* Array::init(const Object* const* objects, UInteger count)
{
    release();
    return api(arrayOf(objects, count));
}

Object* Array::objectAt(UInteger index) const
{
    auto& items = cast<ArrayObject>(this)->items;
    return index < items.size() ? reinterpret_cast<Object*>(items[index].get()) : nullptr;
}

UInteger Array::count() const { return cast<ArrayObject>(this)->items.size(); }

// ---- Dictionary --------------------------------------------------------------------------------------------------------

Dictionary* Dictionary::dictionary() { return autoreleased(new DictionaryObject); }
Dictionary* Dictionary::dictionary(const Object* object, const Object* key) { return autoreleased(dictionaryOf(&object, &key, 1)); }

Dictionary* Dictionary::dictionary(const Object* const* objects, const Object* const* keys, UInteger count)
{
    return autoreleased(dictionaryOf(objects, keys, count));
}

Dictionary* Dictionary::alloc() { return api(new DictionaryObject); }
Dictionary* Dictionary::init() { return this; }

Dictionary* Dictionary::init(const Object* const* objects, const Object* const* keys, UInteger count)
{
    release();
    return api(dictionaryOf(objects, keys, count));
}

Object* Dictionary::objectFor(const Object* key) const
{
    for (auto& [known, object] : cast<DictionaryObject>(this)->entries)
        if (known->isEqual(castObject(key))) return reinterpret_cast<Object*>(object.get());
    return nullptr;
}

UInteger Dictionary::count() const { return cast<DictionaryObject>(this)->entries.size(); }

// ---- Number ------------------------------------------------------------------------------------------------------------

Number* Number::number(bool value) { return autoreleased(new NumberObject(value, true)); }
Number* Number::number(int value) { return autoreleased(new NumberObject(value, true)); }
Number* Number::number(unsigned int value) { return autoreleased(new NumberObject(value, true)); }
Number* Number::number(double value) { return autoreleased(new NumberObject(value, false)); }
bool Number::boolValue() const { return cast<NumberObject>(this)->value != 0; }
int Number::intValue() const { return static_cast<int>(static_cast<long long>(cast<NumberObject>(this)->value)); }
unsigned int Number::unsignedIntValue() const { return static_cast<unsigned int>(static_cast<long long>(cast<NumberObject>(this)->value)); }
float Number::floatValue() const { return static_cast<float>(cast<NumberObject>(this)->value); }
double Number::doubleValue() const { return cast<NumberObject>(this)->value; }
String* Number::stringValue() const { return description(); }

// ---- Error -------------------------------------------------------------------------------------------------------------

Error* Error::error(ErrorDomain domain, Integer code, Dictionary* userInfo) { return autoreleased(errorOf(domain, code, descriptionIn(userInfo))); }
Error* Error::alloc() { return api(new ErrorObject); }
Error* Error::init() { return this; }

Error* Error::init(ErrorDomain domain, Integer code, Dictionary* userInfo)
{
    release();
    return api(errorOf(domain, code, descriptionIn(userInfo)));
}

Integer Error::code() const { return cast<ErrorObject>(this)->code; }
ErrorDomain Error::domain() const { return reinterpret_cast<String*>(cast<ErrorObject>(this)->domain.get()); }
String* Error::localizedDescription() const { return autoreleasedString(cast<ErrorObject>(this)->message); }

// ---- URL ---------------------------------------------------------------------------------------------------------------

URL* URL::fileURLWithPath(const String* path) { return autoreleased(urlOf(path)); }
URL* URL::alloc() { return api(new UrlObject); }
URL* URL::init() { return this; }

URL* URL::initFileURLWithPath(const String* path)
{
    release();
    return api(urlOf(path));
}

const char* URL::fileSystemRepresentation() const { return cast<UrlObject>(this)->path.c_str(); }

} // namespace NS

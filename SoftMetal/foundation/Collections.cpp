// SPDX-License-Identifier: Apache-2.0
#include "foundation/Collections.h"

#include <algorithm>

namespace softmetal {
namespace {

/// Walks over an array that it holds.
class EnumeratorObject final : public ObjectOf<NS::Object>
{
public:
    explicit EnumeratorObject(ArrayObject* array) : array_(Ref<ArrayObject>::adopt(array)) {}
    const char* className() const override { return "NSEnumerator"; }
    Object* next() { return next_ < array_->items.size() ? array_->items[next_++].get() : nullptr; }

private:
    Ref<ArrayObject> array_;
    std::size_t next_ = 0;
};

NS::Object* anyApi(Object* object) { return reinterpret_cast<NS::Object*>(object); }

/// Null objects are left out.
ArrayObject* arrayOf(const NS::Object* const* objects, NS::UInteger count)
{
    auto* array = new ArrayObject;
    for (NS::UInteger i = 0; i < count; ++i)
        if (objects[i]) array->items.emplace_back(castObject(objects[i]));
    return array;
}

/// Entries with a null key or object are left out.
DictionaryObject* dictionaryOf(const NS::Object* const* objects, const NS::Object* const* keys, NS::UInteger count)
{
    auto* dictionary = new DictionaryObject;
    for (NS::UInteger i = 0; i < count; ++i)
        if (keys[i] && objects[i]) dictionary->set(castObject(keys[i]), castObject(objects[i]));
    return dictionary;
}

} // namespace

std::string ArrayObject::description() const
{
    std::string text = "(";
    for (const ObjectRef& item : items)
        text += (text.size() > 1 ? ", " : "") + item->description();
    return text + ")";
}

bool ArrayObject::isEqual(const Object* other) const
{
    auto* array = dynamic_cast<const ArrayObject*>(other);
    auto equal = [](const ObjectRef& a, const ObjectRef& b) { return a->isEqual(b.get()); };
    return array && std::equal(items.begin(), items.end(), array->items.begin(), array->items.end(), equal);
}

void DictionaryObject::set(const Object* key, const Object* value)
{
    ObjectRef held(castObject(value));
    auto known = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.key->isEqual(key); });
    if (known != entries.end())
        known->value = std::move(held);
    else
        entries.push_back({ObjectRef(castObject(key)), std::move(held)});
}

Object* DictionaryObject::find(const Object* key) const
{
    for (const Entry& entry : entries)
        if (entry.key->isEqual(key)) return entry.value.get();
    return nullptr;
}

std::string DictionaryObject::description() const
{
    std::string text = "{";
    for (const Entry& entry : entries)
        text += entry.key->description() + " = " + entry.value->description() + "; ";
    return text + "}";
}

bool DictionaryObject::isEqual(const Object* other) const
{
    auto* dictionary = dynamic_cast<const DictionaryObject*>(other);
    if (!dictionary || dictionary->entries.size() != entries.size()) return false;
    return std::all_of(entries.begin(), entries.end(), [&](const Entry& entry) {
        const Object* value = dictionary->find(entry.key.get());
        return value && entry.value->isEqual(value);
    });
}

} // namespace softmetal

namespace NS {

using namespace softmetal;

// ---- Array -----------------------------------------------------------------------------------------------------------

Array* Array::array() { return autoreleased(new ArrayObject); }
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
    return index < items.size() ? anyApi(items[index].get()) : nullptr;
}

UInteger Array::count() const { return cast<ArrayObject>(this)->items.size(); }

// ---- Dictionary ------------------------------------------------------------------------------------------------------

Dictionary* Dictionary::dictionary() { return autoreleased(new DictionaryObject); }

Dictionary* Dictionary::dictionary(const Object* object, const Object* key)
{
    return autoreleased(dictionaryOf(&object, &key, 1));
}

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
    return key ? anyApi(cast<DictionaryObject>(this)->find(castObject(key))) : nullptr;
}

Object* Dictionary::keys() const
{
    auto* array = new ArrayObject;
    for (const auto& entry : cast<DictionaryObject>(this)->entries)
        array->items.push_back(entry.key);
    return autoreleased(new EnumeratorObject(array));
}

UInteger Dictionary::count() const { return cast<DictionaryObject>(this)->entries.size(); }

// ---- Enumerator ------------------------------------------------------------------------------------------------------

Object* Private::nextObject(const void* enumerator)
{
    return anyApi(static_cast<EnumeratorObject*>(castObject(enumerator))->next());
}

Array* Private::allObjects(const void* enumerator)
{
    auto* rest = new ArrayObject;
    auto* walk = static_cast<EnumeratorObject*>(castObject(enumerator));
    while (softmetal::Object* object = walk->next())
        rest->items.emplace_back(object);
    return autoreleased(rest);
}

} // namespace NS

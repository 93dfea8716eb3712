// SPDX-License-Identifier: Apache-2.0
#include "foundation/Object.h"

#include "foundation/Strings.h"

#include <cstdio>

namespace softmetal {
namespace {

std::atomic<int64_t> objectsAlive{0};

} // namespace

Object::Object() { objectsAlive.fetch_add(1, std::memory_order_relaxed); }
Object::~Object() { objectsAlive.fetch_sub(1, std::memory_order_relaxed); }
int64_t Object::alive() { return objectsAlive.load(std::memory_order_relaxed); }

void Object::release()
{
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::string Object::description() const
{
    char text[96];
    std::snprintf(text, sizeof text, "<%s: %p>", className(), static_cast<const void*>(this));
    return text;
}

} // namespace softmetal

namespace NS {

using softmetal::castObject;

void Private::retain(const void* object)
{
    if (object) castObject(object)->retain();
}

void Private::release(const void* object)
{
    if (object) castObject(object)->release();
}

UInteger Private::retainCount(const void* object) { return object ? castObject(object)->retainCount() : 0; }
void* Private::copy(const void* object) { return object ? castObject(object)->copy() : nullptr; }

UInteger Object::hash() const { return castObject(this)->hash(); }
bool Object::isEqual(const Object* object) const { return object && castObject(this)->isEqual(castObject(object)); }
String* Object::description() const { return softmetal::autoreleasedString(castObject(this)->description()); }
String* Object::debugDescription() const { return description(); }

} // namespace NS

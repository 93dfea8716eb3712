// SPDX-License-Identifier: Apache-2.0
// Metal's calls on encoders of either kind.
#include "encoding/Commands.h"
#include "foundation/Strings.h"

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

template <class Function>
auto withEncoder(const MTL::CommandEncoder* encoder, Function function)
{
    Object* object = castObject(encoder);
    if (auto* render = dynamic_cast<RenderEncoderObject*>(object)) return function(*render);
    return function(*static_cast<BlitEncoderObject*>(object));
}

} // namespace

MTL::Device* MTL::CommandEncoder::device() const
{
    return withEncoder(this, [](auto& e) { return api(e.device.get()); });
}

NS::String* MTL::CommandEncoder::label() const
{
    return withEncoder(this, [](auto& e) { return reinterpret_cast<NS::String*>(e.label.get()); });
}

void MTL::CommandEncoder::setLabel(const NS::String* label)
{
    withEncoder(this, [&](auto& e) { e.label = ObjectRef(castObject(label)); });
}

void MTL::CommandEncoder::endEncoding()
{
    note(this, "endEncoding");
    withEncoder(this, [](Encoder& e) {
        if (e.open("endEncoding")) e.end();
    });
}

void MTL::CommandEncoder::insertDebugSignpost(const NS::String* string) { note(this, "insertDebugSignpost", arg("name", textOf(string))); }

void MTL::CommandEncoder::pushDebugGroup(const NS::String* string)
{
    note(this, "pushDebugGroup", arg("name", textOf(string)));
    withEncoder(this, [](Encoder& e) { ++e.debugGroups; });
}

void MTL::CommandEncoder::popDebugGroup()
{
    note(this, "popDebugGroup");
    withEncoder(this, [](Encoder& e) {
        if (require(e.debugGroups > 0, Rule::EncoderDebugGroup, e.described())) --e.debugGroups;
    });
}

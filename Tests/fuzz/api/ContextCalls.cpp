// SPDX-License-Identifier: Apache-2.0
// Contexts, layers, presentation. Kept away from, because an assertion ends the process there: a second layer for a
// context, and asking a context without one for its drawable. Kept away from as the header says: handles that are gone.
#include "fuzz/api/Arguments.h"

#include <cmath>
#include <limits>

namespace fuzz::api
{

namespace
{

Slot* emptySlot(World& world)
{
    for (Slot& slot : world.slots)
        if (!slot.context) return &slot;
    return nullptr;
}

void initFromQueue(Arguments& a)
{
    Slot* slot = emptySlot(a.world);
    uint8_t choice = a.input.byte();
    ZALMetalContext* share = choice & 4 && a.living() ? a.living()->context : nullptr;
    if (!slot || a.world.newQueues <= 0) return;
    void* queues[4] = {a.world.queues[0], a.world.queues[1], nullptr, a.world.queues[0]};
    if (ZALMetalContextInitFromMTLCommandQueue(slot->context, share, queues[choice & 3]) == ZALMetalResultSuccess)
        --a.world.newQueues;
}

void initFromShare(Arguments& a)
{
    Slot *slot = emptySlot(a.world), *share = a.input.byte() & 15 ? a.living() : nullptr;
    if (!slot) return;
    ZALMetalContextInitFromShareContext(slot->context, share ? share->context : nullptr);
}

void makeCurrent(Arguments& a)
{
    Slot* slot = a.living();
    ZALMetalContextMakeCurrent(slot && a.input.byte() & 7 ? slot->context : nullptr);
}

void getCurrent(Arguments&)
{
    ZALMetalContextGetCurrent();
}

void release(Arguments& a)
{
    if (Slot* slot = a.living()) a.world.release(*slot);
}

void destroy(Arguments& a)
{
    if (Slot* slot = a.living()) a.world.destroy(*slot);
}

constexpr double ViewSides[] = {0,
                                1,
                                16,
                                33.5,
                                64,
                                -1,
                                16384,
                                16385,
                                1e9,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity()};

double viewSide(Arguments& a, double other)
{
    double side = ViewSides[a.input.byte() % std::size(ViewSides)];
    return side * other > World::MostTexels && side <= World::LargestSide && other <= World::LargestSide ? 1 : side;
}

constexpr int Formats[] = {80, 81, 70, 115, 252, 255, 260, 0, 1, -1, 1000};

void createLayer(Arguments& a)
{
    Slot* slot = a.living();
    if (!slot || slot->view) return;
    double width = viewSide(a, 1), height = viewSide(a, width);
    slot->view = SoftMetal::newView(width, height);
    int color = Formats[a.input.byte() % std::size(Formats)], depth = Formats[a.input.byte() % std::size(Formats)];
    ZALMetalContextCreateCAMetalLayer(slot->context, slot->view, color, depth);
}

void setDrawable(Arguments& a)
{
    Slot* slot = a.living();
    if (!slot) return;
    auto texture = [&]() -> MTL::Texture* {
        uint8_t choice = a.input.byte();
        return choice < 16 ? nullptr : a.world.hostTextures[choice % a.world.hostTextures.size()];
    };
    MTL::Texture *color = texture(), *depth = texture();
    ZALMetalContextSetMetalDrawable(slot->context, color, depth);
}

void updateSize(Arguments& a)
{
    Slot* slot = a.living();
    if (!slot) return;
    if (slot->view && a.input.byte() & 1) {
        double width = viewSide(a, 1), height = viewSide(a, width);
        SoftMetal::setViewSize(slot->view, width, height);
    }
    ZALMetalContextUpdateSize(slot->context);
}

void ensureDrawable(Arguments& a)
{
    Slot* slot = a.living();
    if (slot && slot->context->drawable->layer) ZALMetalContextEnsureDrawable(slot->context);
}

void drawableRelease(Arguments& a)
{
    if (Slot* slot = a.living()) ZALMetalContextDrawableRelease(slot->context);
}

void swapBuffers(Arguments& a)
{
    if (Slot* slot = a.living()) ZALMetalContextSwapBuffers(slot->context);
}

void newRenderDescriptor(Arguments& a)
{
    Slot* slot = a.living();
    if (!slot) return;
    MTL::RenderPassDescriptor* made =
        ZALMetalContextNewRenderDescriptor(a.input.byte() & 1 ? slot->context->glState : nullptr, slot->context);
    require(made != nullptr);
    made->release();
}

void copyAndFlip(Arguments& a)
{
    Slot* slot = a.living();
    if (!slot) return;
    size_t count = a.world.hostTextures.size();
    MTL::Texture *from = a.world.hostTextures[a.input.byte() % count],
                 *to = a.world.hostTextures[a.input.byte() % count];
    ZALMetalContextCopyAndFlipMetalTexture(slot->context, from, a.input.byte() < 8 ? nullptr : to);
}

void getTexture(Arguments& a)
{
    Slot* slot = a.living();
    void* texture = nullptr;
    ZALMetalContextGetMtlTextureFromGLTextureId(slot ? slot->context : nullptr, texture, a.name());
}

void getProcAddress(Arguments& a)
{
    char name[32] = "gl";
    for (char& c : name) {
        c = static_cast<char>(a.input.byte());
        if (c == 0) break;
    }
    name[31] = 0;
    ZALMetalGetProcAddress(name);
}

void getCounters(Arguments& a)
{
    size_t size = a.input.byte() % (sizeof(ZALMetalCounters) + 1);
    auto* counters = reinterpret_cast<ZALMetalCounters*>(a.world.memory(size, a.input));
    ZALMetalGetCounters(a.input.byte() < 16 ? nullptr : counters, size);
}

void setLogLevel(Arguments& a)
{
    ZALMetalSetLogLevel(a.integer());
}

void countCharacters(int, const char* line, void* user)
{
    *static_cast<size_t*>(user) += std::strlen(line);
}

void setLogCallback(Arguments& a)
{
    static size_t characters = 0;
    ZALMetalSetLogCallback(a.input.byte() & 1 ? &countCharacters : nullptr, &characters);
}

void normaliseProgram(Arguments& a)
{
    const std::string_view text = ProgramTexts[a.input.byte() % ProgramTexts.size()].text;
    size_t size = a.input.byte() * 8u, messageSize = a.input.byte(), needed = 0;
    auto* out = reinterpret_cast<char*>(a.world.memory(size, a.input));
    auto* message = reinterpret_cast<char*>(a.world.memory(messageSize, a.input));
    ZALMetalNormaliseProgram(text.data(), text.size(), size ? out : nullptr, size, &needed,
                             messageSize ? message : nullptr, messageSize);
}

constexpr Call Calls[] = {
    {"ZALMetalContextCopyAndFlipMetalTexture", copyAndFlip},
    {"ZALMetalContextCreateCAMetalLayer", createLayer},
    {"ZALMetalContextDestroy", destroy},
    {"ZALMetalContextDrawableRelease", drawableRelease},
    {"ZALMetalContextEnsureDrawable", ensureDrawable},
    {"ZALMetalContextGetCurrent", getCurrent},
    {"ZALMetalContextGetMtlTextureFromGLTextureId", getTexture},
    {"ZALMetalContextInitFromMTLCommandQueue", initFromQueue},
    {"ZALMetalContextInitFromShareContext", initFromShare},
    {"ZALMetalContextMakeCurrent", makeCurrent},
    {"ZALMetalContextNewRenderDescriptor", newRenderDescriptor},
    {"ZALMetalContextRelease", release},
    {"ZALMetalContextSetMetalDrawable", setDrawable},
    {"ZALMetalContextSwapBuffers", swapBuffers},
    {"ZALMetalContextUpdateSize", updateSize},
    {"ZALMetalGetProcAddress", getProcAddress},
    {"ZALMetalNormaliseProgram", normaliseProgram},
    {"ZALMetalGetCounters", getCounters},
    {"ZALMetalSetLogCallback", setLogCallback},
    {"ZALMetalSetLogLevel", setLogLevel},
};

} // namespace

const Chapter ContextChapter{Calls, std::size(Calls)};

} // namespace fuzz::api

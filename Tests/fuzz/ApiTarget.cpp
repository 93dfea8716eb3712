// SPDX-License-Identifier: Apache-2.0
// All entry points on any bytes: which call, then its arguments, again and again. Pointers are valid and the memory
// behind them has the size that the call may touch; all else is as the bytes say: order, names, enumerants, contexts
// that come and go. The first byte chooses the kind of device and what may happen to the programs that stay.
//
// Nothing here is expected to be drawn; what must hold is that no memory is touched that is not the library's or handed
// in, that the process goes on, and that a frame drawn afterwards by a new context is right. The assertions that the
// library's manual names end the process on purpose, and the files of the chapters say how they are kept away from.
#include "fuzz/api/Arguments.h"

using namespace fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace fuzz::api;
    constexpr const Chapter* Chapters[8] = {&ContextChapter, &StateChapter,   &ObjectChapter, &ObjectChapter,
                                            &TextureChapter, &TextureChapter, &DrawChapter,   &DrawChapter};
    constexpr int MostCalls = 300;
    static World& world = *new World; // it stays to the end of the process, as the device does
    auto* pool = NS::AutoreleasePool::alloc()->init();
    Input input(data, size);
    Arguments arguments(world, input);
    const uint8_t kind = input.byte();
    world.mayDeletePrograms = kind >= 240;
    world.begin((kind & 1) != 0, (kind & 2) != 0);
    for (int i = 0; i < MostCalls && !input.rest().empty(); ++i) {
        const uint8_t which = input.byte();
        const Chapter& chapter = which >= 248 ? InertChapter : *Chapters[which % 8];
        chapter.calls[input.byte() % chapter.count].call(arguments);
        world.forgetMemory();
    }
    world.end();
    pool->release();
    return 0;
}

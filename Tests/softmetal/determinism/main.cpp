// SPDX-License-Identifier: Apache-2.0
// Draws the pictures with whatever the environment asks for, and writes a line for each: its name and its hash.
#include "Painter.h"

#include <SoftMetal/SoftMetal.hpp>

#include <cinttypes>
#include <cstdio>

int main()
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    for (const auto& picture : determinism::drawPictures())
        std::printf("%s %016" PRIx64 "\n", picture.name.c_str(), picture.hash);
    int broken = 0;
    for (const auto& message : SoftMetal::takeMessages())
        broken += std::fprintf(stderr, "%s\n", message.sentence.c_str()) > 0;
    pool->release();
    return broken ? 1 : 0;
}

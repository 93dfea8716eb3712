// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// Objects autoreleased while it is the thread's innermost pool are released when it is drained or released, the last
/// first. Pools opened inside it and not yet drained go with it. A pool belongs to the thread that made it.
class SOFTMETAL_API AutoreleasePool : public Object
{
public:
    static AutoreleasePool* alloc();
    AutoreleasePool* init();
    void drain();
    void addObject(Object* object);
    static void showPools();
};

}

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// Objects autoreleased while it is the thread's innermost pool are released when it is drained or released.
class SOFTMETAL_API AutoreleasePool : public Referencing<AutoreleasePool>
{
public:
    static AutoreleasePool* alloc();
    AutoreleasePool* init();
    void drain();
    void addObject(Object* object);
    static void showPools();
};

}

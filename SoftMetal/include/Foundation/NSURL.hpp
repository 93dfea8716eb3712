// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// A file's address; a relative path counts from the process's working directory.
class SOFTMETAL_API URL : public Copying<URL>
{
public:
    static URL* fileURLWithPath(const String* path);
    static URL* alloc();
    URL* init();
    URL* initFileURLWithPath(const String* path);
    const char* fileSystemRepresentation() const;
};

}

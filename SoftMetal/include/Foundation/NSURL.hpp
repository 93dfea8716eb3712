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
    URL* init(const String* string); // "file:///tmp/a%20b"; another scheme has no file system representation
    URL* initFileURLWithPath(const String* path);
    const char* fileSystemRepresentation() const; // lives as long as the URL
};

}

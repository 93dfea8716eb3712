/* SPDX-License-Identifier: Apache-2.0
 * Every name that the library must export, with its address. */
#pragma once

typedef void (*EntryPoint)(void);

struct DeclaredName
{
    const char* name;
    EntryPoint address;
};

#if defined(__cplusplus)
extern "C" {
#endif
extern const struct DeclaredName declaredNames[];
extern const int declaredNameCount;
#if defined(__cplusplus)
}
#endif

/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: only what metal-cpp and Platform/apple use. Nothing links it. */
#pragma once
#include <TargetConditionals.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef struct objc_class* Class;
struct objc_object
{
    Class isa;
};
typedef struct objc_object* id;
typedef struct objc_selector* SEL;
typedef struct objc_object Protocol;
typedef void (*IMP)(void);
typedef signed char BOOL;
Class objc_lookUpClass(const char* name);
Protocol* objc_getProtocol(const char* name);
SEL sel_registerName(const char* name);
BOOL class_addMethod(Class cls, SEL name, IMP imp, const char* types);
#ifdef __cplusplus
}
#endif

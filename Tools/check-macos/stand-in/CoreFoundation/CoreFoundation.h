/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: only the declarations that metal-cpp and the library use. */
#pragma once
#include <TargetConditionals.h>
#include <dispatch/dispatch.h>
#include <math.h>
#include <stddef.h>
#include <stdint.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef signed long CFIndex;
typedef unsigned char Boolean;
typedef double CFTimeInterval;
typedef double CGFloat;
typedef const void* CFTypeRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef CFStringRef CFNotificationName;
typedef struct __CFNotificationCenter* CFNotificationCenterRef;
typedef CFIndex CFNotificationSuspensionBehavior;
enum
{
    CFNotificationSuspensionBehaviorDeliverImmediately = 4
};
typedef void (*CFNotificationCallback)(CFNotificationCenterRef center, void* observer, CFNotificationName name, const void* object,
                                       CFDictionaryRef userInfo);
CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void);
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer, CFNotificationCallback callBack,
                                     CFStringRef name, const void* object, CFNotificationSuspensionBehavior suspensionBehavior);
void CFNotificationCenterRemoveObserver(CFNotificationCenterRef center, const void* observer, CFNotificationName name,
                                        const void* object);
#ifdef __cplusplus
}
#endif

/* SPDX-License-Identifier: Apache-2.0
 * The few declarations of Core Foundation and Core Graphics that a Metal host without Objective-C needs. Usable from C. */
#pragma once

#include <stdint.h>

#if defined(__cplusplus)
#define SOFTMETAL_CF_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define SOFTMETAL_CF_EXTERN extern __attribute__((visibility("default")))
#endif

typedef signed long CFIndex;
typedef unsigned char Boolean;
typedef double CFTimeInterval;
typedef const void* CFTypeRef;
typedef unsigned long CFHashCode;
typedef const struct __CFAllocator* CFAllocatorRef; /* null: the only one */
/* Toll-free: the same object as an NS::String, NS::Dictionary. */
typedef const struct __CFString* CFStringRef;
typedef const struct __CFDictionary* CFDictionaryRef;

typedef double CGFloat;
typedef struct CGPoint
{
    CGFloat x, y;
} CGPoint;
typedef struct CGSize
{
    CGFloat width, height;
} CGSize;
typedef struct CGRect
{
    CGPoint origin;
    CGSize size;
} CGRect;

/* ---- objects ---------------------------------------------------------------------------------------------------- */

SOFTMETAL_CF_EXTERN CFTypeRef CFRetain(CFTypeRef object);
SOFTMETAL_CF_EXTERN void CFRelease(CFTypeRef object);
SOFTMETAL_CF_EXTERN CFIndex CFGetRetainCount(CFTypeRef object);
SOFTMETAL_CF_EXTERN Boolean CFEqual(CFTypeRef a, CFTypeRef b);
SOFTMETAL_CF_EXTERN CFHashCode CFHash(CFTypeRef object);

/* ---- strings ---------------------------------------------------------------------------------------------------- */

typedef uint32_t CFStringEncoding;
enum
{
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100
};

/* A string that is made once and lives for ever. */
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
SOFTMETAL_CF_EXTERN CFStringRef __CFStringMakeConstantString(const char* text);
/* The caller owns the result; null where the text is not valid in the encoding. */
SOFTMETAL_CF_EXTERN CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                          CFStringEncoding encoding);
SOFTMETAL_CF_EXTERN CFIndex CFStringGetLength(CFStringRef string); /* in UTF-16 units */
/* Null where the text is not stored in the encoding: ask for UTF-8. Lives as long as the string. */
SOFTMETAL_CF_EXTERN const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

/* ---- notifications: delivered at once, on the thread that posts ------------------------------------------------- */

typedef struct __CFNotificationCenter* CFNotificationCenterRef;
typedef CFStringRef CFNotificationName;
typedef CFIndex CFNotificationSuspensionBehavior;
enum
{
    CFNotificationSuspensionBehaviorDrop = 1,
    CFNotificationSuspensionBehaviorCoalesce = 2,
    CFNotificationSuspensionBehaviorHold = 3,
    CFNotificationSuspensionBehaviorDeliverImmediately = 4
};
typedef void (*CFNotificationCallback)(CFNotificationCenterRef center, void* observer, CFNotificationName name,
                                       const void* object, CFDictionaryRef userInfo);

SOFTMETAL_CF_EXTERN CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void);
/* A null name or object matches any. Observer and object are compared by address and not retained. */
SOFTMETAL_CF_EXTERN void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                                         CFNotificationCallback callBack, CFStringRef name,
                                                         const void* object,
                                                         CFNotificationSuspensionBehavior suspensionBehavior);
SOFTMETAL_CF_EXTERN void CFNotificationCenterRemoveObserver(CFNotificationCenterRef center, const void* observer,
                                                            CFNotificationName name, const void* object);
SOFTMETAL_CF_EXTERN void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void* observer);
SOFTMETAL_CF_EXTERN void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFNotificationName name,
                                                              const void* object, CFDictionaryRef userInfo,
                                                              Boolean deliverImmediately);

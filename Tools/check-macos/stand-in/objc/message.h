/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once
#include <objc/runtime.h>
#ifdef __cplusplus
extern "C" {
#endif
void objc_msgSend(void);
void objc_msgSend_fpret(void);
void objc_msgSend_stret(void);
#ifdef __cplusplus
}
#endif

/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: only what metal-cpp asks. */
#pragma once
#define TARGET_OS_MAC 1
#define TARGET_OS_OSX 1
#define TARGET_OS_IPHONE 0
#define TARGET_OS_SIMULATOR 0

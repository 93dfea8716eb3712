/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once
typedef struct dispatch_data_s* dispatch_data_t;
typedef struct dispatch_queue_s* dispatch_queue_t;

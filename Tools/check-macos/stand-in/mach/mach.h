/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header. */
#pragma once

typedef int kern_return_t;
typedef unsigned int mach_port_t;
typedef mach_port_t task_id_token_t;

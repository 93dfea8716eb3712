// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: views, the system log and exceptions.
#pragma once

#include "NSView.hpp"
#include <Foundation/NSException.hpp>
#include <Foundation/NSLog.hpp>

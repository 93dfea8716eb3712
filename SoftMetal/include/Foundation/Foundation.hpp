// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSArray.hpp"
#include "NSAutoreleasePool.hpp"
#include "NSDictionary.hpp"
#include "NSEnumerator.hpp"
#include "NSError.hpp"
#include "NSNumber.hpp"
#include "NSObjCRuntime.hpp"
#include "NSObject.hpp"
#include "NSRange.hpp"
#include "NSSharedPtr.hpp"
#include "NSString.hpp"
#include "NSTypes.hpp"
#include "NSURL.hpp"

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/abi.h"

namespace softmetal
{

/// What generated code calls for an atomic operation; see abi::AtomicCall.
void runAtomics(abi::AtomicCall* call);

} // namespace softmetal

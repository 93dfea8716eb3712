// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace softmetal {

/// Called by a shader that was stopped: the command buffer being run has failed.
void noteShaderLimit();

} // namespace softmetal

// SPDX-License-Identifier: Apache-2.0
#include "support/BareContext.h"

#include <cstring>

namespace support
{

BareContext::BareContext(std::shared_ptr<ZALGLContextObjects> objects)
    : objects_(std::move(objects)), commands_(nullptr), state_(objects_.get()), context_{&metal_, &state_, &drawable_},
      before_(g_currentContext)
{
    metal_.metalState = &commands_;
    makeCurrent();
}

BareContext::~BareContext()
{
    g_currentContext = before_;
}

StateSnapshot::StateSnapshot(const ZALGLState& state) : state_(state), bytes_(sizeof state)
{
    std::memcpy(bytes_.data(), static_cast<const void*>(&state), sizeof state);
}

bool StateSnapshot::unchanged() const
{
    return std::memcmp(bytes_.data(), static_cast<const void*>(&state_), sizeof state_) == 0;
}

} // namespace support

// SPDX-License-Identifier: Apache-2.0
// A current context without a device, for what never reaches Metal: setters, queries, matrices, names.
#pragma once

#include "ZALGLContextObjects.h"
#include "ZALGLState.h"
#include "ZALMetalData.h"
#include "ZALMetalState.h"

#include <memory>
#include <vector>

namespace support
{

/// Makes itself current, and what was current before current again at its end. Nothing may be encoded with it.
class BareContext
{
public:
    BareContext() : BareContext(std::make_shared<ZALGLContextObjects>()) {}
    /// One that shares the objects of another.
    explicit BareContext(const BareContext& shared) : BareContext(shared.objects_) {}
    ~BareContext();
    BareContext& operator=(const BareContext&) = delete;

    void makeCurrent() { g_currentContext = &context_; }

    ZALGLState& state() { return state_; }
    ZALGLContextObjects& objects() { return *objects_; }
    ZALMetalData& metal() { return metal_; }

private:
    explicit BareContext(std::shared_ptr<ZALGLContextObjects> objects);

    std::shared_ptr<ZALGLContextObjects> objects_;
    ZALMetalState commands_;
    ZALMetalData metal_ = {};
    ZALMetalDrawable drawable_ = {};
    ZALGLState state_;
    ZALMetalContext context_;
    ZALMetalContext* before_;
};

/// The bytes of a state record, to see whether a call has changed any.
class StateSnapshot
{
public:
    explicit StateSnapshot(const ZALGLState& state);
    bool unchanged() const;

private:
    const ZALGLState& state_;
    std::vector<unsigned char> bytes_;
};

} // namespace support

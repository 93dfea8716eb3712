// SPDX-License-Identifier: Apache-2.0
// An object that says when it ends.
#pragma once

#include "foundation/Object.h"

#include <functional>

namespace softmetal {

class Probe : public ObjectOf<NS::Object>
{
public:
    explicit Probe(std::function<void()> atEnd = {}) : atEnd_(std::move(atEnd)) {}
    ~Probe() override
    {
        if (atEnd_) atEnd_();
    }
    const char* className() const override { return "Probe"; }

private:
    std::function<void()> atEnd_;
};

} // namespace softmetal

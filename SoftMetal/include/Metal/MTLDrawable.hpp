// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

#include <functional>

namespace MTL
{
class Drawable;

using DrawablePresentedHandlerFunction = std::function<void(Drawable*)>;

class SOFTMETAL_API Drawable : public NS::Referencing<Drawable>
{
public:
    void addPresentedHandler(const DrawablePresentedHandlerFunction& function);
    void present();
    void presentAtTime(CFTimeInterval presentationTime);
    void presentAfterMinimumDuration(CFTimeInterval duration);
    CFTimeInterval presentedTime() const;
    NS::UInteger drawableID() const;
};

} // namespace MTL

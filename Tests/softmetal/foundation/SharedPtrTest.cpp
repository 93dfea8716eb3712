// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include <utility>

namespace {

using SharedPtr = WithPool;

NS::String* newText() { return NS::String::alloc()->init("shared", NS::UTF8StringEncoding); }

TEST_F(SharedPtr, TransferTakesTheReferenceOverAndRetainAddsOne)
{
    NS::String* text = newText();
    {
        NS::SharedPtr<NS::String> owner = NS::TransferPtr(text);
        EXPECT_EQ(text->retainCount(), 1u);
        NS::SharedPtr<NS::String> second = NS::RetainPtr(text);
        EXPECT_EQ(text->retainCount(), 2u);
        text->retain();
    }
    EXPECT_EQ(text->retainCount(), 1u);
    text->release();
}

TEST_F(SharedPtr, CopiesCountAndMovesDoNot)
{
    auto owner = NS::TransferPtr(newText());
    auto copy = owner;
    EXPECT_EQ(owner->retainCount(), 2u);
    auto moved = std::move(copy);
    EXPECT_EQ(owner->retainCount(), 2u);
    EXPECT_FALSE(copy);
    EXPECT_TRUE(moved == owner);
    moved = nullptr;
    EXPECT_EQ(owner->retainCount(), 1u);
}

TEST_F(SharedPtr, ConvertsToABase)
{
    auto text = NS::TransferPtr(newText());
    NS::SharedPtr<NS::Object> object = text;
    EXPECT_EQ(text->retainCount(), 2u);
    object = NS::SharedPtr<NS::Object>(std::move(text));
    EXPECT_EQ(object->retainCount(), 1u);
    EXPECT_FALSE(text);
}

TEST_F(SharedPtr, DetachForgetsWithoutReleasing)
{
    NS::String* text = newText();
    auto owner = NS::TransferPtr(text);
    owner.detach();
    EXPECT_FALSE(owner);
    EXPECT_EQ(text->retainCount(), 1u);
    text->release();
}

TEST_F(SharedPtr, OfNothingIsNothing)
{
    NS::SharedPtr<NS::String> none = NS::RetainPtr(static_cast<NS::String*>(nullptr)), copy = none;
    copy.reset();
    EXPECT_EQ(copy.get(), nullptr);
}

} // namespace

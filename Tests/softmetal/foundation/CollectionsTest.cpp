// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include "Probe.h"

#include <string>

namespace {

using Array = WithPool;
using Dictionary = WithPool;

TEST_F(Array, GivesItsObjectsInOrderAndNothingBeyond)
{
    const NS::Object* objects[] = {text("a"), text("b")};
    NS::Array* array = NS::Array::array(objects, 2);
    ASSERT_EQ(array->count(), 2u);
    EXPECT_STREQ(array->object<NS::String>(0)->utf8String(), "a");
    EXPECT_EQ(array->object(1), objects[1]);
    EXPECT_EQ(array->object(2), nullptr);
}

TEST_F(Array, HoldsAReferenceToEachObject)
{
    int ends = 0;
    NS::Object* object = softmetal::api(new softmetal::Probe([&] { ++ends; }));
    NS::Array* array = NS::Array::alloc()->init(&object, 1);
    object->release();
    EXPECT_EQ(ends, 0);
    array->release();
    EXPECT_EQ(ends, 1);
}

TEST_F(Array, OfNothingIsEmpty)
{
    EXPECT_EQ(NS::Array::array()->count(), 0u);
    NS::Array* owned = NS::Array::alloc()->init();
    EXPECT_EQ(owned->count(), 0u);
    owned->release();
}

TEST_F(Array, EqualityIsOfTheObjectsInOrder)
{
    const NS::Object *ab[] = {text("a"), text("b")}, *ba[] = {text("b"), text("a")};
    EXPECT_TRUE(NS::Array::array(ab, 2)->isEqual(NS::Array::array(ab, 2)));
    EXPECT_FALSE(NS::Array::array(ab, 2)->isEqual(NS::Array::array(ba, 2)));
    EXPECT_FALSE(NS::Array::array(ab, 2)->isEqual(NS::Array::array(ab, 1)));
    EXPECT_STREQ(NS::Array::array(ab, 2)->description()->utf8String(), "(a, b)");
}

TEST_F(Dictionary, FindsObjectsByEqualKeys)
{
    const NS::Object *keys[] = {text("one"), text("two")}, *objects[] = {NS::Number::number(1), NS::Number::number(2)};
    NS::Dictionary* dictionary = NS::Dictionary::dictionary(objects, keys, 2);
    EXPECT_EQ(dictionary->count(), 2u);
    EXPECT_EQ(dictionary->object<NS::Number>(text("two"))->intValue(), 2);
    EXPECT_EQ(dictionary->object(text("three")), nullptr);
    EXPECT_EQ(dictionary->object(nullptr), nullptr);
}

TEST_F(Dictionary, TheLaterOfTwoEqualKeysWins)
{
    const NS::Object *keys[] = {text("k"), text("k")}, *objects[] = {text("first"), text("second")};
    NS::Dictionary* dictionary = NS::Dictionary::alloc()->init(objects, keys, 2);
    EXPECT_EQ(dictionary->count(), 1u);
    EXPECT_STREQ(dictionary->object<NS::String>(text("k"))->utf8String(), "second");
    dictionary->release();
}

TEST_F(Dictionary, EnumeratesItsKeys)
{
    const NS::Object *keys[] = {text("a"), text("b"), text("c")}, *objects[] = {text("1"), text("2"), text("3")};
    auto* walk = NS::Dictionary::dictionary(objects, keys, 3)->keyEnumerator<NS::String>();
    EXPECT_STREQ(walk->nextObject()->utf8String(), "a");
    NS::Array* rest = walk->allObjects();
    ASSERT_EQ(rest->count(), 2u);
    EXPECT_STREQ(rest->object<NS::String>(1)->utf8String(), "c");
    EXPECT_EQ(walk->nextObject(), nullptr);
}

TEST_F(Dictionary, EqualityDoesNotLookAtTheOrder)
{
    const NS::Object *keys[] = {text("a"), text("b"), text("a")}, *objects[] = {text("1"), text("2"), text("1")};
    NS::Dictionary* ab = NS::Dictionary::dictionary(objects, keys, 2);
    EXPECT_TRUE(ab->isEqual(NS::Dictionary::dictionary(objects + 1, keys + 1, 2)));
    EXPECT_FALSE(ab->isEqual(NS::Dictionary::dictionary(text("1"), text("a"))));
    EXPECT_EQ(NS::Dictionary::dictionary()->count(), 0u);
    EXPECT_STREQ(ab->description()->utf8String(), "{a = 1; b = 2; }");
}

} // namespace

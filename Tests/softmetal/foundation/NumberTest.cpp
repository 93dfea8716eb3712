// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include <cstdint>
#include <limits>

namespace {

using Number = WithPool;
using Value = WithPool;

TEST_F(Number, ReadsBackAsItWasMade)
{
    EXPECT_EQ(NS::Number::number(static_cast<char>(-7))->charValue(), -7);
    EXPECT_EQ(NS::Number::number(static_cast<unsigned char>(200))->unsignedCharValue(), 200);
    EXPECT_EQ(NS::Number::number(static_cast<short>(-300))->shortValue(), -300);
    EXPECT_EQ(NS::Number::number(static_cast<unsigned short>(60000))->unsignedShortValue(), 60000);
    EXPECT_EQ(NS::Number::number(-5)->intValue(), -5);
    EXPECT_EQ(NS::Number::number(5u)->unsignedIntValue(), 5u);
    EXPECT_EQ(NS::Number::number(-5l)->longValue(), -5l);
    EXPECT_EQ(NS::Number::number(5ul)->unsignedLongValue(), 5ul);
    EXPECT_EQ(NS::Number::number(INT64_MIN + 0ll)->longLongValue(), INT64_MIN);
    EXPECT_EQ(NS::Number::number(UINT64_MAX + 0ull)->unsignedLongLongValue(), UINT64_MAX);
    EXPECT_EQ(NS::Number::number(0.1f)->floatValue(), 0.1f);
    EXPECT_EQ(NS::Number::number(0.1)->doubleValue(), 0.1);
    EXPECT_TRUE(NS::Number::number(true)->boolValue());
    EXPECT_EQ(NS::Number::number(-1)->integerValue(), -1);
    EXPECT_EQ(NS::Number::number(1)->unsignedIntegerValue(), 1u);
}

TEST_F(Number, WrapsWhereAnIntegerIsTooSmall)
{
    EXPECT_EQ(NS::Number::number(257)->unsignedCharValue(), 1);
    EXPECT_EQ(NS::Number::number(-1)->unsignedIntValue(), 0xFFFFFFFFu);
}

TEST_F(Number, RealNumbersLoseTheirFractionAndStopAtTheLimits)
{
    EXPECT_EQ(NS::Number::number(-2.75)->intValue(), -2);
    EXPECT_EQ(NS::Number::number(1e300)->longLongValue(), INT64_MAX);
    EXPECT_EQ(NS::Number::number(-1e300)->longLongValue(), INT64_MIN);
    EXPECT_EQ(NS::Number::number(std::numeric_limits<double>::quiet_NaN())->intValue(), 0);
    EXPECT_TRUE(NS::Number::number(0.5)->boolValue());
}

TEST_F(Number, StringValueIsTheShortestText)
{
    EXPECT_STREQ(NS::Number::number(-12)->stringValue()->utf8String(), "-12");
    EXPECT_STREQ(NS::Number::number(UINT64_MAX + 0ull)->stringValue()->utf8String(), "18446744073709551615");
    EXPECT_STREQ(NS::Number::number(0.1f)->stringValue()->utf8String(), "0.1");
    EXPECT_STREQ(NS::Number::number(0.1)->stringValue()->utf8String(), "0.1");
    EXPECT_STREQ(NS::Number::number(true)->stringValue()->utf8String(), "1");
}

TEST_F(Number, ComparesByValueWhateverTheType)
{
    EXPECT_TRUE(NS::Number::number(1)->isEqualToNumber(NS::Number::number(1.0)));
    EXPECT_EQ(NS::Number::number(1)->hash(), NS::Number::number(1.0)->hash());
    EXPECT_FALSE(NS::Number::number(INT64_MAX + 0ll)->isEqual(NS::Number::number(INT64_MAX + 1ull)));
    EXPECT_EQ(NS::Number::number(-1)->compare(NS::Number::number(1u)), NS::OrderedAscending);
    EXPECT_EQ(NS::Number::number(2)->compare(NS::Number::number(1.5)), NS::OrderedDescending);
    EXPECT_EQ(NS::Number::number(2)->compare(NS::Number::number(2)), NS::OrderedSame);
}

TEST_F(Value, HoldsAPointer)
{
    int there = 0, elsewhere = 0;
    EXPECT_EQ(NS::Value::value(&there)->pointerValue(), &there);
    EXPECT_TRUE(NS::Value::value(&there)->isEqualToValue(NS::Value::value(&there)));
    EXPECT_FALSE(NS::Value::value(&there)->isEqualToValue(NS::Value::value(&elsewhere)));
    EXPECT_EQ(NS::Number::number(1)->pointerValue(), nullptr);
}

} // namespace

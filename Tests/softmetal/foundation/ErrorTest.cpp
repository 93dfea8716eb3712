// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include "foundation/Strings.h"

#include <AppKit/AppKit.hpp>

namespace {

using Error = WithPool;

TEST_F(Error, BuiltWithAMessageGivesItBack)
{
    NS::Error* error = softmetal::newError("MTLLibraryErrorDomain", 3, "one error generated");
    EXPECT_STREQ(error->domain()->utf8String(), "MTLLibraryErrorDomain");
    EXPECT_EQ(error->code(), 3);
    EXPECT_STREQ(error->localizedDescription()->utf8String(), "one error generated");
    EXPECT_STREQ(error->description()->utf8String(), "Error Domain=MTLLibraryErrorDomain Code=3 \"one error generated\"");
    EXPECT_STREQ(error->userInfo()->object<NS::String>(NS::LocalizedDescriptionKey)->utf8String(), "one error generated");
    error->release();
}

TEST_F(Error, WithoutADescriptionNamesDomainAndCode)
{
    NS::Error* error = NS::Error::error(NS::CocoaErrorDomain, -4, nullptr);
    EXPECT_STREQ(error->localizedDescription()->utf8String(),
                 "The operation could not be completed. (NSCocoaErrorDomain error -4.)");
    EXPECT_EQ(error->userInfo()->count(), 0u);
    EXPECT_EQ(error->localizedFailureReason(), nullptr);
}

TEST_F(Error, TakesItsTextsFromTheUserInformation)
{
    const NS::Object* keys[] = {NS::LocalizedDescriptionKey, NS::LocalizedFailureReasonErrorKey,
                                NS::LocalizedRecoverySuggestionErrorKey, NS::LocalizedRecoveryOptionsErrorKey};
    const NS::Object* values[] = {text("what"), text("why"), text("try"), NS::Array::array(text("again"))};
    NS::Error* error = NS::Error::alloc()->init(NS::POSIXErrorDomain, 2, NS::Dictionary::dictionary(values, keys, 4));
    EXPECT_STREQ(error->localizedDescription()->utf8String(), "what");
    EXPECT_STREQ(error->localizedFailureReason()->utf8String(), "why");
    EXPECT_STREQ(error->localizedRecoverySuggestion()->utf8String(), "try");
    EXPECT_EQ(error->localizedRecoveryOptions()->count(), 1u);
    error->release();
}

TEST_F(Error, EqualityIsOfDomainAndCode)
{
    NS::Error* error = NS::Error::error(NS::MachErrorDomain, 1, nullptr);
    EXPECT_TRUE(error->isEqual(NS::Error::error(NS::MachErrorDomain, 1, nullptr)));
    EXPECT_FALSE(error->isEqual(NS::Error::error(NS::MachErrorDomain, 2, nullptr)));
    EXPECT_FALSE(error->isEqual(NS::Error::error(NS::OSStatusErrorDomain, 1, nullptr)));
}

TEST_F(Error, ReportStoresOneOnlyWhereItIsWanted)
{
    NS::Error* where = nullptr;
    softmetal::report(&where, "domain", 5, "said");
    ASSERT_NE(where, nullptr);
    EXPECT_EQ(where->code(), 5);
    softmetal::report(nullptr, "domain", 5, "said");
}

TEST(Exception, CarriesNameAndReason)
{
    try {
        NS::raise("Failed to compile shaders", "syntax");
        FAIL() << "raise came back";
    } catch (const NS::Exception& exception) {
        EXPECT_EQ(exception.name(), "Failed to compile shaders");
        EXPECT_EQ(exception.reason(), "syntax");
        EXPECT_STREQ(exception.what(), "Failed to compile shaders: syntax");
    }
}

TEST(Exception, IsAStandardOneAndTakesNoTextForEmpty) { EXPECT_THROW(NS::raise(nullptr, nullptr), std::exception); }

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include <filesystem>
#include <string>

namespace {

using Url = WithPool;

TEST_F(Url, OfAFileKeepsItsPath)
{
    NS::URL* url = NS::URL::fileURLWithPath(text("/tmp/a b.trace"));
    EXPECT_STREQ(url->fileSystemRepresentation(), "/tmp/a b.trace");
    EXPECT_STREQ(url->description()->utf8String(), "file:///tmp/a%20b.trace");
}

TEST_F(Url, ARelativePathCountsFromTheWorkingDirectory)
{
    NS::URL* url = NS::URL::alloc()->initFileURLWithPath(text("frame.trace"));
    EXPECT_EQ(std::string(url->fileSystemRepresentation()), (std::filesystem::current_path() / "frame.trace").string());
    url->release();
}

TEST_F(Url, OfNoPathIsNothing)
{
    EXPECT_EQ(NS::URL::fileURLWithPath(nullptr), nullptr);
    EXPECT_EQ(NS::URL::fileURLWithPath(text("")), nullptr);
}

/// The path of an address, or why there is none.
std::string pathOf(const char* address)
{
    NS::URL* url = NS::URL::alloc()->init(NS::String::string(address, NS::UTF8StringEncoding));
    if (!url) return "no url";
    std::string path = url->fileSystemRepresentation() ? url->fileSystemRepresentation() : "no path";
    url->release();
    return path;
}

TEST_F(Url, AnAddressIsTakenApart)
{
    EXPECT_EQ(pathOf("file:///tmp/a%20b"), "/tmp/a b");
    EXPECT_EQ(pathOf("file://localhost/tmp/%c3%A9"), "/tmp/\xC3\xA9");
    EXPECT_EQ(pathOf("https://example.org/x"), "no path");
    EXPECT_EQ(pathOf("file:///tmp/%2"), "no path");
    EXPECT_EQ(pathOf("file:///tmp/%zz"), "no path");
    EXPECT_EQ(pathOf(""), "no url");
}

TEST_F(Url, EqualityIsOfTheAddress)
{
    NS::URL* url = NS::URL::fileURLWithPath(text("/a"));
    EXPECT_TRUE(url->isEqual(NS::URL::fileURLWithPath(text("/a"))));
    EXPECT_FALSE(url->isEqual(NS::URL::fileURLWithPath(text("/b"))));
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
// A test fixture with an autorelease pool around each case.
#pragma once

#include <Foundation/Foundation.hpp>

#include <gtest/gtest.h>

class WithPool : public testing::Test
{
protected:
    ~WithPool() override { pool_->release(); }
    /// A borrowed string.
    static NS::String* text(const char* utf8) { return NS::String::string(utf8, NS::UTF8StringEncoding); }

private:
    NS::AutoreleasePool* pool_ = NS::AutoreleasePool::alloc()->init();
};

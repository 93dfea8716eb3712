// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

/// An autorelease pool for the length of an entry point that makes temporary objects, so that a host thread without a
/// pool of its own does not pile them up.
class ScopedPool
{
public:
    ScopedPool() : _pool(NS::AutoreleasePool::alloc()->init()) {}
    ~ScopedPool() { _pool->release(); }
    ScopedPool(const ScopedPool&) = delete;
    ScopedPool& operator=(const ScopedPool&) = delete;

private:
    NS::AutoreleasePool* _pool;
};

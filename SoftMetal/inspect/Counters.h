// SPDX-License-Identifier: Apache-2.0
// What all devices of the process have done, counted where it happens and read by SoftMetal::counters.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace softmetal::inspect {

struct Counters
{
    std::atomic<uint64_t> draws{0}, passes{0}, commandBuffers{0}, pipelines{0}, pipelineNanoseconds{0}, bytesUploaded{0};
    std::atomic<uint64_t> trianglesHidden{0};
};

inline Counters counters;

inline void count(std::atomic<uint64_t>& counter, uint64_t more = 1) { counter.fetch_add(more, std::memory_order_relaxed); }

/// Adds the time from its making to its end to the time spent on libraries, functions and pipelines, and tells of it when
/// the log takes such lines. One within another counts once.
class BuildTime
{
public:
    explicit BuildTime(const char* what);
    ~BuildTime();
    BuildTime(const BuildTime&) = delete;
    BuildTime& operator=(const BuildTime&) = delete;

private:
    const char* what_;
    std::chrono::steady_clock::time_point begin_;
    bool outermost_;
};

} // namespace softmetal::inspect

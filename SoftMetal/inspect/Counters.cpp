// SPDX-License-Identifier: Apache-2.0
#include "inspect/Counters.h"

#include "foundation/Log.h"
#include "foundation/Object.h"

#include <SoftMetal/SoftMetal.hpp>

#include <cstdio>

namespace softmetal::inspect {
namespace {

thread_local uint32_t depth = 0;

} // namespace

BuildTime::BuildTime(const char* what) : what_(what), begin_(std::chrono::steady_clock::now()), outermost_(depth++ == 0) {}

BuildTime::~BuildTime()
{
    --depth;
    if (!outermost_) return;
    auto taken = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - begin_);
    count(counters.pipelineNanoseconds, static_cast<uint64_t>(taken.count()));
    char line[120];
    std::snprintf(line, sizeof line, "SoftMetal: a %s was built in %.2f ms", what_, static_cast<double>(taken.count()) * 1e-6);
    log(LogLevel::Debug, line);
}

} // namespace softmetal::inspect

namespace SoftMetal {

Counters counters()
{
    const auto& from = softmetal::inspect::counters;
    Counters result;
    result.draws = from.draws;
    result.passes = from.passes;
    result.commandBuffers = from.commandBuffers;
    result.pipelines = from.pipelines;
    result.pipelineMilliseconds = static_cast<double>(from.pipelineNanoseconds) * 1e-6;
    result.bytesUploaded = from.bytesUploaded;
    result.trianglesHidden = from.trianglesHidden;
    result.objects = objectsAlive();
    return result;
}

} // namespace SoftMetal

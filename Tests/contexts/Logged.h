// SPDX-License-Identifier: Apache-2.0
// What the library writes to the log while this lives.
#pragma once

#include <SoftMetal/SoftMetal.hpp>
#include <ZALMetal/ZALMetal.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace contexts {

class Logged
{
public:
    Logged()
    {
        ZALMetalSetLogLevel(ZALMetalLogLevelInfo); // begins the counts of repeated lines anew
        SoftMetal::setLogSink([this](const std::string& line) {
            std::lock_guard lock(mutex_);
            lines_.push_back(line);
        });
    }
    ~Logged() { SoftMetal::setLogSink({}); }
    Logged(const Logged&) = delete;
    Logged& operator=(const Logged&) = delete;

    std::vector<std::string> take()
    {
        std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

} // namespace contexts

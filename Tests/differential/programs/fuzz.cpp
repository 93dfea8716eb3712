// SPDX-License-Identifier: Apache-2.0
// Random programs on both libraries for as long as asked; stops at the first pair that is wrong and prints it:
//   differential_fuzz [SECONDS [FIRST]]
#include "differential/programs/Judge.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

int main(int argc, char** argv)
{
    using Clock = std::chrono::steady_clock;
    constexpr uint32_t Batch = 64;
    auto seconds = std::chrono::seconds(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 60);
    uint32_t first = argc > 2 ? static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10)) : std::random_device()();
    std::printf("first pair %u\n", first);
    uint64_t pairs = 0, values = 0, compared = 0;
    double ours = 0, theirs = 0;
    for (auto end = Clock::now() + seconds; Clock::now() < end; pairs += Batch, first += Batch) {
        auto judgement = differential::judge(first, Batch, "fuzz");
        values += judgement.values;
        compared += judgement.compared;
        ours = std::max(ours, judgement.ours);
        theirs = std::max(theirs, judgement.theirs);
        for (const std::string& fault : judgement.faults)
            std::printf("%s\n", fault.c_str());
        if (!judgement.faults.empty()) return 1;
    }
    std::printf("%llu programs, %llu of %llu values compared, the largest distance was %.2f of its bound here and %.2f "
                "in Mesa\n",
                static_cast<unsigned long long>(2 * pairs), static_cast<unsigned long long>(compared),
                static_cast<unsigned long long>(values), ours, theirs);
    return 0;
}

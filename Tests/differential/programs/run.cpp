// SPDX-License-Identifier: Apache-2.0
// Draws pairs of random programs with the library that this program is linked with and writes what came out:
//   programs_zal|programs_mesa FIRST COUNT OUT
#include "Host.h"
#include "differential/programs/PointRunner.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

int main(int argc, char** argv)
{
    using namespace differential;
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s FIRST COUNT OUT\n", argv[0]);
        return 2;
    }
    auto first = static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10)),
         count = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10));
    std::string error;
    std::unique_ptr<scenes::Host> host = scenes::makeHost(PointsPerPair, PointsPerPair, error);
    if (!host) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    std::ofstream out(argv[3], std::ios::binary);
    PointRunner runner;
    for (uint32_t i = 0; i < count; ++i) {
        Pair pair = pairOf(first + i);
        if (!runner.run(vertexTextOf(pair.vertex), fragmentTextOf(pair.fragment), pair.points, error)) {
            std::fprintf(stderr, "pair %u: %s\n", first + i, error.c_str());
            return 1;
        }
        if (runner.rows() < PointRunner::Rows && i + 1 < count) continue;
        for (const Drawn& drawn : runner.results())
            out.write(reinterpret_cast<const char*>(&drawn), sizeof drawn);
    }
    out.close();
    return out ? 0 : 1;
}

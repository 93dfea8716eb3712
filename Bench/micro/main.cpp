// SPDX-License-Identifier: Apache-2.0
// Prints sections of the micro benchmarks, all or the ones named: median, least and most, unit.
#include "micro/Rows.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace
{

struct Section
{
    const char* name;
    std::vector<micro::Row> (*run)();
};

constexpr std::array Sections = {
    Section{"draws", micro::draws},
    Section{"foundation", micro::foundation},
    Section{"setters", micro::setters},
    Section{"translation", micro::translation},
};

} // namespace

int main(int argc, char** argv)
{
    for (const Section& section : Sections) {
        bool wanted = argc == 1;
        for (int i = 1; i < argc; ++i)
            wanted |= std::strcmp(argv[i], section.name) == 0;
        if (!wanted) continue;
        std::printf("%-36s %10s %10s %10s\n", section.name, "median", "least", "most");
        for (const micro::Row& row : section.run())
            std::printf("%-36s %10.2f %10.2f %10.2f  %s\n", row.name.c_str(), row.median, row.least, row.most, row.unit);
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
// Prints the translation section alone: name, median, least and most, unit.
#include "micro/Rows.h"

#include <cstdio>

int main()
{
    std::printf("%-36s %10s %10s %10s\n", "", "median", "least", "most");
    for (const micro::Row& row : micro::translation())
        std::printf("%-36s %10.2f %10.2f %10.2f  %s\n", row.name.c_str(), row.median, row.least, row.most, row.unit);
    return 0;
}

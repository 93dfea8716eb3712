// SPDX-License-Identifier: Apache-2.0
// Runs workloads with the GL that it is linked with. Meant for zalbench, which starts one worker for each GL in turn:
//   worker NAME SECONDS         prints the result as one number
//   worker --picture NAME FILE  writes the picture of the workload (exit status 3: it has none)
//   worker --describe           prints library and device
#include "Workload.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const bench::Workload* find(const char* name)
{
    for (const auto& workload : bench::workloads())
        if (std::strcmp(workload.name, name) == 0) return &workload;
    return nullptr;
}

int fail(const std::string& why)
{
    std::fprintf(stderr, "%s\n", why.c_str());
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    bool describe = argc == 2 && std::strcmp(argv[1], "--describe") == 0;
    bool picture = argc == 4 && std::strcmp(argv[1], "--picture") == 0;
    if (!describe && !picture && argc != 3) return fail("usage: worker NAME SECONDS | --picture NAME FILE | --describe");
    std::string error;
    const bench::Workload* workload = describe ? nullptr : find(picture ? argv[2] : argv[1]);
    if (!describe && !workload) return fail("there is no such workload");
    std::unique_ptr<scenes::Host> host = scenes::makeHost(workload ? workload->width : 64, workload ? workload->height : 64, error);
    if (!host) return fail(error);
    if (describe) return std::printf("%s\n", host->description().c_str()) < 0;
    std::unique_ptr<bench::Run> run = workload->make(*host, error);
    if (!run) return fail(error);
    if (picture) {
        if (!run->picture()) return 3;
        return scenes::writePng(argv[3], host->read(), error) ? 0 : fail(error);
    }
    return std::printf("%.9g\n", bench::measure(*workload, *run, std::chrono::duration<double>(std::atof(argv[2])))) < 0;
}

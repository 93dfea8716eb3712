// SPDX-License-Identifier: Apache-2.0
#include "workers/Processors.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <thread>

#include <sched.h>

namespace softmetal::workers
{
namespace
{

constexpr size_t MostThreads = 256;

size_t processorsOf(double share, double period)
{
    if (!(share > 0) || !(period > 0)) return NoQuota;
    return static_cast<size_t>(std::clamp(std::ceil(share / period), 1.0, 65536.0));
}

/// "max 100000", or the share and the period in microseconds.
size_t unifiedQuota(const std::string& folder, const ReadFile& read)
{
    std::istringstream file(read(folder + "/cpu.max"));
    double share = 0, period = 0;
    return file >> share >> period ? processorsOf(share, period) : NoQuota;
}

/// The same in two files; a share of -1 means none.
size_t classicQuota(const std::string& folder, const ReadFile& read)
{
    std::istringstream share(read(folder + "/cpu.cfs_quota_us")), period(read(folder + "/cpu.cfs_period_us"));
    double numbers[2] = {};
    return share >> numbers[0] && period >> numbers[1] ? processorsOf(numbers[0], numbers[1]) : NoQuota;
}

/// The smallest quota of a group and of those above it. In a container the path may be the host's, of which nothing is
/// to be seen but the top.
template <class Quota>
size_t smallest(const std::string& top, std::string path, const ReadFile& read, Quota quotaOf)
{
    size_t result = NoQuota;
    for (;;) {
        while (!path.empty() && path.back() == '/')
            path.pop_back();
        result = std::min(result, quotaOf(top + path, read));
        if (path.empty()) return result;
        path.erase(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
    }
}

/// Whether a list such as "cpu,cpuacct" holds the controller of processor time.
bool holdsProcessorTime(const std::string& controllers)
{
    std::istringstream list(controllers);
    for (std::string name; std::getline(list, name, ',');)
        if (name == "cpu") return true;
    return false;
}

} // namespace

size_t quota(const ReadFile& read)
{
    size_t result = NoQuota;
    std::istringstream groups(
        read("/proc/self/cgroup")); // lines of "number:controllers:path"; the unified one has no controllers
    for (std::string line; std::getline(groups, line);) {
        size_t first = line.find(':'), second = line.find(':', first + 1);
        if (first == std::string::npos || second == std::string::npos) continue;
        std::string controllers = line.substr(first + 1, second - first - 1), path = line.substr(second + 1);
        if (controllers.empty()) result = std::min(result, smallest("/sys/fs/cgroup", path, read, unifiedQuota));
        if (!holdsProcessorTime(controllers)) continue;
        for (const std::string& folder : {std::string("cpu"), controllers})
            result = std::min(result, smallest("/sys/fs/cgroup/" + folder, path, read, classicQuota));
    }
    return result;
}

size_t affinity()
{
    // A mask that is too short is refused, however few of its processors there are.
    for (int most = 1024; most <= 65536; most *= 2) {
        cpu_set_t* mask = CPU_ALLOC(static_cast<size_t>(most));
        if (!mask) break;
        size_t size = CPU_ALLOC_SIZE(static_cast<size_t>(most));
        int count = sched_getaffinity(0, size, mask) == 0 ? CPU_COUNT_S(size, mask) : 0;
        CPU_FREE(mask);
        if (count > 0) return static_cast<size_t>(count);
    }
    return std::max(1u, std::thread::hardware_concurrency());
}

size_t chooseThreads(const char* wanted, size_t processors)
{
    size_t fitting = std::clamp<size_t>(processors, 1, MostThreads);
    if (!wanted || !std::isdigit(static_cast<unsigned char>(*wanted))) return fitting;
    return std::min<size_t>(std::strtoul(wanted, nullptr, 10), MostThreads);
}

} // namespace softmetal::workers

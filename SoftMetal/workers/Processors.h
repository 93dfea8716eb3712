// SPDX-License-Identifier: Apache-2.0
// How many processors this process may use: what the machine, its affinity mask and its container leave.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace softmetal::workers
{

inline constexpr size_t NoQuota = SIZE_MAX;

/// Gives a file's contents, empty when there is none.
using ReadFile = std::function<std::string(const std::string& path)>;

/// Processors that the quotas of the process's control groups amount to, rounded up and at least 1; NoQuota without
/// one. Both versions of control groups are read: the group that /proc/self/cgroup names and all above it, the smallest
/// counts.
size_t quota(const ReadFile& read);

/// The number of processors in the calling thread's affinity mask, at least 1.
size_t affinity();

/// What SOFTMETAL_THREADS asks for (null: nothing, 256 at most), else as many as processors. 0: the calling thread
/// draws.
size_t chooseThreads(const char* wanted, size_t processors);

} // namespace softmetal::workers

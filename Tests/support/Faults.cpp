// SPDX-License-Identifier: Apache-2.0
#include "support/Faults.h"

#include <SoftMetal/SoftMetal.hpp>

#include <vector>

namespace support
{

size_t forEachFault(const std::string& point, const std::function<void()>& prepare,
                    const std::function<void(const Fault*)>& body, const std::function<void(const Fault*)>& check)
{
    prepare();
    SoftMetal::clearFaults(); // counts from here
    body(nullptr);
    const uint64_t calls = SoftMetal::failableCalls(point);
    SoftMetal::clearFaults();
    check(nullptr);

    std::vector<Fault> faults;
    for (uint64_t call = 1; call <= calls; ++call)
        for (bool persistent : {false, true})
            faults.push_back({point, call, persistent});
    for (const Fault& fault : faults) {
        prepare();
        SoftMetal::injectFault(fault.point, fault.call, fault.persistent);
        body(&fault);
        SoftMetal::clearFaults();
        check(&fault);
    }
    return faults.size();
}

} // namespace support

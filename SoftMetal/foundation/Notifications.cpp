// SPDX-License-Identifier: Apache-2.0
#include <CoreFoundation/CoreFoundation.h>

#include "foundation/Strings.h"

#include <mutex>
#include <vector>

namespace softmetal {
namespace {

struct Observer
{
    const void* observer;
    CFNotificationCallback callback;
    std::string name; // empty: any
    const void* object; // null: any
};

class Center
{
public:
    void add(Observer observer)
    {
        std::lock_guard lock(mutex_);
        observers_.push_back(std::move(observer));
    }

    void remove(const void* observer, const std::string& name, const void* object)
    {
        std::lock_guard lock(mutex_);
        std::erase_if(observers_, [&](const Observer& o) {
            return o.observer == observer && (name.empty() || o.name == name) && (!object || o.object == object);
        });
    }

    /// Called without the lock: a callback may add or remove observers.
    std::vector<Observer> matching(const std::string& name, const void* object)
    {
        std::lock_guard lock(mutex_);
        std::vector<Observer> result;
        for (const Observer& o : observers_)
            if ((o.name.empty() || o.name == name) && (!o.object || o.object == object)) result.push_back(o);
        return result;
    }

private:
    std::mutex mutex_;
    std::vector<Observer> observers_;
};

Center& localCenter()
{
    static Center center;
    return center;
}

std::string nameOf(CFStringRef name) { return textOf(reinterpret_cast<const NS::String*>(name)); }

} // namespace
} // namespace softmetal

using softmetal::localCenter;
using softmetal::nameOf;

CFNotificationCenterRef CFNotificationCenterGetLocalCenter() { return reinterpret_cast<CFNotificationCenterRef>(&localCenter()); }

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void* observer, CFNotificationCallback callBack,
                                     CFStringRef name, const void* object, CFNotificationSuspensionBehavior)
{
    localCenter().add({observer, callBack, nameOf(name), object});
}

void CFNotificationCenterRemoveObserver(CFNotificationCenterRef, const void* observer, CFNotificationName name, const void* object)
{
    localCenter().remove(observer, nameOf(name), object);
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFNotificationName name, const void* object,
                                          CFDictionaryRef userInfo, Boolean)
{
    for (const auto& o : localCenter().matching(nameOf(name), object))
        o.callback(center, const_cast<void*>(o.observer), name, object, userInfo);
}

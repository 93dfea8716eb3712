// SPDX-License-Identifier: Apache-2.0
// The local notification centre: callbacks run at once, on the thread that posts, in the order in which they were added.
#include "foundation/Strings.h"

#include <AppKit/AppKit.hpp>

#include <algorithm>
#include <mutex>
#include <vector>

const CFStringRef NSViewFrameDidChangeNotification = CFSTR("NSViewFrameDidChangeNotification");

namespace softmetal {
namespace {

struct Observer
{
    uint64_t id;
    const void* observer;
    CFNotificationCallback callback;
    std::string name;   // empty: any
    const void* object; // null: any
};

class Center
{
public:
    void add(const void* observer, CFNotificationCallback callback, std::string name, const void* object)
    {
        std::lock_guard lock(mutex_);
        observers_.push_back({++lastId_, observer, callback, std::move(name), object});
    }

    void remove(const void* observer, const std::string& name, const void* object)
    {
        std::lock_guard lock(mutex_);
        std::erase_if(observers_, [&](const Observer& o) {
            return o.observer == observer && (name.empty() || o.name == name) && (!object || o.object == object);
        });
    }

    /// Callbacks are called without the lock, for they may add and remove observers: one that is added now is not called
    /// for this notification, and one that is removed before its turn is not called any more.
    void post(CFNotificationCenterRef center, CFNotificationName name, const void* object, CFDictionaryRef userInfo)
    {
        std::string text = textOf(reinterpret_cast<const NS::String*>(name));
        for (const Observer& o : matching(text, object))
            if (isRegistered(o.id)) o.callback(center, const_cast<void*>(o.observer), name, object, userInfo);
    }

private:
    std::vector<Observer> matching(const std::string& name, const void* object)
    {
        std::lock_guard lock(mutex_);
        std::vector<Observer> result;
        for (const Observer& o : observers_)
            if ((o.name.empty() || o.name == name) && (!o.object || o.object == object)) result.push_back(o);
        return result;
    }

    bool isRegistered(uint64_t id)
    {
        std::lock_guard lock(mutex_);
        return std::any_of(observers_.begin(), observers_.end(), [id](const Observer& o) { return o.id == id; });
    }

    std::mutex mutex_;
    std::vector<Observer> observers_;
    uint64_t lastId_ = 0;
};

// Lives for ever: a view may end after the process's statics.
Center& localCenter()
{
    static Center* center = new Center;
    return *center;
}

std::string nameOf(CFStringRef name) { return textOf(reinterpret_cast<const NS::String*>(name)); }

} // namespace
} // namespace softmetal

using softmetal::localCenter;
using softmetal::nameOf;

CFNotificationCenterRef CFNotificationCenterGetLocalCenter()
{
    return reinterpret_cast<CFNotificationCenterRef>(&localCenter());
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void* observer, CFNotificationCallback callBack,
                                     CFStringRef name, const void* object, CFNotificationSuspensionBehavior)
{
    if (callBack) localCenter().add(observer, callBack, nameOf(name), object);
}

void CFNotificationCenterRemoveObserver(CFNotificationCenterRef, const void* observer, CFNotificationName name,
                                        const void* object)
{
    localCenter().remove(observer, nameOf(name), object);
}

void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef, const void* observer)
{
    localCenter().remove(observer, {}, nullptr);
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFNotificationName name, const void* object,
                                          CFDictionaryRef userInfo, Boolean)
{
    if (name) localCenter().post(center, name, object, userInfo);
}

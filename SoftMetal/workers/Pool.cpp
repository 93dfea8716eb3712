// SPDX-License-Identifier: Apache-2.0
#include "workers/Pool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <sched.h>

namespace softmetal::workers {
namespace {

/// Processors that the container's quota amounts to, rounded up; a large number without one.
size_t quota()
{
    std::ifstream file("/sys/fs/cgroup/cpu.max");
    std::string limit;
    double period = 0;
    if (!(file >> limit >> period) || limit == "max" || period <= 0) return 1024;
    return std::max<size_t>(1, static_cast<size_t>(std::atof(limit.c_str()) / period + 0.999));
}

size_t chooseThreads()
{
    if (const char* wanted = std::getenv("SOFTMETAL_THREADS")) return std::clamp(std::atoi(wanted), 1, 256);
    cpu_set_t allowed;
    size_t processors = sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? static_cast<size_t>(CPU_COUNT(&allowed)) : std::thread::hardware_concurrency();
    return std::max<size_t>(1, std::min(processors, quota()));
}

class Pool
{
public:
    explicit Pool(size_t threads)
    {
        for (size_t i = 1; i < threads; ++i) threads_.emplace_back([this] { work(); });
    }

    ~Pool()
    {
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

    size_t size() const { return threads_.size() + 1; }

    void run(size_t count, const std::function<void(size_t)>& body)
    {
        std::lock_guard turn(turn_);
        {
            std::lock_guard lock(mutex_);
            body_ = &body;
            count_ = count;
            next_ = 0;
            busy_ = threads_.size();
            ++generation_;
        }
        wake_.notify_all();
        takeAll(count, body);
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return busy_ == 0; });
    }

private:
    void takeAll(size_t count, const std::function<void(size_t)>& body)
    {
        for (size_t i = next_++; i < count; i = next_++) body(i);
    }

    void work()
    {
        uint64_t seen = 0;
        for (;;) {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [&] { return stopping_ || generation_ != seen; });
            if (stopping_) return;
            seen = generation_;
            size_t count = count_;
            const auto* body = body_;
            lock.unlock();
            takeAll(count, *body);
            lock.lock();
            if (--busy_ == 0) done_.notify_one();
        }
    }

    std::vector<std::thread> threads_;
    std::mutex turn_, mutex_;
    std::condition_variable wake_, done_;
    const std::function<void(size_t)>* body_ = nullptr;
    size_t count_ = 0, busy_ = 0;
    std::atomic<size_t> next_{0};
    uint64_t generation_ = 0;
    bool stopping_ = false;
};

Pool& pool()
{
    static Pool instance(chooseThreads());
    return instance;
}

} // namespace

void parallelFor(size_t count, const std::function<void(size_t)>& body)
{
    if (count > 1 && pool().size() > 1) return pool().run(count, body);
    for (size_t i = 0; i < count; ++i) body(i);
}

size_t threadCount() { return pool().size(); }

} // namespace softmetal::workers

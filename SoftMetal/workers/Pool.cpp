// SPDX-License-Identifier: Apache-2.0
#include "workers/Pool.h"

#include "workers/Processors.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace softmetal::workers
{
namespace
{

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Chosen once, since the queues made meanwhile rely on it.
size_t chosen()
{
    static const size_t threads =
        chooseThreads(std::getenv("SOFTMETAL_THREADS"), std::min(affinity(), quota(contentsOf)));
    return threads;
}

class Pool
{
public:
    explicit Pool(size_t threads)
    {
        for (size_t i = 1; i < threads; ++i)
            threads_.emplace_back([this] { work(); });
    }

    /// The threads end once what runs has run; whoever comes later, such as a queue that still works while the process ends,
    /// works alone.
    void stop()
    {
        std::lock_guard turn(turn_);
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake_.notify_all();
        for (std::thread& thread : threads_)
            thread.join();
        threads_.clear();
    }

    /// Whether this thread is in a loop already.
    static bool& inside()
    {
        static thread_local bool is = false;
        return is;
    }

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
        inside() = true;
        for (size_t i = next_++; i < count; i = next_++)
            body(i);
        inside() = false;
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

/// Stops a pool with the process's end. The pool itself stays: a queue's thread may still be inside.
struct Stopper
{
    explicit Stopper(Pool& stopped) : pool(stopped) {}
    ~Stopper() { pool.stop(); }
    Pool& pool;
};

Pool& pool()
{
    static Pool& instance = *new Pool(chosen());
    static Stopper stopper(instance);
    return instance;
}

} // namespace

void parallelFor(size_t count, const std::function<void(size_t)>& body)
{
    if (count > 1 && threadCount() > 1 && !Pool::inside()) return pool().run(count, body);
    for (size_t i = 0; i < count; ++i)
        body(i);
}

size_t threadCount()
{
    return std::max<size_t>(1, chosen());
}
bool callerDraws()
{
    return chosen() == 0;
}

} // namespace softmetal::workers

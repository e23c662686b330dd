#ifndef STOPWATCH_H
#define STOPWATCH_H

#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

namespace TevBench {

/// The seconds of processor time that `work` takes in this thread. Where nothing is waited for, that is what it takes
/// on a machine that does nothing else, also while the machine does something else.
template <class Work>
double processorSecondsOf(const Work& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double begin = now();
    work();
    return now() - begin;
}

/// The seconds that `work` takes.
template <class Work>
double secondsOf(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The seconds from a common start until all of `count` threads are through with `work`, which is given the number of
/// its thread. What it throws ends the program.
template <class Work>
double secondsOfThreads(std::size_t count, const Work& work) {
    using Clock = std::chrono::steady_clock;
    std::atomic<std::size_t> waited{count};
    std::vector<Clock::time_point> begins(count);
    std::vector<Clock::time_point> ends(count);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            for (--waited; waited > 0;) {
                std::this_thread::yield();
            }
            begins[i] = Clock::now();
            work(i);
            ends[i] = Clock::now();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return std::chrono::duration<double>(*std::max_element(ends.begin(), ends.end()) -
                                         *std::min_element(begins.begin(), begins.end()))
        .count();
}

}  // namespace TevBench

#endif

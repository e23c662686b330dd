#ifndef WAIT_H
#define WAIT_H

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace TevTest {

/// Returns once `isTrue`; fails when that takes longer than a minute.
inline void waitUntil(const std::function<bool()>& isTrue) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!isTrue()) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "what the test waits for does not happen";
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace TevTest

#endif

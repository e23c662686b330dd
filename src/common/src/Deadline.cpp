#include "Deadline.h"

#include <algorithm>

namespace Tev {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 3650);

}  // namespace

Deadline::Deadline(long long milliseconds) : end(Clock::time_point::max()) {
    if (milliseconds > 0) {
        end = Clock::now() + std::min(longest, std::chrono::milliseconds(milliseconds));
    }
}

bool Deadline::hasPassed() const {
    return Clock::now() >= end;
}

int Deadline::timeLeft(int limit) const {
    const Clock::time_point now = Clock::now();
    if (now >= end) {
        return 0;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now).count();
    return static_cast<int>(std::min<long long>(left, limit));
}

Deadline Deadline::later(int milliseconds) const {
    Deadline result = *this;
    if (end != Clock::time_point::max()) {
        result.end += std::chrono::milliseconds(milliseconds);
    }
    return result;
}

Deadline Deadline::earlier(const Deadline& one, const Deadline& other) {
    return one.end < other.end ? one : other;
}

}  // namespace Tev

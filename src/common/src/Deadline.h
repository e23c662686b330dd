#ifndef TEV_DEADLINE_H
#define TEV_DEADLINE_H

#include <chrono>

namespace Tev {

/// A moment at which something has to be over.
class Deadline {
public:
    /// `milliseconds` from now; never when that is 0 or less. More than ten years count as ten years.
    explicit Deadline(long long milliseconds);

    bool hasPassed() const;

    /// The time left, in milliseconds rounded up, but at most `limit`.
    int timeLeft(int limit) const;

    /// The moment `milliseconds` after this one.
    Deadline later(int milliseconds) const;

    /// The earlier of the two.
    static Deadline earlier(const Deadline& one, const Deadline& other);

private:
    std::chrono::steady_clock::time_point end;
};

}  // namespace Tev

#endif

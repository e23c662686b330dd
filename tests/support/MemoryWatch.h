#ifndef MEMORY_WATCH_H
#define MEMORY_WATCH_H

#include <cstddef>
#include <functional>
#include <vector>

namespace TevTest {

/// Watches how the thread that made it allocates memory, and makes chosen allocations fail: `malloc`, `strdup` and
/// `free` as this program's own object files call them, the component's among them, and `new` and `delete`, whoever
/// calls them. A thread has one watch at a time.
class MemoryWatch {
public:
    /// What a failing `new` throws.
    enum class Thrown { BadAlloc, Int };

    MemoryWatch();
    ~MemoryWatch();
    MemoryWatch(const MemoryWatch&) = delete;
    MemoryWatch& operator=(const MemoryWatch&) = delete;

    /// The next call gives null.
    void failMalloc();
    void failStrdup();

    /// The `nth` call from now on throws, 1 being the next.
    void failNew(unsigned int nth = 1, Thrown what = Thrown::BadAlloc);

    /// Does `action`, unwatched, in the next call, before anything else.
    void atNextNew(std::function<void()> action);
    void atNextFree(std::function<void()> action);

    /// Whether a failure that was asked for has come.
    bool failed() const { return failures > 0; }

    /// How often `new` was called, in its throwing forms.
    unsigned int newCalls() const { return news; }

    /// What `malloc`, `strdup` and `new[]` gave, in order.
    std::vector<void*> allocated() const { return given; }

    /// The sizes that `malloc` was asked for, in order.
    std::vector<std::size_t> mallocSizes() const { return sizes; }

    /// What `free` and `delete[]` took, in order.
    std::vector<void*> released() const { return taken; }

    /// The diverted functions' way in.
    struct Hooks;

private:
    std::vector<void*> given;
    std::vector<std::size_t> sizes;
    std::vector<void*> taken;
    bool mallocFails = false;
    bool strdupFails = false;
    unsigned int failingNew = 0;  // counted in `news`
    Thrown thrown = Thrown::BadAlloc;
    unsigned int news = 0;
    unsigned int failures = 0;
    std::function<void()> newAction;
    std::function<void()> freeAction;
};

}  // namespace TevTest

#endif

// Starts a thread when it is loaded.
#include <condition_variable>
#include <thread>

#include "EntryPoints.h"

namespace {

/// A thread that ends with the library.
class Companion {
public:
    ~Companion() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            isOver = true;
        }
        changed.notify_one();
        thread.join();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOver = false;
    std::thread thread{[this] {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return isOver; });
    }};
};

Companion companion;

}  // namespace

void damage(GoodComponent&) {}

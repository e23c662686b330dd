#ifndef TEV_ANNOTATED_MUTEX_H
#define TEV_ANNOTATED_MUTEX_H

#include <mutex>

// Clang checks these under -Wthread-safety; to GCC they say nothing.
#ifdef __clang__
#define TEV_THREAD_ANNOTATION(annotation) __attribute__((annotation))
#else
#define TEV_THREAD_ANNOTATION(annotation)
#endif

/// Marks a member that is touched only while `mutex` is held.
#define TEV_GUARDED_BY(mutex) TEV_THREAD_ANNOTATION(guarded_by(mutex))

namespace Tev {

/// A mutex that the compiler knows: what it guards is checked when clang compiles it.
class TEV_THREAD_ANNOTATION(capability("mutex")) AnnotatedMutex {
public:
    void lock() TEV_THREAD_ANNOTATION(acquire_capability()) { mutex.lock(); }
    void unlock() TEV_THREAD_ANNOTATION(release_capability()) { mutex.unlock(); }

private:
    std::mutex mutex;
};

/// Holds an `AnnotatedMutex` while it lives.
class TEV_THREAD_ANNOTATION(scoped_lockable) AnnotatedLock {
public:
    explicit AnnotatedLock(AnnotatedMutex& lockedMutex) TEV_THREAD_ANNOTATION(acquire_capability(lockedMutex))
        : mutex(lockedMutex) {
        mutex.lock();
    }
    ~AnnotatedLock() TEV_THREAD_ANNOTATION(release_capability()) { mutex.unlock(); }
    AnnotatedLock(const AnnotatedLock&) = delete;
    AnnotatedLock& operator=(const AnnotatedLock&) = delete;

private:
    AnnotatedMutex& mutex;
};

}  // namespace Tev

#endif

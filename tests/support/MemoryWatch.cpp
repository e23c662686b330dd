#include "MemoryWatch.h"

#include <new>
#include <stdexcept>
#include <utility>

extern "C" {

// The linker sends the calls of malloc, strdup and free to the first of each pair.
void* __wrap_malloc(std::size_t size);
void* __real_malloc(std::size_t size);
char* __wrap_strdup(const char* text);
char* __real_strdup(const char* text);
void __wrap_free(void* block);
void __real_free(void* block);
}

/// POCO keeps some memory for good when more of it runs out: the constructor of its name pool and the start of its
/// parser lose what they have got so far, and an exception that leaves a handler of the parser, which is C code, keeps
/// the parser from being freed. The leak check knows no other exception.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:Poco::XML::NamePool::NamePool\nleak:Poco::XML::ParserEngine::pushContext\nleak:libexpat.so\n";
}

namespace TevTest {

struct MemoryWatch::Hooks {
    static thread_local MemoryWatch* watch;

    /// Calls `action` with the thread's watch, if there is one. What the watch itself allocates is not watched.
    template <class Action>
    static void note(Action action) {
        if (MemoryWatch* const noting = watch) {
            watch = nullptr;
            action(*noting);
            watch = noting;
        }
    }

    /// Whether the failure that was asked for has to come now.
    static bool takeFailure(bool MemoryWatch::*fails) {
        if (watch == nullptr || !(watch->*fails)) {
            return false;
        }
        watch->*fails = false;
        ++watch->failures;
        return true;
    }

    static void noteGiven(void* block) {
        note([block](MemoryWatch& noting) { noting.given.push_back(block); });
    }

    static void noteTaken(void* block) {
        note([block](MemoryWatch& noting) { noting.taken.push_back(block); });
    }

    static void takeAction(std::function<void()> MemoryWatch::*action) {
        if (watch != nullptr && watch->*action) {
            note([action](MemoryWatch& noting) { std::exchange(noting.*action, nullptr)(); });
        }
    }

    static void* newMemory(std::size_t size) {
        takeAction(&MemoryWatch::newAction);
        if (watch != nullptr && ++watch->news == watch->failingNew) {
            ++watch->failures;
            if (watch->thrown == Thrown::Int) {
                throw 1;
            }
            throw std::bad_alloc();
        }
        void* const block = __real_malloc(size);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return block;
    }

    static void takeFreeAction() { takeAction(&MemoryWatch::freeAction); }
    static bool mallocFails() { return takeFailure(&MemoryWatch::mallocFails); }
    static bool strdupFails() { return takeFailure(&MemoryWatch::strdupFails); }

    static void noteSize(std::size_t size) {
        note([size](MemoryWatch& noting) { noting.sizes.push_back(size); });
    }
};

thread_local MemoryWatch* MemoryWatch::Hooks::watch = nullptr;

MemoryWatch::MemoryWatch() {
    if (Hooks::watch != nullptr) {
        throw std::logic_error("the thread has a watch already");
    }
    Hooks::watch = this;
}

MemoryWatch::~MemoryWatch() {
    Hooks::watch = nullptr;
}

void MemoryWatch::failMalloc() {
    mallocFails = true;
}

void MemoryWatch::failStrdup() {
    strdupFails = true;
}

void MemoryWatch::failNew(unsigned int nth, Thrown what) {
    failingNew = news + nth;
    thrown = what;
}

void MemoryWatch::atNextNew(std::function<void()> action) {
    newAction = std::move(action);
}

void MemoryWatch::atNextFree(std::function<void()> action) {
    freeAction = std::move(action);
}

}  // namespace TevTest

using Hooks = TevTest::MemoryWatch::Hooks;

void* __wrap_malloc(std::size_t size) {
    Hooks::noteSize(size);
    if (Hooks::mallocFails()) {
        return nullptr;
    }
    void* const block = __real_malloc(size);
    Hooks::noteGiven(block);
    return block;
}

char* __wrap_strdup(const char* text) {
    if (Hooks::strdupFails()) {
        return nullptr;
    }
    char* const copy = __real_strdup(text);
    Hooks::noteGiven(copy);
    return copy;
}

void __wrap_free(void* block) {
    Hooks::takeFreeAction();
    Hooks::noteTaken(block);
    __real_free(block);
}

void* operator new(std::size_t size) {
    return Hooks::newMemory(size);
}

void* operator new[](std::size_t size) {
    void* const block = Hooks::newMemory(size);
    Hooks::noteGiven(block);
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return __real_malloc(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    void* const block = __real_malloc(size);
    Hooks::noteGiven(block);
    return block;
}

void operator delete(void* block) noexcept {
    __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    __real_free(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept {
    __real_free(block);
}

void operator delete[](void* block) noexcept {
    Hooks::noteTaken(block);
    __real_free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    Hooks::noteTaken(block);
    __real_free(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Hooks::noteTaken(block);
    __real_free(block);
}

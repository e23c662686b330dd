#include "Interruption.h"

#include <poll.h>

#include <array>
#include <atomic>
#include <csignal>

#include "SftpWrapper.h"

namespace TevAgent {

namespace {

std::atomic<bool> isNoted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler may set it");

constexpr std::array<int, 2> watched = {SIGINT, SIGTERM};

void note(int) {
    isNoted = true;
    for (const int signal : watched) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == note) {
            std::signal(signal, SIG_DFL);
        }
    }
    Tev::SftpWrapper::interruptAll();
}

/// Keeps the signals back while it lives.
class Held {
public:
    Held() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : watched) {
            sigaddset(&signals, signal);
        }
        pthread_sigmask(SIG_BLOCK, &signals, &before);
    }
    ~Held() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    const sigset_t* maskBefore() const { return &before; }

private:
    sigset_t before;
};

}  // namespace

void Interruption::watch() {
    for (const int signal : watched) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = note;
            sigaction(signal, &action, nullptr);
        }
    }
}

bool Interruption::isRequested() {
    return isNoted;
}

void Interruption::check() {
    if (isRequested()) {
        throw Interrupted();
    }
}

void Interruption::waitForInput(int descriptor) {
    // A signal between the look and the wait would go unnoticed.
    const Held held;
    check();
    pollfd input{descriptor, POLLIN, 0};
    ppoll(&input, 1, nullptr, held.maskBefore());
    check();
}

}  // namespace TevAgent

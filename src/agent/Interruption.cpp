#include "Interruption.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include "SftpWrapper.h"

namespace TevAgent {

namespace {

std::atomic<bool> isNoted{false};
std::atomic<bool> isFinalNoted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the signal handler may set it");

constexpr std::array<int, 3> watched = {SIGINT, SIGTERM, SIGHUP};
constexpr int pollSlice = 200;  // milliseconds

void note(int noted) {
    if (noted != SIGINT) {
        isFinalNoted = true;
    }
    for (const int signal : watched) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        // A hang-up comes twice: from the shell, and from the terminal when the shell has ended.
        if (action.sa_handler == note && signal != SIGHUP) {
            std::signal(signal, SIG_DFL);
        }
    }
    Tev::SftpWrapper::interruptAll();
    isNoted = true;  // last: another thread that sees it may take all of this up again at once
}

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

bool Interruption::isFinal() {
    return isFinalNoted;
}

void Interruption::forget() {
    isNoted = false;
    Tev::SftpWrapper::allowAgain();
    watch();
    if (isFinal()) {
        // It came meanwhile.
        isNoted = true;
        Tev::SftpWrapper::interruptAll();
    }
}

void Interruption::check() {
    if (isRequested()) {
        throw Interrupted();
    }
}

bool Interruption::waitForInput(int descriptor, std::chrono::steady_clock::time_point end) {
    pollfd input{descriptor, POLLIN, 0};
    while (std::chrono::steady_clock::now() < end) {
        check();
        // In slices: the signal may come just before the wait, or to another thread.
        const int count = poll(&input, 1, pollSlice);
        if (count != 0 && !(count == -1 && errno == EINTR)) {
            return true;
        }
    }
    return false;
}

ssize_t Interruption::readByte(int descriptor, char& byte) {
    ssize_t count = 0;
    do {
        waitForInput(descriptor);
        count = read(descriptor, &byte, 1);
    } while (count == -1 && (errno == EINTR || errno == EAGAIN));
    return count;
}

}  // namespace TevAgent

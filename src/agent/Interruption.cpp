#include "Interruption.h"

#include <csignal>

namespace TevAgent {

namespace {

volatile std::sig_atomic_t isRequested = 0;

void note(int) {
    isRequested = 1;
}

}  // namespace

void Interruption::watch() {
    struct sigaction action {};
    sigaction(SIGINT, nullptr, &action);
    if (action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = note;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
}

void Interruption::check() {
    if (isRequested != 0) {
        throw Interrupted();
    }
}

}  // namespace TevAgent

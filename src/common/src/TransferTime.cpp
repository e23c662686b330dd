#include "TransferTime.h"

#include "TransferInterruption.h"

namespace Tev {

namespace {

constexpr int timeToCleanUp = 750;  // milliseconds

}  // namespace

TransferTime::Stop TransferTime::stop() {
    if (reason == Stop::None && TransferInterruption::isRequested()) {
        reason = Stop::Interrupted;
        lastMoment = Deadline(timeToCleanUp);
    } else if (reason == Stop::None && deadline.hasPassed()) {
        reason = Stop::TimedOut;
        lastMoment = deadline.later(timeToCleanUp);
    }
    return reason;
}

bool TransferTime::isOver() {
    return stop() != Stop::None && lastMoment.hasPassed();
}

int TransferTime::timeLeft(int limit) {
    return (stop() == Stop::None ? deadline : lastMoment).timeLeft(limit);
}

}  // namespace Tev

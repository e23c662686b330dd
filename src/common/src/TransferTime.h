#ifndef TEV_TRANSFER_TIME_H
#define TEV_TRANSFER_TIME_H

#include "Deadline.h"

namespace Tev {

/// The time that a transfer has: until its time-out, or until the host wants it to end; then 0.75 s to clean up. Used
/// by one thread.
class TransferTime {
public:
    /// Why the transfer has to stop.
    enum class Stop {
        None,
        TimedOut,
        Interrupted  ///< see TransferInterruption
    };

    /// Begins now; `timeout` is in milliseconds, none when it is 0 or less.
    explicit TransferTime(long timeout) : deadline(timeout), lastMoment(0) {}

    /// The first reason; it stays.
    Stop stop();

    /// Whether the time to clean up has passed as well.
    bool isOver();

    /// The time until the transfer has to stop or, when it has to, until the time to clean up has passed; in
    /// milliseconds, but at most `limit`.
    int timeLeft(int limit);

    /// Brings the time-out forward to `milliseconds` from now, unless it is earlier.
    void shortenTo(int milliseconds) { deadline = Deadline::earlier(deadline, Deadline(milliseconds)); }

private:
    Deadline deadline;
    Deadline lastMoment;
    Stop reason = Stop::None;
};

}  // namespace Tev

#endif

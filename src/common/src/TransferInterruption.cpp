#include "TransferInterruption.h"

#include <atomic>

namespace Tev {

namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "signal handlers may use it");

}  // namespace

void TransferInterruption::request(bool isWanted) noexcept {
    requested = isWanted;
}

bool TransferInterruption::isRequested() noexcept {
    return requested;
}

}  // namespace Tev

#ifndef TEV_TRANSFER_INTERRUPTION_H
#define TEV_TRANSFER_INTERRUPTION_H

namespace Tev {

/// The host's wish that transfers end. Process-wide; any thread, and signal handlers.
class TransferInterruption {
public:
    static void request(bool isWanted) noexcept;
    static bool isRequested() noexcept;
};

}  // namespace Tev

#endif

#ifndef TEV_AGENT_DESCRIPTOR_H
#define TEV_AGENT_DESCRIPTOR_H

#include <string_view>

namespace TevAgent {

/// File descriptors of others. Thread-safe.
class Descriptor {
public:
    /// Writes all of `text`, and waits where the descriptor takes no more for now, also when it is non-blocking: that
    /// is up to whoever else has it. Returns 0, or the system's error number once nothing more can be written.
    static int write(int descriptor, std::string_view text) noexcept;
};

}  // namespace TevAgent

#endif

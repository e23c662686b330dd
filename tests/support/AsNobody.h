#ifndef AS_NOBODY_H
#define AS_NOBODY_H

namespace TevTest {

/// While it lives, files are open to the calling thread as to a user without privileges, also where tests run as root.
class AsNobody {
public:
    /// Throws std::runtime_error when the thread keeps its privileges.
    AsNobody();
    ~AsNobody();
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
};

}  // namespace TevTest

#endif

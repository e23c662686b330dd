#include "AsNobody.h"

#include <sys/fsuid.h>
#include <unistd.h>

#include <stdexcept>

namespace TevTest {

namespace {

constexpr uid_t nobody = 65534;

}  // namespace

AsNobody::AsNobody() {
    if (geteuid() != 0) {
        return;
    }
    setfsuid(nobody);
    if (static_cast<uid_t>(setfsuid(nobody)) != nobody) {
        throw std::runtime_error("cannot give up root's access to files");
    }
}

AsNobody::~AsNobody() {
    setfsuid(geteuid());
}

}  // namespace TevTest

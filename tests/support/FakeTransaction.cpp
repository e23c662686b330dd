#include "FakeTransaction.h"

#include <stdexcept>

namespace TevTest {

namespace {

FakeTransaction* current = nullptr;

}  // namespace

FakeTransaction::FakeTransaction() {
    if (current != nullptr) {
        throw std::logic_error("transactions are written down already");
    }
    current = this;
}

FakeTransaction::~FakeTransaction() {
    current = nullptr;
}

void FakeTransaction::note(const Arguments& arguments) {
    if (current != nullptr) {
        const std::lock_guard<std::mutex> lock(current->mutex);
        current->constructed.push_back(arguments);
    }
}

}  // namespace TevTest

namespace Tev {

Transaction::Transaction(bool flag, TevLockPolicyT lockPolicy, int limit) {
    TevTest::FakeTransaction::note({flag, lockPolicy, limit});
}

}  // namespace Tev

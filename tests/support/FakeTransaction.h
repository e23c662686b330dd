#ifndef FAKE_TRANSACTION_H
#define FAKE_TRANSACTION_H

#include <mutex>
#include <tuple>
#include <vector>

#include "Transaction.h"

namespace TevTest {

/// Takes the place of the constructor of `Tev::Transaction` for the program and its libraries. While it lives it writes
/// down what each object is constructed with, from any thread. There is one at a time.
class FakeTransaction {
public:
    using Arguments = std::tuple<bool, TevLockPolicyT, int>;

    FakeTransaction();
    ~FakeTransaction();
    FakeTransaction(const FakeTransaction&) = delete;
    FakeTransaction& operator=(const FakeTransaction&) = delete;

    /// What each object was constructed with; read while none is being made.
    std::vector<Arguments> constructed;

    /// The replacement's way in.
    static void note(const Arguments& arguments);

private:
    std::mutex mutex;  // held while `constructed` grows
};

}  // namespace TevTest

#endif

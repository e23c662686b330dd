#include "Transaction.h"

namespace Tev {

Transaction::Transaction(bool, TevLockPolicyT, int) {}

void Transaction::useTransaction(const unsigned long& handle) {
    txHandle = handle;
}

}  // namespace Tev

#ifndef TEV_TRANSACTION_H
#define TEV_TRANSACTION_H

#include <cstdint>

#include "TevCommonApi.h"

/// How a transaction locks what it touches.
typedef std::int32_t TevLockPolicyT;

namespace Tev {

/// The transaction that a piece of work runs in. It is borrowed: whoever began it finishes it.
///
/// One object is used by one thread at a time.
class TEV_COMMON_API Transaction {
public:
    /// The arguments are for transactions that the object would begin itself. This library begins none, so they have
    /// no effect.
    Transaction(bool, TevLockPolicyT, int);

    /// Runs what follows in the transaction `handle`. Without it the handle is 0, which no transaction has.
    void useTransaction(const unsigned long& handle);

protected:
    ~Transaction() = default;

    unsigned long txHandle = 0;
};

}  // namespace Tev

#endif

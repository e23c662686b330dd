#ifndef TEV_AGENT_SCOPED_TRANSACTION_H
#define TEV_AGENT_SCOPED_TRANSACTION_H

#include "TransactionService.h"

namespace TevAgent {

/// A transaction that ends with its scope: aborted, unless it was committed. Used by one thread.
class ScopedTransaction {
public:
    explicit ScopedTransaction(TransactionService& transactionService);
    ~ScopedTransaction();
    ScopedTransaction(const ScopedTransaction&) = delete;
    ScopedTransaction& operator=(const ScopedTransaction&) = delete;

    unsigned long handle() const { return txHandle; }

    /// Leaves its end to the caller.
    void release() { isOpen = false; }

    /// Ends the transaction as `TransactionService::commit` does.
    TevReturnT commit();

private:
    TransactionService& service;
    const unsigned long txHandle;
    bool isOpen = true;
};

}  // namespace TevAgent

#endif

#include "ScopedTransaction.h"

namespace TevAgent {

ScopedTransaction::ScopedTransaction(TransactionService& transactionService)
    : service(transactionService), txHandle(transactionService.begin()) {}

ScopedTransaction::~ScopedTransaction() {
    if (isOpen) {
        service.abort(txHandle);
    }
}

TevReturnT ScopedTransaction::commit() {
    isOpen = false;
    return service.commit(txHandle);
}

}  // namespace TevAgent

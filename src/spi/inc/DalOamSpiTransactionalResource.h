#ifndef DAL_OAM_SPI_TRANSACTIONAL_RESOURCE_H
#define DAL_OAM_SPI_TRANSACTIONAL_RESOURCE_H

#include <stdbool.h>

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A transaction participant: interface "DalOamSpiTransactionalResource", version "2".
///
/// The component owns the table. For one transaction the framework calls `join` before any other call into the
/// component, then `validate`, `prepare` and `commit` (or `abort`), and `finish` last, always. Different transactions
/// may run on different threads at the same time.
typedef struct DalOamSpiTransactionalResource_2 {
    DalMgmtSpiInterface_1 base;

    /// The component takes part in the transaction: it registers itself with the transaction service. Returns 0, 2
    /// when the component is not started, or why it could not register.
    /// [any-thread, in-transaction]
    TevReturnT (*join)(unsigned long txHandle);

    /// First phase of the commit: returns 0 when `commit` cannot fail any more.
    /// [any-thread, in-transaction]
    TevReturnT (*prepare)(unsigned long txHandle);

    /// Second phase of the commit. Returns 0.
    /// [any-thread, in-transaction]
    TevReturnT (*commit)(unsigned long txHandle);

    /// Takes back what the transaction did. Returns 0. Memory handed out stays valid until `finish`.
    /// [any-thread, in-transaction]
    TevReturnT (*abort)(unsigned long txHandle);

    /// Ends the transaction: the component releases all memory and iterators that it handed out in it. Returns 0.
    /// [any-thread, in-transaction]
    TevReturnT (*finish)(unsigned long txHandle);

    /// Sets `*result` to whether the component finds the transaction valid. Returns 0.
    /// [any-thread, in-transaction]
    TevReturnT (*validate)(unsigned long txHandle, bool* result);
} DalOamSpiTransactionalResource_2;

#ifdef __cplusplus
}
#endif

#endif

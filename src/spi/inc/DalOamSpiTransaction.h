#ifndef DAL_OAM_SPI_TRANSACTION_H
#define DAL_OAM_SPI_TRANSACTION_H

#include "DalMgmtSpiInterface.h"
#include "DalOamSpiTransactionalResource.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The transaction service: interface "DalOamSpiTransaction", version "2".
typedef struct DalOamSpiTransaction_2 {
    DalMgmtSpiInterface_1 base;

    /// Makes `participant` take part in the transaction. The service borrows the table until the participant's
    /// `finish` has returned. Registering the same participant again changes nothing. Returns 0, or -2 when there is
    /// no such transaction.
    /// [any-thread, in-transaction]
    TevReturnT (*registerParticipant)(unsigned long txHandle, DalOamSpiTransactionalResource_2* participant);
} DalOamSpiTransaction_2;

#ifdef __cplusplus
}
#endif

#endif

#ifndef DAL_MGMT_SPI_THREAD_CONTEXT_H
#define DAL_MGMT_SPI_THREAD_CONTEXT_H

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Texts for the operator who caused the current call: interface "DalMgmtSpiThreadContext", version "2".
typedef struct DalMgmtSpiThreadContext_2 {
    DalMgmtSpiInterface_1 base;

    /// Adds `text` for the operator to the calling thread's context. The text is copied. Returns 0, or -1 when the
    /// thread serves no operation.
    /// [any-thread]
    TevReturnT (*addMessage)(int32_t category, const char* text);
} DalMgmtSpiThreadContext_2;

#ifdef __cplusplus
}
#endif

#endif

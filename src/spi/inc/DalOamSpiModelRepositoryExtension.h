#ifndef DAL_OAM_SPI_MODEL_REPOSITORY_EXTENSION_H
#define DAL_OAM_SPI_MODEL_REPOSITORY_EXTENSION_H

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Where the models' files are: interface "DalOamSpiModelRepositoryExtension", version "1".
typedef struct DalOamSpiModelRepositoryExtension_1 {
    DalMgmtSpiInterface_1 base;

    /// Gives the absolute path of a MOM's file, owned by the repository. `momVersion` may be null. Returns 0, or -2
    /// when there is no such MOM.
    /// [any-thread]
    TevReturnT (*getMomFileName)(const char* momName, const char* momVersion, const char** result);
} DalOamSpiModelRepositoryExtension_1;

#ifdef __cplusplus
}
#endif

#endif

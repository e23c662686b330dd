#ifndef DAL_OAM_SPI_MODEL_REPOSITORY_H
#define DAL_OAM_SPI_MODEL_REPOSITORY_H

#include <stdint.h>

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A managed-object model (MOM) of the repository, opaque to the caller.
typedef uint64_t DalOamSpiMrMomHandle_4T;

/// The general properties of a repository item, opaque to the caller.
typedef uint64_t DalOamSpiMrGeneralPropertiesHandle_4T;

/// Selectors of `getGeneralStringProperty`.
enum { DalOamSpiMrGeneralName = 0 };

/// Selectors of `getMomStringProperty`.
enum { DalOamSpiMrMomVersion = 0, DalOamSpiMrMomRelease = 1, DalOamSpiMrMomCorrection = 8 };

/// Where a walk over the repository begins.
typedef struct DalOamSpiMrRoot_4 {
    /// Sets `*mom` to the first MOM. Returns 0, or -2 when the repository holds none.
    /// [any-thread]
    TevReturnT (*getFirstMom)(DalOamSpiMrMomHandle_4T* mom);
} DalOamSpiMrRoot_4;

/// What every repository item has. Texts handed out are owned by the repository.
typedef struct DalOamSpiMrGeneralProperties_4 {
    /// Gives the property that `selector` names, for 0 the item's name.
    /// [any-thread]
    TevReturnT (*getGeneralStringProperty)(DalOamSpiMrGeneralPropertiesHandle_4T properties, int32_t selector,
                                           const char** result);
    void (*reserved1)(void);
    void (*reserved2)(void);

    /// Gives the value of a domain-specific property. Returns -2 when the item has no such value.
    /// [any-thread]
    TevReturnT (*getGeneralDomainValue)(DalOamSpiMrGeneralPropertiesHandle_4T properties, const char* domain,
                                        const char* key, const char** result);
} DalOamSpiMrGeneralProperties_4;

/// What a MOM has.
typedef struct DalOamSpiMrMom_4 {
    /// Gives the handle of the MOM's general properties.
    /// [any-thread]
    TevReturnT (*getMomGeneralProperties)(DalOamSpiMrMomHandle_4T mom,
                                          DalOamSpiMrGeneralPropertiesHandle_4T* properties);

    /// Gives the property that `selector` names, or null when the MOM has none. The repository owns the text.
    /// [any-thread]
    TevReturnT (*getMomStringProperty)(DalOamSpiMrMomHandle_4T mom, int32_t selector, const char** result);
    void (*reserved2)(void);
    void (*reserved3)(void);

    /// Gives the names of the MOM's model features, or null. The array is fresh, made with `new const char*[n + 1]`,
    /// its entries with `strdup`, a null pointer at the end; array and entries are given to the caller, who releases
    /// them with `free` and then `delete[]`.
    /// [any-thread]
    TevReturnT (*getMomFeatureNames)(DalOamSpiMrMomHandle_4T mom, const char*** result);

    /// Sets `*next` to the MOM after `mom`; `next` may point to the variable that `mom` was read from. Returns 0, or
    /// -2 after the last.
    /// [any-thread]
    TevReturnT (*getNextMom)(DalOamSpiMrMomHandle_4T mom, DalOamSpiMrMomHandle_4T* next);
} DalOamSpiMrMom_4;

/// The models that the node holds: interface "DalOamSpiModelRepository", version "4". Table and sub-tables are owned
/// by the repository.
typedef struct DalOamSpiModelRepository_4 {
    DalMgmtSpiInterface_1 base;
    const DalOamSpiMrRoot_4* root;
    const DalOamSpiMrGeneralProperties_4* generalProperties;
    const DalOamSpiMrMom_4* mom;
} DalOamSpiModelRepository_4;

#ifdef __cplusplus
}
#endif

#endif

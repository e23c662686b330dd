#ifndef DAL_MGMT_SPI_COMPONENT_H
#define DAL_MGMT_SPI_COMPONENT_H

#include <stdbool.h>

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Why the framework starts or stops a component. The type is 32 bits wide.
typedef enum DalStateChangeReason {
    DalStateChangeReasonUnspecified = 0,
    DalStateChangeReasonWidth = 0x7fffffff  ///< never passed: it only fixes the width of the type
} DalStateChangeReason;

/// What a component tells the framework about itself when it registers: interface "DalMgmtSpiComponent", version "2".
///
/// The component owns the table and the three arrays; they stay valid and unchanged from `registerComponent` until
/// `unregisterComponent` has returned. Each array holds pointers to descriptors and ends with a null pointer.
typedef struct DalMgmtSpiComponent_2 {
    DalMgmtSpiInterface_1 base;

    /// The interface tables that the component offers, each known by its leading descriptor.
    DalMgmtSpiInterface_1** interfaceArray;

    /// The interfaces that must be there before the component is started.
    DalMgmtSpiInterface_1** dependencyArray;

    /// Brings the component into service. Returns 0 when it is started; any other code means that this start failed,
    /// and the framework still calls `stop`. May be called again after `stop`.
    /// [lifecycle]
    TevReturnT (*start)(DalStateChangeReason reason);

    /// Takes the component out of service. Returns 0.
    /// [lifecycle]
    TevReturnT (*stop)(DalStateChangeReason reason);

    /// A third list of descriptors; may be empty, is never a null pointer.
    DalMgmtSpiInterface_1** extraArray;

    bool flag;  ///< false; nobody reads it
} DalMgmtSpiComponent_2;

#ifdef __cplusplus
}
#endif

#endif

#ifndef DAL_OAM_SPI_MANAGED_OBJECT_H
#define DAL_OAM_SPI_MANAGED_OBJECT_H

#include <stdbool.h>
#include <stdint.h>

#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The codes that tell which member of a `DalMoAttributeValue` is in use.
enum {
    DalMoTypeInt8 = 1,
    DalMoTypeInt16 = 2,
    DalMoTypeInt32 = 3,
    DalMoTypeInt64 = 4,
    DalMoTypeUint8 = 5,
    DalMoTypeUint16 = 6,
    DalMoTypeUint32 = 7,
    DalMoTypeUint64 = 8,
    DalMoTypeString = 9,
    DalMoTypeBool = 10,
    DalMoTypeReference = 11,  ///< a DN, in `theString`
    DalMoTypeEnum = 12,       ///< in `theInt64`
    DalMoTypeStruct = 13,
    DalMoTypeDouble = 14,
    DalMoTypeVoid = 15  ///< the result of an action that gives none: no values
};

/// One value cell, 8 bytes wide on every target. A value smaller than the cell lies at the cell's first byte.
typedef union DalMoAttributeValue {
    char* theString;  ///< NUL-terminated
    bool theBool;
    int8_t theInt8;
    int16_t theInt16;
    int32_t theInt32;
    int64_t theInt64;
    uint8_t theUint8;
    uint16_t theUint16;
    uint32_t theUint32;
    uint64_t theUint64;
    double theDouble;
} DalMoAttributeValue;

/// The values of an attribute, an action argument or an action result.
typedef struct DalMoAttributeValueContainer {
    int32_t type;                 ///< one of the DalMoType codes
    uint32_t nrOfValues;          ///< how many cells `values` has; 0 when the attribute has no value
    DalMoAttributeValue* values;  ///< may be null when `nrOfValues` is 0
} DalMoAttributeValueContainer;

/// Managed objects of a component, or of the whole node behind the router: interface "DalOamSpiManagedObject",
/// version "1".
///
/// Texts passed in are NUL-terminated and borrowed until the call returns. What a call hands out (containers, keys,
/// iterator handles) is owned by the callee and stays valid until the transaction's `finish`; the caller never frees
/// it. Every call belongs to a transaction that the callee has joined.
typedef struct DalOamSpiManagedObject_1 {
    DalMgmtSpiInterface_1 base;

    /// Sets an attribute. `value` is borrowed until the call returns. Returns 0, or -1 where the class is read-only.
    /// [any-thread, in-transaction]
    TevReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attributeName,
                                 DalMoAttributeValueContainer* value);

    /// Reads an attribute. On success returns 0 and sets `*result`. Returns -1 for a DN that no instance of the
    /// class can have, -2 when there is no such object or attribute, -8 for a null argument, -10 when memory runs out,
    /// 2 when the callee is not started. [any-thread, in-transaction]
    TevReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attributeName,
                                 DalMoAttributeValueContainer** result);

    /// Begins a listing of the instances of `className` directly under `parentDn` (an empty text for the root). On
    /// success returns 0 and sets `*iterator`. Returns -1 for a DN or class that is not the callee's, -2 from the
    /// router when there is no such object or class, -8 for a null argument, 2 when the callee is not started.
    /// [any-thread, in-transaction]
    TevReturnT (*newMoIterator)(unsigned long txHandle, const char* parentDn, const char* className, void** iterator);

    /// Gives the key of the next instance (the text after "=" of its last RDN), or null at the end of the listing.
    /// Returns 0, -1 for an unknown iterator or when memory runs out, -8 for a null `result`, 2 when the callee is not
    /// started. One iterator is used by one thread at a time.
    /// [any-thread, in-transaction]
    TevReturnT (*nextMo)(void* iterator, char** result);

    /// Creates an instance. `keyValue` is borrowed until the call returns. Returns 0, or -1 where the class is
    /// read-only.
    /// [any-thread, in-transaction]
    TevReturnT (*createMo)(unsigned long txHandle, const char* parentDn, const char* className, const char* keyName,
                           DalMoAttributeValueContainer* keyValue);

    /// Deletes an instance. Returns 0, or -1 where the class is read-only.
    /// [any-thread, in-transaction]
    TevReturnT (*deleteMo)(unsigned long txHandle, const char* dn);

    /// Carries out an action. `parameters` is a null-terminated array, borrowed until the call returns. On success
    /// returns 0 and sets `*result`. Returns -2 when there is no such object, -8 for a DN, name or parameters that do
    /// not fit the action, -10 when memory runs out, 2 when the callee is not started, or a code of the action's own.
    /// [any-thread, in-transaction]
    TevReturnT (*action)(unsigned long txHandle, const char* dn, const char* actionName,
                         DalMoAttributeValueContainer** parameters, DalMoAttributeValueContainer** result);
} DalOamSpiManagedObject_1;

#ifdef __cplusplus
}
#endif

#endif

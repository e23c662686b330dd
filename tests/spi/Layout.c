#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "DalMgmtSpiComponent.h"
#include "DalMgmtSpiInterface.h"
#include "DalMgmtSpiThreadContext.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiModelRepository.h"
#include "DalOamSpiModelRepositoryExtension.h"
#include "DalOamSpiTransaction.h"
#include "DalOamSpiTransactionalResource.h"
#include "DalPortal.h"
#include "TevReturnT.h"

/* What components and hosts that were built at different times agree on. A failure here means that a header changed in
 * a way that breaks every binary built before. */

#define WORD (sizeof(void*))
#define HOLD(condition) _Static_assert(condition, #condition)
#define SIZE(type, size) HOLD(sizeof(type) == (size))
#define AT(type, member, offset) HOLD(offsetof(type, member) == (offset))
#define VALUE(name, value) HOLD((name) == (value))

#ifdef TEV_EXPECTED_BITS
HOLD(TEV_EXPECTED_BITS == 8 * WORD);
#endif
HOLD(__CHAR_BIT__ == 8);
HOLD(WORD == 4 || WORD == 8);
HOLD(sizeof(void (*)(void)) == WORD);
HOLD(sizeof(unsigned long) == WORD);

SIZE(TevReturnT, 4);
HOLD((TevReturnT)-1 < 0);
VALUE(TevReturnOk, 0);
VALUE(TevReturnFailure, -1);
VALUE(TevReturnNotFound, -2);
VALUE(TevReturnInvalidArgument, -8);
VALUE(TevReturnNoMemory, -10);
VALUE(TevReturnNotStarted, 2);

SIZE(DalMgmtSpiInterface_1, 3 * WORD);
AT(DalMgmtSpiInterface_1, componentName, 0);
AT(DalMgmtSpiInterface_1, interfaceName, WORD);
AT(DalMgmtSpiInterface_1, interfaceVersion, 2 * WORD);

SIZE(DalPortalAccessor, WORD);
AT(DalPortalAccessor, getPortal, 0);

SIZE(DalPortal_3, 7 * WORD);
AT(DalPortal_3, base, 0);
AT(DalPortal_3, getInterface, 3 * WORD);
AT(DalPortal_3, reserved, 4 * WORD);
AT(DalPortal_3, registerComponent, 5 * WORD);
AT(DalPortal_3, unregisterComponent, 6 * WORD);

SIZE(DalStateChangeReason, 4);
VALUE(DalStateChangeReasonUnspecified, 0);
VALUE(DalStateChangeReasonWidth, 0x7fffffff);

SIZE(DalMgmtSpiComponent_2, 9 * WORD);
AT(DalMgmtSpiComponent_2, base, 0);
AT(DalMgmtSpiComponent_2, interfaceArray, 3 * WORD);
AT(DalMgmtSpiComponent_2, dependencyArray, 4 * WORD);
AT(DalMgmtSpiComponent_2, start, 5 * WORD);
AT(DalMgmtSpiComponent_2, stop, 6 * WORD);
AT(DalMgmtSpiComponent_2, extraArray, 7 * WORD);
AT(DalMgmtSpiComponent_2, flag, 8 * WORD);
HOLD(sizeof(((DalMgmtSpiComponent_2*)0)->flag) == 1);

SIZE(DalMgmtSpiThreadContext_2, 4 * WORD);
AT(DalMgmtSpiThreadContext_2, base, 0);
AT(DalMgmtSpiThreadContext_2, addMessage, 3 * WORD);

SIZE(DalOamSpiTransaction_2, 4 * WORD);
AT(DalOamSpiTransaction_2, base, 0);
AT(DalOamSpiTransaction_2, registerParticipant, 3 * WORD);

SIZE(DalOamSpiTransactionalResource_2, 9 * WORD);
AT(DalOamSpiTransactionalResource_2, base, 0);
AT(DalOamSpiTransactionalResource_2, join, 3 * WORD);
AT(DalOamSpiTransactionalResource_2, prepare, 4 * WORD);
AT(DalOamSpiTransactionalResource_2, commit, 5 * WORD);
AT(DalOamSpiTransactionalResource_2, abort, 6 * WORD);
AT(DalOamSpiTransactionalResource_2, finish, 7 * WORD);
AT(DalOamSpiTransactionalResource_2, validate, 8 * WORD);

VALUE(DalMoTypeInt8, 1);
VALUE(DalMoTypeInt16, 2);
VALUE(DalMoTypeInt32, 3);
VALUE(DalMoTypeInt64, 4);
VALUE(DalMoTypeUint8, 5);
VALUE(DalMoTypeUint16, 6);
VALUE(DalMoTypeUint32, 7);
VALUE(DalMoTypeUint64, 8);
VALUE(DalMoTypeString, 9);
VALUE(DalMoTypeBool, 10);
VALUE(DalMoTypeReference, 11);
VALUE(DalMoTypeEnum, 12);
VALUE(DalMoTypeStruct, 13);
VALUE(DalMoTypeDouble, 14);
VALUE(DalMoTypeVoid, 15);

SIZE(DalMoAttributeValue, 8);
AT(DalMoAttributeValue, theString, 0);
AT(DalMoAttributeValue, theBool, 0);
AT(DalMoAttributeValue, theInt8, 0);
AT(DalMoAttributeValue, theInt16, 0);
AT(DalMoAttributeValue, theInt32, 0);
AT(DalMoAttributeValue, theInt64, 0);
AT(DalMoAttributeValue, theUint8, 0);
AT(DalMoAttributeValue, theUint16, 0);
AT(DalMoAttributeValue, theUint32, 0);
AT(DalMoAttributeValue, theUint64, 0);
AT(DalMoAttributeValue, theDouble, 0);

SIZE(DalMoAttributeValueContainer, WORD == 4 ? 12 : 16);
AT(DalMoAttributeValueContainer, type, 0);
AT(DalMoAttributeValueContainer, nrOfValues, 4);
AT(DalMoAttributeValueContainer, values, 8);

SIZE(DalOamSpiManagedObject_1, 10 * WORD);
AT(DalOamSpiManagedObject_1, base, 0);
AT(DalOamSpiManagedObject_1, setMoAttribute, 3 * WORD);
AT(DalOamSpiManagedObject_1, getMoAttribute, 4 * WORD);
AT(DalOamSpiManagedObject_1, newMoIterator, 5 * WORD);
AT(DalOamSpiManagedObject_1, nextMo, 6 * WORD);
AT(DalOamSpiManagedObject_1, createMo, 7 * WORD);
AT(DalOamSpiManagedObject_1, deleteMo, 8 * WORD);
AT(DalOamSpiManagedObject_1, action, 9 * WORD);

SIZE(DalOamSpiMrMomHandle_4T, 8);
SIZE(DalOamSpiMrGeneralPropertiesHandle_4T, 8);
VALUE(DalOamSpiMrGeneralName, 0);
VALUE(DalOamSpiMrMomVersion, 0);
VALUE(DalOamSpiMrMomRelease, 1);
VALUE(DalOamSpiMrMomCorrection, 8);

SIZE(DalOamSpiMrRoot_4, WORD);
AT(DalOamSpiMrRoot_4, getFirstMom, 0);

SIZE(DalOamSpiMrGeneralProperties_4, 4 * WORD);
AT(DalOamSpiMrGeneralProperties_4, getGeneralStringProperty, 0);
AT(DalOamSpiMrGeneralProperties_4, reserved1, WORD);
AT(DalOamSpiMrGeneralProperties_4, reserved2, 2 * WORD);
AT(DalOamSpiMrGeneralProperties_4, getGeneralDomainValue, 3 * WORD);

SIZE(DalOamSpiMrMom_4, 6 * WORD);
AT(DalOamSpiMrMom_4, getMomGeneralProperties, 0);
AT(DalOamSpiMrMom_4, getMomStringProperty, WORD);
AT(DalOamSpiMrMom_4, reserved2, 2 * WORD);
AT(DalOamSpiMrMom_4, reserved3, 3 * WORD);
AT(DalOamSpiMrMom_4, getMomFeatureNames, 4 * WORD);
AT(DalOamSpiMrMom_4, getNextMom, 5 * WORD);

SIZE(DalOamSpiModelRepository_4, 6 * WORD);
AT(DalOamSpiModelRepository_4, base, 0);
AT(DalOamSpiModelRepository_4, root, 3 * WORD);
AT(DalOamSpiModelRepository_4, generalProperties, 4 * WORD);
AT(DalOamSpiModelRepository_4, mom, 5 * WORD);

SIZE(DalOamSpiModelRepositoryExtension_1, 4 * WORD);
AT(DalOamSpiModelRepositoryExtension_1, base, 0);
AT(DalOamSpiModelRepositoryExtension_1, getMomFileName, 3 * WORD);

#ifndef SCHEMA_POPULATOR_SERVICE_H
#define SCHEMA_POPULATOR_SERVICE_H

#include <vector>

#include "DalComponent.h"
#include "DalMgmtSpiComponent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiModelRepository.h"
#include "DalOamSpiModelRepositoryExtension.h"
#include "DalOamSpiTransaction.h"
#include "DalOamSpiTransactionalResource.h"
#include "SchemaConfiguration.h"
#include "SchemaData.h"
#include "SchemaMoImpl.h"
#include "TevReturnT.h"

/// What the library exports beside `dalLCMinit` and `dalLCMterminate`, all with C linkage. They let exceptions through:
/// the host catches them.
extern "C" {

// The operations of DalOamSpiTransactionalResource and DalOamSpiManagedObject; their contracts stand with the tables.
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_join_if(unsigned long txHandle);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_prepare_if(unsigned long txHandle);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_commit_if(unsigned long txHandle);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_abort_if(unsigned long txHandle);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_finish_if(unsigned long txHandle);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_validate_if(unsigned long txHandle, bool* result);

DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_setMoAttribute_if(unsigned long txHandle, const char* dn,
                                                                 const char* attributeName,
                                                                 DalMoAttributeValueContainer* value);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_getMoAttribute_if(unsigned long txHandle, const char* dn,
                                                                 const char* attributeName,
                                                                 DalMoAttributeValueContainer** result);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_newMoIterator_if(unsigned long txHandle, const char* parentDn,
                                                                const char* className, void** iterator);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_nextMo_if(void* iterator, char** result);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_createMo_if(unsigned long txHandle, const char* parentDn,
                                                           const char* className, const char* keyName,
                                                           DalMoAttributeValueContainer* keyValue);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_deleteMo_if(unsigned long txHandle, const char* dn);
DAL_ENTRY_POINT TevReturnT _tevSchemaPopulator_action_if(unsigned long txHandle, const char* dn, const char* actionName,
                                                         DalMoAttributeValueContainer** parameters,
                                                         DalMoAttributeValueContainer** result);
}

namespace TevSchemaPopulator {

/// The component: its registration, its life between start and stop, and the catalogue of the node's models.
///
/// The framework calls the operations of the lifecycle one at a time, and while no other call is under way; `join` and
/// `isStarted` may be called from any thread. The catalogue is changed by `start` and `stop` only.
class SchemaPopulatorService : public Tev::DalComponent<SchemaPopulatorService> {
public:
    SchemaPopulatorService();
    ~SchemaPopulatorService() = default;

    /// Reads the configuration file at the path `configuration`; null, or a file that cannot be read, leaves the
    /// defaults. Returns 0.
    TevReturnT initialize(const char* configuration);

    void terminate();

    /// Fetches the framework's services and builds the catalogue. Returns 0, or the code of the step that failed;
    /// the steps before it are not undone, and whether the component is started stays as it was.
    TevReturnT start(DalStateChangeReason reason);

    /// Releases the catalogue's option lists and forgets the thread context. Returns 0, also when not started.
    TevReturnT stop(DalStateChangeReason reason);

    /// Takes part in the transaction. Returns 0, -1 without a transaction service, or that service's code.
    TevReturnT join(unsigned long txHandle);

    /// The provider of the class `Schema`, owned by the service.
    SchemaMoImpl* getSchemaMoImpl();

    bool isStarted() const;

private:
    /// The provider is bound to the catalogue before the catalogue is constructed, and uses it only afterwards.
    std::vector<SchemaData>& catalogue() { return schemaData; }

    /// Builds the catalogue from the repository's models, in the repository's order. Returns 0 or the code of the
    /// first failure; the records before it stay in the catalogue.
    TevReturnT initSchemaDataVector(DalOamSpiModelRepository_4& repository,
                                    DalOamSpiModelRepositoryExtension_1& extension);

    /// Fills `record` from one model. Returns 0; -1 for a file name without a last component; the repository's code.
    TevReturnT populateSchemaData(DalOamSpiModelRepository_4& repository,
                                  DalOamSpiModelRepositoryExtension_1& extension, const DalOamSpiMrMomHandle_4T& mom,
                                  SchemaData& record);

    SchemaConfiguration config;
    bool started = false;
    SchemaMoImpl moImpl;
    std::vector<SchemaData> schemaData;
    DalOamSpiTransactionalResource_2 transactionalResourceIf;
    DalOamSpiManagedObject_1 managedObjectIf;
    DalOamSpiTransaction_2* transaction = nullptr;       ///< set by the first `start` that gets so far
    [[maybe_unused]] void* reservedInterface = nullptr;  ///< for a second framework service; not used
};

}  // namespace TevSchemaPopulator

#endif

#include "SchemaPopulatorService.h"

#include <set>
#include <string>

#include "DalPortal.h"
#include "Log.h"
#include "ProcessUtil.h"
#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr const char* sourceFile = "src/schema_populator/SchemaPopulatorService";
constexpr const char* componentName = "TevSchemaMoService";
constexpr const char* configurationFile = "libtev_schema_populator.cfg";
constexpr const char* orvaDomain = "ORVA";

// Required at registration, in lists that hold pointers to what is not constant. The repository is required in version
// "1" but fetched in version "4", and the transaction service is fetched without being required: both are what the
// framework knows this component by.
DalMgmtSpiInterface_1 modelRepositoryDependency = {"DalOamSpiModelRepositoryService", "DalOamSpiModelRepository", "1"};
DalMgmtSpiInterface_1 cmRouterDependency = {"DalOamSpiCmRouterService", "DalOamSpiManagedObject", "1"};
DalMgmtSpiInterface_1 threadContextInterface = {"DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"};

// Fetched at start, together with the thread context.
constexpr DalMgmtSpiInterface_1 transactionInterface = {"DalOamSpiTransactionService", "DalOamSpiTransaction", "2"};
constexpr DalMgmtSpiInterface_1 modelRepositoryInterface = {"DalOamSpiModelRepositoryService",
                                                            "DalOamSpiModelRepository", "4"};
constexpr DalMgmtSpiInterface_1 repositoryExtensionInterface = {"DalOamSpiModelRepositoryService",
                                                                "DalOamSpiModelRepositoryExtension", "1"};

/// Fetches an interface. What the portal gives goes into `table`, also when it reports a failure, by way of a `void*`,
/// since a pointer to a pointer of one type may not be used as one of another.
template <class Table>
TevReturnT fetch(const DalPortal_3& portal, const DalMgmtSpiInterface_1& wanted, Table*& table) {
    void* found = table;
    const TevReturnT result =
        portal.getInterface(wanted.componentName, wanted.interfaceName, wanted.interfaceVersion, &found);
    table = static_cast<Table*>(found);
    return result;
}

/// What follows are the steps of this function, and what they log bears its name.
constexpr const char* populateFunction = "populateSchemaData";

/// A name or path that the repository leaves null reads as an empty text.
const char* textOf(const char* text) {
    return text == nullptr ? "" : text;
}

/// Reads a value of the domain "ORVA" into `value`, which comes as null. Success without a value counts as not found.
TevReturnT getOrvaValue(const DalOamSpiMrGeneralProperties_4& table, DalOamSpiMrGeneralPropertiesHandle_4T properties,
                        const char* key, const char*& value) {
    const TevReturnT result = table.getGeneralDomainValue(properties, orvaDomain, key, &value);
    return result == TevReturnOk && value == nullptr ? TevReturnNotFound : result;
}

TevReturnT readName(const DalOamSpiModelRepository_4& repository, DalOamSpiMrMomHandle_4T mom,
                    DalOamSpiMrGeneralPropertiesHandle_4T& properties, SchemaData& record) {
    TevReturnT result = repository.mom->getMomGeneralProperties(mom, &properties);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get general properties from mom");
        return result;
    }
    const char* name = nullptr;
    result = repository.generalProperties->getGeneralStringProperty(properties, DalOamSpiMrGeneralName, &name);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get mom name");
        return result;
    }
    record.schemaId = textOf(name);
    record.identifier = record.schemaId;
    return TevReturnOk;
}

TevReturnT readBaseModelIdentifier(const DalOamSpiMrGeneralProperties_4& table,
                                   DalOamSpiMrGeneralPropertiesHandle_4T properties, SchemaData& record) {
    const char* name = nullptr;
    const TevReturnT result = getOrvaValue(table, properties, "orvaMomName", name);
    if (result == TevReturnNotFound) {
        SCHEMA_TRACE_AS(populateFunction, TraceDebug, "No OrvaMomName was found baseModelIdentifier is not set, id :%s",
                        record.identifier.c_str());
        return TevReturnOk;
    }
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get orva mom name");
        return result;
    }
    record.baseModelIdentifier = name;
    return TevReturnOk;
}

/// A missing version is normal, a release missing beside a version is worth a warning.
TevReturnT readBaseModelVersion(const DalOamSpiMrGeneralProperties_4& table,
                                DalOamSpiMrGeneralPropertiesHandle_4T properties, SchemaData& record) {
    const char* version = nullptr;
    TevReturnT result = getOrvaValue(table, properties, "orvaMomVersion", version);
    if (result == TevReturnNotFound) {
        SCHEMA_TRACE_AS(populateFunction, TraceDebug, "No OrvaMomVersion was found baseModelVersion is not set");
        return TevReturnOk;
    }
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get orva mom version");
        return result;
    }
    const char* release = nullptr;
    result = getOrvaValue(table, properties, "orvaMomRelease", release);
    if (result == TevReturnNotFound) {
        SCHEMA_LOG_AS(populateFunction, LogWarning, "No OrvaMomRease was found baseModelVersion is not set");
        return TevReturnOk;
    }
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get orva mom release");
        return result;
    }
    record.baseModelVersion.append(version).append(".").append(release);
    const char* correction = nullptr;
    result = table.getGeneralDomainValue(properties, orvaDomain, "orvaMomCorrection", &correction);
    if (result != TevReturnOk) {
        SCHEMA_TRACE_AS(populateFunction, TraceDebug, "Skiping OrvaMomCorrection since it is not available");
    } else if (correction != nullptr) {
        record.baseModelVersion.append(".").append(correction);
    }
    return TevReturnOk;
}

/// `version` becomes the model's own text, or null when it has none.
TevReturnT readVersion(const DalOamSpiMrMom_4& table, DalOamSpiMrMomHandle_4T mom, const char*& version,
                       SchemaData& record) {
    const TevReturnT result = table.getMomStringProperty(mom, DalOamSpiMrMomVersion, &version);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get mom version");
        return result;
    }
    if (version == nullptr) {
        SCHEMA_LOG_AS(populateFunction, LogNotice, "Skiping mom version since it is not available");
    } else {
        record.version = version;
    }
    return TevReturnOk;
}

TevReturnT readOptions(const DalOamSpiMrMom_4& table, DalOamSpiMrMomHandle_4T mom, SchemaData& record) {
    const char** names = nullptr;
    const TevReturnT result = table.getMomFeatureNames(mom, &names);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get model feature names");
        return result;
    }
    if (names == nullptr) {
        return TevReturnOk;
    }
    record.selectedModelOptions = names;
    if (*names == nullptr) {
        SCHEMA_LOG_AS(populateFunction, LogNotice, "Skiping model feature names since it is not available");
    }
    for (const char** name = names; *name != nullptr; ++name) {
        SCHEMA_LOG_AS(populateFunction, LogNotice, "Setting model Feature name: %s", *name);
    }
    return TevReturnOk;
}

/// Appends release and correction. Whether a "." goes before the correction depends on the release alone, so version
/// 1 and correction 3 without a release give 13.
TevReturnT readReleaseAndCorrection(const DalOamSpiMrMom_4& table, DalOamSpiMrMomHandle_4T mom, bool hasVersion,
                                    SchemaData& record) {
    const char* release = nullptr;
    TevReturnT result = table.getMomStringProperty(mom, DalOamSpiMrMomRelease, &release);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get mom release");
        return result;
    }
    if (release == nullptr) {
        SCHEMA_LOG_AS(populateFunction, LogNotice, "Skiping mom release since it is not available");
    } else {
        record.version.append(hasVersion ? "." : "").append(release);
    }
    const char* correction = nullptr;
    result = table.getMomStringProperty(mom, DalOamSpiMrMomCorrection, &correction);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get mom correction");
        correction = nullptr;
    }
    if (correction == nullptr) {
        SCHEMA_TRACE_AS(populateFunction, TraceDebug, "Skiping mom correction since it is not available");
    } else {
        record.version.append(release != nullptr ? "." : "").append(correction);
    }
    return TevReturnOk;
}

TevReturnT readFileName(const DalOamSpiModelRepositoryExtension_1& extension, const char* version, SchemaData& record) {
    const char* path = nullptr;
    const TevReturnT result = extension.getMomFileName(record.identifier.c_str(), version, &path);
    if (result != TevReturnOk) {
        SCHEMA_LOG_AS(populateFunction, LogError, "Could not get file name from model repository extension");
        return result;
    }
    record.completeFileName = textOf(path);
    const std::size_t slash = record.completeFileName.rfind('/');
    if (slash == std::string::npos || slash + 1 == record.completeFileName.size()) {
        SCHEMA_LOG_AS(populateFunction, LogError,
                      "Could not get file name from the absolute file name given by modelRepository");
        return TevReturnFailure;
    }
    record.fileName.assign(record.completeFileName, slash + 1);
    return TevReturnOk;
}

}  // namespace

SchemaPopulatorService::SchemaPopulatorService()
    : DalComponent(componentName),
      moImpl(catalogue()),
      transactionalResourceIf{{componentName, "DalOamSpiTransactionalResource", "2"},
                              _tevSchemaPopulator_join_if,
                              _tevSchemaPopulator_prepare_if,
                              _tevSchemaPopulator_commit_if,
                              _tevSchemaPopulator_abort_if,
                              _tevSchemaPopulator_finish_if,
                              _tevSchemaPopulator_validate_if},
      managedObjectIf{{componentName, "DalOamSpiManagedObject", "1"},
                      _tevSchemaPopulator_setMoAttribute_if,
                      _tevSchemaPopulator_getMoAttribute_if,
                      _tevSchemaPopulator_newMoIterator_if,
                      _tevSchemaPopulator_nextMo_if,
                      _tevSchemaPopulator_createMo_if,
                      _tevSchemaPopulator_deleteMo_if,
                      _tevSchemaPopulator_action_if} {
    interfaces.push_back(&transactionalResourceIf.base);
    interfaces.push_back(&managedObjectIf.base);
    dependencies.push_back(&modelRepositoryDependency);
    dependencies.push_back(&cmRouterDependency);
    dependencies.push_back(&threadContextInterface);
}

TevReturnT SchemaPopulatorService::initialize(const char* configuration) {
    SCHEMA_TRACE(TraceEntry, " >> ");
    if (configuration != nullptr) {
        try {
            config.load(configuration);
        } catch (const Tev::TevException& e) {
            SCHEMA_LOG(LogWarning, "Caught exception %s", e.what());
        }
    } else {
        SCHEMA_LOG(LogWarning, "Got zero pointer for configuration file using default values");
    }
    moImpl.setSftProgramDir(config.getSftpProgramDir());
    moImpl.setSftpTimeout(config.getSftpTimeout());
    std::string path;
    Tev::ProcessUtil::getComponentCfgPath(configurationFile, path);
    moImpl.setConfigPath(path);
    SCHEMA_TRACE(TraceExit, " << ");
    return TevReturnOk;
}

void SchemaPopulatorService::terminate() {
    SCHEMA_TRACE(TraceEntry, " >> ");
    SCHEMA_TRACE(TraceExit, " << ");
}

TevReturnT SchemaPopulatorService::start(DalStateChangeReason) {
    SCHEMA_TRACE(TraceEntry, " >> ***** Starting service *****");
    TevReturnT result = fetch(*portal, transactionInterface, transaction);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Could not get transaction service");
        return result;
    }
    DalMgmtSpiThreadContext_2* threadContext = nullptr;
    result = fetch(*portal, threadContextInterface, threadContext);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Could not get threadContext service");
        return result;
    }
    moImpl.setThreadContext(threadContext);
    DalOamSpiModelRepository_4* repository = nullptr;
    result = fetch(*portal, modelRepositoryInterface, repository);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Could not get model repository interface");
        return result;
    }
    DalOamSpiModelRepositoryExtension_1* extension = nullptr;
    result = fetch(*portal, repositoryExtensionInterface, extension);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Could not get model repository extension interface");
        return result;
    }
    result = initSchemaDataVector(*repository, *extension);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Could not initialize SchemaData vector");
        return result;
    }
    started = true;
    SCHEMA_TRACE(TraceExit, " << ");
    return TevReturnOk;
}

TevReturnT SchemaPopulatorService::stop(DalStateChangeReason) {
    SCHEMA_TRACE(TraceEntry, " >> ***** Stopping service *****");
    moImpl.setThreadContext(nullptr);
    moImpl.cleanup();
    started = false;
    SCHEMA_TRACE(TraceExit, " << ");
    return TevReturnOk;
}

TevReturnT SchemaPopulatorService::join(unsigned long txHandle) {
    if (transaction == nullptr) {
        SCHEMA_LOG(LogError, "transaction Service is not avaliable");
        return TevReturnFailure;
    }
    const TevReturnT result = transaction->registerParticipant(txHandle, &transactionalResourceIf);
    if (result != TevReturnOk) {
        SCHEMA_LOG(LogError, "Failed to registerParticipant");
    }
    return result;
}

SchemaMoImpl* SchemaPopulatorService::getSchemaMoImpl() {
    return &moImpl;
}

bool SchemaPopulatorService::isStarted() const {
    return started;
}

namespace {

/// Releases, when it goes, the options of a record that did not make it into the catalogue, unless the last record of
/// the catalogue has them too.
struct UnlistedOptions {
    const SchemaData& record;
    const char** const& listed;  ///< the options of the last record of the catalogue, as they are when this goes

    ~UnlistedOptions() {
        if (record.selectedModelOptions != listed) {
            SchemaData::releaseOptions(record.selectedModelOptions);
        }
    }
};

}  // namespace

TevReturnT SchemaPopulatorService::initSchemaDataVector(DalOamSpiModelRepository_4& repository,
                                                        DalOamSpiModelRepositoryExtension_1& extension) {
    // The option lists of an earlier catalogue are the business of the stop before this start.
    schemaData.clear();
    // Never added to: a model is listed also when its file name was seen before.
    const std::set<std::string> fileNames;
    // A model for which the repository gives no list of options keeps that of the model before it.
    const char** options = nullptr;
    const SchemaData fresh;
    // One for all models: its texts keep their memory, and only the copies in the catalogue need new.
    SchemaData record;
    DalOamSpiMrMomHandle_4T mom = 0;
    TevReturnT status = repository.root->getFirstMom(&mom);
    while (status == TevReturnOk) {
        record = fresh;
        record.selectedModelOptions = options;
        const UnlistedOptions unlistedOptions{record, options};
        const TevReturnT result = populateSchemaData(repository, extension, mom, record);
        if (result != TevReturnOk) {
            return result;
        }
        if (fileNames.find(record.completeFileName) == fileNames.end()) {
            SCHEMA_TRACE(TraceDebug, "Added schemaData file [%s]", record.getDebugString().c_str());
            schemaData.push_back(record);
            options = record.selectedModelOptions;
        } else {
            // GCOVR_EXCL_START: out of reach, since the set stays empty.
            SCHEMA_TRACE(TraceDebug, "File [%s] is already inserted.", record.completeFileName.c_str());
            // GCOVR_EXCL_STOP
        }
        status = repository.mom->getNextMom(mom, &mom);
    }
    return status == TevReturnNotFound ? TevReturnOk : status;
}

TevReturnT SchemaPopulatorService::populateSchemaData(DalOamSpiModelRepository_4& repository,
                                                      DalOamSpiModelRepositoryExtension_1& extension,
                                                      const DalOamSpiMrMomHandle_4T& mom, SchemaData& record) {
    DalOamSpiMrGeneralPropertiesHandle_4T properties = 0;
    const char* version = nullptr;
    TevReturnT result = readName(repository, mom, properties, record);
    if (result == TevReturnOk) {
        result = readBaseModelIdentifier(*repository.generalProperties, properties, record);
    }
    if (result == TevReturnOk) {
        result = readBaseModelVersion(*repository.generalProperties, properties, record);
    }
    if (result == TevReturnOk) {
        result = readVersion(*repository.mom, mom, version, record);
    }
    if (result == TevReturnOk) {
        result = readOptions(*repository.mom, mom, record);
    }
    if (result == TevReturnOk) {
        result = readReleaseAndCorrection(*repository.mom, mom, version != nullptr, record);
    }
    if (result == TevReturnOk) {
        result = readFileName(extension, version, record);
    }
    return result;
}

}  // namespace TevSchemaPopulator

namespace {

using TevSchemaPopulator::LogError;
using TevSchemaPopulator::LogNotice;
using TevSchemaPopulator::LogRefused;
using TevSchemaPopulator::sourceFile;

constexpr char notStarted[] = "SchemaPopulator is not started";

TevSchemaPopulator::SchemaPopulatorService& service() {
    return Tev::DalComponent<TevSchemaPopulator::SchemaPopulatorService>::instance();
}

TevSchemaPopulator::SchemaMoImpl& moImpl() {
    return *service().getSchemaMoImpl();
}

/// Whether a call has to be refused because the component is not started; says so under the entry point's name.
bool isRefused(const char* entryPoint) {
    if (service().isStarted()) {
        return false;
    }
    SCHEMA_LOG_AS(entryPoint, LogError, notStarted);
    return true;
}

}  // namespace

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    return service().registerComponent(accessor, configuration);
}

void dalLCMterminate() {
    service().unregisterComponent();
}

TevReturnT _tevSchemaPopulator_join_if(unsigned long txHandle) {
    if (isRefused(__func__)) {
        return TevReturnNotStarted;
    }
    return service().join(txHandle);
}

TevReturnT _tevSchemaPopulator_prepare_if(unsigned long) {
    return TevReturnOk;
}

TevReturnT _tevSchemaPopulator_commit_if(unsigned long) {
    return TevReturnOk;
}

TevReturnT _tevSchemaPopulator_abort_if(unsigned long) {
    return TevReturnOk;
}

TevReturnT _tevSchemaPopulator_finish_if(unsigned long txHandle) {
    if (!service().isStarted()) {
        // A transaction may outlive the component's stop, and its memory must go all the same.
        SCHEMA_LOG(LogNotice, notStarted);
    }
    return moImpl().finish(txHandle);
}

TevReturnT _tevSchemaPopulator_validate_if(unsigned long, bool* result) {
    *result = true;
    return TevReturnOk;
}

TevReturnT _tevSchemaPopulator_setMoAttribute_if(unsigned long, const char*, const char*,
                                                 DalMoAttributeValueContainer*) {
    return TevReturnFailure;
}

TevReturnT _tevSchemaPopulator_getMoAttribute_if(unsigned long txHandle, const char* dn, const char* attributeName,
                                                 DalMoAttributeValueContainer** result) {
    if (isRefused(__func__)) {
        return TevReturnNotStarted;
    }
    return moImpl().getMoAttribute(txHandle, dn, attributeName, result);
}

TevReturnT _tevSchemaPopulator_newMoIterator_if(unsigned long txHandle, const char* parentDn, const char* className,
                                                void** iterator) {
    if (isRefused(__func__)) {
        return TevReturnNotStarted;
    }
    return moImpl().newMoIterator(txHandle, parentDn, className, iterator);
}

TevReturnT _tevSchemaPopulator_nextMo_if(void* iterator, char** result) {
    if (isRefused(__func__)) {
        return TevReturnNotStarted;
    }
    return moImpl().nextMo(iterator, result);
}

TevReturnT _tevSchemaPopulator_createMo_if(unsigned long, const char*, const char*, const char*,
                                           DalMoAttributeValueContainer*) {
    SCHEMA_LOG(LogRefused, "Create is not supported on Schema since it is read only");
    return TevReturnFailure;
}

TevReturnT _tevSchemaPopulator_deleteMo_if(unsigned long, const char*) {
    SCHEMA_LOG(LogRefused, "Delete is not supported on Schema since it is read only");
    return TevReturnFailure;
}

TevReturnT _tevSchemaPopulator_action_if(unsigned long txHandle, const char* dn, const char* actionName,
                                         DalMoAttributeValueContainer** parameters,
                                         DalMoAttributeValueContainer** result) {
    if (isRefused(__func__)) {
        return TevReturnNotStarted;
    }
    return moImpl().action(txHandle, dn, actionName, parameters, result);
}

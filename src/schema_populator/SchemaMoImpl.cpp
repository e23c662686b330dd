#include "SchemaMoImpl.h"

#include <regex.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Log.h"
#include "RegularExpression.h"
#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr const char* sourceFile = "src/schema_populator/SchemaMoImpl";

constexpr int compileFlags = REG_EXTENDED | REG_NOSUB;
constexpr int matchFlags = 0;

bool isParentDn(const char* dn) {
    static const Tev::RegularExpression pattern("^ManagedElement=.*,SystemFunctions=.*,SysM=.*$", compileFlags);
    return pattern.match(dn, matchFlags) != 0;
}

/// Whether `dn` names a `Schema` instance.
bool isSchemaDn(const char* dn) {
    static const Tev::RegularExpression pattern("^ManagedElement=.*,SystemFunctions=.*,SysM=.*,Schema=.*",
                                                compileFlags);
    return pattern.match(dn, matchFlags) != 0;
}

/// The text after the last "=", or the whole DN without one.
std::string getSchemaIdFromDn(const char* dn) {
    const char* const equals = std::strrchr(dn, '=');
    return equals == nullptr ? dn : equals + 1;
}

/// What `%x` shows of a handle: the low 32 bits of its address, whatever the width of a pointer.
unsigned int shownHandle(const void* handle) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace

SchemaMoImpl::SchemaMoImpl(std::vector<SchemaData>& catalogue) : schemas(catalogue) {}

TevReturnT SchemaMoImpl::newMoIterator(unsigned long txHandle, const char* dn, const char* className, void** result) {
    if (dn == nullptr || className == nullptr || result == nullptr) {
        SCHEMA_LOG(LogError, "Invalid input arguments");
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    if (!isParentDn(dn)) {
        SCHEMA_LOG(LogError, "Dn is not valid  [%s]", dn);
        return TevReturnFailure;
    }
    if (std::strcmp(className, "Schema") != 0) {
        SCHEMA_LOG(LogError, "ClassName is not valid [%s]", className);
        return TevReturnFailure;
    }
    *result = transactionContextManager.getNewIteratorHandle(txHandle);
    SCHEMA_TRACE(TraceDebug, "txhandle [%lu], dn [%s], className [%s], result [%x]", txHandle, dn, className,
                 shownHandle(*result));
    return TevReturnOk;
}

TevReturnT SchemaMoImpl::nextMo(void* itHandle, char** result) {
    SCHEMA_TRACE(TraceDebug, "itHandle [%x]", shownHandle(itHandle));
    if (result == nullptr) {
        SCHEMA_LOG(LogError, "Invalid input argument");
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    TransactionContextManager::IteratorContext context;
    try {
        context = transactionContextManager.getNextIteratorContext(itHandle);
    } catch (const Tev::TevException& e) {
        SCHEMA_LOG(LogError, "Could not get next Mo: [%s]", e.what());
        return e.getReturnCode();
    }
    const auto [index, txHandle] = context;
    if (index >= schemas.size()) {
        SCHEMA_TRACE(TraceDebug, "No more schema instances index [%u]", index);
        return TevReturnOk;
    }
    const std::string schemaId = schemas[index].schemaId;
    char* const key = strdup(schemaId.c_str());
    if (key == nullptr) {
        SCHEMA_LOG(LogError, "Could not allocate memmory for next mo result");
        return TevReturnFailure;
    }
    transactionContextManager.addMemory(txHandle, key);
    *result = key;
    SCHEMA_TRACE(TraceDebug, "itHandle [%x] result [%s]", shownHandle(itHandle), *result);
    return TevReturnOk;
}

TevReturnT SchemaMoImpl::getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                        DalMoAttributeValueContainer** result) {
    if (dn == nullptr || attributeName == nullptr || result == nullptr) {
        SCHEMA_LOG(LogError, "Invalid input arguments");
        return TevReturnInvalidArgument;
    }
    SCHEMA_TRACE(TraceDebug, "txHandle %lu, dn [%s], attributeName [%s]", txHandle, dn, attributeName);
    *result = nullptr;
    if (!isSchemaDn(dn)) {
        SCHEMA_LOG(LogError, "Dn is not valid [%s]", dn);
        return TevReturnFailure;
    }
    const std::string schemaId = getSchemaIdFromDn(dn);
    const int index = findSchemaData(schemaId);
    if (index < 0) {
        SCHEMA_LOG(LogError, "Could not find schema for schemaId [%s] ", schemaId.c_str());
        return TevReturnNotFound;
    }
    try {
        *result = schemas[static_cast<std::size_t>(index)].getValue(attributeName, txHandle, transactionContextManager);
    } catch (const Tev::TevException& e) {
        SCHEMA_LOG(LogError, "Could not get Mo attribute: [%s]", e.what());
        return e.getReturnCode();
    }
    return TevReturnOk;
}

int SchemaMoImpl::findSchemaData(std::string schemaId) const {
    for (std::size_t index = 0; index < schemas.size(); ++index) {
        if (schemas[index].schemaId == schemaId) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

TevReturnT SchemaMoImpl::finish(unsigned long txHandle) {
    transactionContextManager.cleanup(txHandle);
    return TevReturnOk;
}

void SchemaMoImpl::cleanup() {
    // A model without a list of its own shares that of the model before it, so the sharers of a list stand together.
    for (std::size_t index = 0; index < schemas.size();) {
        const char** const options = schemas[index].selectedModelOptions;
        for (; index < schemas.size() && schemas[index].selectedModelOptions == options; ++index) {
            schemas[index].selectedModelOptions = nullptr;
        }
        SchemaData::releaseOptions(options);
    }
}

void SchemaMoImpl::setSftProgramDir(const std::string& programDir) {
    sftpProgramDir = programDir;
}

void SchemaMoImpl::setSftpTimeout(long timeout) {
    sftpTimeout = timeout;
}

void SchemaMoImpl::setThreadContext(DalMgmtSpiThreadContext_2* context) {
    threadContext = context;
}

void SchemaMoImpl::setConfigPath(const std::string& path) {
    configPath = path;
}

}  // namespace TevSchemaPopulator

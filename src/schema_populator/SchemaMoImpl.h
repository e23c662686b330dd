#ifndef SCHEMA_MO_IMPL_H
#define SCHEMA_MO_IMPL_H

#include <string>
#include <vector>

#include "DalMgmtSpiThreadContext.h"
#include "DalOamSpiManagedObject.h"
#include "SchemaData.h"
#include "TevReturnT.h"
#include "TransactionContextManager.h"

namespace TevSchemaPopulator {

/// Serves the managed-object class `Schema` from the catalogue: one instance for each record, in its order, named by
/// the record's `schemaId`.
///
/// The reads may be called from several threads at once. The setters and `cleanup` are called while no read is under
/// way, and the catalogue is changed only then. What a read hands out belongs to its transaction and is released by
/// `finish`; the caller never frees it.
class SchemaMoImpl {
public:
    /// `catalogue` is borrowed for the life of this object.
    explicit SchemaMoImpl(std::vector<SchemaData>& catalogue);
    ~SchemaMoImpl() = default;
    SchemaMoImpl(const SchemaMoImpl&) = delete;
    SchemaMoImpl& operator=(const SchemaMoImpl&) = delete;

    /// Begins a listing of the instances under `dn`, the DN of a SysM object. On success `*result` is the iterator's
    /// handle. Returns 0; -8 for a null argument; -1 for a DN or class that is not this one's, with a null `*result`.
    TevReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className, void** result);

    /// Gives the next instance's key, or null at the end of the listing. Returns 0; -8 for a null `result`; -1 for an
    /// unknown iterator or when memory runs out, with a null `*result`. One iterator is used by one thread at a time.
    TevReturnT nextMo(void* itHandle, char** result);

    /// Reads an attribute of the instance `dn`. Returns 0; -8 for a null argument; -1 for a DN that is not of the
    /// class; -2 when there is no such instance or attribute; -10 when memory runs out. `*result` is null unless 0.
    TevReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                              DalMoAttributeValueContainer** result);

    /// The catalogue index of the first record with this `schemaId`, or -1.
    int findSchemaData(std::string schemaId) const;

    /// Ends a transaction: releases its memory and its iterators. Returns 0.
    TevReturnT finish(unsigned long txHandle);

    /// Releases the option lists of all records; doing it again does no harm.
    void cleanup();

    void setSftProgramDir(const std::string& programDir);

    /// `timeout` as `SchemaConfiguration::getSftpTimeout` gives it.
    void setSftpTimeout(long timeout);

    /// `context` is borrowed until it is set again; null when there is none.
    void setThreadContext(DalMgmtSpiThreadContext_2* context);

    /// The full path of the component's configuration file, empty when there is none.
    void setConfigPath(const std::string& path);

private:
    std::string sftpProgramDir;
    long sftpTimeout = 0;
    DalMgmtSpiThreadContext_2* threadContext = nullptr;
    TransactionContextManager transactionContextManager;
    std::vector<SchemaData>& schemas;
    std::string configPath;
};

}  // namespace TevSchemaPopulator

#endif

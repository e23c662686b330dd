#ifndef SCHEMA_MO_IMPL_H
#define SCHEMA_MO_IMPL_H

#include <string>
#include <vector>

#include "DalMgmtSpiThreadContext.h"
#include "DalOamSpiManagedObject.h"
#include "SchemaData.h"
#include "SftpWrapper.h"
#include "TevReturnT.h"
#include "TransactionContextManager.h"

namespace TevSchemaPopulator {

/// Serves the managed-object class `Schema` from the catalogue: one instance for each record, in its order, named by
/// the record's `schemaId`, whose model file the action "export" sends elsewhere.
///
/// The reads and `action` may be called from several threads at once. The setters and `cleanup` are called while none
/// of them is under way, and the catalogue is changed only then. What they hand out belongs to its transaction and is
/// released by `finish`; the caller never frees it.
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

    /// Carries out "export" on the instance `dn`: sends its model file to the sftp URI of the first parameter, with the
    /// password of the second, while the caller waits, and tells the operator how it went. On success `*result` is a
    /// value of type void.
    ///
    /// Returns 0; -8 for a DN, name or parameters that do not fit; -2 when there is no such instance; -1 when its file
    /// is gone or the URI is not understood; -8 for a null `result`, before anything is sent; the code of a failed
    /// transfer; -10 when memory for the result runs out, the file having been sent. `*result` is left as it is unless
    /// 0 or -10. What is thrown by the transfer, the thread context or the reading of other managed objects comes out,
    /// and so does std::bad_alloc.
    TevReturnT action(unsigned long txHandle, const char* dn, const char* actionName,
                      DalMoAttributeValueContainer** params, DalMoAttributeValueContainer** result);

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
    /// Returns 0 when the action may proceed, else -8.
    TevReturnT validateActionArguments(const char* dn, const char* actionName,
                                       DalMoAttributeValueContainer** params) const;

    /// The rest of `action`, once the parameters are valid and the file is known to be there.
    TevReturnT exportFile(unsigned long txHandle, const std::string& fileName, DalMoAttributeValueContainer** params,
                          DalMoAttributeValueContainer** result);

    /// Takes valid parameters apart. Returns 0, or -1 for a URI that is not understood, which the operator is told.
    TevReturnT processActionParameters(DalMoAttributeValueContainer** params, std::string& user, std::string& password,
                                       std::string& host, std::string& port, std::string& path) const;

    /// Puts `host` in brackets when its first address is one of IPv6.
    static void makeHostIPV6CompatiableIfHostIsIPV6(std::string& host);

    /// The DSCP value of bulk traffic; 0 when it cannot be read.
    static unsigned char getOamBulkDscpValue(unsigned long txHandle);

    /// The algorithms that security management has selected, joined with commas; empty where they cannot be read.
    static void fetchCipherAttrValues(unsigned long txHandle, std::string& ciphers, std::string& kex,
                                      std::string& macs);

    /// Whether the configuration file, as it is now, holds the debug element.
    bool isDebugModeSet() const;

    TevReturnT setVoidActionResult(unsigned long txHandle, DalMoAttributeValueContainer** result);

    /// Posts a message for the operator who caused the current call.
    void addThreadContextMessage(const std::string& message) const;

    static std::string getOkMsg();
    static std::string getInternalErrorMsg();
    static std::string getFailedToParseUriErrorMsg();
    static std::string getInvalidUriSchemaErrorMsg(const std::string& scheme);
    static std::string getSftpWrapperErrorMsg(const Tev::SftpWrapper& sftp);

    std::string sftpProgramDir;
    long sftpTimeout = 0;
    DalMgmtSpiThreadContext_2* threadContext = nullptr;
    TransactionContextManager transactionContextManager;
    std::vector<SchemaData>& schemas;
    std::string configPath;
};

}  // namespace TevSchemaPopulator

#endif

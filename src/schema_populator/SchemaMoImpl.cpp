#include "SchemaMoImpl.h"

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/String.h>
#include <Poco/URI.h>
#include <netdb.h>
#include <regex.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "Log.h"
#include "MoAccessor.h"
#include "RegularExpression.h"
#include "TevConfiguration.h"
#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr const char* sourceFile = "src/schema_populator/SchemaMoImpl";

constexpr int compileFlags = REG_EXTENDED | REG_NOSUB;
constexpr int matchFlags = 0;

constexpr std::int32_t operatorMessage = 1;  // the category of what is posted to the thread context

// How other managed objects are read: the arguments of the framework's accessor.
constexpr bool accessorFlag = true;
constexpr TevLockPolicyT lockPolicy = 1;
constexpr int accessorLimit = 60;

// Made once, when the library is loaded.
const std::string transportPath = "ManagedElement,Transport";
const std::string oamBulkRdn = "ServiceCategory=OamBulk";
const std::string dscpAttribute = "dscp";
const std::string sshPath = "ManagedElement,SystemFunctions,SecM,Ssh";
const std::string ciphersAttribute = "selectedCiphers";
const std::string keyExchangesAttribute = "selectedKeyExchanges";
const std::string macsAttribute = "selectedMacs";

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

/// What the log shows of a text that the caller may have left out.
const char* shownText(const char* text) {
    return text == nullptr ? "(null)" : text;
}

bool isOneString(const DalMoAttributeValueContainer& parameter) {
    return parameter.type == DalMoTypeString && parameter.nrOfValues == 1 && parameter.values != nullptr &&
           parameter.values[0].theString != nullptr;
}

/// What `getaddrinfo` gives; released with the object.
struct AddressList {
    addrinfo* first = nullptr;

    AddressList() = default;
    ~AddressList() { freeaddrinfo(first); }
    AddressList(const AddressList&) = delete;
    AddressList& operator=(const AddressList&) = delete;
};

/// What follows are the steps of this function, and what they log bears its name.
constexpr const char* fetchFunction = "fetchCipherAttrValues";

/// Empty when there is none.
std::string findSshDn(const Tev::MoAccessor& accessor) {
    std::string dn;
    try {
        accessor.getFirstMoInstance(sshPath, dn);
    } catch (...) {
        SCHEMA_LOG_AS(fetchFunction, LogWarning, "Could not find instance of classpath : %s", sshPath.c_str());
    }
    return dn;
}

/// The attribute's values, joined with commas; empty when they cannot be read.
std::string readSelected(const Tev::MoAccessor& accessor, const std::string& dn, const std::string& attribute) {
    std::vector<std::string> values;
    try {
        values = accessor.getSeqAttr<std::string>(dn, attribute);
    } catch (...) {
        SCHEMA_LOG_AS(fetchFunction, LogWarning, "Unable to get selected(%s) for DN(%s)", attribute.c_str(),
                      dn.c_str());
    }
    std::string joined;
    if (!values.empty()) {
        for (const std::string& value : values) {
            joined.append(value).append(",");
        }
        joined.pop_back();
        SCHEMA_TRACE_AS(fetchFunction, TraceDebug, "Selected(%s) attribute value is %s", attribute.c_str(),
                        joined.c_str());
    }
    return joined;
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

TevReturnT SchemaMoImpl::action(unsigned long txHandle, const char* dn, const char* actionName,
                                DalMoAttributeValueContainer** params, DalMoAttributeValueContainer** result) {
    const TevReturnT code = validateActionArguments(dn, actionName, params);
    if (code != TevReturnOk) {
        return code;
    }
    const std::string schemaId = getSchemaIdFromDn(dn);
    const int index = findSchemaData(schemaId);
    if (index < 0) {
        SCHEMA_LOG(LogError, "Could not find schema for schemaId [%s] ", schemaId.c_str());
        addThreadContextMessage(getInternalErrorMsg());
        return TevReturnNotFound;
    }
    const std::string fileName = schemas[static_cast<std::size_t>(index)].completeFileName;
    if (!Poco::File(fileName).exists()) {
        SCHEMA_LOG(LogError, "Fragment file does not exist: %s", fileName.c_str());
        addThreadContextMessage(getInternalErrorMsg());
        return TevReturnFailure;
    }
    return exportFile(txHandle, fileName, params, result);
}

TevReturnT SchemaMoImpl::exportFile(unsigned long txHandle, const std::string& fileName,
                                    DalMoAttributeValueContainer** params, DalMoAttributeValueContainer** result) {
    std::string user;
    std::string password;
    std::string host;
    std::string port;
    std::string path;
    TevReturnT code = processActionParameters(params, user, password, host, port, path);
    if (code != TevReturnOk) {
        return code;
    }
    if (result == nullptr) {
        SCHEMA_LOG_AS("action", LogError, "Invalid input arguments");
        return TevReturnInvalidArgument;
    }
    const unsigned char dscp = getOamBulkDscpValue(txHandle);
    std::string ciphers;
    std::string kex;
    std::string macs;
    fetchCipherAttrValues(txHandle, ciphers, kex, macs);
    const bool debug = isDebugModeSet();
    Tev::SftpWrapper sftp(sftpProgramDir + "sftp", user, password, host, port, Tev::SftpWrapper::Upload, fileName, path,
                          debug, ciphers, kex, macs, sftpTimeout, dscp);
    code = sftp.execute();
    if (code != TevReturnOk) {
        addThreadContextMessage(getSftpWrapperErrorMsg(sftp));
        return code;
    }
    // The operator hears of the transfer, also when there is no memory left for the result.
    addThreadContextMessage(getOkMsg());
    return setVoidActionResult(txHandle, result);
}

TevReturnT SchemaMoImpl::validateActionArguments(const char* dn, const char* actionName,
                                                 DalMoAttributeValueContainer** params) const {
    if (dn == nullptr || !isSchemaDn(dn)) {
        SCHEMA_LOG(LogError, "Dn is not valid [%s]", shownText(dn));
    } else if (actionName == nullptr || std::strcmp(actionName, "export") != 0) {
        SCHEMA_LOG(LogError, "Wrong action name [%s]", shownText(actionName));
    } else if (params == nullptr) {
        SCHEMA_LOG(LogError, "Parameters array is NULL");
    } else if (params[0] == nullptr || params[1] == nullptr || params[2] != nullptr) {
        SCHEMA_LOG(LogError, "Wrong number of parameters to action");
    } else if (!isOneString(*params[0])) {
        SCHEMA_LOG(LogError, "Wrong type or number of values in the first argument");
    } else if (!isOneString(*params[1])) {
        SCHEMA_LOG(LogError, "Wrong type or number of values in the second argument");
        addThreadContextMessage("sftp requires password");
    } else {
        return TevReturnOk;
    }
    return TevReturnInvalidArgument;
}

TevReturnT SchemaMoImpl::processActionParameters(DalMoAttributeValueContainer** params, std::string& user,
                                                 std::string& password, std::string& host, std::string& port,
                                                 std::string& path) const {
    password = params[1]->values[0].theString;
    Poco::URI uri;
    try {
        uri = std::string(params[0]->values[0].theString);
    } catch (const Poco::SyntaxException& e) {
        SCHEMA_LOG(LogError, "Got syntax exeption %s", e.what());
        addThreadContextMessage(getFailedToParseUriErrorMsg());
        return TevReturnFailure;
    }
    const std::string& scheme = uri.getScheme();
    if (Poco::icompare(scheme, "sftp") != 0) {
        SCHEMA_LOG(LogError, "Unsupported scheme %s", scheme.c_str());
        addThreadContextMessage(getInvalidUriSchemaErrorMsg(scheme));
        return TevReturnFailure;
    }
    user = uri.getUserInfo();
    host = uri.getHost();
    makeHostIPV6CompatiableIfHostIsIPV6(host);
    path = uri.getPath();
    port = std::to_string(uri.getPort());
    return TevReturnOk;
}

void SchemaMoImpl::makeHostIPV6CompatiableIfHostIsIPV6(std::string& host) {
    const addrinfo hints{};
    AddressList addresses;
    const int error = getaddrinfo(host.c_str(), nullptr, &hints, &addresses.first);
    if (error != 0) {
        SCHEMA_LOG(LogWarning, "Error in getaddrinfo: %s, could not resolve host %s", gai_strerror(error),
                   host.c_str());
    } else if (addresses.first->ai_family == AF_INET6) {
        host = "[" + host + "]";
    }
}

unsigned char SchemaMoImpl::getOamBulkDscpValue(unsigned long txHandle) {
    SCHEMA_TRACE_TO(Tev::Trace::Common, __func__, TraceEntry, " >> ");
    unsigned char dscp = 0;
    try {
        Tev::MoAccessor accessor(accessorFlag, lockPolicy, accessorLimit);
        accessor.useTransaction(txHandle);
        std::string dn;
        accessor.getFirstMoInstance(transportPath, dn);
        dscp = accessor.getAttr<unsigned char>(dn + "," + oamBulkRdn, dscpAttribute);
    } catch (const Tev::TevException& e) {
        SCHEMA_TRACE_TO(Tev::Trace::Common, __func__, TraceDebug, "Could not retrieve DSCP value, reason %s", e.what());
    }
    SCHEMA_TRACE_TO(Tev::Trace::Common, __func__, TraceExit, " << Returning DSCP value %d", dscp);
    return dscp;
}

void SchemaMoImpl::fetchCipherAttrValues(unsigned long txHandle, std::string& ciphers, std::string& kex,
                                         std::string& macs) {
    ciphers.clear();
    kex.clear();
    macs.clear();
    Tev::MoAccessor accessor(accessorFlag, lockPolicy, accessorLimit);
    accessor.useTransaction(txHandle);
    const std::string dn = findSshDn(accessor);
    if (dn.empty()) {
        SCHEMA_TRACE(TraceDebug, "Ssh MOC does not exit");
        return;
    }
    ciphers = readSelected(accessor, dn, ciphersAttribute);
    kex = readSelected(accessor, dn, keyExchangesAttribute);
    macs = readSelected(accessor, dn, macsAttribute);
}

bool SchemaMoImpl::isDebugModeSet() const {
    if (configPath.empty()) {
        SCHEMA_LOG(LogWarning, "Got zero pointer for configuration file,setting sftp debug mode to false ");
        return false;
    }
    try {
        Tev::TevConfiguration configuration;
        configuration.load(configPath);
        const auto components = configuration.getElementsByTagName("TevSchemaMoService");
        const auto switches = configuration.getElementsByTagName("isSftpDebugMode");
        // That the element is there is what counts, whatever its text.
        return components->length() == 1 && switches->length() > 0;
    } catch (const std::exception& e) {
        SCHEMA_LOG(LogWarning, "Caught exception %s. Setting sftp debug mode to false", e.what());
    } catch (...) {
        SCHEMA_LOG(LogWarning, "Caught exception. Setting sftp debug mode to false");
    }
    return false;
}

TevReturnT SchemaMoImpl::setVoidActionResult(unsigned long txHandle, DalMoAttributeValueContainer** result) {
    auto* const container = static_cast<DalMoAttributeValueContainer*>(std::malloc(sizeof **result));
    if (container == nullptr) {
        *result = nullptr;
        SCHEMA_LOG(LogError, "Can not allocate memory for attributeValueContainer");
        return TevReturnNoMemory;
    }
    transactionContextManager.addMemory(txHandle, container);
    *container = {DalMoTypeVoid, 0, nullptr};
    *result = container;
    return TevReturnOk;
}

void SchemaMoImpl::addThreadContextMessage(const std::string& message) const {
    if (threadContext == nullptr) {
        SCHEMA_LOG(LogError, "ThreadContext is null but SchemaMoService is started.");
    } else if (threadContext->addMessage(operatorMessage, message.c_str()) != TevReturnOk) {
        SCHEMA_LOG(LogWarning, "Failed to add message to thread context message [%s]", message.c_str());
    }
}

std::string SchemaMoImpl::getOkMsg() {
    return "File transfer successful";
}

std::string SchemaMoImpl::getInternalErrorMsg() {
    return "Internal error";
}

std::string SchemaMoImpl::getFailedToParseUriErrorMsg() {
    return "The URI in the export action could not be parsed";
}

std::string SchemaMoImpl::getInvalidUriSchemaErrorMsg(const std::string& scheme) {
    return "Unsupported URI schema: " + scheme +
           ". Only SFTP protocol is supported with URI schema: sftp://[<user>@]<host>[:<port>]/<path>";
}

std::string SchemaMoImpl::getSftpWrapperErrorMsg(const Tev::SftpWrapper& sftp) {
    return "SFTP error: " + sftp.getErrorMessage();
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

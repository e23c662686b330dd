#ifndef CONTRACT_TEST_H
#define CONTRACT_TEST_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Component.h"
#include "FakeHost.h"
#include "LogCapture.h"

namespace TevTest {

/// An attribute's values as read through the tables: nothing when the container has none.
using Values = std::vector<std::string>;

/// A host of fakes with the component registered in it, not yet started. At the end the component is stopped and taken
/// off the portal, and its library released.
class ContractTest : public testing::Test {
protected:
    static constexpr const char* parentDn = "ManagedElement=1,SystemFunctions=1,SysM=1";
    static constexpr const char* serviceFile = "src/schema_populator/SchemaPopulatorService";
    static constexpr const char* moImplFile = "src/schema_populator/SchemaMoImpl";
    static constexpr const char* configurationFile = "src/schema_populator/SchemaConfiguration";
    static constexpr const char* transactionsFile = "src/schema_populator/TransactionContextManager";

    ContractTest();
    ~ContractTest() override;

    /// Calls `dalLCMinit`; done once at construction with a null configuration.
    TevReturnT init(const char* configuration = nullptr);

    TevReturnT start();
    TevReturnT stop();

    /// Starts the component over these models and fails the test if it does not start. Records and calls so far are
    /// cleared.
    void startWith(std::vector<FakeModel> models);

    /// Clears the records and calls so far.
    void forget();

    DalOamSpiTransactionalResource_2& resource() const;
    DalOamSpiManagedObject_1& objects() const;

    /// A transaction that the component has joined; it is finished at the end of the test unless `finish` was called.
    unsigned long begin();
    void finish(unsigned long txHandle);

    static std::string dnOf(const std::string& schemaId) { return std::string(parentDn) + ",Schema=" + schemaId; }

    /// The keys that a new iterator under `parentDn` gives, up to the end of the listing.
    std::vector<std::string> list(unsigned long txHandle);

    /// The values of an attribute; fails the test when it cannot be read or is not a container of strings.
    Values read(unsigned long txHandle, const std::string& schemaId, const char* attributeName);

    /// A new iterator under this DN; fails the test when there is none.
    void* newIterator(unsigned long txHandle, const std::string& dn = parentDn);

    /// Checks that getMoAttribute fails with `code` and this text, gives no value, and that nothing is kept.
    void expectNoValue(const std::string& dn, const std::string& attributeName, TevReturnT code,
                       const std::string& text);

    /// A handle as the log shows it: the low 32 bits.
    static std::string shownHandle(const void* handle);

    /// How control characters are shown.
    static std::string escaped(std::string text);

    /// What a start logs first, and last when it succeeds.
    static Records startEntry();
    static Records startExit();

    /// What a read of an attribute logs first.
    static Records readTrace(unsigned long txHandle, const std::string& dn, const std::string& attributeName);

    /// What a finish logs of a transaction for which the component holds nothing.
    static Records nothingHeld(unsigned long txHandle);

    /// The calls with which a start fetches its four interfaces.
    static const Values fetchCalls;

    FakeHost host;
    std::unique_ptr<Component> component;
    LogCapture log;

private:
    std::vector<unsigned long> openTransactions;
    unsigned long lastTransaction = 0;
};

}  // namespace TevTest

#endif

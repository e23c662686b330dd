#include "ContractTest.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

namespace TevTest {

using testing::ElementsAreArray;

const Values ContractTest::fetchCalls = {
    "getInterface DalOamSpiTransactionService,DalOamSpiTransaction,2",
    "getInterface DalMgmtSpiThreadContextService,DalMgmtSpiThreadContext,2",
    "getInterface DalOamSpiModelRepositoryService,DalOamSpiModelRepository,4",
    "getInterface DalOamSpiModelRepositoryService,DalOamSpiModelRepositoryExtension,1"};

ContractTest::ContractTest() : component(Component::get()) {
    init();
}

ContractTest::~ContractTest() {
    if (host.component() != nullptr) {
        while (!openTransactions.empty()) {
            finish(openTransactions.back());
        }
        stop();
    }
    component->terminate();
}

TevReturnT ContractTest::init(const char* configuration) {
    return component->init(host.accessor(), configuration);
}

TevReturnT ContractTest::start() {
    return host.component()->start(DalStateChangeReasonUnspecified);
}

TevReturnT ContractTest::stop() {
    return host.component()->stop(DalStateChangeReasonUnspecified);
}

void ContractTest::startWith(std::vector<FakeModel> models) {
    host.models = std::move(models);
    ASSERT_EQ(start(), 0);
    forget();
}

void ContractTest::forget() {
    log.clear();
    host.clearCalls();
}

DalOamSpiTransactionalResource_2& ContractTest::resource() const {
    return *host.offered<DalOamSpiTransactionalResource_2>("DalOamSpiTransactionalResource");
}

DalOamSpiManagedObject_1& ContractTest::objects() const {
    return *host.offered<DalOamSpiManagedObject_1>("DalOamSpiManagedObject");
}

unsigned long ContractTest::begin() {
    const unsigned long txHandle = ++lastTransaction;
    EXPECT_EQ(resource().join(txHandle), 0);
    openTransactions.push_back(txHandle);
    return txHandle;
}

void ContractTest::finish(unsigned long txHandle) {
    EXPECT_EQ(resource().finish(txHandle), 0);
    openTransactions.erase(std::remove(openTransactions.begin(), openTransactions.end(), txHandle),
                           openTransactions.end());
}

std::vector<std::string> ContractTest::list(unsigned long txHandle) {
    void* iterator = nullptr;
    EXPECT_EQ(objects().newMoIterator(txHandle, parentDn, "Schema", &iterator), 0);
    std::vector<std::string> keys;
    char* key = nullptr;
    while (objects().nextMo(iterator, &key) == 0 && key != nullptr) {
        keys.emplace_back(key);
    }
    return keys;
}

Values ContractTest::read(unsigned long txHandle, const std::string& schemaId, const char* attributeName) {
    DalMoAttributeValueContainer* container = nullptr;
    EXPECT_EQ(objects().getMoAttribute(txHandle, dnOf(schemaId).c_str(), attributeName, &container), 0);
    Values values;
    if (container == nullptr) {
        ADD_FAILURE() << "no container for " << attributeName;
        return values;
    }
    EXPECT_EQ(container->type, DalMoTypeString);
    for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
        values.emplace_back(container->values[i].theString);
    }
    return values;
}

void* ContractTest::newIterator(unsigned long txHandle, const std::string& dn) {
    void* iterator = nullptr;
    EXPECT_EQ(objects().newMoIterator(txHandle, dn.c_str(), "Schema", &iterator), 0);
    EXPECT_NE(iterator, nullptr);
    return iterator;
}

void ContractTest::expectNoValue(const std::string& dn, const std::string& attributeName, TevReturnT code,
                                 const std::string& text) {
    SCOPED_TRACE(dn);
    SCOPED_TRACE(attributeName);
    const unsigned long txHandle = begin();
    log.clear();
    DalMoAttributeValueContainer unset{};
    DalMoAttributeValueContainer* value = &unset;
    EXPECT_EQ(objects().getMoAttribute(txHandle, dn.c_str(), attributeName.c_str(), &value), code);
    EXPECT_EQ(value, nullptr);
    finish(txHandle);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({readTrace(txHandle, dn, attributeName),
                                                         message(3, moImplFile, "getMoAttribute", escaped(text)),
                                                         nothingHeld(txHandle)})));
}

std::string ContractTest::shownHandle(const void* handle) {
    std::ostringstream text;
    text << '[' << std::hex << static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle)) << ']';
    return text.str();
}

std::string ContractTest::escaped(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
        text.replace(at, 1, "\\n");
    }
    return text;
}

Records ContractTest::startEntry() {
    return debugTrace(9, serviceFile, "start", " >> ***** Starting service *****");
}

Records ContractTest::startExit() {
    return debugTrace(10, serviceFile, "start", " << ");
}

Records ContractTest::readTrace(unsigned long txHandle, const std::string& dn, const std::string& attributeName) {
    return debugTrace(
        0, moImplFile, "getMoAttribute",
        escaped("txHandle " + std::to_string(txHandle) + ", dn [" + dn + "], attributeName [" + attributeName + "]"));
}

Records ContractTest::nothingHeld(unsigned long txHandle) {
    return debugTrace(0, transactionsFile, "cleanup",
                      "Could not find transaction context [" + std::to_string(txHandle) + "] to clean up");
}

}  // namespace TevTest

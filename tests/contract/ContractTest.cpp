#include "ContractTest.h"

#include <algorithm>

namespace TevTest {

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

}  // namespace TevTest

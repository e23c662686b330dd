#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ContractTest.h"

namespace TevTest {

namespace {

using testing::IsEmpty;

constexpr unsigned int readers = 8;
constexpr unsigned long transactionsEach = 1000;
constexpr unsigned long unopenedHandles = 1000000;  // above every handle that a reader uses

struct Instance {
    FakeModel model;
    std::vector<std::pair<const char*, Values>> attributes;
};

/// Models that differ in every attribute, with and without options.
const std::vector<Instance>& instances() {
    static const std::vector<Instance> instances = {
        {{"A", "1", "2", "3", {}, {}, {}},
         {{"schemaId", {"A"}},
          {"identifier", {"A"}},
          {"baseModelIdentifier", {}},
          {"version", {"1.2.3"}},
          {"baseModelVersion", {}},
          {"selectedModelOptions", {}}}},
        {{"B",
          "4",
          "5",
          {},
          {{"orvaMomName", "BaseB"}, {"orvaMomVersion", "6"}, {"orvaMomRelease", "7"}},
          std::vector<std::string>{"f", "g", "h"},
          {}},
         {{"schemaId", {"B"}},
          {"identifier", {"B"}},
          {"baseModelIdentifier", {"BaseB"}},
          {"version", {"4.5"}},
          {"baseModelVersion", {"6.7"}},
          {"selectedModelOptions", {"f", "g", "h"}}}},
        {{"C", {}, {}, {}, {{"orvaMomName", "BaseC"}}, std::vector<std::string>(), {}},
         {{"schemaId", {"C"}},
          {"identifier", {"C"}},
          {"baseModelIdentifier", {"BaseC"}},
          {"version", {""}},
          {"baseModelVersion", {}},
          {"selectedModelOptions", {}}}}};
    return instances;
}

std::vector<FakeModel> models() {
    std::vector<FakeModel> models;
    for (const Instance& instance : instances()) {
        models.push_back(instance.model);
    }
    return models;
}

bool holds(const DalMoAttributeValueContainer& container, const Values& values) {
    if (container.type != DalMoTypeString || container.nrOfValues != values.size()) {
        return false;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (container.values[i].theString != values[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

class ConcurrencyContractTest : public ContractTest {
protected:
    /// Everything that one transaction does; returns what went wrong first, or an empty text.
    std::string runTransaction(unsigned long txHandle) {
        if (transactional->join(txHandle) != 0) {
            return "join";
        }
        void* iterator = nullptr;
        if (managed->newMoIterator(txHandle, parentDn, "Schema", &iterator) != 0) {
            return "newMoIterator";
        }
        for (const Instance& instance : instances()) {
            char* key = nullptr;
            if (managed->nextMo(iterator, &key) != 0 || key == nullptr || key != instance.model.name) {
                return "nextMo before " + instance.model.name;
            }
            const std::string dn = dnOf(key);
            for (const auto& [name, values] : instance.attributes) {
                DalMoAttributeValueContainer* container = nullptr;
                if (managed->getMoAttribute(txHandle, dn.c_str(), name, &container) != 0 ||
                    !holds(*container, values)) {
                    return dn + " " + name;
                }
            }
        }
        char* key = nullptr;
        if (managed->nextMo(iterator, &key) != 0 || key != nullptr) {
            return "end of the listing";
        }
        return transactional->finish(txHandle) == 0 ? "" : "finish";
    }

    /// Transactions `first` and after it, one after the other; returns what went wrong in the first that failed.
    std::string runTransactions(unsigned long first) {
        for (unsigned long txHandle = first; txHandle < first + transactionsEach; ++txHandle) {
            if (const std::string failure = runTransaction(txHandle); !failure.empty()) {
                std::ostringstream text;
                text << "transaction " << txHandle << ": " << failure;
                return text.str();
            }
        }
        return "";
    }

    DalOamSpiTransactionalResource_2* transactional = nullptr;
    DalOamSpiManagedObject_1* managed = nullptr;
};

TEST_F(ConcurrencyContractTest, transactionsOfEightThreadsDoNotDisturbEachOther) {
    startWith(models());
    transactional = &resource();
    managed = &objects();
    const LogCapture errors(3);
    std::vector<std::string> failures(readers);
    std::vector<std::thread> threads;
    std::atomic<unsigned int> waiting = readers;
    for (unsigned int reader = 0; reader < readers; ++reader) {
        threads.emplace_back([this, reader, &waiting, &failures] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            failures[reader] = runTransactions(1 + reader * transactionsEach);
        });
    }
    std::atomic<bool> done = false;
    unsigned long finished = 0;
    unsigned long refused = 0;
    std::thread finisher([this, &done, &finished, &refused] {
        for (; !done || finished == 0; ++finished) {
            refused += transactional->finish(unopenedHandles + finished) == 0 ? 0U : 1U;
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    done = true;
    finisher.join();
    EXPECT_EQ(failures, std::vector<std::string>(readers));
    EXPECT_GT(finished, 0U);
    EXPECT_EQ(refused, 0U);
    EXPECT_THAT(errors.records(), IsEmpty());
    EXPECT_EQ(host.calls().size(), readers * transactionsEach);
}

}  // namespace TevTest

#include "SchemaMoImpl.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "MemoryWatch.h"
#include "OptionList.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using TevSchemaPopulator::SchemaData;
using TevSchemaPopulator::SchemaMoImpl;

constexpr const char* sourceFile = "src/schema_populator/SchemaMoImpl";
constexpr const char* parentDn = "ManagedElement=1,SystemFunctions=1,SysM=1";
constexpr unsigned long txHandle = 7;

/// A provider over a catalogue that the test fills.
class SchemaMoImplTest : public testing::Test {
protected:
    void add(const std::string& schemaId, const char** options = nullptr) {
        SchemaData record;
        record.schemaId = schemaId;
        record.selectedModelOptions = options;
        catalogue.push_back(record);
    }

    void* newIterator(unsigned long transaction = txHandle) {
        void* iterator = nullptr;
        EXPECT_EQ(moImpl.newMoIterator(transaction, parentDn, "Schema", &iterator), 0);
        return iterator;
    }

    std::vector<void*> releasedByCleanup() {
        MemoryWatch watch;
        moImpl.cleanup();
        return watch.released();
    }

    std::vector<void*> releasedByFinish(unsigned long transaction = txHandle) {
        MemoryWatch watch;
        EXPECT_EQ(moImpl.finish(transaction), 0);
        return watch.released();
    }

    static std::string dnOf(const std::string& schemaId) { return std::string(parentDn) + ",Schema=" + schemaId; }

    std::vector<SchemaData> catalogue;
    SchemaMoImpl moImpl{catalogue};
};

std::vector<void*> joined(const std::vector<void*>& first, const std::vector<void*>& second) {
    std::vector<void*> all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

TEST_F(SchemaMoImplTest, findsTheFirstRecordWithAnId) {
    add("a");
    add("b");
    add("b");
    EXPECT_EQ(moImpl.findSchemaData("a"), 0);
    EXPECT_EQ(moImpl.findSchemaData("b"), 1);
}

TEST_F(SchemaMoImplTest, findsNothingForAnotherId) {
    EXPECT_EQ(moImpl.findSchemaData("a"), -1);
    EXPECT_EQ(moImpl.findSchemaData(""), -1);
    add("a");
    EXPECT_EQ(moImpl.findSchemaData("A"), -1);
    EXPECT_EQ(moImpl.findSchemaData("aa"), -1);
    EXPECT_EQ(moImpl.findSchemaData(""), -1);
}

TEST_F(SchemaMoImplTest, idsAreEqualWhenLengthAndAllBytesAre) {
    add(std::string("a\0b", 3));
    add("a");
    add("");
    EXPECT_EQ(moImpl.findSchemaData(std::string("a\0b", 3)), 0);
    EXPECT_EQ(moImpl.findSchemaData("a"), 1);
    EXPECT_EQ(moImpl.findSchemaData(""), 2);
    EXPECT_EQ(moImpl.findSchemaData(std::string("a\0c", 3)), -1);
    EXPECT_EQ(moImpl.findSchemaData(std::string("a\0", 2)), -1);
}

TEST_F(SchemaMoImplTest, cleanupReleasesEveryListInTheOrderOfTheRecords) {
    const char** const first = makeOptionList({"one", "two"});
    const char** const second = makeOptionList({});
    const char** const third = makeOptionList({"three"});
    add("a", first);
    add("b", second);
    add("c", third);
    const std::vector<void*> blocks = joined(joined(blocksOf(first), blocksOf(second)), blocksOf(third));
    EXPECT_THAT(releasedByCleanup(), ElementsAreArray(blocks));
}

TEST_F(SchemaMoImplTest, cleanupKeepsTheRecords) {
    add("a", makeOptionList({"one"}));
    add("b");
    moImpl.cleanup();
    EXPECT_EQ(catalogue.size(), 2U);
    EXPECT_EQ(moImpl.findSchemaData("b"), 1);
}

TEST_F(SchemaMoImplTest, cleanupCopesWithRecordsWithoutAList) {
    const char** const options = makeOptionList({"one"});
    add("a");
    add("b", options);
    add("c");
    const std::vector<void*> blocks = blocksOf(options);
    EXPECT_THAT(releasedByCleanup(), ElementsAreArray(blocks));
}

TEST_F(SchemaMoImplTest, cleanupReleasesASharedListOnce) {
    const char** const shared = makeOptionList({"one"});
    const char** const other = makeOptionList({"two"});
    add("a", shared);
    add("b", shared);
    add("c", shared);
    add("d", other);
    add("e", other);
    const std::vector<void*> blocks = joined(blocksOf(shared), blocksOf(other));
    EXPECT_THAT(releasedByCleanup(), ElementsAreArray(blocks));
}

TEST_F(SchemaMoImplTest, secondCleanupReleasesNothing) {
    const char** const shared = makeOptionList({"one"});
    add("a", shared);
    add("b", shared);
    moImpl.cleanup();
    EXPECT_THAT(releasedByCleanup(), IsEmpty());
}

TEST_F(SchemaMoImplTest, cleanupOfAnEmptyCatalogueReleasesNothing) {
    EXPECT_THAT(releasedByCleanup(), IsEmpty());
}

TEST_F(SchemaMoImplTest, listsOutliveTheProvider) {
    const char** const options = makeOptionList({"one"});
    std::vector<SchemaData> records(1);
    records[0].selectedModelOptions = options;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        { const SchemaMoImpl shortLived(records); }
        released = watch.released();
    }
    EXPECT_THAT(released, IsEmpty());
    EXPECT_STREQ(options[0], "one");
    SchemaData::releaseOptions(options);
}

TEST_F(SchemaMoImplTest, finishFreesHandlesKeysAndValuesAsTheyCame) {
    add("a");
    add("b");
    void* const iterator = newIterator();
    char* first = nullptr;
    char* second = nullptr;
    DalMoAttributeValueContainer* value = nullptr;
    EXPECT_EQ(moImpl.nextMo(iterator, &first), 0);
    EXPECT_EQ(moImpl.getMoAttribute(txHandle, dnOf("a").c_str(), "schemaId", &value), 0);
    EXPECT_EQ(moImpl.nextMo(iterator, &second), 0);
    void* const values = value->values;
    void* const text = value->values[0].theString;
    EXPECT_THAT(releasedByFinish(), ElementsAre(iterator, first, value, values, text, second));
}

TEST_F(SchemaMoImplTest, finishFreesOnlyItsOwnTransactionsBlocks) {
    add("a");
    constexpr unsigned long other = txHandle + 1;
    void* const iterator = newIterator();
    char* key = nullptr;
    DalMoAttributeValueContainer* value = nullptr;
    EXPECT_EQ(moImpl.getMoAttribute(other, dnOf("a").c_str(), "schemaId", &value), 0);
    EXPECT_EQ(moImpl.nextMo(iterator, &key), 0);
    void* const values = value->values;
    void* const text = value->values[0].theString;
    EXPECT_THAT(releasedByFinish(other), ElementsAre(value, values, text));
    EXPECT_THAT(releasedByFinish(), ElementsAre(iterator, key));
}

TEST_F(SchemaMoImplTest, missingMemoryForAKeyIsAFailureAndTheInstanceIsPassedOver) {
    add("a");
    add("b");
    void* const iterator = newIterator();
    const LogCapture log;
    char unset = '\0';
    char* key = &unset;
    {
        MemoryWatch watch;
        watch.failStrdup();
        EXPECT_EQ(moImpl.nextMo(iterator, &key), -1);
    }
    EXPECT_EQ(key, nullptr);
    std::ostringstream handle;
    handle << std::hex << static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(iterator));
    EXPECT_THAT(
        log.records(),
        ElementsAreArray(inOrder({debugTrace(0, sourceFile, "nextMo", "itHandle [" + handle.str() + "]"),
                                  message(3, sourceFile, "nextMo", "Could not allocate memmory for next mo result")})));
    EXPECT_EQ(moImpl.nextMo(iterator, &key), 0);
    EXPECT_STREQ(key, "b");
    EXPECT_THAT(releasedByFinish(), ElementsAre(iterator, key));
}

TEST_F(SchemaMoImplTest, keyThatCannotBeRegisteredIsFreedAndNotHandedOut) {
    add("a");
    void* const iterator = newIterator();
    char unset = '\0';
    char* key = &unset;
    {
        MemoryWatch watch;
        watch.failNew();  // that of the registration: the id is short enough for a string without one
        EXPECT_THROW(moImpl.nextMo(iterator, &key), std::bad_alloc);
        EXPECT_THAT(watch.allocated(), SizeIs(1));
        EXPECT_EQ(watch.released(), watch.allocated());
    }
    EXPECT_EQ(key, nullptr);
    EXPECT_THAT(releasedByFinish(), ElementsAre(iterator));
}

TEST_F(SchemaMoImplTest, missingMemoryForAContainerIsItsOwnCode) {
    add("a");
    const std::string dn = dnOf("a");
    const LogCapture log;
    DalMoAttributeValueContainer unset{};
    DalMoAttributeValueContainer* value = &unset;
    {
        MemoryWatch watch;
        watch.failMalloc();
        EXPECT_EQ(moImpl.getMoAttribute(txHandle, dn.c_str(), "version", &value), -10);
    }
    EXPECT_EQ(value, nullptr);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({debugTrace(0, sourceFile, "getMoAttribute",
                                                     "txHandle 7, dn [" + dn + "], attributeName [version]"),
                                          message(3, sourceFile, "getMoAttribute",
                                                  "Could not get Mo attribute: "
                                                  "[Could not allocate memory for attribute value container]")})));
    EXPECT_THAT(releasedByFinish(), IsEmpty());
}

TEST_F(SchemaMoImplTest, exceptionsOfOtherTypesPassThrough) {
    const std::string id(100, 'a');
    const std::string dn = dnOf(id);
    add(id);
    void* const iterator = newIterator();
    moImpl.getMoAttribute(txHandle, dn.c_str(), "noAttribute", nullptr);
    char* key = nullptr;
    DalMoAttributeValueContainer* value = nullptr;
    void* second = nullptr;
    const auto withoutMemory = [](auto call) {
        MemoryWatch watch;
        watch.failNew();
        call();
    };
    EXPECT_THROW(withoutMemory([&] { moImpl.newMoIterator(txHandle, parentDn, "Schema", &second); }), std::bad_alloc);
    EXPECT_THROW(withoutMemory([&] { moImpl.nextMo(iterator, &key); }), std::bad_alloc);
    EXPECT_THROW(withoutMemory([&] { moImpl.getMoAttribute(txHandle, dn.c_str(), "version", &value); }),
                 std::bad_alloc);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_THAT(releasedByFinish(), ElementsAre(iterator));
}

}  // namespace

}  // namespace TevTest

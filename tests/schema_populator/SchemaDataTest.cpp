#include "SchemaData.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "MemoryWatch.h"
#include "OptionList.h"
#include "TevException.h"
#include "TransactionContextManager.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using TevSchemaPopulator::SchemaData;
using TevSchemaPopulator::TransactionContextManager;

constexpr unsigned long txHandle = 7;

SchemaData filled() {
    SchemaData record;
    record.schemaId = "id";
    record.identifier = "name";
    record.baseModelIdentifier = "base";
    record.version = "1.2.3";
    record.baseModelVersion = "4.5";
    record.completeFileName = "/models/file.xml";
    record.fileName = "file.xml";
    return record;
}

/// The blocks that the end of the transaction frees, in order.
std::vector<void*> releasedBy(TransactionContextManager& transactions) {
    MemoryWatch watch;
    transactions.cleanup(txHandle);
    return watch.released();
}

/// How often `action` calls `new`.
template <class Action>
unsigned int newCallsOf(Action action) {
    MemoryWatch watch;
    action();
    return watch.newCalls();
}

/// What `getValue` throws, or nothing.
std::optional<Tev::TevException> thrownBy(const SchemaData& record, const char* attributeName,
                                          TransactionContextManager& transactions) {
    try {
        record.getValue(attributeName, txHandle, transactions);
    } catch (const Tev::TevException& e) {
        return e;
    }
    return std::nullopt;
}

TEST(SchemaDataTest, fieldsStandInTheirOrder) {
    SchemaData record = filled();
    record.selectedModelOptions = makeOptionList({"option"});
    const auto& [schemaId, identifier, baseModelIdentifier, version, baseModelVersion, completeFileName, fileName,
                 selectedModelOptions] = record;
    EXPECT_EQ(schemaId, "id");
    EXPECT_EQ(identifier, "name");
    EXPECT_EQ(baseModelIdentifier, "base");
    EXPECT_EQ(version, "1.2.3");
    EXPECT_EQ(baseModelVersion, "4.5");
    EXPECT_EQ(completeFileName, "/models/file.xml");
    EXPECT_EQ(fileName, "file.xml");
    EXPECT_STREQ(selectedModelOptions[0], "option");
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, freshRecordHasADummyIdAndNothingElse) {
    const SchemaData record;
    EXPECT_EQ(record.schemaId, "Dummy should not be used");
    EXPECT_EQ(record.identifier + record.baseModelIdentifier + record.version + record.baseModelVersion +
                  record.completeFileName + record.fileName,
              "");
    EXPECT_EQ(record.selectedModelOptions, nullptr);
}

TEST(SchemaDataTest, debugStringOfAFreshRecordHasTheDummyIdAndEmptyFields) {
    EXPECT_EQ(SchemaData().getDebugString(),
              "schemaId: Dummy should not be used identifier:  baseModelIdentifier:  version:  baseModelVersion: "
              " completeFileName: ");
}

TEST(SchemaDataTest, debugStringShowsAllButFileNameAndOptions) {
    SchemaData record = filled();
    record.fileName = "other.xml";
    record.selectedModelOptions = makeOptionList({"option"});
    EXPECT_EQ(record.getDebugString(),
              "schemaId: id identifier: name baseModelIdentifier: base version: 1.2.3 baseModelVersion: 4.5"
              " completeFileName: /models/file.xml");
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, copiesShareTheOptionListAndDestroyingThemLeavesIt) {
    auto original = std::make_unique<SchemaData>(filled());
    const char** const options = makeOptionList({"one", "two"});
    original->selectedModelOptions = options;
    {
        const SchemaData copy(*original);
        EXPECT_EQ(copy.selectedModelOptions, options);
        EXPECT_EQ(copy.getDebugString(), original->getDebugString());
        EXPECT_EQ(copy.fileName, original->fileName);
    }
    EXPECT_STREQ(options[1], "two");
    const auto second = std::make_unique<SchemaData>(*original);
    original.reset();
    EXPECT_EQ(second->selectedModelOptions, options);
    EXPECT_STREQ(options[0], "one");
    EXPECT_STREQ(options[1], "two");
    SchemaData::releaseOptions(options);
}

TEST(SchemaDataTest, recordsKeepAllFieldsWhileTheCatalogueGrows) {
    std::vector<SchemaData> catalogue;
    SchemaData record = filled();
    record.selectedModelOptions = makeOptionList({"option"});
    catalogue.push_back(record);
    for (int i = 0; i < 1000; ++i) {
        catalogue.emplace_back();
    }
    EXPECT_EQ(catalogue[0].getDebugString(), record.getDebugString());
    EXPECT_EQ(catalogue[0].fileName, "file.xml");
    EXPECT_EQ(catalogue[0].selectedModelOptions, record.selectedModelOptions);
    EXPECT_STREQ(catalogue[0].selectedModelOptions[0], "option");
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, releasesAnOptionListsTextsThenItsArray) {
    const char** const options = makeOptionList({"one", "two"});
    const std::vector<void*> blocks = blocksOf(options);
    MemoryWatch watch;
    SchemaData::releaseOptions(options);
    EXPECT_THAT(watch.released(), ElementsAreArray(blocks));
}

TEST(SchemaDataTest, releasingANullListDoesNothing) {
    MemoryWatch watch;
    SchemaData::releaseOptions(nullptr);
    EXPECT_THAT(watch.released(), IsEmpty());
}

TEST(SchemaDataTest, singleValueIsRegisteredAsContainerArrayText) {
    TransactionContextManager transactions;
    const SchemaData record = filled();
    std::vector<void*> allocated;
    std::vector<std::size_t> sizes;
    const DalMoAttributeValueContainer* container = nullptr;
    {
        MemoryWatch watch;
        container = record.getValue("version", txHandle, transactions);
        allocated = watch.allocated();
        sizes = watch.mallocSizes();
    }
    EXPECT_THAT(sizes, ElementsAre(sizeof(DalMoAttributeValueContainer), 8U));
    EXPECT_THAT(allocated, ElementsAre(container, container->values, container->values[0].theString));
    EXPECT_THAT(releasedBy(transactions), ElementsAreArray(allocated));
}

TEST(SchemaDataTest, emptyValueIsAContainerAlone) {
    for (const char* attributeName : {"baseModelIdentifier", "baseModelVersion", "selectedModelOptions"}) {
        SCOPED_TRACE(attributeName);
        TransactionContextManager transactions;
        std::vector<void*> allocated;
        std::vector<std::size_t> sizes;
        const DalMoAttributeValueContainer* container = nullptr;
        {
            MemoryWatch watch;
            container = SchemaData().getValue(attributeName, txHandle, transactions);
            allocated = watch.allocated();
            sizes = watch.mallocSizes();
        }
        EXPECT_THAT(sizes, ElementsAre(sizeof(DalMoAttributeValueContainer)));
        EXPECT_THAT(allocated, ElementsAre(container));
        EXPECT_THAT(releasedBy(transactions), ElementsAreArray(allocated));
    }
}

TEST(SchemaDataTest, optionListIsRegisteredAsContainerTextsArray) {
    TransactionContextManager transactions;
    SchemaData record;
    record.selectedModelOptions = makeOptionList({"one", "two", "three"});
    std::vector<void*> allocated;
    std::vector<std::size_t> sizes;
    DalMoAttributeValueContainer* container = nullptr;
    {
        MemoryWatch watch;
        container = record.getValue("selectedModelOptions", txHandle, transactions);
        allocated = watch.allocated();
        sizes = watch.mallocSizes();
    }
    DalMoAttributeValue* const values = container->values;
    const std::vector<void*> texts = {values[0].theString, values[1].theString, values[2].theString};
    EXPECT_THAT(sizes, ElementsAre(sizeof(DalMoAttributeValueContainer), 3U * 8U));
    EXPECT_THAT(allocated, ElementsAre(container, values, texts[0], texts[1], texts[2]));
    EXPECT_THAT(releasedBy(transactions), ElementsAre(container, texts[0], texts[1], texts[2], values));
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, emptyOptionListHasAnArrayThatIsRegistered) {
    TransactionContextManager transactions;
    SchemaData record;
    record.selectedModelOptions = makeOptionList({});
    DalMoAttributeValueContainer* const container = record.getValue("selectedModelOptions", txHandle, transactions);
    void* const values = container->values;
    EXPECT_NE(values, nullptr);
    EXPECT_EQ(container->nrOfValues, 0U);
    EXPECT_THAT(releasedBy(transactions), ElementsAre(container, values));
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, singleValueWithoutMemoryForItsContainerThrows) {
    for (const char* attributeName : {"schemaId", "identifier", "baseModelIdentifier", "version", "baseModelVersion"}) {
        SCOPED_TRACE(attributeName);
        TransactionContextManager transactions;
        const SchemaData record = filled();
        std::optional<Tev::TevException> thrown;
        std::vector<void*> allocated;
        {
            MemoryWatch watch;
            watch.failMalloc();
            thrown = thrownBy(record, attributeName, transactions);
            allocated = watch.allocated();
        }
        ASSERT_TRUE(thrown);
        EXPECT_EQ(thrown->getReturnCode(), -10);
        EXPECT_STREQ(thrown->what(), "Could not allocate memory for attribute value container");
        EXPECT_THAT(allocated, IsEmpty());
        EXPECT_THAT(releasedBy(transactions), IsEmpty());
    }
}

TEST(SchemaDataTest, missingMemoryForATextIsNotNoticed) {
    TransactionContextManager transactions;
    const SchemaData record = filled();
    DalMoAttributeValueContainer* container = nullptr;
    {
        MemoryWatch watch;
        watch.failStrdup();
        container = record.getValue("schemaId", txHandle, transactions);
    }
    void* const values = container->values;
    EXPECT_EQ(container->nrOfValues, 1U);
    EXPECT_EQ(container->values[0].theString, nullptr);
    EXPECT_THAT(releasedBy(transactions), ElementsAre(container, values, nullptr));
}

TEST(SchemaDataTest, noBlockIsLostWhereverMemoryForItsRegistrationRunsOut) {
    SchemaData record = filled();
    record.selectedModelOptions = makeOptionList({"one", "two"});
    for (const char* attributeName : {"version", "selectedModelOptions"}) {
        const unsigned int allocations = newCallsOf([&record, attributeName] {
            TransactionContextManager transactions;
            record.getValue(attributeName, txHandle, transactions);
            transactions.cleanup(txHandle);
        });
        ASSERT_GE(allocations, 4U);
        for (unsigned int nth = 1; nth <= allocations; ++nth) {
            SCOPED_TRACE(std::string(attributeName) + " " + std::to_string(nth));
            TransactionContextManager transactions;
            MemoryWatch watch;
            watch.failNew(nth);
            EXPECT_THROW(record.getValue(attributeName, txHandle, transactions), std::bad_alloc);
            transactions.cleanup(txHandle);
            EXPECT_THAT(watch.released(), testing::UnorderedElementsAreArray(watch.allocated()));
        }
    }
    SchemaData::releaseOptions(record.selectedModelOptions);
}

TEST(SchemaDataTest, unknownAttributeThrowsBeforeAnythingIsAllocated) {
    for (const std::string attributeName : {"SchemaId", "fileName", "completeFileName", "", "%s%n"}) {
        SCOPED_TRACE(attributeName);
        TransactionContextManager transactions;
        const SchemaData record = filled();
        std::optional<Tev::TevException> thrown;
        std::vector<void*> allocated;
        {
            MemoryWatch watch;
            thrown = thrownBy(record, attributeName.c_str(), transactions);
            allocated = watch.allocated();
        }
        ASSERT_TRUE(thrown);
        EXPECT_EQ(thrown->getReturnCode(), -2);
        EXPECT_EQ(thrown->what(), "Attribute does not exist in the schema, attribute: " + attributeName);
        EXPECT_THAT(allocated, IsEmpty());
        EXPECT_THAT(releasedBy(transactions), IsEmpty());
    }
}

TEST(SchemaDataTest, fieldsReadAsTheirAttributes) {
    TransactionContextManager transactions;
    const SchemaData record = filled();
    const auto value = [&](const char* attributeName) -> std::string {
        return record.getValue(attributeName, txHandle, transactions)->values[0].theString;
    };
    EXPECT_EQ(value("schemaId"), "id");
    EXPECT_EQ(value("identifier"), "name");
    EXPECT_EQ(value("baseModelIdentifier"), "base");
    EXPECT_EQ(value("version"), "1.2.3");
    EXPECT_EQ(value("baseModelVersion"), "4.5");
    transactions.cleanup(txHandle);
}

}  // namespace

}  // namespace TevTest

#include <cstdint>
#include <utility>

#include "ContractTest.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// The checks, results and records of newMoIterator, nextMo and getMoAttribute.
class ReadsContractTest : public ContractTest {
protected:
    static Records error(const char* functionName, const std::string& text) {
        return message(3, moImplFile, functionName, text);
    }
    static Records trace(const char* functionName, const std::string& text) {
        return debugTrace(0, moImplFile, functionName, text);
    }

    static void* handleOf(std::uint64_t bits) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(bits)); }

    /// Checks that newMoIterator refuses dn or class with -1 and this text, makes no iterator and keeps nothing.
    void expectNoIterator(const std::string& dn, const char* className, const std::string& text) {
        SCOPED_TRACE(text);
        const unsigned long txHandle = begin();
        log.clear();
        void* iterator = this;
        EXPECT_EQ(objects().newMoIterator(txHandle, dn.c_str(), className, &iterator), -1);
        EXPECT_EQ(iterator, nullptr);
        finish(txHandle);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({error("newMoIterator", text), nothingHeld(txHandle)})));
    }

    /// Checks that newMoIterator accepts the parent DN, and that it lists all instances.
    void expectParent(const std::string& dn) {
        SCOPED_TRACE(dn);
        const unsigned long txHandle = begin();
        log.clear();
        void* iterator = nullptr;
        EXPECT_EQ(objects().newMoIterator(txHandle, dn.c_str(), "Schema", &iterator), 0);
        EXPECT_THAT(
            log.records(),
            ElementsAreArray(trace("newMoIterator", "txhandle [" + std::to_string(txHandle) + "], dn [" + escaped(dn) +
                                                        "], className [Schema], result " + shownHandle(iterator))));
        char* key = nullptr;
        EXPECT_EQ(objects().nextMo(iterator, &key), 0);
        EXPECT_STREQ(key, "One");
    }

    /// The schemaId that the instance `dn` reads as; the read must succeed.
    std::string readId(const std::string& dn) {
        DalMoAttributeValueContainer* value = nullptr;
        EXPECT_EQ(objects().getMoAttribute(begin(), dn.c_str(), "schemaId", &value), 0);
        return value == nullptr ? "no value" : value->values[0].theString;
    }

    static std::vector<FakeModel> three() { return {FakeModel{"One"}, FakeModel{"Two"}, FakeModel{"Three"}}; }

    /// Texts that no format, pattern or buffer may trip over.
    static Values strangeTexts() {
        return {"%s%n%d", "a\nb", "caf\xc3\xa9", "\xff\x80\xfe", std::string(100000, 'x'), "[.*](", " "};
    }
};

// newMoIterator

TEST_F(ReadsContractTest, newMoIteratorRefusesNullArgumentsAndTouchesNothing) {
    startWith(three());
    const unsigned long txHandle = begin();
    void* iterator = this;
    struct Row {
        const char* dn;
        const char* className;
        void** result;
    };
    for (const Row& row : {Row{nullptr, "Schema", &iterator}, Row{parentDn, nullptr, &iterator},
                           Row{parentDn, "Schema", nullptr}, Row{nullptr, nullptr, nullptr}}) {
        log.clear();
        EXPECT_EQ(objects().newMoIterator(txHandle, row.dn, row.className, row.result), -8);
        EXPECT_EQ(iterator, this);
        EXPECT_THAT(log.records(), ElementsAreArray(error("newMoIterator", "Invalid input arguments")));
    }
    log.clear();
    finish(txHandle);
    EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
}

TEST_F(ReadsContractTest, newMoIteratorLooksForNullArgumentsFirst) {
    startWith(three());
    const unsigned long txHandle = begin();
    void* iterator = this;
    EXPECT_EQ(objects().newMoIterator(txHandle, "no DN", nullptr, &iterator), -8);
    EXPECT_EQ(objects().newMoIterator(txHandle, nullptr, "NoSchema", &iterator), -8);
    EXPECT_EQ(objects().newMoIterator(txHandle, "no DN", "NoSchema", nullptr), -8);
    const Records refused = error("newMoIterator", "Invalid input arguments");
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({refused, refused, refused})));
}

TEST_F(ReadsContractTest, newMoIteratorRefusesADnThatIsNoParent) {
    startWith(three());
    for (const std::string dn :
         {"", "no DN", "ManagedElement=1", "ManagedElement=1,SystemFunctions=1", "ManagedElement=1,SysM=1",
          "ManagedElement=1,SystemFunctions=1,SysM", "ManagedElement=1,SystemFunctions=1SysM=1",
          "ManagedElement=1,SysM=1,SystemFunctions=1", "SystemFunctions=1,ManagedElement=1,SysM=1",
          " ManagedElement=1,SystemFunctions=1,SysM=1", "managedElement=1,SystemFunctions=1,SysM=1",
          "ManagedElement=1,systemFunctions=1,SysM=1", "ManagedElement=1,SystemFunctions=1,sysM=1",
          "ManagedElement=1,SystemFunctions=1,Schema=One"}) {
        expectNoIterator(dn, "Schema", "Dn is not valid  [" + dn + "]");
    }
}

TEST_F(ReadsContractTest, newMoIteratorShowsARefusedDnAsItIs) {
    startWith(three());
    for (const std::string& dn : strangeTexts()) {
        expectNoIterator(dn, "Schema", "Dn is not valid  [" + escaped(dn) + "]");
    }
}

TEST_F(ReadsContractTest, newMoIteratorTakesAnyDnThatMatchesThePattern) {
    startWith(three());
    expectParent(parentDn);
    expectParent("ManagedElement=,SystemFunctions=,SysM=");
    expectParent("ManagedElement=1,SystemFunctions=1,SysM=1,Extra=2");
    expectParent("ManagedElement=1,Between=1,SystemFunctions=1,Between=1,SysM=1");
    for (const std::string& text : strangeTexts()) {
        expectParent("ManagedElement=" + text + ",SystemFunctions=" + text + ",SysM=" + text);
    }
}

TEST_F(ReadsContractTest, newMoIteratorTakesAnInstancesDnLikeTheParents) {
    startWith(three());
    expectParent("ManagedElement=1,SystemFunctions=1,SysM=1,Schema=x");
    expectParent(dnOf("One"));
}

TEST_F(ReadsContractTest, newMoIteratorRefusesAnyOtherClass) {
    startWith(three());
    for (const char* className : {"schema", "SCHEMA", "", "Schem", "Schemas", "Schema ", " Schema", "%s%n", "\xff"}) {
        expectNoIterator(parentDn, className, std::string("ClassName is not valid [") + className + "]");
    }
}

TEST_F(ReadsContractTest, newMoIteratorChecksTheDnBeforeTheClass) {
    startWith(three());
    expectNoIterator("no DN", "NoSchema", "Dn is not valid  [no DN]");
}

// nextMo

TEST_F(ReadsContractTest, nextMoGivesTheKeysInCatalogueOrderThenNull) {
    startWith(three());
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    for (const std::string expected : {"One", "Two", "Three"}) {
        log.clear();
        char* key = nullptr;
        EXPECT_EQ(objects().nextMo(iterator, &key), 0);
        EXPECT_EQ(key, expected);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                                             trace("nextMo", "itHandle " + shownHandle(iterator) +
                                                                                 " result [" + expected + "]")})));
    }
    for (int index = 3; index < 103; ++index) {
        log.clear();
        char unset = '\0';
        char* key = &unset;
        EXPECT_EQ(objects().nextMo(iterator, &key), 0);
        EXPECT_EQ(key, nullptr);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                                             trace("nextMo", "No more schema instances index [" +
                                                                                 std::to_string(index) + "]")})));
    }
}

TEST_F(ReadsContractTest, nextMoOverAnEmptyCatalogueIsAtTheEndAtOnce) {
    startWith({});
    void* const iterator = newIterator(begin());
    log.clear();
    char unset = '\0';
    char* key = &unset;
    EXPECT_EQ(objects().nextMo(iterator, &key), 0);
    EXPECT_EQ(key, nullptr);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                                         trace("nextMo", "No more schema instances index [0]")})));
}

TEST_F(ReadsContractTest, nextMoRefusesANullResultAndDoesNotAdvance) {
    startWith(three());
    void* const iterator = newIterator(begin());
    log.clear();
    EXPECT_EQ(objects().nextMo(iterator, nullptr), -8);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                                         error("nextMo", "Invalid input argument")})));
    char* key = nullptr;
    EXPECT_EQ(objects().nextMo(iterator, &key), 0);
    EXPECT_STREQ(key, "One");
}

TEST_F(ReadsContractTest, nextMoLooksForANullResultBeforeTheIterator) {
    startWith(three());
    EXPECT_EQ(objects().nextMo(nullptr, nullptr), -8);
    EXPECT_THAT(
        log.records(),
        ElementsAreArray(inOrder({trace("nextMo", "itHandle [0]"), error("nextMo", "Invalid input argument")})));
}

TEST_F(ReadsContractTest, nextMoRefusesAnUnknownIterator) {
    startWith(three());
    char unset = '\0';
    char* key = &unset;
    EXPECT_EQ(objects().nextMo(&unset, &key), -1);
    EXPECT_EQ(key, nullptr);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(&unset)),
                                                         error("nextMo",
                                                               "Could not get next Mo: "
                                                               "[Iterator handle is not valid]")})));
}

TEST_F(ReadsContractTest, nextMoRefusesAnIteratorOfAFinishedTransaction) {
    startWith(three());
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    finish(txHandle);
    log.clear();
    char unset = '\0';
    char* key = &unset;
    EXPECT_EQ(objects().nextMo(iterator, &key), -1);
    EXPECT_EQ(key, nullptr);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                                         error("nextMo",
                                                               "Could not get next Mo: "
                                                               "[Iterator handle is not valid]")})));
}

TEST_F(ReadsContractTest, handlesAreShownByTheirLow32BitsInLowerCase) {
    startWith(three());
    const std::vector<std::pair<std::uint64_t, std::string>> rows = {
        {0x1234ABCDEF, "34abcdef"}, {0xFFFFFFFF00000000, "0"}, {0xFFFFFFFFFFFFFFFF, "ffffffff"}, {0xA, "a"}};
    for (const auto& [bits, text] : rows) {
        SCOPED_TRACE(text);
        log.clear();
        char* key = nullptr;
        EXPECT_EQ(objects().nextMo(handleOf(bits), &key), -1);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({trace("nextMo", "itHandle [" + text + "]"),
                                                             error("nextMo",
                                                                   "Could not get next Mo: "
                                                                   "[Iterator handle is not valid]")})));
    }
}

TEST_F(ReadsContractTest, nextMoGivesKeysByteForByte) {
    std::vector<FakeModel> models;
    Values names = strangeTexts();
    names.emplace_back("");
    for (const std::string& name : names) {
        models.push_back(FakeModel{name});
    }
    startWith(models);
    EXPECT_EQ(list(begin()), names);
}

TEST_F(ReadsContractTest, nextMoLogsKeysAsTheyAre) {
    startWith({FakeModel{"%s%n"}});
    void* const iterator = newIterator(begin());
    log.clear();
    char* key = nullptr;
    EXPECT_EQ(objects().nextMo(iterator, &key), 0);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({trace("nextMo", "itHandle " + shownHandle(iterator)),
                                          trace("nextMo", "itHandle " + shownHandle(iterator) + " result [%s%n]")})));
}

// getMoAttribute

TEST_F(ReadsContractTest, getMoAttributeRefusesNullArgumentsAndTouchesNothing) {
    startWith(three());
    const unsigned long txHandle = begin();
    const std::string dn = dnOf("One");
    DalMoAttributeValueContainer unset{};
    DalMoAttributeValueContainer* value = &unset;
    struct Row {
        const char* dn;
        const char* attributeName;
        DalMoAttributeValueContainer** result;
    };
    for (const Row& row : {Row{nullptr, "schemaId", &value}, Row{dn.c_str(), nullptr, &value},
                           Row{dn.c_str(), "schemaId", nullptr}, Row{nullptr, nullptr, nullptr}}) {
        log.clear();
        EXPECT_EQ(objects().getMoAttribute(txHandle, row.dn, row.attributeName, row.result), -8);
        EXPECT_EQ(value, &unset);
        EXPECT_THAT(log.records(), ElementsAreArray(error("getMoAttribute", "Invalid input arguments")));
    }
    log.clear();
    finish(txHandle);
    EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
}

TEST_F(ReadsContractTest, getMoAttributeLooksForNullArgumentsFirst) {
    startWith(three());
    const unsigned long txHandle = begin();
    DalMoAttributeValueContainer unset{};
    DalMoAttributeValueContainer* value = &unset;
    EXPECT_EQ(objects().getMoAttribute(txHandle, "no DN", nullptr, &value), -8);
    EXPECT_EQ(objects().getMoAttribute(txHandle, nullptr, "noAttribute", &value), -8);
    EXPECT_EQ(objects().getMoAttribute(txHandle, "no DN", "noAttribute", nullptr), -8);
    const Records refused = error("getMoAttribute", "Invalid input arguments");
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({refused, refused, refused})));
}

TEST_F(ReadsContractTest, getMoAttributeReadsTheInstanceThatTheDnNames) {
    startWith(three());
    for (const std::string id : {"One", "Two", "Three"}) {
        EXPECT_EQ(readId(dnOf(id)), id);
    }
}

TEST_F(ReadsContractTest, getMoAttributeRefusesADnThatIsNoInstance) {
    startWith(three());
    for (const std::string dn :
         {"", "no DN", "Schema=One", "ManagedElement=1,SystemFunctions=1,SysM=1",
          "ManagedElement=1,SystemFunctions=1,Schema=One", "ManagedElement=1,SysM=1,Schema=One",
          "ManagedElement=1,SystemFunctions=1,SysM=1,Schema", "ManagedElement=1,SystemFunctions=1,SysM=1Schema=One",
          "ManagedElement=1,SystemFunctions=1,SysM=1,schema=One",
          " ManagedElement=1,SystemFunctions=1,SysM=1,Schema=One",
          "ManagedElement=1,SystemFunctions=1,Schema=One,SysM=1"}) {
        expectNoValue(dn, "schemaId", -1, "Dn is not valid [" + dn + "]");
    }
}

TEST_F(ReadsContractTest, getMoAttributeShowsARefusedDnAsItIs) {
    startWith(three());
    for (const std::string& dn : strangeTexts()) {
        expectNoValue(dn, "schemaId", -1, "Dn is not valid [" + dn + "]");
    }
}

TEST_F(ReadsContractTest, getMoAttributeTakesTheIdAfterTheLastEqualsSign) {
    startWith({FakeModel{"a"}, FakeModel{"b"}, FakeModel{"c=d"}, FakeModel{"d"}});
    const std::string sysM = parentDn;
    EXPECT_EQ(readId(sysM + ",Schema=a,Extra=b"), "b");
    EXPECT_EQ(readId(sysM + ",Schema=c=d"), "d");
    EXPECT_EQ(readId(sysM + ",Schema=x,Schema=a"), "a");
    expectNoValue(sysM + ",Schema=a,Extra=", "schemaId", -2, "Could not find schema for schemaId [] ");
    expectNoValue(sysM + ",Schema=a,Extra", "schemaId", -2, "Could not find schema for schemaId [a,Extra] ");
}

TEST_F(ReadsContractTest, getMoAttributeTakesAnyDnThatMatchesThePattern) {
    startWith(three());
    EXPECT_EQ(readId("ManagedElement=,SystemFunctions=,SysM=,Schema=One"), "One");
    for (const std::string& text : strangeTexts()) {
        EXPECT_EQ(readId("ManagedElement=" + text + ",SystemFunctions=" + text + ",SysM=" + text + ",Schema=One"),
                  "One");
    }
}

TEST_F(ReadsContractTest, getMoAttributeFindsIdsByteForByte) {
    const Values ids = strangeTexts();
    std::vector<FakeModel> models;
    for (const std::string& id : ids) {
        models.push_back(FakeModel{id});
    }
    startWith(models);
    for (const std::string& id : ids) {
        EXPECT_EQ(readId(dnOf(id)), id);
    }
}

TEST_F(ReadsContractTest, getMoAttributeFindsNoInstanceOfAnotherId) {
    startWith(three());
    for (const std::string id : {"Four", "one", "ONE", "On", "Ones", "One ", " One", "One,Two", "%s%n", ""}) {
        expectNoValue(dnOf(id), "schemaId", -2, "Could not find schema for schemaId [" + id + "] ");
    }
}

TEST_F(ReadsContractTest, getMoAttributeShowsAnUnknownIdAsItIs) {
    startWith(three());
    for (const std::string& id : strangeTexts()) {
        expectNoValue(dnOf(id), "schemaId", -2, "Could not find schema for schemaId [" + id + "] ");
    }
}

TEST_F(ReadsContractTest, emptyIdFindsARecordWithAnEmptyId) {
    startWith({FakeModel{"One"}, FakeModel{""}});
    EXPECT_EQ(readId(dnOf("")), "");
}

TEST_F(ReadsContractTest, ofRecordsWithOneIdTheFirstIsRead) {
    startWith({FakeModel{"Other", "0"}, FakeModel{"Mom", "1"}, FakeModel{"Mom", "2"}, FakeModel{"Mom", "3"}});
    const unsigned long txHandle = begin();
    EXPECT_THAT(list(txHandle), ElementsAre("Other", "Mom", "Mom", "Mom"));
    EXPECT_THAT(read(txHandle, "Mom", "version"), ElementsAre("1"));
}

TEST_F(ReadsContractTest, getMoAttributeChecksTheDnThenTheIdThenTheAttribute) {
    startWith(three());
    expectNoValue("Schema=Four", "noAttribute", -1, "Dn is not valid [Schema=Four]");
    expectNoValue(dnOf("Four"), "noAttribute", -2, "Could not find schema for schemaId [Four] ");
}

TEST_F(ReadsContractTest, noInstanceIsFoundInAnEmptyCatalogue) {
    startWith({});
    expectNoValue(dnOf("One"), "schemaId", -2, "Could not find schema for schemaId [One] ");
}

// finish

TEST_F(ReadsContractTest, finishReturnsSuccessWhateverItFinds) {
    startWith(three());
    const unsigned long txHandle = begin();
    EXPECT_EQ(resource().finish(txHandle + 1), 0);
    list(txHandle);
    EXPECT_EQ(resource().finish(txHandle), 0);
    EXPECT_EQ(resource().finish(txHandle), 0);
}

// The log's level.

TEST_F(ReadsContractTest, successfulReadsLogNothingBelowTheHighestLevel) {
    startWith(three());
    Tev::LoggingWrapper::instance().set_level(7);
    const unsigned long txHandle = begin();
    list(txHandle);
    read(txHandle, "One", "schemaId");
    finish(txHandle);
    finish(txHandle);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(ReadsContractTest, errorsNeedLevelThree) {
    startWith(three());
    void* iterator = nullptr;
    Tev::LoggingWrapper::instance().set_level(3);
    EXPECT_EQ(objects().newMoIterator(1, "no DN", "Schema", &iterator), -1);
    EXPECT_THAT(log.records(), ElementsAreArray(error("newMoIterator", "Dn is not valid  [no DN]")));
    log.clear();
    Tev::LoggingWrapper::instance().set_level(2);
    EXPECT_EQ(objects().newMoIterator(1, "no DN", "Schema", &iterator), -1);
    EXPECT_EQ(objects().newMoIterator(1, parentDn, "NoSchema", &iterator), -1);
    EXPECT_EQ(objects().newMoIterator(1, nullptr, nullptr, nullptr), -8);
    char* key = nullptr;
    EXPECT_EQ(objects().nextMo(handleOf(1), &key), -1);
    EXPECT_EQ(objects().nextMo(nullptr, nullptr), -8);
    DalMoAttributeValueContainer* value = nullptr;
    EXPECT_EQ(objects().getMoAttribute(1, "no DN", "version", &value), -1);
    EXPECT_EQ(objects().getMoAttribute(1, dnOf("Other").c_str(), "version", &value), -2);
    EXPECT_EQ(objects().getMoAttribute(1, dnOf("One").c_str(), "other", &value), -2);
    EXPECT_EQ(objects().getMoAttribute(1, nullptr, nullptr, nullptr), -8);
    EXPECT_THAT(log.records(), IsEmpty());
}

}  // namespace

}  // namespace TevTest

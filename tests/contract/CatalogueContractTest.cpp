#include <cstddef>
#include <initializer_list>

#include "ContractTest.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// How a start reads the repository, what it writes to the log meanwhile, and what the instances show of it.
class CatalogueContractTest : public ContractTest {
protected:
    /// Starts over these models and returns the code. Records and calls are those of this start alone.
    TevReturnT walk(std::vector<FakeModel> models) {
        host.models = std::move(models);
        log.clear();
        host.clearCalls();
        return start();
    }

    /// The records of a start whose walk over the models wrote `records`.
    static Records succeeded(std::initializer_list<Records> records) {
        return inOrder({startEntry(), inOrder(records), startExit()});
    }
    static Records failed(std::initializer_list<Records> records) {
        return inOrder({startEntry(), inOrder(records),
                        message(3, serviceFile, "start", "Could not initialize SchemaData vector")});
    }

    static Records error(const std::string& text) { return message(3, serviceFile, "populateSchemaData", text); }
    static Records warning(const std::string& text) { return message(4, serviceFile, "populateSchemaData", text); }
    static Records notice(const std::string& text) { return message(6, serviceFile, "populateSchemaData", text); }
    static Records trace(const std::string& text) { return debugTrace(0, serviceFile, "populateSchemaData", text); }

    static Records noOrvaName(const std::string& id) {
        return trace("No OrvaMomName was found baseModelIdentifier is not set, id :" + id);
    }
    static Records noOrvaVersion() { return trace("No OrvaMomVersion was found baseModelVersion is not set"); }
    static Records noOrvaCorrection() { return trace("Skiping OrvaMomCorrection since it is not available"); }
    static Records noVersion() { return notice("Skiping mom version since it is not available"); }
    static Records noFeatures() { return notice("Skiping model feature names since it is not available"); }
    static Records feature(const std::string& name) { return notice("Setting model Feature name: " + name); }
    static Records noRelease() { return notice("Skiping mom release since it is not available"); }
    static Records noCorrection() { return trace("Skiping mom correction since it is not available"); }

    static Records added(const std::string& id, const std::string& baseModelIdentifier, const std::string& version,
                         const std::string& baseModelVersion, const std::string& file) {
        return debugTrace(0, serviceFile, "initSchemaDataVector",
                          "Added schemaData file [schemaId: " + id + " identifier: " + id +
                              " baseModelIdentifier: " + baseModelIdentifier + " version: " + version +
                              " baseModelVersion: " + baseModelVersion + " completeFileName: " + file + "]");
    }
    static Records added(const std::string& id, const std::string& version = "") {
        return added(id, "", version, "", "/models/" + id + ".xml");
    }

    /// A model of which the repository knows nothing but name and file, and what its reading writes and calls.
    static FakeModel bare(const std::string& name) { return FakeModel{name}; }
    static Records bareRecords(const std::string& name) {
        return inOrder({noOrvaName(name), noOrvaVersion(), noVersion(), noRelease(), noCorrection(), added(name)});
    }
    static Values bareCalls(const std::string& name) {
        return {"getMomGeneralProperties " + name,
                "getGeneralStringProperty " + name + ",0",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomName",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomVersion",
                "getMomStringProperty " + name + ",0",
                "getMomFeatureNames " + name,
                "getMomStringProperty " + name + ",1",
                "getMomStringProperty " + name + ",8",
                "getMomFileName " + name + ",null",
                "getNextMom " + name};
    }

    /// A model with everything, likewise.
    static FakeModel full(const std::string& name) {
        return {name,
                "2",
                "1",
                "5",
                {{"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}},
                Values{"Alpha", "Beta"}};
    }
    static Records fullRecords(const std::string& name) {
        return inOrder(
            {feature("Alpha"), feature("Beta"), added(name, "Base", "2.1.5", "3.4.6", "/models/" + name + ".xml")});
    }
    static Values fullCalls(const std::string& name) {
        return {"getMomGeneralProperties " + name,
                "getGeneralStringProperty " + name + ",0",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomName",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomVersion",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomRelease",
                "getGeneralDomainValue " + name + ",ORVA,orvaMomCorrection",
                "getMomStringProperty " + name + ",0",
                "getMomFeatureNames " + name,
                "getMomStringProperty " + name + ",1",
                "getMomStringProperty " + name + ",8",
                "getMomFileName " + name + ",2",
                "getNextMom " + name};
    }

    /// How many domain reads a full model takes.
    static constexpr unsigned int orvaReads = 4;

    /// The calls of a start up to the first model.
    static Values firstCalls() { return joined({fetchCalls, {"getFirstMom"}}); }

    static Values joined(std::initializer_list<Values> lists) {
        Values all;
        for (const Values& list : lists) {
            all.insert(all.end(), list.begin(), list.end());
        }
        return all;
    }

    /// Checks that a failure of `call` (counted in `fullCalls`) ends the walk with its code, at once, with `text` as
    /// its only error, and that the models before it are kept: none, one or two of them. A started component is
    /// started again for that, since one that has never been started shows nothing.
    void expectFatal(std::size_t call, const std::string& text, std::vector<TevReturnT> codes = {-1, -2, -8, 7}) {
        startWith({});
        const Values names = {"First", "Second"};
        for (std::size_t before = 0; before <= names.size(); ++before) {
            for (const TevReturnT code : codes) {
                SCOPED_TRACE("code " + std::to_string(code) + " after " + std::to_string(before) + " models");
                expectFatal(call, text, code, {names.begin(), names.begin() + static_cast<std::ptrdiff_t>(before)});
            }
        }
    }

    void expectFatal(std::size_t call, const std::string& text, TevReturnT code, const Values& before) {
        std::vector<FakeModel> models;
        Values calls = firstCalls();
        Records records;
        for (const std::string& name : before) {
            models.push_back(bare(name));
            calls = joined({calls, bareCalls(name)});
            records = inOrder({records, bareRecords(name)});
        }
        const Values callsOfFailing = fullCalls("Failing");
        calls.insert(calls.end(), callsOfFailing.begin(), callsOfFailing.begin() + static_cast<std::ptrdiff_t>(call));
        calls.push_back(callsOfFailing[call]);
        constexpr std::size_t featureCall = 7;
        if (call > featureCall) {
            records = inOrder({records, feature("Alpha"), feature("Beta")});
        }
        models.push_back(full("Failing"));
        models.push_back(bare("After"));
        host.failAnyCall(static_cast<unsigned int>(calls.size()), code);

        EXPECT_EQ(walk(models), code);
        EXPECT_THAT(log.records(), ElementsAreArray(failed({records, error(text)})));
        EXPECT_THAT(host.calls(), ElementsAreArray(calls));
        EXPECT_THAT(listed(), ElementsAreArray(before));
    }

    /// Checks that a file path of the second of three models ends the walk, since no file name can be taken from it.
    void expectNoFileName(const FakeModel& failing) {
        EXPECT_EQ(walk({bare("One"), failing, bare("After")}), -1);
        EXPECT_THAT(
            log.records(),
            ElementsAreArray(failed(
                {bareRecords("One"), noOrvaName("Failing"), noOrvaVersion(), noVersion(), noRelease(), noCorrection(),
                 error("Could not get file name from the absolute file name given by modelRepository")})));
        Values calls = joined({firstCalls(), bareCalls("One"), bareCalls("Failing")});
        calls.pop_back();  // getNextMom
        EXPECT_THAT(host.calls(), ElementsAreArray(calls));
        EXPECT_THAT(listed(), ElementsAre("One"));
    }

    Values listed() {
        const unsigned long txHandle = begin();
        const Values keys = list(txHandle);
        finish(txHandle);
        return keys;
    }

    Values valuesOf(const std::string& schemaId, const char* attributeName) {
        const unsigned long txHandle = begin();
        const Values values = read(txHandle, schemaId, attributeName);
        finish(txHandle);
        return values;
    }
};

FakeModel withFile(FakeModel model, const std::string& file) {
    model.file = file;
    return model;
}

FakeModel withFeatures(FakeModel model, const Values& features) {
    model.features = features;
    return model;
}

FakeModel withOrva(FakeModel model, std::map<std::string, std::optional<std::string>> orva) {
    model.orva = std::move(orva);
    return model;
}

// The walk.

TEST_F(CatalogueContractTest, repositoryWithoutModelsGivesAnEmptyCatalogue) {
    EXPECT_EQ(walk({}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({})));
    EXPECT_THAT(host.calls(), ElementsAreArray(firstCalls()));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(CatalogueContractTest, instancesStandInTheRepositorysOrder) {
    EXPECT_EQ(walk({bare("Zeta"), bare("Alpha"), bare("Mid")}), 0);
    EXPECT_THAT(log.records(),
                ElementsAreArray(succeeded({bareRecords("Zeta"), bareRecords("Alpha"), bareRecords("Mid")})));
    EXPECT_THAT(listed(), ElementsAre("Zeta", "Alpha", "Mid"));
}

TEST_F(CatalogueContractTest, modelsWithTheSameFileAreAllKept) {
    EXPECT_EQ(
        walk({withFile(bare("One"), "/models/shared.xml"), bare("Two"), withFile(bare("Three"), "/models/shared.xml")}),
        0);
    const auto records = [](const std::string& name, const std::string& file) {
        return inOrder({noOrvaName(name), noOrvaVersion(), noVersion(), noRelease(), noCorrection(),
                        added(name, "", "", "", file)});
    };
    EXPECT_THAT(log.records(),
                ElementsAreArray(succeeded({records("One", "/models/shared.xml"), records("Two", "/models/Two.xml"),
                                            records("Three", "/models/shared.xml")})));
    EXPECT_THAT(listed(), ElementsAre("One", "Two", "Three"));
}

TEST_F(CatalogueContractTest, everyPropertyIsAskedForOnceInAFixedOrder) {
    EXPECT_EQ(walk({full("Mom")}), 0);
    EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), fullCalls("Mom")})));
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({fullRecords("Mom")})));
}

TEST_F(CatalogueContractTest, withoutAnOrvaVersionReleaseAndCorrectionOfItAreNotAskedFor) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}})}), 0);
    EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), bareCalls("Mom")})));
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, modelsAreReadOneAfterTheOther) {
    EXPECT_EQ(walk({bare("One"), full("Two"), bare("Three")}), 0);
    EXPECT_THAT(host.calls(),
                ElementsAreArray(joined({firstCalls(), bareCalls("One"), fullCalls("Two"), bareCalls("Three")})));
    EXPECT_THAT(log.records(),
                ElementsAreArray(succeeded({bareRecords("One"), fullRecords("Two"), bareRecords("Three")})));
    EXPECT_THAT(valuesOf("Three", "schemaId"), ElementsAre("Three"));
    EXPECT_THAT(valuesOf("Three", "identifier"), ElementsAre("Three"));
    EXPECT_THAT(valuesOf("Three", "baseModelIdentifier"), IsEmpty());
    EXPECT_THAT(valuesOf("Three", "version"), ElementsAre(""));
    EXPECT_THAT(valuesOf("Three", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, failureToFindTheFirstModelEndsTheWalk) {
    startWith({bare("Before")});
    for (const TevReturnT code : {-1, -8, 7}) {
        SCOPED_TRACE(code);
        host.failCall("getFirstMom", code);
        EXPECT_EQ(walk({bare("Mom")}), code);
        EXPECT_THAT(log.records(), ElementsAreArray(failed({})));
        EXPECT_THAT(host.calls(), ElementsAreArray(firstCalls()));
        EXPECT_THAT(listed(), IsEmpty());
    }
}

TEST_F(CatalogueContractTest, failureToFindTheNextModelEndsTheWalkAndKeepsTheModelsSoFar) {
    startWith({});
    for (const TevReturnT code : {-1, -8, 7}) {
        SCOPED_TRACE(code);
        host.failCall("getNextMom", code, 2);
        EXPECT_EQ(walk({bare("One"), bare("Two"), bare("Three")}), code);
        EXPECT_THAT(log.records(), ElementsAreArray(failed({bareRecords("One"), bareRecords("Two")})));
        EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), bareCalls("One"), bareCalls("Two")})));
        EXPECT_THAT(listed(), ElementsAre("One", "Two"));
    }
}

TEST_F(CatalogueContractTest, notFoundAsTheNextModelIsTheEndOfTheList) {
    host.failCall("getNextMom", -2);
    EXPECT_EQ(walk({bare("One"), bare("Two")}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("One")})));
    EXPECT_THAT(listed(), ElementsAre("One"));
}

TEST_F(CatalogueContractTest, notFoundAsTheFirstModelIsAnEmptyList) {
    host.failCall("getFirstMom", -2);
    EXPECT_EQ(walk({bare("One")}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({})));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(CatalogueContractTest, componentWhoseFirstWalkFailedIsNotStarted) {
    host.failCall("getMomFileName", -1);
    EXPECT_EQ(walk({bare("Mom")}), -1);
    EXPECT_EQ(resource().join(1), 2);
}

TEST_F(CatalogueContractTest, everyStartRebuildsTheCatalogueFromNothing) {
    startWith({bare("One"), full("Two")});
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(walk({bare("Three"), FakeModel{"Two", "1"}}), 0);
    EXPECT_THAT(listed(), ElementsAre("Three", "Two"));
    EXPECT_THAT(valuesOf("Two", "version"), ElementsAre("1"));
    EXPECT_THAT(valuesOf("Two", "selectedModelOptions"), IsEmpty());
    EXPECT_EQ(walk({bare("Four")}), 0);
    EXPECT_THAT(listed(), ElementsAre("Four"));
}

TEST_F(CatalogueContractTest, catalogueDoesNotFollowTheRepositoryBetweenStarts) {
    startWith({full("Mom")});
    host.models = {bare("Other")};
    EXPECT_THAT(listed(), ElementsAre("Mom"));
    EXPECT_THAT(valuesOf("Mom", "version"), ElementsAre("2.1.5"));
    EXPECT_THAT(valuesOf("Mom", "selectedModelOptions"), ElementsAre("Alpha", "Beta"));
}

TEST_F(CatalogueContractTest, readsDoNotAskTheRepository) {
    startWith({full("Mom")});
    const unsigned long txHandle = begin();
    host.clearCalls();
    EXPECT_THAT(list(txHandle), ElementsAre("Mom"));
    for (const char* attributeName :
         {"schemaId", "identifier", "baseModelIdentifier", "version", "baseModelVersion", "selectedModelOptions"}) {
        read(txHandle, "Mom", attributeName);
    }
    finish(txHandle);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(CatalogueContractTest, recordsKeepTheirFieldsWhileTheCatalogueGrows) {
    constexpr int count = 300;
    std::vector<FakeModel> models;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        models.push_back({"Mom" + number,
                          number,
                          "r",
                          "c",
                          {{"orvaMomName", "Base" + number}, {"orvaMomVersion", number}, {"orvaMomRelease", "x"}},
                          Values{"Feature" + number}});
    }
    startWith(models);
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        const std::string id = "Mom" + number;
        EXPECT_THAT(valuesOf(id, "schemaId"), ElementsAre(id));
        EXPECT_THAT(valuesOf(id, "identifier"), ElementsAre(id));
        EXPECT_THAT(valuesOf(id, "baseModelIdentifier"), ElementsAre("Base" + number));
        EXPECT_THAT(valuesOf(id, "version"), ElementsAre(number + ".r.c"));
        EXPECT_THAT(valuesOf(id, "baseModelVersion"), ElementsAre(number + ".x"));
        EXPECT_THAT(valuesOf(id, "selectedModelOptions"), ElementsAre("Feature" + number));
    }
}

// The name.

TEST_F(CatalogueContractTest, nameIsSchemaIdAndIdentifier) {
    startWith({bare("Mom")});
    EXPECT_THAT(valuesOf("Mom", "schemaId"), ElementsAre("Mom"));
    EXPECT_THAT(valuesOf("Mom", "identifier"), ElementsAre("Mom"));
}

TEST_F(CatalogueContractTest, textsWithConversionCharactersAreLoggedAsTheyAre) {
    FakeModel model = withFile(bare("%s%n"), "/models/100%d.xml");
    model.features = Values{"%s"};
    EXPECT_EQ(walk({model}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("%s%n"), noOrvaVersion(), noVersion(),
                                                           feature("%s"), noRelease(), noCorrection(),
                                                           added("%s%n", "", "", "", "/models/100%d.xml")})));
}

TEST_F(CatalogueContractTest, nullNameReadsAsAnEmptyText) {
    FakeModel nameless = bare("");
    nameless.nullName = true;
    EXPECT_EQ(walk({bare("One"), nameless}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("One"), bareRecords("")})));
    EXPECT_THAT(listed(), ElementsAre("One", ""));
    EXPECT_THAT(valuesOf("", "schemaId"), ElementsAre(""));
    EXPECT_THAT(valuesOf("", "identifier"), ElementsAre(""));
}

TEST_F(CatalogueContractTest, nameThatIsNotWrittenIsNotThatOfTheModelBefore) {
    host.leaveOutput("getGeneralStringProperty", 2);
    EXPECT_EQ(walk({bare("One"), bare("")}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("One"), bareRecords("")})));
    EXPECT_THAT(listed(), ElementsAre("One", ""));
}

TEST_F(CatalogueContractTest, failingGeneralPropertiesEndTheWalk) {
    expectFatal(0, "Could not get general properties from mom");
}

TEST_F(CatalogueContractTest, failingNameEndsTheWalk) {
    expectFatal(1, "Could not get mom name");
}

// The base model's identifier.

TEST_F(CatalogueContractTest, orvaNameIsTheBaseModelIdentifier) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomName", "Base"}})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaVersion(), noVersion(), noRelease(), noCorrection(),
                                                           added("Mom", "Base", "", "", "/models/Mom.xml")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelIdentifier"), ElementsAre("Base"));
}

TEST_F(CatalogueContractTest, missingOrvaNameIsTracedWithTheModelsName) {
    EXPECT_EQ(walk({bare("Mom")}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelIdentifier"), IsEmpty());
}

TEST_F(CatalogueContractTest, failingOrvaNameEndsTheWalk) {
    expectFatal(2, "Could not get orva mom name", {-1, -8, 7});
}

// The base model's version.

TEST_F(CatalogueContractTest, baseModelVersionJoinsVersionReleaseAndCorrection) {
    const std::map<std::string, std::optional<std::string>> orva = {
        {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}};
    EXPECT_EQ(walk({withOrva(bare("Mom"), orva)}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noVersion(), noRelease(), noCorrection(),
                                                           added("Mom", "", "", "3.4.6", "/models/Mom.xml")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), ElementsAre("3.4.6"));
}

TEST_F(CatalogueContractTest, baseModelVersionWithoutACorrectionHasTwoParts) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}})}), 0);
    EXPECT_THAT(log.records(),
                ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaCorrection(), noVersion(), noRelease(),
                                            noCorrection(), added("Mom", "", "", "3.4", "/models/Mom.xml")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), ElementsAre("3.4"));
}

TEST_F(CatalogueContractTest, nullOrvaCorrectionIsPassedOverInSilence) {
    const std::map<std::string, std::optional<std::string>> orva = {
        {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", std::nullopt}};
    EXPECT_EQ(walk({withOrva(bare("Mom"), orva)}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noVersion(), noRelease(), noCorrection(),
                                                           added("Mom", "", "", "3.4", "/models/Mom.xml")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), ElementsAre("3.4"));
}

TEST_F(CatalogueContractTest, failingOrvaCorrectionIsTracedWhateverItsCode) {
    startWith({});
    for (const TevReturnT code : {-1, -2, -8, 7}) {
        SCOPED_TRACE(code);
        FakeModel model = full("Mom");
        model.features.reset();
        host.failCall("getGeneralDomainValue", code, 4);
        EXPECT_EQ(walk({model}), 0);
        EXPECT_THAT(
            log.records(),
            ElementsAreArray(succeeded({noOrvaCorrection(), added("Mom", "Base", "2.1.5", "3.4", "/models/Mom.xml")})));
        EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), fullCalls("Mom")})));
        EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), ElementsAre("3.4"));
    }
}

TEST_F(CatalogueContractTest, missingOrvaReleaseIsAWarningAndLeavesNoBaseModelVersion) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomVersion", "3"}, {"orvaMomCorrection", "6"}})}), 0);
    EXPECT_THAT(
        log.records(),
        ElementsAreArray(succeeded({noOrvaName("Mom"), warning("No OrvaMomRease was found baseModelVersion is not set"),
                                    noVersion(), noRelease(), noCorrection(), added("Mom")})));
    Values calls = bareCalls("Mom");
    calls.insert(calls.begin() + 4, "getGeneralDomainValue Mom,ORVA,orvaMomRelease");
    EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), calls})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, failingOrvaVersionEndsTheWalk) {
    expectFatal(3, "Could not get orva mom version", {-1, -8, 7});
}

TEST_F(CatalogueContractTest, failingOrvaReleaseEndsTheWalk) {
    expectFatal(4, "Could not get orva mom release", {-1, -8, 7});
}

TEST_F(CatalogueContractTest, nullOrvaNameAndVersionCountAsMissing) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomName", std::nullopt}, {"orvaMomVersion", std::nullopt}})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), noVersion(), noRelease(),
                                                           noCorrection(), added("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelIdentifier"), IsEmpty());
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, nullOrvaReleaseCountsAsMissing) {
    EXPECT_EQ(walk({withOrva(bare("Mom"), {{"orvaMomVersion", "3"}, {"orvaMomRelease", std::nullopt}})}), 0);
    EXPECT_THAT(
        log.records(),
        ElementsAreArray(succeeded({noOrvaName("Mom"), warning("No OrvaMomRease was found baseModelVersion is not set"),
                                    noVersion(), noRelease(), noCorrection(), added("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "baseModelVersion"), IsEmpty());
}

// A domain read that gives 0 and leaves its output alone counts as one that gives a null value.

TEST_F(CatalogueContractTest, orvaNameThatIsNotWrittenCountsAsMissing) {
    host.leaveOutput("getGeneralDomainValue", 1 + orvaReads);
    EXPECT_EQ(walk({full("One"), withOrva(bare("Two"), {{"orvaMomName", "Base"}})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({fullRecords("One"), bareRecords("Two")})));
    EXPECT_THAT(valuesOf("Two", "baseModelIdentifier"), IsEmpty());
}

TEST_F(CatalogueContractTest, orvaVersionThatIsNotWrittenCountsAsMissing) {
    host.leaveOutput("getGeneralDomainValue", 2 + orvaReads);
    EXPECT_EQ(walk({full("One"), withOrva(bare("Two"), {{"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({fullRecords("One"), bareRecords("Two")})));
    EXPECT_THAT(valuesOf("Two", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, orvaReleaseThatIsNotWrittenCountsAsMissing) {
    host.leaveOutput("getGeneralDomainValue", 3 + orvaReads);
    EXPECT_EQ(walk({full("One"), withOrva(bare("Two"), {{"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}})}), 0);
    EXPECT_THAT(log.records(),
                ElementsAreArray(succeeded({fullRecords("One"), noOrvaName("Two"),
                                            warning("No OrvaMomRease was found baseModelVersion is not set"),
                                            noVersion(), noRelease(), noCorrection(), added("Two")})));
    EXPECT_THAT(valuesOf("Two", "baseModelVersion"), IsEmpty());
}

TEST_F(CatalogueContractTest, orvaCorrectionThatIsNotWrittenIsPassedOverInSilence) {
    host.leaveOutput("getGeneralDomainValue", 4 + orvaReads);
    FakeModel model = full("Two");
    model.features.reset();
    EXPECT_EQ(walk({full("One"), model}), 0);
    EXPECT_THAT(
        log.records(),
        ElementsAreArray(succeeded({fullRecords("One"), added("Two", "Base", "2.1.5", "3.4", "/models/Two.xml")})));
    EXPECT_THAT(valuesOf("Two", "baseModelVersion"), ElementsAre("3.4"));
}

// The model's own version.

TEST_F(CatalogueContractTest, versionJoinsWhatTheModelHas) {
    struct Row {
        std::optional<std::string> version, release, correction;
        const char* composed;
    };
    const std::vector<Row> rows = {{"2", "1", "5", "2.1.5"}, {"2", "1", {}, "2.1"}, {"2", {}, "5", "25"},
                                   {"2", {}, {}, "2"},       {{}, "1", "5", "1.5"}, {{}, "1", {}, "1"},
                                   {{}, {}, "5", "5"},       {{}, {}, {}, ""}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.composed);
        EXPECT_EQ(walk({FakeModel{"Mom", row.version, row.release, row.correction}}), 0);
        EXPECT_THAT(
            log.records(),
            ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), row.version ? Records() : noVersion(),
                                        row.release ? Records() : noRelease(),
                                        row.correction ? Records() : noCorrection(), added("Mom", row.composed)})));
        EXPECT_THAT(valuesOf("Mom", "version"), ElementsAre(row.composed));
    }
}

TEST_F(CatalogueContractTest, emptyVersionAndReleaseCountAsPresent) {
    EXPECT_EQ(walk({FakeModel{"Mom", "", "", "5"}}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), added("Mom", "..5")})));
    EXPECT_THAT(valuesOf("Mom", "version"), ElementsAre("..5"));
}

TEST_F(CatalogueContractTest, failingVersionEndsTheWalk) {
    expectFatal(6, "Could not get mom version");
}

TEST_F(CatalogueContractTest, failingReleaseEndsTheWalk) {
    expectFatal(8, "Could not get mom release");
}

TEST_F(CatalogueContractTest, failingCorrectionIsAnErrorButCountsAsAbsent) {
    startWith({});
    for (const TevReturnT code : {-1, -2, -8, 7}) {
        SCOPED_TRACE(code);
        FakeModel model = full("Mom");
        model.features.reset();
        host.failCall("getMomStringProperty", code, 3);
        EXPECT_EQ(walk({model}), 0);
        EXPECT_THAT(log.records(),
                    ElementsAreArray(succeeded({error("Could not get mom correction"), noCorrection(),
                                                added("Mom", "Base", "2.1", "3.4.6", "/models/Mom.xml")})));
        EXPECT_THAT(host.calls(), ElementsAreArray(joined({firstCalls(), fullCalls("Mom")})));
        EXPECT_THAT(valuesOf("Mom", "version"), ElementsAre("2.1"));
    }
}

// The features.

TEST_F(CatalogueContractTest, featuresAreNotedInOrderAndGivenAsValues) {
    EXPECT_EQ(walk({withFeatures(bare("Mom"), {"Gamma", "Alpha", "Gamma", ""})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), noVersion(),
                                                           feature("Gamma"), feature("Alpha"), feature("Gamma"),
                                                           feature(""), noRelease(), noCorrection(), added("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "selectedModelOptions"), ElementsAre("Gamma", "Alpha", "Gamma", ""));
}

TEST_F(CatalogueContractTest, emptyFeatureListIsNotedAndGivesNoValues) {
    EXPECT_EQ(walk({withFeatures(bare("Mom"), {})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), noVersion(),
                                                           noFeatures(), noRelease(), noCorrection(), added("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "selectedModelOptions"), IsEmpty());
}

TEST_F(CatalogueContractTest, nullFeatureListOfTheFirstModelIsPassedOverInSilenceAndGivesNoValues) {
    EXPECT_EQ(walk({bare("Mom")}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(succeeded({bareRecords("Mom")})));
    EXPECT_THAT(valuesOf("Mom", "selectedModelOptions"), IsEmpty());
}

TEST_F(CatalogueContractTest, nullFeatureListKeepsThatOfTheModelBefore) {
    EXPECT_EQ(walk({bare("One"), withFeatures(bare("Two"), {"Alpha"}), bare("Three"), bare("Four"),
                    withFeatures(bare("Five"), {"Beta"}), bare("Six")}),
              0);
    EXPECT_THAT(valuesOf("One", "selectedModelOptions"), IsEmpty());
    EXPECT_THAT(valuesOf("Two", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_THAT(valuesOf("Three", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_THAT(valuesOf("Four", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_THAT(valuesOf("Five", "selectedModelOptions"), ElementsAre("Beta"));
    EXPECT_THAT(valuesOf("Six", "selectedModelOptions"), ElementsAre("Beta"));
}

TEST_F(CatalogueContractTest, emptyFeatureListReplacesThatOfTheModelBefore) {
    startWith({withFeatures(bare("One"), {"Alpha"}), withFeatures(bare("Two"), {}), bare("Three")});
    EXPECT_THAT(valuesOf("Two", "selectedModelOptions"), IsEmpty());
    EXPECT_THAT(valuesOf("Three", "selectedModelOptions"), IsEmpty());
}

TEST_F(CatalogueContractTest, firstModelTakesNoFeaturesFromAnEarlierWalk) {
    startWith({withFeatures(bare("One"), {"Alpha"})});
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(walk({bare("One")}), 0);
    EXPECT_THAT(valuesOf("One", "selectedModelOptions"), IsEmpty());
}

TEST_F(CatalogueContractTest, failingFeatureListEndsTheWalk) {
    expectFatal(7, "Could not get model feature names");
}

TEST_F(CatalogueContractTest, secondStopReleasesNothingMore) {
    startWith({withFeatures(bare("One"), {"Alpha"}), bare("Two")});
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(walk({withFeatures(bare("One"), {"Beta"}), bare("Two")}), 0);
    EXPECT_THAT(valuesOf("Two", "selectedModelOptions"), ElementsAre("Beta"));
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(stop(), 0);
}

TEST_F(CatalogueContractTest, failingModelLeavesTheListItSharesToTheModelsBefore) {
    startWith({});
    host.failCall("getMomFileName", -1, 3);
    EXPECT_EQ(walk({withFeatures(bare("One"), {"Alpha"}), bare("Two"), bare("Failing")}), -1);
    EXPECT_THAT(valuesOf("One", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_THAT(valuesOf("Two", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_EQ(stop(), 0);
}

TEST_F(CatalogueContractTest, failingModelTakesItsOwnListWithIt) {
    startWith({});
    host.failCall("getMomFileName", -1, 2);
    EXPECT_EQ(walk({withFeatures(bare("One"), {"Alpha"}), withFeatures(bare("Failing"), {"Beta"})}), -1);
    EXPECT_THAT(valuesOf("One", "selectedModelOptions"), ElementsAre("Alpha"));
    EXPECT_EQ(stop(), 0);
}

// The file.

TEST_F(CatalogueContractTest, fileIsAskedForWithTheModelsOwnVersion) {
    EXPECT_EQ(walk({FakeModel{"One", "2", "1", "5"}, FakeModel{"Two", {}, "1", "5"}, FakeModel{"Three", ""}}), 0);
    Values calls;
    for (const std::string& call : host.calls()) {
        if (call.rfind("getMomFileName", 0) == 0) {
            calls.push_back(call);
        }
    }
    EXPECT_THAT(calls, ElementsAre("getMomFileName One,2", "getMomFileName Two,null", "getMomFileName Three,"));
}

TEST_F(CatalogueContractTest, failingFileEndsTheWalk) {
    expectFatal(10, "Could not get file name from model repository extension");
}

TEST_F(CatalogueContractTest, pathWithoutALastComponentEndsTheWalk) {
    startWith({});
    for (const std::string path : {"name.xml", "dir/", "/models/name.xml/", "/", ""}) {
        SCOPED_TRACE(path);
        expectNoFileName(withFile(bare("Failing"), path));
    }
}

TEST_F(CatalogueContractTest, nullPathEndsTheWalk) {
    startWith({});
    FakeModel failing = bare("Failing");
    failing.nullFile = true;
    expectNoFileName(failing);
}

TEST_F(CatalogueContractTest, anyPathWithALastComponentWillDo) {
    for (const std::string path : {"/name", "dir/name.xml", "//a//b", "/models/../name with blanks"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(walk({withFile(bare("Mom"), path)}), 0);
        EXPECT_THAT(log.records(),
                    ElementsAreArray(succeeded({noOrvaName("Mom"), noOrvaVersion(), noVersion(), noRelease(),
                                                noCorrection(), added("Mom", "", "", "", path)})));
    }
}

// The log's level.

TEST_F(CatalogueContractTest, tracesNeedTheHighestLevel) {
    Tev::LoggingWrapper::instance().set_level(7);
    EXPECT_EQ(walk({withFeatures(bare("Mom"), {"Alpha"})}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({noVersion(), feature("Alpha"), noRelease()})));
}

TEST_F(CatalogueContractTest, noticesNeedLevelSix) {
    const FakeModel model = withOrva(bare("Mom"), {{"orvaMomVersion", "3"}});
    const Records warningOnly = warning("No OrvaMomRease was found baseModelVersion is not set");
    Tev::LoggingWrapper::instance().set_level(6);
    EXPECT_EQ(walk({model}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({warningOnly, noVersion(), noRelease()})));
    Tev::LoggingWrapper::instance().set_level(5);
    EXPECT_EQ(walk({model}), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(warningOnly));
}

TEST_F(CatalogueContractTest, warningsNeedLevelFourAndErrorsLevelThree) {
    const FakeModel model = withOrva(FakeModel{"Mom", "2", "1"}, {{"orvaMomVersion", "3"}});
    const auto walkWithError = [&](int level) {
        Tev::LoggingWrapper::instance().set_level(level);
        host.failCall("getMomStringProperty", -1, 3);
        EXPECT_EQ(walk({model}), 0);
        return log.records();
    };
    const Records theError = error("Could not get mom correction");
    EXPECT_THAT(
        walkWithError(4),
        ElementsAreArray(inOrder({warning("No OrvaMomRease was found baseModelVersion is not set"), theError})));
    EXPECT_THAT(walkWithError(3), ElementsAreArray(theError));
    EXPECT_THAT(walkWithError(2), IsEmpty());
}

}  // namespace

}  // namespace TevTest

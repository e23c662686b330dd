// Every call of the framework that a component makes in its life fails once, in a life of its own. The calls are
// counted, not picked. The host tries a step that failed once more, and goes on.

#include <sys/wait.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ContractTest.h"
#include "ExportParameters.h"
#include "FakeClient.h"
#include "FileText.h"
#include "Portal.h"
#include "TempFolder.h"

namespace TevTest {

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Field;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* transportDn = "ManagedElement=1,Transport=1";
constexpr const char* sshDn = "ManagedElement=1,SystemFunctions=1,SecM=1,Ssh=1";
constexpr const char* sshPath = "ManagedElement,SystemFunctions,SecM,Ssh";

/// What a host sees of a component's life: the outcome of each step, by name.
using Life = std::map<std::string, std::string>;

/// What has to come of a fault.
struct Outcome {
    Life life;
    Values log{};         ///< the errors and warnings
    std::string trace{};  ///< the beginning of a debug trace besides; empty when there need be none
};

/// A call that a start does not do without.
struct NeededCall {
    const char* operation;
    const char* argument;  ///< a part of the arguments
    const char* text;      ///< what is logged of its failure, if anything
    bool isOfCatalogue = true;
};

const std::vector<NeededCall> neededCalls = {
    {"getInterface", "DalOamSpiTransaction,", "Could not get transaction service", false},
    {"getInterface", "DalMgmtSpiThreadContext,", "Could not get threadContext service", false},
    {"getInterface", "DalOamSpiModelRepository,", "Could not get model repository interface", false},
    {"getInterface", "DalOamSpiModelRepositoryExtension,", "Could not get model repository extension interface", false},
    {"getFirstMom", "", ""},
    {"getNextMom", "", ""},
    {"getMomGeneralProperties", "", "Could not get general properties from mom"},
    {"getGeneralStringProperty", "", "Could not get mom name"},
    {"getGeneralDomainValue", "orvaMomName", "Could not get orva mom name"},
    {"getGeneralDomainValue", "orvaMomVersion", "Could not get orva mom version"},
    {"getGeneralDomainValue", "orvaMomRelease", "Could not get orva mom release"},
    {"getMomStringProperty", ",0", "Could not get mom version"},
    {"getMomStringProperty", ",1", "Could not get mom release"},
    {"getMomFeatureNames", "", "Could not get model feature names"},
    {"getMomFileName", "", "Could not get file name from model repository extension"}};

bool has(const std::string& call, const std::string& operation, const std::string& argument = "") {
    return call.compare(0, call.find(' '), operation) == 0 && call.find(argument) != std::string::npos;
}

std::string shown(const Values& values) {
    return testing::PrintToString(values);
}

}  // namespace

class FaultsTest : public ContractTest, public testing::WithParamInterface<TevReturnT> {
protected:
    FaultsTest() {
        component->terminate();  // each life begins with a registration of its own
        FakeModel full{"Full", "2", "1", "5"};
        full.orva = {
            {"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}};
        full.features = {"Alpha", "Beta"};
        full.file = folder.write("Full.xml", "<mom name=\"Full\"/>");
        host.models = {full, FakeModel{"Plain"}};
        host.objects = {"ManagedElement=1",
                        transportDn,
                        oamBulkDn,
                        "ManagedElement=1,SystemFunctions=1",
                        "ManagedElement=1,SystemFunctions=1,SecM=1",
                        sshDn};
        dscp.theUint8 = 10;
        host.setAttribute(oamBulkDn, "dscp", {DalMoTypeUint8, 1, &dscp});
        host.setTexts(sshDn, "selectedCiphers", {"aes128-ctr", "aes256-ctr"});
        host.setTexts(sshDn, "selectedKeyExchanges", {"curve25519-sha256"});
        host.setTexts(sshDn, "selectedMacs", {"hmac-sha2-256"});
        Tev::Portal::setAccessor(host.accessor());
    }

    ~FaultsTest() override { Tev::Portal::setAccessor(nullptr); }

    /// The whole life, from `dalLCMinit` to `dalLCMterminate`. Whatever has to succeed also with a fault is expected
    /// here; the records and calls are those of this life.
    Life live() {
        forget();
        Life life;
        take(life, "init", [this] { return init(configuration.c_str()); });
        take(life, "start", [this] { return start(); }, [this] { expectNotStarted(); });
        take(life, "join", [this] { return resource().join(txHandle); });
        const Values keys = list(txHandle);
        life["list"] = shown(keys);
        for (const std::string& key : keys) {
            for (const char* const attribute : {"schemaId", "identifier", "baseModelIdentifier", "version",
                                                "baseModelVersion", "selectedModelOptions"}) {
                life[key + " " + attribute] = shown(read(txHandle, key, attribute));
            }
        }
        exportFull(life);
        EXPECT_EQ(resource().prepare(txHandle), 0);
        EXPECT_EQ(resource().commit(txHandle), 0);
        EXPECT_EQ(resource().finish(txHandle), 0);
        expectNothingHeld();
        EXPECT_EQ(stop(), 0);
        component->terminate();
        return life;
    }

    /// Carries out a step and notes its code. After a failure it is carried out again, which has to succeed.
    template <class Step, class Between>
    static void take(Life& life, const std::string& name, Step step, Between between) {
        const TevReturnT code = step();
        life[name] = std::to_string(code);
        if (code != 0) {
            between();
            EXPECT_EQ(step(), 0) << name << " after a failure";
        }
    }

    template <class Step>
    static void take(Life& life, const std::string& name, Step step) {
        take(life, name, step, [] {});
    }

    void expectNotStarted() {
        void* iterator = nullptr;
        const LogCapture quiet(0);
        EXPECT_EQ(objects().newMoIterator(txHandle, parentDn, "Schema", &iterator), 2);
        EXPECT_EQ(stop(), 0);
    }

    void exportFull(Life& life) {
        const std::string copy = folder.path() / "copy";
        ExportParameters parameters("sftp://tester@127.0.0.1" + copy, "secret");
        const std::size_t messagesBefore = host.messages().size();
        DalMoAttributeValueContainer* result = nullptr;
        life["export"] =
            std::to_string(objects().action(txHandle, dnOf("Full").c_str(), "export", parameters.array, &result));
        life["result"] = result == nullptr ? "none" : "type " + std::to_string(result->type);
        life["copy"] = contents(copy);
        for (const char* const option : {"-oIPQoS", "-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
            life[option] = life["copy"].empty() ? "" : client.option(option);
        }
        Values messages;
        for (std::size_t i = messagesBefore; i < host.messages().size(); ++i) {
            messages.push_back(host.messages()[i].second);
        }
        life["messages"] = shown(messages);
        std::filesystem::remove(copy);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no client is left
    }

    /// Expects that the component keeps nothing of the transaction, which is finished; its debug trace tells.
    void expectNothingHeld() {
        LogCapture capture;
        EXPECT_EQ(resource().finish(txHandle), 0);
        EXPECT_THAT(capture.records(), ElementsAreArray(nothingHeld(txHandle)));
    }

    /// What has to come of a fault with `code` in the last of `calls`, which begin the life; without it, of `life`.
    static Outcome outcomeOf(const Values& calls, TevReturnT code, const Life& life) {
        const std::string& call = calls.back();
        Outcome outcome{life};
        const auto isPortal = [](const std::string& other) { return has(other, "getPortal", "3"); };
        const auto portals = std::count_if(calls.begin(), calls.end(), isPortal);
        if (portals > 1 && !has(call, "addMessage") && !has(call, "unregisterComponent")) {
            leaveOutSetting(outcome, portals - 1, has(call, "router.newMoIterator") || has(call, "router.nextMo"),
                            code);
        } else if (has(call, "getPortal", "3")) {
            outcome.life["init"] = "-1";
        } else if (has(call, "registerComponent")) {
            outcome.life["init"] = std::to_string(code);
        } else if (has(call, "registerParticipant")) {
            outcome.life["join"] = std::to_string(code);
            outcome.log = {"Failed to registerParticipant"};
        } else if (has(call, "addMessage")) {
            outcome.life["messages"] = shown({});
            outcome.log = {"Failed to add message to thread context message [File transfer successful]"};
        } else if (!has(call, "getPortal", "1") && !has(call, "unregisterComponent") &&
                   !leaveOutOfCatalogue(outcome, call, code)) {
            failStart(outcome, call, code);
        }
        return outcome;
    }

    /// The outcome when the reading of one of the settings of an export fails, which are read in this order: transport,
    /// DSCP, SSH, ciphers, key exchanges, MACs.
    static void leaveOutSetting(Outcome& outcome, std::ptrdiff_t setting, bool isListing, TevReturnT code) {
        if (setting <= 2) {
            outcome.life["-oIPQoS"] = "0";
            outcome.trace = "Could not retrieve DSCP value, reason ";
        } else if (setting == 3) {
            for (const char* const option : {"-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
                outcome.life[option] = "";
            }
            outcome.trace = "Ssh MOC does not exit";
            if (!isListing || code != -2) {
                outcome.log = {std::string("Could not find instance of classpath : ") + sshPath};
            }
        } else {
            const std::pair<const char*, const char*> algorithms[] = {{"-oCiphers", "selectedCiphers"},
                                                                      {"-oKexAlgorithms", "selectedKeyExchanges"},
                                                                      {"-oMACs", "selectedMacs"}};
            const auto& [option, attribute] = algorithms[setting - 4];
            outcome.life[option] = "";
            outcome.log = {std::string("Unable to get selected(") + attribute + ") for DN(" + sshDn + ")"};
        }
    }

    /// The outcome when a model is read all the same. Returns whether it is.
    static bool leaveOutOfCatalogue(Outcome& outcome, const std::string& call, TevReturnT code) {
        const bool isNotFound = code == -2;
        const auto lose = [&](const std::string& attribute, const Values& rest) {
            if (call.find(" Full") != std::string::npos) {
                outcome.life["Full " + attribute] = shown(rest);
            }
            return true;
        };
        if (has(call, "getMomStringProperty", ",8")) {
            outcome.log = {"Could not get mom correction"};
            return lose("version", {"2.1"});
        }
        if (has(call, "getGeneralDomainValue", "orvaMomCorrection")) {
            outcome.trace = "Skiping OrvaMomCorrection since it is not available";
            return lose("baseModelVersion", {"3.4"});
        }
        if (isNotFound && has(call, "getGeneralDomainValue", "orvaMomName")) {
            const std::string model = call.find(" Full") != std::string::npos ? "Full" : "Plain";
            outcome.trace = "No OrvaMomName was found baseModelIdentifier is not set, id :" + model;
            return lose("baseModelIdentifier", {});
        }
        if (isNotFound && has(call, "getGeneralDomainValue", "orvaMomVersion")) {
            outcome.trace = "No OrvaMomVersion was found baseModelVersion is not set";
            return lose("baseModelVersion", {});
        }
        if (isNotFound && has(call, "getGeneralDomainValue", "orvaMomRelease")) {
            outcome.log = {"No OrvaMomRease was found baseModelVersion is not set"};
            return lose("baseModelVersion", {});
        }
        if (isNotFound && (has(call, "getFirstMom") || has(call, "getNextMom"))) {
            endModelsWith(outcome, call);
            return true;
        }
        return false;
    }

    /// The outcome when there are no models after this call: that is what the code says there.
    static void endModelsWith(Outcome& outcome, const std::string& call) {
        Values keys = {"Full", "Plain"};
        keys.resize(has(call, "getFirstMom") ? 0 : has(call, "getNextMom", "Full") ? 1 : 2);
        outcome.life["list"] = shown(keys);
        for (auto entry = outcome.life.begin(); entry != outcome.life.end();) {
            const std::string owner = entry->first.substr(0, entry->first.find(' '));
            const bool isGone = owner != entry->first && std::count(keys.begin(), keys.end(), owner) == 0;
            entry = isGone ? outcome.life.erase(entry) : std::next(entry);
        }
        if (keys.empty()) {
            outcome.log = {"Could not find schema for schemaId [Full] "};
            for (const char* const step : {"copy", "-oIPQoS", "-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
                outcome.life[step] = "";
            }
            outcome.life["export"] = "-2";
            outcome.life["result"] = "none";
            outcome.life["messages"] = shown({"Internal error"});
        }
    }

    /// The outcome of a call that a start needs.
    static void failStart(Outcome& outcome, const std::string& call, TevReturnT code) {
        const auto needed = std::find_if(neededCalls.begin(), neededCalls.end(), [&call](const NeededCall& one) {
            return has(call, one.operation, one.argument);
        });
        ASSERT_NE(needed, neededCalls.end()) << "nobody has said what comes of a failing " << call;
        outcome.life["start"] = std::to_string(code);
        if (*needed->text != '\0') {
            outcome.log.emplace_back(needed->text);
        }
        if (needed->isOfCatalogue) {
            outcome.log.emplace_back("Could not initialize SchemaData vector");
        }
    }

    /// The texts of the errors and warnings of the life.
    Values errors() const {
        Values texts;
        for (const LogRecord& record : log.records()) {
            if (record.type == "LOG" && record.level <= 4) {
                texts.push_back(record.text);
            }
        }
        return texts;
    }

    static constexpr unsigned long txHandle = 815;
    const std::string oamBulkDn = std::string(transportDn) + ",ServiceCategory=OamBulk";
    const TempFolder folder;
    const std::string configuration =
        folder.write("libtev_schema_populator.cfg", "<Configuration><TevSchemaMoService/></Configuration>");
    const EnvironmentVariable configurationFolder{"TEV_CONFIG_DIR", folder.path().string()};
    const FakeClient client;
    DalMoAttributeValue dscp{};
};

// A code that fails nothing would leave the other tests without a meaning.
TEST_F(FaultsTest, lifeWithoutAFaultMakesEveryCallAndServesEverything) {
    const Life life = live();
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(life.at("list"), shown({"Full", "Plain"}));
    EXPECT_EQ(life.at("Full version"), shown({"2.1.5"}));
    EXPECT_EQ(life.at("export"), "0");
    EXPECT_EQ(life.at("result"), "type 15");
    EXPECT_EQ(life.at("copy"), "<mom name=\"Full\"/>");
    EXPECT_EQ(life.at("-oIPQoS"), "40");
    EXPECT_EQ(life.at("-oCiphers"), "aes128-ctr,aes256-ctr");
    EXPECT_EQ(life.at("messages"), shown({"File transfer successful"}));
    std::set<std::string> operations;
    for (const std::string& call : host.calls()) {
        operations.insert(call.substr(0, call.find(' ')));
    }
    EXPECT_THAT(operations,
                ElementsAre("addMessage", "getFirstMom", "getGeneralDomainValue", "getGeneralStringProperty",
                            "getInterface", "getMomFeatureNames", "getMomFileName", "getMomGeneralProperties",
                            "getMomStringProperty", "getNextMom", "getPortal", "registerComponent",
                            "registerParticipant", "router.getMoAttribute", "router.newMoIterator", "router.nextMo",
                            "unregisterComponent"));
}

TEST_P(FaultsTest, everyFaultIsToldAndTheNextLifeIsAWholeOne) {
    const Life whole = live();
    const std::size_t callsOfALife = host.calls().size();
    bool isMet = true;
    for (unsigned int nth = 1; isMet; ++nth) {
        host.failAnyCall(nth, GetParam());
        const Life life = live();
        Values calls = host.calls();
        isMet = calls.size() >= nth;
        calls.resize(std::min<std::size_t>(calls.size(), nth));
        SCOPED_TRACE(testing::Message() << "call " << nth << ": " << calls.back() << (isMet ? "" : ", no fault met"));
        const Outcome expected = isMet ? outcomeOf(calls, GetParam(), whole) : Outcome{whole};
        EXPECT_EQ(life, expected.life);
        EXPECT_THAT(errors(), ElementsAreArray(expected.log));
        if (!expected.trace.empty()) {
            EXPECT_THAT(log.records(), Contains(Field(&LogRecord::text, StartsWith(expected.trace))));
        }
        EXPECT_EQ(host.component() != nullptr, isMet && has(calls.back(), "unregisterComponent"));
        if (isMet) {
            EXPECT_EQ(live(), whole);
            EXPECT_THAT(errors(), IsEmpty());
            EXPECT_EQ(host.component(), nullptr);
            EXPECT_EQ(host.calls().size(), callsOfALife);
        }
    }
}

TEST_P(FaultsTest, faultsHaveTheSameOutcomeBelowTheLevelOfTheirMessages) {
    const LogCapture quiet(2);
    const Life whole = live();
    const Values calls = host.calls();
    for (auto call = calls.begin(); call != calls.end(); ++call) {
        SCOPED_TRACE(*call);
        host.failAnyCall(static_cast<unsigned int>(call - calls.begin()) + 1, GetParam());
        EXPECT_EQ(live(), outcomeOf(Values(calls.begin(), call + 1), GetParam(), whole).life);
        EXPECT_THAT(errors(), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(code, FaultsTest, testing::Values(-1, -2, -8, 7),
                         [](const testing::TestParamInfo<TevReturnT>& parameter) {
                             return (parameter.param < 0 ? "minus" : "") + std::to_string(std::abs(parameter.param));
                         });

}  // namespace TevTest

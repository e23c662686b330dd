// Every call of the framework that a component makes in its life fails once, in a life of its own. The calls are
// counted, not picked. The host tries a step that failed once more, and goes on.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "LifeTest.h"

namespace TevTest {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Field;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* sshPath = "ManagedElement,SystemFunctions,SecM,Ssh";

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

}  // namespace

/// A code that a call of the framework ends with.
class FrameworkFaultsTest : public LifeTest, public testing::WithParamInterface<TevReturnT> {
protected:
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
            outcome.life["Full messages"] = shown({});
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
            outcome.life["Full -oIPQoS"] = "0";
            outcome.trace = "Could not retrieve DSCP value, reason ";
        } else if (setting == 3) {
            for (const char* const option : {"-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
                outcome.life[std::string("Full ") + option] = "";
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
            outcome.life[std::string("Full ") + option] = "";
            outcome.log = {std::string("Unable to get selected(") + attribute + ") for DN(" + sshDn + ")"};
        }
    }

    /// The outcome when a model is read all the same. Returns whether it is.
    static bool leaveOutOfCatalogue(Outcome& outcome, const std::string& call, TevReturnT code) {
        const bool isNotFound = code == -2;
        const bool isFull = call.find(" Full") != std::string::npos;
        const auto lose = [&](const std::string& attribute, const Values& rest) {
            if (isFull) {
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
            outcome.trace = std::string("No OrvaMomName was found baseModelIdentifier is not set, id :") +
                            (isFull ? "Full" : "Plain");
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
        const bool isFullLeft = has(call, "getNextMom");
        const bool isPlainLeft = has(call, "getNextMom", "Plain");
        for (auto entry = outcome.life.begin(); entry != outcome.life.end();) {
            const bool isGone = (!isFullLeft && entry->first.find("Full") != std::string::npos) ||
                                (!isPlainLeft && entry->first.find("Plain") != std::string::npos);
            entry = isGone ? outcome.life.erase(entry) : std::next(entry);
        }
        outcome.life["instances"] = shown(isPlainLeft  ? Values{"Full", "Plain"}
                                          : isFullLeft ? Values{"Full"}
                                                       : Values());
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
};

// A code that fails nothing would leave the other tests without a meaning.
TEST_F(FrameworkFaultsTest, lifeWithoutAFaultMakesEveryCallAndServesEverything) {
    const Life life = live();
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(life.at("instances"), shown({"Full", "Plain"}));
    EXPECT_EQ(life.at("Full version"), shown({"2.1.5"}));
    EXPECT_EQ(life.at("export Full"), "0");
    EXPECT_EQ(life.at("Full result"), "type 15");
    EXPECT_EQ(life.at("Full copy"), "<mom name=\"Full\"/>");
    EXPECT_EQ(life.at("Full -oIPQoS"), "40");
    EXPECT_EQ(life.at("Full -oCiphers"), "aes128-ctr,aes256-ctr");
    EXPECT_EQ(life.at("Full messages"), shown({"File transfer successful"}));
    std::set<std::string> operations;
    for (const std::string& call : host.calls()) {
        operations.insert(call.substr(0, call.find(' ')));
    }
    EXPECT_THAT(
        operations,
        ElementsAre("addMessage", "getFirstMom", "getGeneralDomainValue", "getGeneralStringProperty", "getInterface",
                    "getMomFeatureNames", "getMomFileName", "getMomGeneralProperties", "getMomStringProperty",
                    "getNextMom", "getPortal", "registerComponent", "registerParticipant", "router.getMoAttribute",
                    "router.newMoIterator", "router.nextMo", "unregisterComponent"));
}

TEST_P(FrameworkFaultsTest, everyFaultIsToldAndTheNextLifeIsAWholeOne) {
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

TEST_P(FrameworkFaultsTest, faultsHaveTheSameOutcomeBelowTheLevelOfTheirMessages) {
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

INSTANTIATE_TEST_SUITE_P(code, FrameworkFaultsTest, testing::Values(-1, -2, -8, 7),
                         [](const testing::TestParamInfo<TevReturnT>& parameter) {
                             return (parameter.param < 0 ? "minus" : "") + std::to_string(std::abs(parameter.param));
                         });

}  // namespace TevTest

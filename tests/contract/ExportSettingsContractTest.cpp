#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "ExportTest.h"
#include "TevConfiguration.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* transportDn = "ManagedElement=1,Transport=7";
constexpr const char* oamBulkDn = "ManagedElement=1,Transport=7,ServiceCategory=OamBulk";
constexpr const char* sshDn = "ManagedElement=1,SystemFunctions=2,SecM=3,Ssh=4";
constexpr const char* accessorFile = "src/common/src/MoAccessor";
constexpr const char* sshPath = "ManagedElement,SystemFunctions,SecM,Ssh";

}  // namespace

/// What an export reads of other managed objects and of the configuration file.
class ExportSettingsContractTest : public ExportTest {
protected:
    ExportSettingsContractTest() {
        host.objects = {"ManagedElement=1",
                        transportDn,
                        oamBulkDn,
                        "ManagedElement=1,SystemFunctions=2",
                        "ManagedElement=1,SystemFunctions=2,SecM=3",
                        sshDn};
        setDscp({10});
        host.setTexts(sshDn, "selectedCiphers", {"aes128-ctr", "aes256-ctr"});
        host.setTexts(sshDn, "selectedKeyExchanges", {"curve25519-sha256"});
        host.setTexts(sshDn, "selectedMacs", {"hmac-sha2-256", "hmac-sha2-512", "hmac-sha1"});
    }

    void setDscp(const std::vector<std::uint8_t>& values, std::int32_t type = DalMoTypeUint8) {
        dscpCells.assign(values.size(), {});
        for (std::size_t i = 0; i < values.size(); ++i) {
            dscpCells[i].theUint8 = values[i];
        }
        host.setAttribute(oamBulkDn, "dscp", {type, static_cast<std::uint32_t>(values.size()), dscpCells.data()});
    }

    unsigned int dscp() { return std::get<13>(argumentsOf()); }
    bool debug() { return std::get<8>(argumentsOf()); }

    /// Ciphers, key exchanges and MACs.
    std::vector<std::string> algorithms() {
        const FakeRunner::Arguments arguments = argumentsOf();
        return {std::get<9>(arguments), std::get<10>(arguments), std::get<11>(arguments)};
    }

    /// Expects DSCP 0, the trace of why, and `messages` at their levels besides.
    void expectNoDscp(const std::string& reason) {
        SCOPED_TRACE(reason);
        log.clear();
        EXPECT_EQ(dscp(), 0U);
        EXPECT_THAT(log.recordsOf("getOamBulkDscpValue"),
                    ElementsAreArray(
                        inOrder({dscpTrace(9, " >> "), dscpTrace(0, "Could not retrieve DSCP value, reason " + reason),
                                 dscpTrace(10, " << Returning DSCP value 0")})));
    }

    static Records dscpTrace(int kind, const std::string& text) {
        return debugTrace(kind, moImplFile, "getOamBulkDscpValue", text, "Common");
    }

    static Records sshTrace(const std::string& text) {
        return debugTrace(0, moImplFile, "fetchCipherAttrValues", text);
    }

    static Records selected(const std::string& attribute, const std::string& joined) {
        return sshTrace("Selected(" + attribute + ") attribute value is " + joined);
    }

    static Records unable(const std::string& attribute) {
        return warning("fetchCipherAttrValues", "Unable to get selected(" + attribute + ") for DN(" + sshDn + ")");
    }

    static Records noSshInstance() {
        return warning("fetchCipherAttrValues", std::string("Could not find instance of classpath : ") + sshPath);
    }

    /// Expects the algorithms and the records of an export.
    void expectAlgorithms(const std::vector<std::string>& expected, const Records& records) {
        log.clear();
        EXPECT_EQ(algorithms(), expected);
        EXPECT_THAT(log.recordsOf("fetchCipherAttrValues"), ElementsAreArray(records));
    }

    /// Writes the configuration file anew.
    void configure(const std::string& content) {
        folder.write("libtev_schema_populator.cfg", "<Configuration>" + content + "</Configuration>");
    }

    void expectDebug(bool expected, const std::string& content) {
        SCOPED_TRACE(content);
        configure(content);
        log.clear();
        EXPECT_EQ(debug(), expected);
        EXPECT_THAT(log.recordsOf("isDebugModeSet"), IsEmpty());
    }

    void expectNoDebug(const std::string& warningText) {
        log.clear();
        EXPECT_FALSE(debug());
        EXPECT_THAT(log.recordsOf("isDebugModeSet"), ElementsAreArray(warning("isDebugModeSet", warningText)));
    }

    std::vector<DalMoAttributeValue> dscpCells;
};

// All of them.

TEST_F(ExportSettingsContractTest, everythingIsReadInTheCallersTransaction) {
    EXPECT_EQ(exportTo(uri), 0);
    std::vector<std::string> calls;
    for (const std::string& call : host.calls()) {
        if (call.find("router.") == 0 && call != "router.nextMo") {
            calls.push_back(call);
        }
    }
    const std::string ssh = std::string("router.getMoAttribute 815,") + sshDn;
    EXPECT_THAT(calls, ElementsAre("router.newMoIterator 815,,ManagedElement",
                                   "router.newMoIterator 815,ManagedElement=1,Transport",
                                   std::string("router.getMoAttribute 815,") + oamBulkDn + ",dscp",
                                   "router.newMoIterator 815,,ManagedElement",
                                   "router.newMoIterator 815,ManagedElement=1,SystemFunctions",
                                   "router.newMoIterator 815,ManagedElement=1,SystemFunctions=2,SecM",
                                   "router.newMoIterator 815,ManagedElement=1,SystemFunctions=2,SecM=3,Ssh",
                                   ssh + ",selectedCiphers", ssh + ",selectedKeyExchanges", ssh + ",selectedMacs"));
}

TEST_F(ExportSettingsContractTest, runnerGetsTheSettings) {
    configure("<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
    FakeRunner::Arguments expected = plainArguments();
    std::get<8>(expected) = true;
    std::get<9>(expected) = "aes128-ctr,aes256-ctr";
    std::get<10>(expected) = "curve25519-sha256";
    std::get<11>(expected) = "hmac-sha2-256,hmac-sha2-512,hmac-sha1";
    std::get<13>(expected) = 10;
    EXPECT_EQ(argumentsOf(), expected);
}

TEST_F(ExportSettingsContractTest, dscpValueAndAlgorithmsAreReadThroughOneAccessorEach) {
    const FakeTransaction::Arguments arguments(true, 1, 60);
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(transactions.constructed, ElementsAre(arguments, arguments));
    transactions.constructed.clear();
    EXPECT_EQ(exportTo("sftp:"), -1);
    EXPECT_THAT(transactions.constructed, IsEmpty());
}

TEST_F(ExportSettingsContractTest, readsLeaveTheirTracesInOrder) {
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder(
                    {dscpTrace(9, " >> "),
                     debugTrace(0, accessorFile, "getAttr",
                                std::string("MoAccessor::getAttr<> dName :") + oamBulkDn + " attrName :dscp", "Common"),
                     dscpTrace(10, " << Returning DSCP value 10"), selected("selectedCiphers", "aes128-ctr,aes256-ctr"),
                     selected("selectedKeyExchanges", "curve25519-sha256"),
                     selected("selectedMacs", "hmac-sha2-256,hmac-sha2-512,hmac-sha1")})));
    Tev::LoggingWrapper::instance().set_level(7);
    log.clear();
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(log.records(), IsEmpty());
}

// The DSCP value.

TEST_F(ExportSettingsContractTest, dscpIsReadAsItIs) {
    for (const std::uint8_t value : std::vector<std::uint8_t>{0, 1, 46, 63, 64, 255}) {
        setDscp({value});
        log.clear();
        EXPECT_EQ(dscp(), value);
        EXPECT_THAT(log.recordsOf("getOamBulkDscpValue"),
                    ElementsAreArray(inOrder(
                        {dscpTrace(9, " >> "), dscpTrace(10, " << Returning DSCP value " + std::to_string(value))})));
    }
}

TEST_F(ExportSettingsContractTest, dscpIsReadOfTheFirstTransportInstance) {
    host.objects.insert(host.objects.begin(), {"ManagedElement=0", "ManagedElement=1,Transport=8"});
    expectNoDscp("getMoAttribute failed for ManagedElement=1,Transport=8,ServiceCategory=OamBulk::dscp: -2");
}

TEST_F(ExportSettingsContractTest, missingTransportGivesDscpZero) {
    host.objects = {"ManagedElement=1"};
    expectNoDscp("getMoAttribute failed for ,ServiceCategory=OamBulk::dscp: -2");
}

TEST_F(ExportSettingsContractTest, failingSearchForTransportGivesDscpZero) {
    host.failCall("router.newMoIterator", -1);
    expectNoDscp("newMoIterator failed for ManagedElement: -1");
}

TEST_F(ExportSettingsContractTest, dscpOfSeveralValuesIsZeroAndAnErrorRecord) {
    setDscp({10, 11});
    const std::string reason = std::string("Attribute is a sequence: ") + oamBulkDn + "::dscp";
    expectNoDscp(reason);
    expectRecordsFromLevel(3, uri, message(3, accessorFile, "getAttr", reason));
}

TEST_F(ExportSettingsContractTest, dscpWithoutAValueIsZero) {
    setDscp({});
    expectNoDscp(std::string("Attribute has no value set: ") + oamBulkDn + "::dscp");
}

TEST_F(ExportSettingsContractTest, dscpOfAnotherTypeIsZero) {
    setDscp({10}, DalMoTypeInt8);
    expectNoDscp(std::string("Attribute has values of type 1, not 5: ") + oamBulkDn + "::dscp");
}

TEST_F(ExportSettingsContractTest, missingRouterGivesNoSettings) {
    host.withdraw("DalOamSpiManagedObject");
    expectNoDscp("getInterface failed for DalOamSpiManagedObject: -2");
    expectAlgorithms({"", "", ""}, inOrder({noSshInstance(), sshTrace("Ssh MOC does not exit")}));
}

TEST_F(ExportSettingsContractTest, otherExceptionsOfTheDscpReadGoToTheCaller) {
    host.whenCalled("router.getMoAttribute", [] { throw std::out_of_range("no such object"); });
    EXPECT_THROW(exportTo(uri), std::out_of_range);
    host.whenCalled("router.getMoAttribute", [] { throw 42; });
    EXPECT_THROW(exportTo(uri), int);
    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_THAT(runner.constructed, IsEmpty());
    EXPECT_TRUE(isResultUntouched());
    EXPECT_THAT(resolver.freed(), ElementsAre("list", "list"));
}

TEST_F(ExportSettingsContractTest, exceptionsOfTheFrameworkGiveDscpZero) {
    host.whenCalled("router.newMoIterator", [] { throw Tev::TevException(-5, "the router is %s", "busy"); });
    expectNoDscp("the router is busy");
}

// The algorithms.

TEST_F(ExportSettingsContractTest, algorithmsAreJoinedWithCommas) {
    host.setTexts(sshDn, "selectedCiphers", {"aes128-ctr", "aes256-ctr"});
    host.setTexts(sshDn, "selectedKeyExchanges", {" a ", "", "%s", "b,c"});
    host.setTexts(sshDn, "selectedMacs", {"hmac-sha2-256"});
    expectAlgorithms(
        {"aes128-ctr,aes256-ctr", " a ,,%s,b,c", "hmac-sha2-256"},
        inOrder({selected("selectedCiphers", "aes128-ctr,aes256-ctr"), selected("selectedKeyExchanges", " a ,,%s,b,c"),
                 selected("selectedMacs", "hmac-sha2-256")}));
}

TEST_F(ExportSettingsContractTest, attributesWithoutValuesGiveEmptyLists) {
    for (const char* attribute : {"selectedCiphers", "selectedKeyExchanges", "selectedMacs"}) {
        host.setTexts(sshDn, attribute, {});
    }
    expectAlgorithms({"", "", ""}, {});
}

TEST_F(ExportSettingsContractTest, oneEmptyAlgorithmGivesAnEmptyListToo) {
    host.setTexts(sshDn, "selectedMacs", {""});
    expectAlgorithms({"aes128-ctr,aes256-ctr", "curve25519-sha256", ""},
                     inOrder({selected("selectedCiphers", "aes128-ctr,aes256-ctr"),
                              selected("selectedKeyExchanges", "curve25519-sha256"), selected("selectedMacs", "")}));
}

TEST_F(ExportSettingsContractTest, missingSshObjectGivesEmptyLists) {
    host.objects.pop_back();
    expectAlgorithms({"", "", ""}, sshTrace("Ssh MOC does not exit"));
}

TEST_F(ExportSettingsContractTest, failingSearchForTheSshObjectGivesEmptyLists) {
    const Records records = inOrder({noSshInstance(), sshTrace("Ssh MOC does not exit")});
    host.failCall("router.newMoIterator", -1, 5);  // the first two look for the transport
    expectAlgorithms({"", "", ""}, records);
    // Half way down, whatever is thrown.
    const auto throwAtThirdStep = [&](const std::function<void()>& thrown) {
        unsigned int calls = 0;
        host.whenCalled("router.newMoIterator", [&calls, &thrown] {
            if (++calls == 5) {
                thrown();
            }
        });
        expectAlgorithms({"", "", ""}, records);
        host.whenCalled("router.newMoIterator", nullptr);
    };
    throwAtThirdStep([] { throw std::out_of_range("no such object"); });
    throwAtThirdStep([] { throw 42; });
}

TEST_F(ExportSettingsContractTest, eachListIsReadWhateverBecomesOfTheOthers) {
    const std::vector<std::string> names = {"selectedCiphers", "selectedKeyExchanges", "selectedMacs"};
    const std::vector<std::string> values = {"aes128-ctr,aes256-ctr", "curve25519-sha256",
                                             "hmac-sha2-256,hmac-sha2-512,hmac-sha1"};
    for (std::size_t failing = 0; failing < names.size(); ++failing) {
        std::vector<std::string> expected = values;
        expected[failing].clear();
        std::vector<Records> records;
        for (std::size_t i = 0; i < names.size(); ++i) {
            records.push_back(i == failing ? unable(names[i]) : selected(names[i], values[i]));
        }
        const Records all = inOrder({records[0], records[1], records[2]});
        const auto call = static_cast<unsigned int>(failing) + 2;  // the first reads the DSCP value
        host.failCall("router.getMoAttribute", -2, call);
        expectAlgorithms(expected, all);
        const auto throwThere = [&](const std::function<void()>& thrown) {
            unsigned int calls = 0;
            host.whenCalled("router.getMoAttribute", [&calls, &thrown, call] {
                if (++calls == call) {
                    thrown();
                }
            });
            expectAlgorithms(expected, all);
            host.whenCalled("router.getMoAttribute", nullptr);
        };
        throwThere([] { throw std::out_of_range("no such object"); });
        throwThere([] { throw 42; });
    }
}

TEST_F(ExportSettingsContractTest, algorithmsOfAnotherTypeGiveAnEmptyList) {
    setDscp({10});
    host.setAttribute(sshDn, "selectedMacs", {DalMoTypeUint8, 1, dscpCells.data()});
    expectAlgorithms({"aes128-ctr,aes256-ctr", "curve25519-sha256", ""},
                     inOrder({selected("selectedCiphers", "aes128-ctr,aes256-ctr"),
                              selected("selectedKeyExchanges", "curve25519-sha256"), unable("selectedMacs")}));
}

TEST_F(ExportSettingsContractTest, unreadableListsAreLoggedFromLevelFour) {
    host.setAttribute(sshDn, "selectedMacs", {DalMoTypeVoid, 1, dscpCells.data()});
    expectRecordsFromLevel(4, uri, unable("selectedMacs"));
}

TEST_F(ExportSettingsContractTest, failingSearchForTheSshObjectIsLoggedFromLevelFour) {
    host.withdraw("DalOamSpiManagedObject");
    expectRecordsFromLevel(4, uri, noSshInstance());
}

// The debug switch.

TEST_F(ExportSettingsContractTest, debugElementSwitchesDebugOn) {
    expectDebug(true, "<TevSchemaMoService><isSftpDebugMode>true</isSftpDebugMode></TevSchemaMoService>");
}

TEST_F(ExportSettingsContractTest, textOfTheDebugElementDoesNotMatter) {
    for (const std::string text : {"", "false", "0"}) {
        expectDebug(true, "<TevSchemaMoService><isSftpDebugMode>" + text + "</isSftpDebugMode></TevSchemaMoService>");
    }
}

TEST_F(ExportSettingsContractTest, debugElementCountsAnywhereInTheDocumentAndOftenToo) {
    expectDebug(true, "<isSftpDebugMode/><TevSchemaMoService/>");
    expectDebug(true, "<TevSchemaMoService/><a><b><isSftpDebugMode/></b></a>");
    expectDebug(true, "<TevSchemaMoService><isSftpDebugMode/><isSftpDebugMode/></TevSchemaMoService>");
}

TEST_F(ExportSettingsContractTest, withoutTheDebugElementDebugIsOff) {
    expectDebug(false, "<TevSchemaMoService/>");
    expectDebug(false, "<TevSchemaMoService><IsSftpDebugMode/></TevSchemaMoService><!-- <isSftpDebugMode/> -->");
}

TEST_F(ExportSettingsContractTest, debugIsOffUnlessTheComponentHasOneElement) {
    expectDebug(false, "<isSftpDebugMode/>");
    expectDebug(false, "<TevSchemaMoService/><TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
    expectDebug(false,
                "<TevSchemaMoService><TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>"
                "</TevSchemaMoService>");
}

TEST_F(ExportSettingsContractTest, debugSwitchIsReadAfreshAtEachExport) {
    expectDebug(true, "<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
    expectDebug(false, "<TevSchemaMoService/>");
    expectDebug(true, "<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
}

TEST_F(ExportSettingsContractTest, fileThatCannotBeReadSwitchesDebugOff) {
    const auto reason = [this] {
        try {
            Tev::TevConfiguration().load(configuration);
        } catch (const Tev::TevException& e) {
            return std::string(e.what());
        }
        throw std::logic_error("the file can be read");
    };
    folder.write("libtev_schema_populator.cfg", "<TevSchemaMoService><isSftpDebugMode/>");
    expectNoDebug("Caught exception " + reason() + ". Setting sftp debug mode to false");
    std::filesystem::remove(configuration);
    expectNoDebug("Caught exception " + reason() + ". Setting sftp debug mode to false");
    expectRecordsFromLevel(
        4, uri, warning("isDebugModeSet", "Caught exception " + reason() + ". Setting sftp debug mode to false"));
}

TEST_F(ExportSettingsContractTest, debugSwitchIsReadAfterTheAlgorithmsAndNotForABadUri) {
    std::filesystem::remove(configuration);
    log.clear();
    EXPECT_EQ(exportTo("sftp:"), -1);
    EXPECT_THAT(log.recordsOf("isDebugModeSet"), IsEmpty());
    log.clear();
    EXPECT_EQ(exportTo(uri), 0);
    std::vector<std::string> functions;
    for (const LogRecord& record : log.records()) {
        if (functions.empty() || functions.back() != record.function) {
            functions.push_back(record.function);
        }
    }
    EXPECT_THAT(functions, ElementsAre("getOamBulkDscpValue", "getAttr", "getOamBulkDscpValue", "fetchCipherAttrValues",
                                       "isDebugModeSet"));
}

TEST_F(ExportSettingsContractTest, withoutAFileAtInitialisationDebugIsOff) {
    std::filesystem::remove(configuration);
    restart();
    constexpr const char* noPath = "Got zero pointer for configuration file,setting sftp debug mode to false ";
    expectNoDebug(noPath);
    // A file that comes later is looked for at the next initialisation only.
    configure("<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
    expectNoDebug(noPath);
    expectRecordsFromLevel(4, uri, warning("isDebugModeSet", noPath));
    restart();
    EXPECT_TRUE(debug());
}

TEST_F(ExportSettingsContractTest, debugSwitchIsReadFromTheConfigurationFolderNotFromTheFileOfTheRegistration) {
    const std::string other = folder.write(
        "other.cfg", "<TevSchemaMoService><isSftpDebugMode/><sftpTimeout>7</sftpTimeout></TevSchemaMoService>");
    restart(other);
    const FakeRunner::Arguments arguments = argumentsOf();
    EXPECT_FALSE(std::get<8>(arguments));
    EXPECT_EQ(std::get<12>(arguments), 7);
    expectDebug(true, "<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
}

TEST_F(ExportSettingsContractTest, pathOfTheConfigurationIsThatOfTheInitialisation) {
    const TempFolder laterFolder;
    laterFolder.write("libtev_schema_populator.cfg", "<TevSchemaMoService><isSftpDebugMode/></TevSchemaMoService>");
    const EnvironmentVariable later("TEV_CONFIG_DIR", laterFolder.path().string());
    EXPECT_FALSE(debug());
    restart();
    EXPECT_TRUE(debug());
}

}  // namespace TevTest

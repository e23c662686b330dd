#include <netdb.h>
#include <sys/socket.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "ExportTest.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* wrongNumber = "Wrong number of parameters to action";
constexpr const char* wrongFirst = "Wrong type or number of values in the first argument";
constexpr const char* wrongSecond = "Wrong type or number of values in the second argument";
constexpr const char* needsPassword = "sftp requires password";
constexpr const char* hostFunction = "makeHostIPV6CompatiableIfHostIsIPV6";
constexpr const char* noUri = "The URI in the export action could not be parsed";

std::string unsupported(const std::string& scheme) {
    return "Unsupported URI schema: " + scheme +
           ". Only SFTP protocol is supported with URI schema: sftp://[<user>@]<host>[:<port>]/<path>";
}

}  // namespace

/// The checks of the action's arguments, and how its URI is taken apart.
class ExportArgumentsContractTest : public ExportTest {
protected:
    /// Expects -8 and one record, from level 3 on, and that nothing but the posting of `posted` has been done.
    void expectRefused(const std::string& calledDn, const char* actionName, DalMoAttributeValueContainer** array,
                       const std::string& text, const Messages& posted = {}) {
        SCOPED_TRACE(text);
        const std::size_t before = host.messages().size();
        forget();
        EXPECT_EQ(act(calledDn, actionName, array), -8);
        expectNothingDone(error("validateActionArguments", text), before, posted);
        const LogCapture below(2);
        EXPECT_EQ(act(calledDn, actionName, array), -8);
        EXPECT_THAT(below.records(), IsEmpty());
    }

    /// Expects -1, one record, and that the operator was told so and nothing else was done.
    void expectBadUri(const std::string& destination, const std::string& text, const std::string& posted) {
        SCOPED_TRACE(destination);
        const std::size_t before = host.messages().size();
        forget();
        EXPECT_EQ(exportTo(destination), -1);
        expectNothingDone(error("processActionParameters", escaped(text)), before, {{1, posted}});
    }

    /// Expects these records and messages, and that nothing else has been done.
    void expectNothingDone(const Records& records, std::size_t messagesBefore, const Messages& posted) {
        EXPECT_THAT(log.records(), ElementsAreArray(records));
        Messages messages = host.messages();
        messages.erase(messages.begin(), messages.begin() + static_cast<std::ptrdiff_t>(messagesBefore));
        EXPECT_EQ(messages, posted);
        EXPECT_EQ(host.calls().size(), posted.size());  // the calls that post
        EXPECT_THAT(resolver.asked(), IsEmpty());
        EXPECT_THAT(runner.constructed, IsEmpty());
        EXPECT_TRUE(isResultUntouched());
    }

    static Records unresolved(int reason, const std::string& uriHost) {
        return warning(hostFunction, std::string("Error in getaddrinfo: ") + gai_strerror(reason) +
                                         ", could not resolve host " + uriHost);
    }

    /// The host that the runner is given for a URI's host.
    std::string hostOf(const std::string& uriHost) { return std::get<3>(argumentsOf("sftp://" + uriHost + "/f")); }

    std::string portOf(const std::string& destination) { return std::get<4>(argumentsOf(destination)); }
    std::string userOf(const std::string& destination) { return std::get<1>(argumentsOf(destination)); }
    std::string pathOf(const std::string& destination) { return std::get<7>(argumentsOf(destination)); }

    const std::string dn = dnOf("Mom");
    ExportParameters parameters{uri, "secret"};
};

// The checks.

TEST_F(ExportArgumentsContractTest, dnThatIsNoInstanceIsRefused) {
    for (const std::string wrong :
         {"", "Mom", "Schema=Mom", "ManagedElement=1,SystemFunctions=1,SysM=1",
          "ManagedElement=1,SystemFunctions=1,Schema=Mom", "ManagedElement=1,SystemFunctions=1,SysM=1,schema=Mom",
          " ManagedElement=1,SystemFunctions=1,SysM=1,Schema=Mom", "%s%n"}) {
        expectRefused(wrong, "export", parameters.array, "Dn is not valid [" + wrong + "]");
    }
}

TEST_F(ExportArgumentsContractTest, otherActionIsRefused) {
    for (const std::string wrong : {"", "Export", "EXPORT", "expor", "exports", " export", "import", "%s%n"}) {
        expectRefused(dn, wrong.c_str(), parameters.array, "Wrong action name [" + wrong + "]");
    }
}

TEST_F(ExportArgumentsContractTest, missingDnOrNameIsRefused) {
    EXPECT_EQ(objects().action(txHandle, nullptr, "export", parameters.array, &result), -8);
    EXPECT_THAT(log.records(), ElementsAreArray(error("validateActionArguments", "Dn is not valid [(null)]")));
    expectRefused(dn, nullptr, parameters.array, "Wrong action name [(null)]");
}

TEST_F(ExportArgumentsContractTest, missingPlaceForTheResultIsRefusedAfterAllElse) {
    const auto exportWithoutPlace = [this](const std::string& calledDn, const std::string& destination) {
        ExportParameters given(destination, "secret");
        forget();
        return objects().action(txHandle, calledDn.c_str(), "export", given.array, nullptr);
    };
    const auto expectRefusedWithoutPlace = [&](const std::string& calledDn, const std::string& destination,
                                               TevReturnT code, const Records& records, const Messages& posted) {
        const std::size_t before = host.messages().size();
        EXPECT_EQ(exportWithoutPlace(calledDn, destination), code);
        expectNothingDone(records, before, posted);
    };
    expectRefusedWithoutPlace("Mom", uri, -8, error("validateActionArguments", "Dn is not valid [Mom]"), {});
    expectRefusedWithoutPlace(dnOf("Other"), uri, -2, error("action", "Could not find schema for schemaId [Other] "),
                              {{1, "Internal error"}});
    expectRefusedWithoutPlace(dn, "sftp:", -1, error("processActionParameters", "Got syntax exeption Bad URI syntax"),
                              {{1, noUri}});
    EXPECT_EQ(exportWithoutPlace(dn, uri), -8);
    EXPECT_THAT(log.records(), ElementsAreArray(error("action", "Invalid input arguments")));
    const LogCapture below(2);
    EXPECT_EQ(exportWithoutPlace(dn, uri), -8);
    EXPECT_THAT(below.records(), IsEmpty());
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(runner.constructed, IsEmpty());
}

TEST_F(ExportArgumentsContractTest, missingParametersAreRefused) {
    expectRefused(dn, "export", nullptr, "Parameters array is NULL");
}

TEST_F(ExportArgumentsContractTest, otherNumberThanTwoParametersIsRefused) {
    Parameter third("more");
    DalMoAttributeValueContainer* none[] = {nullptr};
    DalMoAttributeValueContainer* one[] = {&parameters.uri.container, nullptr};
    DalMoAttributeValueContainer* onlySecond[] = {nullptr, &parameters.password.container, nullptr};
    DalMoAttributeValueContainer* three[] = {&parameters.uri.container, &parameters.password.container,
                                             &third.container, nullptr};
    for (DalMoAttributeValueContainer** array : {&none[0], &one[0], &onlySecond[0], &three[0]}) {
        expectRefused(dn, "export", array, wrongNumber);
    }
}

TEST_F(ExportArgumentsContractTest, firstParameterThatIsNotOneStringIsRefusedWithoutAMessage) {
    DalMoAttributeValueContainer& first = parameters.uri.container;
    const DalMoAttributeValueContainer good = first;
    for (std::int32_t type = -1; type <= 16; ++type) {
        if (type != DalMoTypeString) {
            first.type = type;
            expectRefused(dn, "export", parameters.array, wrongFirst);
        }
    }
    for (const std::uint32_t count : {0U, 2U, 4294967295U}) {
        first = {good.type, count, good.values};
        expectRefused(dn, "export", parameters.array, wrongFirst);
    }
    first = {good.type, 1, nullptr};
    expectRefused(dn, "export", parameters.array, wrongFirst);
    first = {good.type, 0, nullptr};
    expectRefused(dn, "export", parameters.array, wrongFirst);
    first = good;
    parameters.uri.cell.theString = nullptr;
    expectRefused(dn, "export", parameters.array, wrongFirst);
}

TEST_F(ExportArgumentsContractTest, secondParameterThatIsNotOneStringIsRefusedAndTheOperatorTold) {
    DalMoAttributeValueContainer& second = parameters.password.container;
    const DalMoAttributeValueContainer good = second;
    const Messages told = {{1, needsPassword}};
    for (std::int32_t type = -1; type <= 16; ++type) {
        if (type != DalMoTypeString) {
            second.type = type;
            expectRefused(dn, "export", parameters.array, wrongSecond, told);
        }
    }
    for (const std::uint32_t count : {0U, 2U, 4294967295U}) {
        second = {good.type, count, good.values};
        expectRefused(dn, "export", parameters.array, wrongSecond, told);
    }
    second = {good.type, 1, nullptr};
    expectRefused(dn, "export", parameters.array, wrongSecond, told);
    second = {good.type, 0, nullptr};
    expectRefused(dn, "export", parameters.array, wrongSecond, told);
    second = good;
    parameters.password.cell.theString = nullptr;
    expectRefused(dn, "export", parameters.array, wrongSecond, told);
}

TEST_F(ExportArgumentsContractTest, firstFailureOfTheChecksCounts) {
    DalMoAttributeValueContainer* one[] = {&parameters.uri.container, nullptr};
    parameters.uri.container.type = DalMoTypeVoid;
    parameters.password.container.type = DalMoTypeVoid;
    expectRefused("Mom", "Export", nullptr, "Dn is not valid [Mom]");
    expectRefused(dn, "Export", nullptr, "Wrong action name [Export]");
    expectRefused(dn, "export", nullptr, "Parameters array is NULL");
    expectRefused(dn, "export", one, wrongNumber);
    expectRefused(dn, "export", parameters.array, wrongFirst);
    parameters.uri.container.type = DalMoTypeString;
    expectRefused(dn, "export", parameters.array, wrongSecond, {{1, needsPassword}});
}

TEST_F(ExportArgumentsContractTest, argumentsAreCheckedBeforeTheInstanceIsLookedUp) {
    expectRefused(dnOf("Other"), "Export", parameters.array, "Wrong action name [Export]");
}

TEST_F(ExportArgumentsContractTest, refusalsAreLoggedFromLevelThree) {
    const auto expectAtLevelThree = [&](const char* actionName, const std::string& text) {
        const LogCapture capture(3);
        EXPECT_EQ(act(dn, actionName, parameters.array), -8);
        EXPECT_THAT(capture.records(), ElementsAreArray(error("validateActionArguments", text)));
    };
    expectAtLevelThree("Export", "Wrong action name [Export]");
    parameters.password.container.type = DalMoTypeVoid;
    expectAtLevelThree("export", wrongSecond);
    const LogCapture below(2);
    EXPECT_EQ(act(dn, "export", parameters.array), -8);
    // The operator hears of it at any level.
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, needsPassword), std::pair(1, needsPassword)));
}

// The URI.

TEST_F(ExportArgumentsContractTest, uriIsTakenApart) {
    EXPECT_EQ(argumentsOf("sftp://admin@10.0.0.1:2222/tmp/f"), plainArguments());
}

TEST_F(ExportArgumentsContractTest, schemeIsComparedIgnoringCase) {
    EXPECT_EQ(argumentsOf("SFTP://admin@10.0.0.1:2222/tmp/f"), plainArguments());
    EXPECT_EQ(argumentsOf("sFtP://admin@10.0.0.1:2222/tmp/f"), plainArguments());
}

TEST_F(ExportArgumentsContractTest, uriWithoutAPortGivesPortZero) {
    EXPECT_EQ(portOf("sftp://10.0.0.1/f"), "0");
    EXPECT_EQ(portOf("sftp://10.0.0.1:/f"), "0");
    EXPECT_EQ(portOf("sftp://10.0.0.1:1/f"), "1");
    EXPECT_EQ(portOf("sftp://10.0.0.1:65535/f"), "65535");
}

TEST_F(ExportArgumentsContractTest, userIsPassedOnAsItStandsInTheUri) {
    EXPECT_EQ(userOf("sftp://10.0.0.1/f"), "");
    EXPECT_EQ(userOf("sftp://@10.0.0.1/f"), "");
    EXPECT_EQ(userOf("sftp://Admin:pw@10.0.0.1/f"), "Admin:pw");
    EXPECT_EQ(userOf("sftp://a%40b%20c@10.0.0.1/f"), "a%40b%20c");
}

TEST_F(ExportArgumentsContractTest, pathIsDecodedAndKeepsItsSlashes) {
    EXPECT_EQ(pathOf("sftp://10.0.0.1/f"), "/f");
    EXPECT_EQ(pathOf("sftp://10.0.0.1//a/../b/"), "//a/../b/");
    EXPECT_EQ(pathOf("sftp://10.0.0.1/a%20b%0Ac%25d%3Fe"), "/a b\nc%d?e");
    EXPECT_EQ(pathOf("sftp://10.0.0.1/a%00b"), std::string("/a\0b", 4));
    EXPECT_EQ(pathOf("sftp://10.0.0.1/f?query#fragment"), "/f");
    EXPECT_EQ(pathOf("sftp://10.0.0.1"), "");
}

TEST_F(ExportArgumentsContractTest, passwordIsPassedOnUnchanged) {
    for (const std::string& password : {std::string(""), std::string(" %41 %s\n\xff\"'\\"), std::string(10000, 'x')}) {
        EXPECT_EQ(std::get<2>(argumentsOf(uri, password)), password);
    }
}

TEST_F(ExportArgumentsContractTest, passwordIsInNoRecord) {
    ExportParameters secret("sftp://10.0.0.1/f", "password-4711");
    EXPECT_EQ(act(dn, "export", secret.array), 0);
    runner.code = -1;
    EXPECT_EQ(act(dn, "export", secret.array), -1);
    secret.uri.cell.theString = secret.password.cell.theString;
    EXPECT_EQ(act(dn, "export", secret.array), -1);
    secret.uri.container.type = DalMoTypeVoid;
    EXPECT_EQ(act(dn, "export", secret.array), -8);
    for (const LogRecord& record : log.records()) {
        EXPECT_EQ(record.text.find("4711"), std::string::npos) << record;
    }
    EXPECT_EQ(log.records().empty(), false);
}

TEST_F(ExportArgumentsContractTest, uriThatDoesNotParseIsAFailureThatTheOperatorIsTold) {
    for (const std::string wrong :
         {"sftp:", "sftp://10.0.0.1:99999/f", "sftp://10.0.0.1:0/f", "sftp://10.0.0.1:x/f", "sftp://[fe80::1/f",
          "sftp://10.0.0.1/%zz", "sftp://10.0.0.1/%0", "ftp://10.0.0.1/%s%n"}) {
        expectBadUri(wrong, "Got syntax exeption Bad URI syntax", noUri);
    }
}

TEST_F(ExportArgumentsContractTest, otherSchemeIsAFailureThatTheOperatorIsTold) {
    expectBadUri("ftp://10.0.0.1/f", "Unsupported scheme ftp", unsupported("ftp"));
    expectBadUri("sftps://10.0.0.1/f", "Unsupported scheme sftps", unsupported("sftps"));
    expectBadUri("sft://10.0.0.1/f", "Unsupported scheme sft", unsupported("sft"));
    expectBadUri("s%sf%ntp://10.0.0.1/f", "Unsupported scheme s%sf%ntp", unsupported("s%sf%ntp"));
    for (const char* none : {"", "/tmp/f", "10.0.0.1", "://10.0.0.1/f"}) {
        expectBadUri(none, "Unsupported scheme ", unsupported(""));
    }
}

TEST_F(ExportArgumentsContractTest, badUrisAreLoggedFromLevelThree) {
    expectRecordsFromLevel(3, "sftp:", error("processActionParameters", "Got syntax exeption Bad URI syntax"));
    expectRecordsFromLevel(3, "ftp://h/f", error("processActionParameters", "Unsupported scheme ftp"));
}

// The host.

TEST_F(ExportArgumentsContractTest, addressesOfIpv6ArePutInBracketsOnce) {
    EXPECT_EQ(hostOf("[fe80::1]"), "[fe80::1]");
    EXPECT_EQ(hostOf("[::1]:22"), "[::1]");
    EXPECT_EQ(hostOf("10.0.0.1"), "10.0.0.1");
    EXPECT_THAT(resolver.asked(), ElementsAre("fe80::1", "::1", "10.0.0.1"));
    EXPECT_THAT(resolver.freed(), ElementsAre("list", "list", "list"));
}

TEST_F(ExportArgumentsContractTest, firstAddressOfANameDecidesAboutBrackets) {
    resolver.setFamilies("six", {AF_INET6});
    resolver.setFamilies("four", {AF_INET});
    resolver.setFamilies("sixfirst", {AF_INET6, AF_INET});
    resolver.setFamilies("fourfirst", {AF_INET, AF_INET6, AF_INET6});
    resolver.setFamilies("other", {AF_UNIX, AF_INET6});
    EXPECT_EQ(hostOf("six"), "[six]");
    EXPECT_EQ(hostOf("four"), "four");
    EXPECT_EQ(hostOf("sixfirst"), "[sixfirst]");
    EXPECT_EQ(hostOf("fourfirst"), "fourfirst");
    EXPECT_EQ(hostOf("other"), "other");
    EXPECT_THAT(resolver.asked(), ElementsAre("six", "four", "sixfirst", "fourfirst", "other"));
    EXPECT_THAT(resolver.freed(), ElementsAre("list", "list", "list", "list", "list"));
}

TEST_F(ExportArgumentsContractTest, hostThatDoesNotResolveIsPassedOnAndLogged) {
    for (const int reason : {EAI_NONAME, EAI_AGAIN, EAI_MEMORY}) {
        resolver.setError("no%swhere", reason);
        log.clear();
        EXPECT_EQ(hostOf("no%swhere"), "no%swhere");
        EXPECT_THAT(log.recordsOf(hostFunction), ElementsAreArray(unresolved(reason, "no%swhere")));
    }
    EXPECT_THAT(resolver.asked(), ElementsAre("no%swhere", "no%swhere", "no%swhere"));
    EXPECT_THAT(resolver.freed(), ElementsAre("null", "null", "null"));
    EXPECT_THAT(host.messages(), testing::Each(std::pair(1, "File transfer successful")));
}

TEST_F(ExportArgumentsContractTest, emptyHostIsPassedOnToo) {
    resolver.setError("", EAI_NONAME);
    EXPECT_EQ(hostOf(""), "");
    EXPECT_THAT(resolver.asked(), ElementsAre(""));
}

TEST_F(ExportArgumentsContractTest, hostInBracketsThatIsNoAddressIsPassedOnWithoutThem) {
    EXPECT_EQ(hostOf("[fe80::zz]"), "fe80::zz");
    EXPECT_THAT(log.recordsOf(hostFunction), ElementsAreArray(unresolved(EAI_NONAME, "fe80::zz")));
}

TEST_F(ExportArgumentsContractTest, unresolvedHostsAreLoggedFromLevelFour) {
    resolver.setError("nowhere", EAI_NONAME);
    expectRecordsFromLevel(4, "sftp://nowhere/f", unresolved(EAI_NONAME, "nowhere"));
}

// Messages for the operator.

TEST_F(ExportArgumentsContractTest, withoutThreadContextEveryMessageIsAnErrorRecord) {
    ASSERT_EQ(stop(), 0);
    host.leaveOutput("getInterface", 2);
    ASSERT_EQ(start(), 0);
    Tev::LoggingWrapper::instance().set_level(7);
    forget();
    const Records nobody = error("addThreadContextMessage", "ThreadContext is null but SchemaMoService is started.");
    const auto expectNobody = [&](TevReturnT code, const std::string& calledDn, const std::string& destination,
                                  const Records& before) {
        log.clear();
        parameters.uri.text = destination;
        parameters.uri.cell.theString = parameters.uri.text.data();
        EXPECT_EQ(act(calledDn, "export", parameters.array), code);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({before, nobody})));
    };
    expectNobody(0, dn, uri, {});
    runner.code = 17;
    expectNobody(17, dn, uri, {});
    expectNobody(-1, dn, "ftp://h/f", error("processActionParameters", "Unsupported scheme ftp"));
    expectNobody(-1, dn, "sftp:", error("processActionParameters", "Got syntax exeption Bad URI syntax"));
    expectNobody(-2, dnOf("Other"), uri, error("action", "Could not find schema for schemaId [Other] "));
    std::filesystem::remove(file);
    expectNobody(-1, dn, uri, error("action", "Fragment file does not exist: " + file));
    parameters.password.container.nrOfValues = 0;
    expectNobody(-8, dn, uri, error("validateActionArguments", wrongSecond));
    EXPECT_THAT(host.messages(), IsEmpty());
    folder.write("Mom.xml", "");
    runner.code = 0;
    expectRecordsFromLevel(3, uri, nobody);
}

TEST_F(ExportArgumentsContractTest, messageThatCannotBePostedIsAWarningAndChangesNothing) {
    Tev::LoggingWrapper::instance().set_level(7);
    for (const TevReturnT code : {-1, 5}) {
        log.clear();
        host.failCall("addMessage", code);
        EXPECT_EQ(exportTo(uri), 0);
        EXPECT_THAT(log.records(), ElementsAreArray(warning("addThreadContextMessage",
                                                            "Failed to add message to thread context message "
                                                            "[File transfer successful]")));
    }
    log.clear();
    runner.code = 17;
    runner.errorMessage = "%s%n";
    host.failCall("addMessage", -1);
    EXPECT_EQ(exportTo(uri), 17);
    EXPECT_THAT(log.records(), ElementsAreArray(warning("addThreadContextMessage",
                                                        "Failed to add message to thread context message "
                                                        "[SFTP error: %s%n]")));
    EXPECT_THAT(host.messages(), IsEmpty());
    Tev::LoggingWrapper::instance().set_level(3);
    log.clear();
    host.failCall("addMessage", -1);
    EXPECT_EQ(exportTo(uri), 17);
    EXPECT_THAT(log.records(), IsEmpty());
}

}  // namespace TevTest

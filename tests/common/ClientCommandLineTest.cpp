#include "ClientCommandLine.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;
using Tev::TransferSettings;

TransferSettings someSettings() {
    return {"/usr/bin/sftp", "a \"b\\", "secret", "host", "", 1, "/local", "/remote", false, "", "", "", 0, 46};
}

std::vector<std::string> commandLine(const TransferSettings& settings) {
    return Tev::clientCommandLine(settings, "\"/known hosts\"", 7);
}

TEST(ClientCommandLineTest, asksForThePasswordAlthoughCommandsComeFromABatch) {
    const std::vector<std::string> words = commandLine(someSettings());
    // The client takes the first value of an option.
    EXPECT_LT(std::find(words.begin(), words.end(), "-oBatchMode=no"), std::find(words.begin(), words.end(), "-b"));
}

TEST(ClientCommandLineTest, hasOneRequestInFlight) {
    const std::vector<std::string> words = commandLine(someSettings());
    const auto option = std::find(words.begin(), words.end(), "-R");
    ASSERT_LT(option + 1, words.end());
    EXPECT_EQ(*(option + 1), "1");
}

TEST(ClientCommandLineTest, endsWithTheHostAfterAllOptions) {
    const std::vector<std::string> words = commandLine(someSettings());
    EXPECT_THAT(std::vector<std::string>(words.end() - 2, words.end()), ElementsAre("--", "host"));
}

TEST(ClientCommandLineTest, valuesAreQuotedAndTheDscpShifted) {
    EXPECT_THAT(commandLine(someSettings()),
                AllOf(Contains("-oUser=\"a \\\"b\\\\\""), Contains("-oUserKnownHostsFile=\"/known hosts\""),
                      Contains("-oIPQoS=184"), Contains("-oConnectTimeout=7")));
}

TEST(ClientCommandLineTest, whatIsNotGivenIsTheClientsChoice) {
    TransferSettings settings = someSettings();
    const auto isAbout = [](const char* option) { return Contains(StartsWith(option)); };
    for (const char* const option : {"-oPort", "-oCiphers", "-oKexAlgorithms", "-oMACs"}) {
        EXPECT_THAT(commandLine(settings), Not(isAbout(option)));
    }
    settings.port = "2222";
    settings.ciphers = "a,b";
    settings.keyExchanges = "c";
    settings.macs = "d";
    EXPECT_THAT(commandLine(settings), AllOf(Contains("-oPort=2222"), Contains("-oCiphers=a,b"),
                                             Contains("-oKexAlgorithms=c"), Contains("-oMACs=d")));
}

TEST(ClientCommandLineTest, passwordIsNotInIt) {
    EXPECT_THAT(commandLine(someSettings()), Not(Contains(testing::HasSubstr("secret"))));
}

}  // namespace

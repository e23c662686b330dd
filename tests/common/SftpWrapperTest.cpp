#include "SftpWrapper.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <climits>

#include "FileText.h"
#include "LogCapture.h"
#include "SftpTest.h"
#include "TcpProxy.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;
using TevTest::contents;
using TevTest::SftpServer;
using TevTest::success;
using TevTest::TcpProxy;
using TevTest::Transfer;

class SftpWrapperTest : public TevTest::SftpTest {};

TEST_F(SftpWrapperTest, replacesTheRemoteFile) {
    const SftpServer server;
    const Transfer transfer = transferTo(server, "new");
    EXPECT_EQ(transfer.run(), success);
    EXPECT_EQ(contents(transfer.remotePath), "new");
    EXPECT_EQ(transferTo(server, "newer").run(), success);
    EXPECT_EQ(contents(transfer.remotePath), "newer");
    EXPECT_THAT(server.names(), ElementsAre("remote"));
}

class SftpSizeTest : public SftpWrapperTest,
                     public testing::WithParamInterface<std::tuple<std::string, std::size_t>> {};

TEST_P(SftpSizeTest, arrivesByteForByte) {
    SftpServer::Setting setting;
    setting.address = std::get<0>(GetParam());
    const SftpServer server(setting);
    const std::string bytes = TevTest::randomBytes(std::get<1>(GetParam()));
    const Transfer transfer = transferTo(server, bytes);
    EXPECT_EQ(transfer.run(), success);
    EXPECT_TRUE(contents(transfer.remotePath) == bytes);
    EXPECT_THAT(server.names(), ElementsAre("remote"));
}

const auto addresses = testing::Values(std::string("127.0.0.1"), std::string("::1"));

INSTANTIATE_TEST_SUITE_P(, SftpSizeTest, testing::Combine(addresses, testing::Values(0U, 10'000U)));
INSTANTIATE_TEST_SUITE_P(Long, SftpSizeTest, testing::Combine(addresses, testing::Values(100'000'000U)));

/// Every byte that a name may hold, and what has a meaning to a shell, a pattern or the client.
std::vector<std::string> difficultNames() {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n' && byte != '/') {
            all += static_cast<char>(byte);
        }
    }
    return {all,          std::string(all.rbegin(), all.rend()),
            "-x",         "~",
            "*",          "a b",
            " leading",   "trailing\\",
            "\"quoted\"", "it's",
            "[a-z]?",     "#x",
            "!touch x",   "$(id)",
            "\\\"",       "käse"};
}

TEST_F(SftpWrapperTest, remoteNameIsTakenAsItIs) {
    const SftpServer server;
    for (const std::string& name : difficultNames()) {
        Transfer transfer = transferTo(server);
        transfer.remotePath = server.folder().string() + "/" + name;
        EXPECT_EQ(transfer.run(), success) << name;
    }
    EXPECT_THAT(server.names(), UnorderedElementsAreArray(difficultNames()));
}

TEST_F(SftpWrapperTest, localNameIsTakenAsItIsAndAppendedToAFolder) {
    const SftpServer server;
    for (const std::string& name : difficultNames()) {
        Transfer transfer = transferTo(server);
        transfer.localFile = local.write(name, name);
        transfer.remotePath = server.folder().string() + "/";
        EXPECT_EQ(transfer.run(), success) << name;
        EXPECT_EQ(contents(server.folder() / name), name);
    }
    EXPECT_THAT(server.names(), UnorderedElementsAreArray(difficultNames()));
}

TEST_F(SftpWrapperTest, localNameWithANewlineIsReadAsAnyOther) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    transfer.localFile = local.write("a\n!touch canary", "text");
    EXPECT_EQ(transfer.run(), success);
    EXPECT_EQ(contents(transfer.remotePath), "text");
}

TEST_F(SftpWrapperTest, relativePathBeginsAtTheUsersFolder) {
    const SftpServer server;
    for (const char* const folder : {"-d", "~"}) {
        std::filesystem::create_directory(server.folder() / folder);
        std::filesystem::permissions(server.folder() / folder, std::filesystem::perms(0777));
    }
    for (const char* const path : {"file", "-x", "~file", "-d/file", "~/file"}) {
        Transfer transfer = transferTo(server, path);
        transfer.remotePath = path;
        EXPECT_EQ(transfer.run(), success);
        EXPECT_EQ(contents(server.folder() / path), path);
    }
    EXPECT_THAT(server.names(), ElementsAre("-d", "-x", "file", "~", "~file"));
}

TEST_F(SftpWrapperTest, remoteFileGetsTheLocalModeAndReplacesALink) {
    const SftpServer server;
    const Transfer transfer = transferTo(server, "new");
    ASSERT_EQ(chmod(transfer.localFile.c_str(), 0640), 0);
    const std::string other = local.write("other", "other");
    std::filesystem::create_symlink(other, transfer.remotePath);
    EXPECT_EQ(transfer.run(), success);
    EXPECT_EQ(contents(other), "other");
    struct stat status {};
    ASSERT_EQ(lstat(transfer.remotePath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0640U);
}

/// What a server logs of the negotiation.
SftpServer::Setting talkative() {
    SftpServer::Setting setting;
    setting.configuration = {"LogLevel DEBUG1"};
    return setting;
}

TEST_F(SftpWrapperTest, selectedAlgorithmsAreNegotiated) {
    const SftpServer server(talkative());
    Transfer transfer = transferTo(server);
    transfer.ciphers = "aes192-ctr,aes256-ctr";
    transfer.keyExchanges = "diffie-hellman-group16-sha512";
    transfer.macs = "hmac-sha2-512,hmac-sha2-256";
    EXPECT_EQ(transfer.run(), success);
    const std::string log = server.logWith("Accepted password for tester");
    EXPECT_THAT(log, HasSubstr("kex: algorithm: diffie-hellman-group16-sha512"));
    EXPECT_THAT(log, HasSubstr("kex: client->server cipher: aes192-ctr MAC: hmac-sha2-512 "));
    EXPECT_THAT(log, HasSubstr("kex: server->client cipher: aes192-ctr MAC: hmac-sha2-512 "));
}

class SftpDscpTest : public SftpWrapperTest, public testing::WithParamInterface<std::string> {};

TEST_P(SftpDscpTest, isSetOnTheConnection) {
    SftpServer::Setting setting;
    setting.address = GetParam();
    const SftpServer server(setting);
    const TcpProxy proxy(server.host(), server.port());
    for (const int dscp : {0, 10, 46, 63}) {
        Transfer transfer = transferTo(server);
        transfer.port = proxy.port();
        transfer.dscp = static_cast<unsigned char>(dscp);
        EXPECT_EQ(transfer.run(), success);
        EXPECT_EQ(proxy.trafficClass(), dscp * 4);
    }
}

INSTANTIATE_TEST_SUITE_P(, SftpDscpTest, addresses);

TEST_F(SftpWrapperTest, debugBringsTheClientsStepsIntoTheLog) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    const TevTest::LogCapture log(6);
    EXPECT_EQ(transfer.run(), success);
    EXPECT_THAT(log.records(), IsEmpty());
    transfer.debug = true;
    EXPECT_EQ(transfer.run(), success);
    std::string texts;
    for (const TevTest::LogRecord& record : log.records()) {
        texts += record.text + '\n';
    }
    EXPECT_THAT(texts, HasSubstr("sftp: debug1: Connecting to 127.0.0.1"));
    EXPECT_THAT(texts, HasSubstr("sftp: debug1: Sending subsystem: sftp"));
}

TEST_F(SftpWrapperTest, debugDoesNotHideAFailure) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    transfer.debug = true;
    transfer.remotePath = server.folder() / "missing/file";
    EXPECT_EQ(transfer.run().sentence,
              "the folder of " + transfer.remotePath + " is not there on the server; make it first");
    transfer.password = "wrong";
    EXPECT_EQ(transfer.run().sentence,
              "the server 127.0.0.1 does not accept the user tester with this password; check both");
}

TEST_F(SftpWrapperTest, bannerOfTheServerIsNoFailure) {
    const std::string banner = "dest open \"x\": Permission denied\r\nHost key for x has changed\r\n";
    SftpServer::Setting setting;
    setting.configuration = {"Banner " + local.write("banner", banner)};
    std::filesystem::permissions(local.path(), std::filesystem::perms(0755));
    const SftpServer server(setting);
    Transfer transfer = transferTo(server);
    EXPECT_EQ(transfer.run(), success);
    transfer.debug = true;
    EXPECT_EQ(transfer.run(), success);
    transfer.debug = false;
    transfer.password = "wrong";
    EXPECT_EQ(transfer.run().sentence,
              "the server 127.0.0.1 does not accept the user tester with this password; check both");
}

TEST_F(SftpWrapperTest, passwordIsSentAsItIs) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n' && byte != '\r') {
            all += static_cast<char>(byte);
        }
    }
    for (const std::string& password :
         {all, std::string(" blanks around "), std::string("-oFoo"), std::string("\"$(id)"), std::string("%s\\n")}) {
        SftpServer::Setting setting;
        setting.password = password;
        const SftpServer server(setting);
        EXPECT_EQ(transferTo(server).run(), success) << password;
    }
}

TEST_F(SftpWrapperTest, userIsDecodedOnceAndSentAsItIs) {
    const std::pair<const char*, const char*> users[] = {{"a b", "a%20b"}, {"a@b", "a%40b"}, {"a%41b", "a%2541b"},
                                                         {"100%", "100%"}, {"#a", "#a"},     {" a", "%20a"},
                                                         {"ä", "%c3%A4"},  {"%u", "%u"}};
    for (const auto& [user, encoded] : users) {
        SftpServer::Setting setting;
        setting.user = user;
        const SftpServer server(setting);
        Transfer transfer = transferTo(server);
        transfer.user = encoded;
        EXPECT_EQ(transfer.run(), success) << user;
    }
}

TEST_F(SftpWrapperTest, serverThatAsksForNoPasswordGetsNone) {
    SftpServer::Setting setting;
    setting.configuration = {"PermitEmptyPasswords yes"};
    setting.password = "";
    const SftpServer server(setting);
    EXPECT_EQ(transferTo(server).run(), success);
}

TEST_F(SftpWrapperTest, hostMayBeANameInBrackets) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    for (const char* const host : {"127.1", "[127.1]"}) {
        transfer.host = host;
        EXPECT_EQ(transfer.run(), success) << host;
    }
}

TEST_F(SftpWrapperTest, timeoutsAtTheEndsOfTheRangeAreNone) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    for (const long timeout : {LONG_MAX, 0L, -1L, LONG_MIN}) {
        transfer.timeout = timeout;
        EXPECT_EQ(transfer.run(), success) << timeout;
    }
}

TEST_F(SftpWrapperTest, objectMayBeUsedAgainAndCopied) {
    const SftpServer server;
    const Transfer transfer = transferTo(server);
    Tev::SftpWrapper wrapper("/usr/bin/sftp", "tester", "wrong", server.host(), server.port(), Tev::SftpWrapper::Upload,
                             transfer.localFile, transfer.remotePath, false, "", "", "", 10000, 0);
    EXPECT_EQ(wrapper.getErrorMessage(), "");
    EXPECT_EQ(wrapper.execute(), -1);
    EXPECT_NE(wrapper.getErrorMessage(), "");
    Tev::SftpWrapper copy = wrapper;
    EXPECT_EQ(copy.getErrorMessage(), wrapper.getErrorMessage());
    EXPECT_EQ(copy.execute(), -1);
}

}  // namespace

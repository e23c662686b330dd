#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "SftpTest.h"

namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using TevTest::SftpServer;
using TevTest::Transfer;
using TevTest::TransferOutcome;

/// Settings that try to become something else. Each would make a canary file if a shell saw it.
class SftpHostileInputTest : public TevTest::SftpTest {
protected:
    SftpHostileInputTest() : touch("touch " + (local.path() / "canary").string()) {}

    /// Each of `values` as `field` gets -8 and a sentence with `words`, before anything is started.
    void expectRefused(std::string Transfer::*field, const std::vector<std::string>& values, const std::string& words) {
        for (const std::string& value : values) {
            Transfer transfer = transferTo(server);
            transfer.*field = value;
            // Would tell if it was started.
            transfer.program = local.path() / "none";
            const TransferOutcome outcome = transfer.run();
            EXPECT_EQ(outcome.code, -8) << value;
            EXPECT_THAT(outcome.sentence, HasSubstr(words)) << value;
        }
    }

    ~SftpHostileInputTest() override {
        EXPECT_FALSE(std::filesystem::exists(local.path() / "canary"));
        EXPECT_THAT(server.names(), IsEmpty());
    }

    const SftpServer server;
    const std::string touch;
};

TEST_F(SftpHostileInputTest, hostThatIsNone) {
    expectRefused(&Transfer::host,
                  {"-oProxyCommand=" + touch,
                   "-evil",
                   "a b",
                   "$(" + touch + ")",
                   "`" + touch + "`",
                   "h;id",
                   "",
                   "h\nx",
                   "127.0.0.1\n",
                   "a,b",
                   "u@127.0.0.1",
                   "127.0.0.1:/x",
                   "sftp://127.0.0.1/",
                   "127.0.0.1/x",
                   "[::1",
                   "[::1]x",
                   "::1",
                   "[]",
                   "[-x]",
                   "[::1%]",
                   "[::1%-x]",
                   "[::1\0]"s,
                   "127.0.0.1\0x"s,
                   "%h",
                   "~",
                   "h\xc3\xa4st",
                   std::string(254, 'h')},
                  "the host is neither a name nor an IPv4 address nor an IPv6 address in brackets");
}

TEST_F(SftpHostileInputTest, userThatWouldBeMoreThanAName) {
    expectRefused(&Transfer::user, {"tester:open%20sesame", ":"}, "the URI holds a password; give it separately");
    expectRefused(&Transfer::user, {""}, "the URI names no user");
    expectRefused(&Transfer::user,
                  {"a\"b", "a%22b", "a\nb", "a%0Ab", "a%00b", "a;" + touch, "$(" + touch + ")", "`" + touch + "`",
                   "a|b", "a&b", "a<b", "a'b", "a{b", "a%7fb"},
                  "the user's name holds a control character or one of");
    expectRefused(&Transfer::user, {"-l", "%2dl", "a -oProxyCommand=x", "a\\", "a%5c"},
                  "the user's name begins with \"-\"");
}

TEST_F(SftpHostileInputTest, passwordThatCannotBeTyped) {
    expectRefused(&Transfer::password, {"open sesame\nx", "open sesame\r", "open sesame\0x"s},
                  "the password holds a line break or a null character");
    expectRefused(&Transfer::password, {std::string(1024, 'p')}, "the password has more than 1023 bytes");
}

TEST_F(SftpHostileInputTest, portThatIsNone) {
    expectRefused(&Transfer::port, {"-1", "65536", "99999999999", "ssh", "22 ", " 22", "022", "0x16", "00", "22\0"s},
                  "the port is not a number from 1 to 65535");
}

TEST_F(SftpHostileInputTest, remotePathWithALineOfItsOwn) {
    const std::string folder = server.folder();
    expectRefused(&Transfer::remotePath,
                  {folder + "/a\"\n!" + touch, folder + "/a\n!" + touch + "\n", "\n!" + touch, folder + "/a\0b"s},
                  "the remote path holds a newline or a null character");
}

TEST_F(SftpHostileInputTest, remotePathWhoseEndWouldRunAsACommandOfItsOwn) {
    // What the client's buffer does not hold of a line, it takes for the next one.
    for (std::size_t length = 950; length < 2100; length += 7) {
        const std::string path = std::string(length, '/') + "!" + touch;
        expectRefused(&Transfer::remotePath, {path + std::string(1100, ' ')}, "the remote path is too long");
    }
    expectRefused(&Transfer::remotePath, {std::string(3000, '"'), std::string(100000, 'x')},
                  "the remote path is too long");
}

TEST_F(SftpHostileInputTest, remotePathThatNamesNoFile) {
    expectRefused(&Transfer::remotePath, {"", "/", ".", "..", "/x/.", "/x/.."}, "the remote path names no file");
}

TEST_F(SftpHostileInputTest, localNameThatWouldGetIntoTheCommand) {
    Transfer transfer = transferTo(server);
    transfer.localFile = local.write("a\"\n!" + std::string("x"), "text");
    transfer.remotePath = server.folder().string() + "/";
    EXPECT_EQ(transfer.run(), (TransferOutcome{-8, "the remote path holds a newline or a null character"}));
    expectRefused(&Transfer::localFile, {"/etc/passwd\0x"s}, "the local file's name holds a null character");
}

TEST_F(SftpHostileInputTest, listsThatAreMoreThanNames) {
    const std::vector<std::string> lists = {"-foo", "+foo",      "^foo", "a, b",    ",",    "a,",    ",a",
                                            "a,,b", "a -oFoo=x", "a,-b", "aes*,!x", "a\nb", "$(id)", "a\0b"s};
    expectRefused(&Transfer::ciphers, lists, "the list of ciphers is not one of names separated by commas");
    expectRefused(&Transfer::keyExchanges, lists, "the list of key exchanges is not one of names separated by commas");
    expectRefused(&Transfer::macs, lists, "the list of MACs is not one of names separated by commas");
}

TEST_F(SftpHostileInputTest, dscpBeyondItsSixBits) {
    for (const int dscp : {64, 184, 255}) {
        Transfer transfer = transferTo(server);
        transfer.dscp = static_cast<unsigned char>(dscp);
        EXPECT_EQ(transfer.run(), (TransferOutcome{-8, "the DSCP value is above 63"}));
    }
}

TEST_F(SftpHostileInputTest, stateFolderWithAnyName) {
    const TevTest::EnvironmentVariable folder("TEV_STATE_DIR", (state.path() / "a \"%h\\ 'b' $HOME;x*").string());
    Transfer transfer = transferTo(server);
    EXPECT_EQ(transfer.run(), TevTest::success);
    EXPECT_TRUE(std::filesystem::exists(state.path() / "a \"%h\\ 'b' $HOME;x*" / "known_hosts"));
    std::filesystem::remove(transfer.remotePath);
}

TEST_F(SftpHostileInputTest, stateFolderThatTheClientCannotUse) {
    for (const char* const name : {"a${HOME}", "a\nb"}) {
        const TevTest::EnvironmentVariable folder("TEV_STATE_DIR", (state.path() / name).string());
        EXPECT_EQ(transferTo(server).run(),
                  (TransferOutcome{-1, "the SFTP client cannot use the state folder's name; set TEV_STATE_DIR"}));
    }
}

TEST_F(SftpHostileInputTest, knownHostsFileThatCannotBeWrittenIsNotGoneWithout) {
    const std::string file = state.write("file", "");
    const TevTest::EnvironmentVariable folder("TEV_STATE_DIR", file);
    EXPECT_EQ(transferTo(server).run(),
              (TransferOutcome{
                  -1, file + "/known_hosts, where host keys are remembered, cannot be written: Not a directory"}));
}

TEST_F(SftpHostileInputTest, scopedAddressIsTheClients) {
    Transfer transfer = transferTo(server);
    transfer.host = "[fe80::1%lo]";
    transfer.timeout = 3000;
    const TransferOutcome outcome = transfer.run();
    EXPECT_EQ(outcome.code, -1);
    EXPECT_THAT(outcome.sentence, HasSubstr("no connection to [fe80::1%lo], port "));
}

}  // namespace

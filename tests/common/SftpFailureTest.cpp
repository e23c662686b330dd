#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <thread>

#include "AsNobody.h"
#include "FileText.h"
#include "LogCapture.h"
#include "SftpTest.h"
#include "TcpProxy.h"
#include "Wait.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Eq;
using testing::Field;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using TevTest::contents;
using TevTest::millisecondsOf;
using TevTest::randomBytes;
using TevTest::SftpServer;
using TevTest::success;
using TevTest::TcpProxy;
using TevTest::Transfer;
using TevTest::TransferOutcome;
using TevTest::waitUntil;

constexpr std::size_t large = 30'000'000;

/// What a failed transfer leaves: its code, its sentence, and everything on the server as it was.
class SftpFailureTest : public TevTest::SftpTest {
protected:
    Transfer transferOver(const SftpServer& server, const std::string& text = "new") const {
        const Transfer transfer = transferTo(server, text);
        putOldFile(transfer);
        return transfer;
    }

    static void expectUntouched(const SftpServer& server, const Transfer& transfer) {
        EXPECT_TRUE(isOldFileWhole(transfer));
        EXPECT_THAT(server.names(), ElementsAre("remote"));
    }
};

testing::Matcher<TransferOutcome> outcome(TevReturnT code, const testing::Matcher<std::string>& sentence) {
    return AllOf(Field(&TransferOutcome::code, code), Field(&TransferOutcome::sentence, sentence));
}

/// A port on which nobody ever accepts a connection, or, once this is gone, nobody listens.
class SilentPort {
public:
    SilentPort() : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(descriptor, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(descriptor, 8) != 0 ||
            getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            throw std::system_error(errno, std::generic_category(), "listen");
        }
        port = std::to_string(ntohs(address.sin_port));
    }
    ~SilentPort() { close(descriptor); }
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;

    std::string port;

protected:
    int descriptor;
};

/// A port where the first connection gets a message of farewell before any key is exchanged.
class FarewellPort : public SilentPort {
public:
    explicit FarewellPort(const std::string& message)
        : speaking([this, message] {
              const int client = accept4(descriptor, nullptr, nullptr, SOCK_CLOEXEC);
              const std::string bytes = "SSH-2.0-server\r\n" + packet(message);
              char answer[4096];
              // Closed only when the client is through, so that nothing gets lost.
              for (ssize_t count = send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL); count > 0;) {
                  count = read(client, answer, sizeof answer);
              }
              close(client);
          }) {}
    ~FarewellPort() { speaking.join(); }

private:
    static std::string number(std::size_t value) {
        const std::uint32_t inOrder = htonl(static_cast<std::uint32_t>(value));
        return {reinterpret_cast<const char*>(&inOrder), sizeof inOrder};
    }

    /// RFC 4253, sections 6 and 11.1: SSH_MSG_DISCONNECT with a reason, the message and no language.
    static std::string packet(const std::string& message) {
        const std::string payload = '\1' + number(2) + number(message.size()) + message + number(0);
        const std::size_t padding = 12 - (payload.size() + 9) % 8;
        return number(1 + payload.size() + padding) + static_cast<char>(padding) + payload + std::string(padding, '\0');
    }

    std::thread speaking;
};

/// From here on the process is alone in an empty network, and keeps its user.
void enterEmptyNetwork() {
    const uid_t uid = geteuid();
    // Not every root may: one of a container may have to ask for a namespace of users as well.
    if (uid == 0 && unshare(CLONE_NEWNET) == 0) {
        return;
    }
    if (unshare(CLONE_NEWNET | CLONE_NEWUSER) != 0) {
        throw std::system_error(errno, std::generic_category(), "unshare");
    }
    std::ofstream("/proc/self/uid_map") << uid << ' ' << uid << " 1\n";
}

TEST_F(SftpFailureTest, refusedConnection) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.port = SilentPort().port;
    EXPECT_THAT(transfer.run(),
                outcome(-1, "no connection to 127.0.0.1, port " + transfer.port + ": Connection refused"));
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, unknownHost) {
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    transfer.host = "nowhere.invalid";
    EXPECT_THAT(transfer.runInChild(enterEmptyNetwork),
                outcome(-1, StartsWith("the host nowhere.invalid is not found: ")));
}

TEST_F(SftpFailureTest, unreachableNetwork) {
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    transfer.host = "192.0.2.1";
    EXPECT_THAT(transfer.runInChild(enterEmptyNetwork),
                outcome(-1, "no connection to 192.0.2.1, port 22: Network is unreachable"));
}

TEST_F(SftpFailureTest, silentServerEndsWithTheTimeout) {
    const SilentPort silent;
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    transfer.port = silent.port;
    transfer.timeout = 700;
    EXPECT_THAT(
        millisecondsOf([&] { EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was not over after 700 ms")); }),
        AllOf(Ge(700), Lt(1700)));
}

TEST_F(SftpFailureTest, wrongPasswordIsTriedOnce) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.password = "wrong";
    EXPECT_THAT(transfer.run(),
                outcome(-1, "the server 127.0.0.1 does not accept the user tester with this password; check both"));
    const std::string log = server.logWith("Connection closed by authenticating user");
    const std::size_t firstTry = log.find("Failed password for tester");
    EXPECT_NE(firstTry, std::string::npos);
    EXPECT_EQ(log.find("Failed password for tester", firstTry + 1), std::string::npos);
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, emptyPasswordIsRefusedByTheServer) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.password = "";
    EXPECT_THAT(transfer.run(),
                outcome(-1, "the server 127.0.0.1 does not accept the user tester with this password; check both"));
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, serverThatEndsTheConnectionAtOnce) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server);
    transfer.port = proxy.port();
    proxy.cutAfter(1);
    EXPECT_THAT(transfer.run(), outcome(-1, MatchesRegex("the server 127\\.0\\.0\\.1, port " + proxy.port() +
                                                         ", has ended the connection: .*Connection .* by .*")));
    expectUntouched(server, transfer);
}

// What the server said was told as the client's own words, with the command that forgets the true key.
TEST_F(SftpFailureTest, farewellThatImitatesAChangedHostKeyIsTheServers) {
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    for (const std::string before : {"", "x\n", "x\r"}) {
        const FarewellPort server(before + "Host key for x has changed");
        transfer.port = server.port;
        EXPECT_THAT(transfer.run(), outcome(-1, StartsWith("the server 127.0.0.1, port " + server.port +
                                                           ", has ended the connection: Received disconnect from ")));
    }
}

TEST_F(SftpFailureTest, serverWithoutPasswords) {
    SftpServer::Setting setting;
    setting.configuration = {"PasswordAuthentication no", "PubkeyAuthentication yes"};
    const SftpServer server(setting);
    EXPECT_THAT(transferTo(server).run(),
                outcome(-1,
                        "the server 127.0.0.1 does not let the user tester in with a password: Permission denied "
                        "(publickey)."));
}

TEST_F(SftpFailureTest, changedHostKeyIsToldWithTheWayToForgetTheOldOneAndGetsNoPassword) {
    SftpServer first;
    Transfer transfer = transferOver(first);
    EXPECT_EQ(transfer.run(), success);
    first.stop();
    SftpServer::Setting setting;
    setting.port = first.port();
    setting.configuration = {"LogLevel DEBUG1"};
    const SftpServer second(setting);
    const TransferOutcome refused = transfer.run();
    const std::string forget =
        "ssh-keygen -R '[127.0.0.1]:" + first.port() + "' -f '" + (state.path() / "known_hosts").string() + "'";
    EXPECT_THAT(
        refused,
        outcome(-1, "the host key of 127.0.0.1 has changed; if that is right, forget the old one with: " + forget));
    EXPECT_THAT(second.logWith("Connection closed by"), Not(HasSubstr("assword for")));
    ASSERT_EQ(std::system((forget + " >/dev/null 2>&1").c_str()), 0);
    transfer.remotePath = second.folder() / "remote";
    EXPECT_EQ(transfer.run(), success);
}

TEST_F(SftpFailureTest, algorithmThatTheClientDoesNotKnow) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.ciphers = "aes128-ctr,foo";
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("Bad SSH2 cipher spec 'aes128-ctr,foo'")));
    transfer.ciphers = "";
    transfer.keyExchanges = "foo";
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("Bad SSH2 KexAlgorithms 'foo'")));
    transfer.keyExchanges = "";
    transfer.macs = "foo";
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("Bad SSH2 MAC spec 'foo'")));
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, algorithmThatTheServerDoesNotOffer) {
    SftpServer::Setting setting;
    setting.configuration = {"Ciphers aes256-ctr"};
    const SftpServer server(setting);
    Transfer transfer = transferOver(server);
    transfer.ciphers = "aes128-ctr";
    EXPECT_THAT(transfer.run(), outcome(-1,
                                        "the server 127.0.0.1 and the selected algorithms have nothing in common: no "
                                        "matching cipher found. Their offer: aes256-ctr"));
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, serverWithoutSftp) {
    SftpServer::Setting setting;
    setting.configuration = {"Subsystem other internal-sftp"};
    const SftpServer server(setting);
    EXPECT_THAT(transferTo(server).run(), outcome(-1, "the server 127.0.0.1 does not offer SFTP"));
}

TEST_F(SftpFailureTest, serverWhoseLoginWritesATextOfItsOwn) {
    SftpServer::Setting setting;
    setting.configuration = {"ForceCommand echo hello"};
    const SftpServer server(setting);
    EXPECT_THAT(transferTo(server).run(), outcome(-1, HasSubstr("does not speak SFTP")));
}

TEST_F(SftpFailureTest, missingFolder) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    transfer.remotePath = server.folder() / "missing/remote";
    EXPECT_THAT(transfer.run(),
                outcome(-2, "the folder of " + transfer.remotePath + " is not there on the server; make it first"));
    EXPECT_THAT(server.names(), IsEmpty());
}

TEST_F(SftpFailureTest, folderThatMayNotBeWritten) {
    const SftpServer server;
    const std::filesystem::path folder = server.world() / "closed";
    std::filesystem::create_directory(folder);
    Transfer transfer = transferTo(server);
    transfer.remotePath = folder / "remote";
    putOldFile(transfer);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    EXPECT_THAT(transfer.run(), outcome(-1, "the user tester may not write into the folder of " + transfer.remotePath +
                                                " on the server"));
    EXPECT_TRUE(isOldFileWhole(transfer));
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
}

// A temporary file that had never been opened was said to be left.
TEST_F(SftpFailureTest, folderThatMayNotBeSearched) {
    const SftpServer server;
    const std::filesystem::path folder = server.world() / "closed";
    std::filesystem::create_directory(folder);
    Transfer transfer = transferTo(server);
    transfer.remotePath = folder / "remote";
    ASSERT_EQ(chmod(folder.c_str(), 0), 0);
    EXPECT_THAT(transfer.run(), outcome(-1, "the user tester may not write into the folder of " + transfer.remotePath +
                                                " on the server"));
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
}

// The client cut the line in which the reason against a removal stood.
TEST_F(SftpFailureTest, missingFolderWithALongName) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    transfer.remotePath = server.folder();
    for (int i = 0; i < 300; ++i) {
        transfer.remotePath += "/ä";
    }
    EXPECT_THAT(transfer.run(),
                outcome(-2, "the folder of " + transfer.remotePath + " is not there on the server; make it first"));
}

TEST_F(SftpFailureTest, folderInThePlaceOfTheFile) {
    const SftpServer server;
    const Transfer transfer = transferTo(server);
    std::filesystem::create_directory(transfer.remotePath);
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("if that is a folder, end the path with \"/\"")));
    EXPECT_THAT(server.names(), ElementsAre("remote"));
    EXPECT_TRUE(std::filesystem::is_empty(transfer.remotePath));
}

TEST_F(SftpFailureTest, nameThatTheServersFileSystemDoesNotTake) {
    const SftpServer server;
    Transfer transfer = transferTo(server);
    transfer.remotePath = server.folder() / std::string(256, 'x');
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("the server does not put the file in the place of ")));
    EXPECT_THAT(server.names(), IsEmpty());
}

TEST_F(SftpFailureTest, fullDisk) {
    SftpServer::Setting setting;
    setting.fileSizeLimit = 1'000'000;
    const SftpServer server(setting);
    const Transfer transfer = transferOver(server, randomBytes(3'000'000));
    EXPECT_THAT(
        transfer.run(),
        outcome(-1, "the server does not store the whole file, its disk may be full or a limit reached: Failure"));
    expectUntouched(server, transfer);
}

// With several requests in flight the client forgot the failed write when a later one succeeded: it ended with 0, and
// the file had the right size and a hole. The link is slow enough for some of those requests to fail and others to
// succeed.
TEST_F(SftpFailureTest, momentOfFullDiskIsAFailure) {
    constexpr std::uintmax_t limit = 1'000'000;
    SftpServer::Setting setting;
    setting.fileSizeLimit = limit;
    const SftpServer server(setting);
    TcpProxy proxy(server.host(), server.port());
    proxy.slowDownTo(5'000'000);
    Transfer transfer = transferOver(server, randomBytes(10'000'000));
    transfer.port = proxy.port();
    std::thread freeing([&] {
        std::size_t bytesAtLimit = 0;
        waitUntil([&] {
            const std::vector<std::string> names = server.names();
            std::error_code ignored;
            if (bytesAtLimit == 0 && names.size() == 2 &&
                std::filesystem::file_size(server.folder() / names[0], ignored) == limit) {
                bytesAtLimit = proxy.bytes();
            }
            // A write has failed: the client has gone on after it, or removed the file.
            return bytesAtLimit > 0 && (names.size() == 1 || proxy.bytes() > bytesAtLimit + 600'000);
        });
        server.limitFileSize(RLIM_INFINITY);
    });
    EXPECT_THAT(
        transfer.run(),
        outcome(-1, "the server does not store the whole file, its disk may be full or a limit reached: Failure"));
    freeing.join();
    EXPECT_LT(proxy.bytes(), 5'000'000U);
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, connectionCutInTheMiddleLeavesNothing) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    proxy.cutAfter(2'000'000);
    EXPECT_THAT(transfer.run(),
                outcome(-1, StartsWith("the connection to 127.0.0.1 broke in the middle of the transfer: ")));
    EXPECT_EQ(proxy.connections(), 2);
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, sessionThatTheServerEndsInTheMiddleLeavesNothing) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    proxy.holdAfter(2'000'000);
    std::thread cutting([&] {
        waitUntil([&] { return proxy.bytes() >= 2'000'000; });
        server.cutSessions();
        proxy.resume();
    });
    EXPECT_THAT(transfer.run(),
                outcome(-1, StartsWith("the connection to 127.0.0.1 broke in the middle of the transfer: ")));
    cutting.join();
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, temporaryFileThatCannotBeRemovedIsNamed) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    proxy.cutAfter(2'000'000, 1000);
    // The second connection is cut as well: it carries less, so at once.
    std::thread cutting([&] {
        waitUntil([&] { return proxy.connections() == 2; });
        proxy.cutAfter(1, 1000);
    });
    const TransferOutcome result = transfer.run();
    cutting.join();
    EXPECT_EQ(result.code, -1);
    EXPECT_TRUE(isOldFileWhole(transfer));
    ASSERT_EQ(server.names().size(), 2U);
    EXPECT_THAT(result.sentence, testing::EndsWith("; " + (server.folder() / server.names()[0]).string() +
                                                   " may be left on the server"));
}

TEST_F(SftpFailureTest, serverStoppedInTheMiddleEndsWithTheTimeout) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    transfer.timeout = 2500;
    proxy.slowDownTo(1'000'000);
    std::thread stopping([&] {
        waitUntil([&] { return proxy.bytes() > 500'000; });
        server.pause();
    });
    EXPECT_THAT(millisecondsOf([&] {
                    EXPECT_THAT(transfer.run(),
                                outcome(-1, MatchesRegex("the transfer was not over after 2500 ms; "
                                                         ".*/files/\\.tev-.* may be left on the server")));
                }),
                AllOf(Ge(2500), Lt(3500)));
    stopping.join();
    server.resume();
    EXPECT_TRUE(isOldFileWhole(transfer));
}

TEST_F(SftpFailureTest, slowTransferEndsWithTheTimeoutAndLeavesNothing) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    transfer.timeout = 2500;
    proxy.slowDownTo(8'000'000);
    EXPECT_THAT(
        millisecondsOf([&] { EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was not over after 2500 ms")); }),
        AllOf(Ge(2500), Lt(3500)));
    EXPECT_GT(proxy.bytes(), 100'000U);
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, timeoutIsNotReachedEarly) {
    // The client counts in whole seconds.
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferTo(server);
    transfer.port = proxy.port();
    transfer.timeout = 4900;
    proxy.holdAfter(0);
    std::thread releasing([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(3500));
        proxy.resume();
    });
    EXPECT_EQ(transfer.run(), success);
    releasing.join();
}

/// What Tev::SftpWrapper::interruptAll is to end.
class SftpInterruptionTest : public SftpFailureTest {
protected:
    ~SftpInterruptionTest() override { Tev::SftpWrapper::allowAgain(); }

    /// Interrupts all transfers once the proxy has carried `bytes`.
    static std::thread interruptAfter(const TcpProxy& proxy, std::size_t bytes) {
        return std::thread([&proxy, bytes] {
            waitUntil([&] { return proxy.bytes() > bytes; });
            Tev::SftpWrapper::interruptAll();
        });
    }
};

TEST_F(SftpInterruptionTest, endsARunningTransferWhichLeavesNothing) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    proxy.slowDownTo(8'000'000);
    std::thread interrupting = interruptAfter(proxy, 1'000'000);
    EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was interrupted"));
    interrupting.join();
    EXPECT_LT(proxy.bytes(), 10'000'000U);
    expectUntouched(server, transfer);
}

TEST_F(SftpInterruptionTest, endsATransferThatStillConnects) {
    const SilentPort silent;
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    transfer.port = silent.port;
    std::thread interrupting([&] {
        waitUntil([&] { return !clients().empty(); });
        Tev::SftpWrapper::interruptAll();
    });
    EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was interrupted"));
    interrupting.join();
}

TEST_F(SftpInterruptionTest, isOverWithinASecondWhereTheServerIsStopped) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferOver(server, randomBytes(large));
    transfer.port = proxy.port();
    proxy.holdAfter(1'000'000);
    std::chrono::steady_clock::time_point begin;
    std::thread interrupting([&] {
        waitUntil([&] { return proxy.bytes() >= 1'000'000; });
        begin = std::chrono::steady_clock::now();
        Tev::SftpWrapper::interruptAll();
    });
    EXPECT_THAT(transfer.run(), outcome(-1, StartsWith("the transfer was interrupted; ")));
    interrupting.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    EXPECT_TRUE(isOldFileWhole(transfer));
}

TEST_F(SftpInterruptionTest, failsTransfersBegunLaterUntilTheyAreAllowedAgain) {
    const SftpServer server;
    const Transfer transfer = transferOver(server);
    Tev::SftpWrapper::interruptAll();
    EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was interrupted"));
    expectUntouched(server, transfer);
    Tev::SftpWrapper::allowAgain();
    EXPECT_EQ(transfer.run(), success);
}

TEST_F(SftpFailureTest, localFileThatIsNotThere) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.localFile = local.path() / "gone";
    EXPECT_THAT(transfer.run(),
                outcome(-2, "the local file " + transfer.localFile + " cannot be read: No such file or directory"));
    transfer.localFile = "";
    EXPECT_THAT(transfer.run(), outcome(-2, "the local file  cannot be read: No such file or directory"));
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, localFileThatMayNotBeRead) {
    const SftpServer server;
    const Transfer transfer = transferOver(server);
    ASSERT_EQ(chmod(transfer.localFile.c_str(), 0), 0);
    ASSERT_EQ(chmod(local.path().c_str(), 0755), 0);
    {
        const TevTest::AsNobody nobody;
        EXPECT_THAT(transfer.run(),
                    outcome(-1, "the local file " + transfer.localFile + " cannot be read: Permission denied"));
    }
    expectUntouched(server, transfer);
}

// It was told as a broken connection.
TEST_F(SftpFailureTest, localFileThatCannotBeReadAnyMore) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.localFile = "/sys/class/net/lo/speed";  // there is none
    EXPECT_THAT(transfer.run(), outcome(-1, "the local file /sys/class/net/lo/speed cannot be read: Invalid argument"));
    expectUntouched(server, transfer);
}

// It was put in place, torn or mixed of old and new.
TEST_F(SftpFailureTest, localFileThatChangesMeanwhile) {
    const SftpServer server;
    const std::function<void(const std::string&)> changes[] = {
        [](const std::string& file) { std::filesystem::resize_file(file, 1'000'000); },
        [](const std::string& file) { std::fstream(file, std::ios::in | std::ios::out) << "x"; }};
    for (const auto& change : changes) {
        TcpProxy proxy(server.host(), server.port());
        Transfer transfer = transferOver(server, randomBytes(3'000'000));
        transfer.port = proxy.port();
        proxy.holdAfter(500'000);
        std::thread changing([&] {
            waitUntil([&] { return proxy.bytes() >= 500'000; });
            change(transfer.localFile);
            proxy.resume();
        });
        EXPECT_THAT(transfer.run(),
                    outcome(-1, "the local file " + transfer.localFile + " changed during the transfer"));
        changing.join();
        expectUntouched(server, transfer);
    }
}

TEST_F(SftpFailureTest, localFileThatIsNoRegularFile) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    const std::string fifo = local.path() / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& file : {local.path().string(), fifo, std::string("/dev/null")}) {
        transfer.localFile = file;
        EXPECT_THAT(transfer.run(), outcome(-8, "the local file " + file + " is not a regular file"));
    }
    expectUntouched(server, transfer);
}

TEST_F(SftpFailureTest, clientProgramThatIsNotThere) {
    const SftpServer server;
    Transfer transfer = transferOver(server);
    transfer.program = "/nowhere/sftp";
    EXPECT_THAT(transfer.run(),
                outcome(-1, "the SFTP client /nowhere/sftp cannot be started: No such file or directory"));
    transfer.program = "/";
    EXPECT_THAT(transfer.run(), outcome(-1, "the SFTP client / cannot be started: Permission denied"));
    transfer.program = "/bin/true";
    EXPECT_THAT(transfer.run(), outcome(-1, HasSubstr("the SFTP client has ended without a word")));
    expectUntouched(server, transfer);
}

/// From here on the system has no memory for a further process.
void refuseProcesses() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 1, 0), BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone3, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOMEM), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter{std::size(program), program};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        throw std::system_error(errno, std::generic_category(), "seccomp");
    }
}

TEST_F(SftpFailureTest, noMemoryForTheClient) {
    const SftpServer server;
    const Transfer transfer = transferOver(server);
    EXPECT_THAT(transfer.runInChild(refuseProcesses),
                outcome(-10, "the SFTP client /usr/bin/sftp cannot be started: Cannot allocate memory"));
    expectUntouched(server, transfer);
}

/// A program in the client's place, for what no server of ours does.
class SftpClientTest : public SftpFailureTest {
protected:
    Transfer transferWith(const std::string& script) const {
        Transfer transfer;
        transfer.program = local.write("client", "#!/bin/sh\n" + script);
        chmod(transfer.program.c_str(), 0755);
        transfer.localFile = local.write("local", "");
        transfer.remotePath = "/x";
        state.write("known_hosts", "127.0.0.1 a key\n");
        return transfer;
    }

    TransferOutcome runWith(const std::string& script, long timeout = 10000) const {
        Transfer transfer = transferWith(script);
        transfer.timeout = timeout;
        return transfer.run();
    }
};

TEST_F(SftpClientTest, questionAfterThePasswordIsToldAndNotAnswered) {
    const TransferOutcome result = runWith(
        "exec 5<>/dev/tty\n"
        "printf '\\rPassword: ' >&5; read -r answer <&5\n"
        "printf '\\n\\rYour password has expired. New password: ' >&5; read -r answer <&5\n"
        "echo \"$answer\" >" +
        (local.path() / "answer").string());
    EXPECT_THAT(result, outcome(-1,
                                "the server 127.0.0.1 refuses the password, or wants more than that; it asks: \"Your "
                                "password has expired. New password: \""));
    EXPECT_FALSE(std::filesystem::exists(local.path() / "answer"));
}

TEST_F(SftpClientTest, serverThatFallsSilentIsGivenUpByTheClient) {
    const std::string arguments = local.path() / "arguments";
    Transfer transfer = transferWith("echo \" $* \" >" + arguments + "\n");
    transfer.timeout = 0;
    transfer.run();
    for (const char* const option :
         {" -oConnectTimeout=120 ", " -oServerAliveInterval=15 ", " -oServerAliveCountMax=3 "}) {
        EXPECT_THAT(contents(arguments), HasSubstr(option));
    }
    // Its own seconds end after our time-out.
    transfer.timeout = 4900;
    transfer.run();
    EXPECT_THAT(contents(arguments), HasSubstr(" -oConnectTimeout=5 "));
}

TEST_F(SftpClientTest, questionOfSeveralLinesIsAnswered) {
    for (const char* const pause : {"", "sleep 0.2"}) {
        Transfer transfer = transferWith(std::string("exec 5<>/dev/tty\n"
                                                     "printf '\\r(tester@host) Welcome to the vault.\\n' >&5\n") +
                                         pause +
                                         "\nprintf 'Password: ' >&5; read -r answer <&5; printf '\\n' >&5\n"
                                         "while read -r command; do echo SFTP protocol version 3; done\n"
                                         "echo \"$answer\" >" +
                                         (local.path() / "answer").string());
        EXPECT_EQ(transfer.run(), success);
        EXPECT_EQ(contents(local.path() / "answer"), transfer.password + '\n');
    }
}

TEST_F(SftpClientTest, passwordOfTheGreatestLengthIsSent) {
    Transfer transfer = transferWith("exec 5<>/dev/tty\nprintf '\\rPassword: ' >&5\nhead -c 1024 <&5 >" +
                                     (local.path() / "answer").string() + "\n");
    transfer.password = std::string(1022, 'p') + '.';
    transfer.run();
    EXPECT_EQ(contents(local.path() / "answer"), transfer.password + '\n');
}

// While the client wrote faster than its words were taken, neither the time-out nor an interruption was seen.
TEST_F(SftpClientTest, clientThatNeverStopsTalkingIsEndedByTheTimeout) {
    const TevTest::LogCapture log(6);
    Transfer transfer = transferWith("exec timeout 8 yes >&2\n");
    transfer.timeout = 1000;
    for (const bool isDebugging : {false, true}) {
        transfer.debug = isDebugging;
        EXPECT_THAT(millisecondsOf(
                        [&] { EXPECT_THAT(transfer.run(), outcome(-1, "the transfer was not over after 1000 ms")); }),
                    AllOf(Ge(1000), Lt(2000)));
    }
}

TEST_F(SftpClientTest, clientThatDoesNotWantToGoIsEnded) {
    EXPECT_THAT(millisecondsOf([&] {
                    EXPECT_THAT(runWith("trap '' TERM HUP INT\nexec <&- >&- 2>&-\nwhile :; do sleep 1; done\n", 500),
                                outcome(-1, "the transfer was not over after 500 ms"));
                }),
                Lt(1500));
}

// A timer of the host's began the time that the client has to go anew, for ever when it rang often enough.
TEST_F(SftpClientTest, clientThatDoesNotWantToGoIsEndedInAHostWithATimer) {
    Transfer transfer = transferWith("trap '' TERM HUP INT\nfor i in 1 2 3 4 5; do sleep 1; done\n");
    transfer.timeout = 500;
    EXPECT_THAT(millisecondsOf([&] {
                    EXPECT_THAT(transfer.runInChild([] {
                        struct sigaction action {};
                        action.sa_handler = [](int) {};
                        sigaction(SIGALRM, &action, nullptr);
                        const itimerval often{{0, 10'000}, {0, 10'000}};
                        setitimer(ITIMER_REAL, &often, nullptr);
                    }),
                                outcome(-1, "the transfer was not over after 500 ms"));
                }),
                Lt(1500));
}

TEST_F(SftpClientTest, clientThatGoesBetweenTwoCommandsIsNoSignalToTheHost) {
    const Transfer transfer = transferWith("read -r line; exec <&-; echo SFTP protocol version 3; sleep 0.2\n");
    EXPECT_THAT(transfer.runInChild([] {
        std::signal(SIGPIPE, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    }),
                outcome(-1, StartsWith("the connection to 127.0.0.1 broke in the middle of the transfer: ")));
}

// What the user's login on the server writes to standard error was taken for a failure: a file in its place was said
// not to be there.
TEST_F(SftpClientTest, wordsOfTheServerAreNoFailure) {
    const std::string version = "echo SFTP protocol version 3\n";
    const std::string words = "echo 'Your quota is nearly used up.' >&2\n";
    const std::string untilRenamed = "read -r v; " + version + "read -r put; read -r v; " + words + version +
                                     "read -r rename; read -r v; " + words + version;
    const std::string notThere = "echo 'remote delete /.tev-1: No such file or directory' >&2\n";
    EXPECT_EQ(runWith(untilRenamed + "read -r rm; read -r v; " + notThere + version), success);
    EXPECT_THAT(runWith(untilRenamed + "read -r rm; read -r v; " + words + version),
                outcome(-1, "the server does not put the file in the place of /x: Your quota is nearly used up."));
}

// A line without an end must not hide the client's words behind it.
TEST_F(SftpClientTest, failureBehindWordsOfTheServerIsOne) {
    const std::string version = "echo SFTP protocol version 3\n";
    EXPECT_THAT(runWith("read -r v; " + version +
                        "read -r put; read -r v; echo 'Hello write remote \"/.tev-1\": Failure' >&2; " + version +
                        "read -r rm; read -r v; " + version),
                outcome(-1, "the server does not take the file: Hello write remote \"/.tev-1\": Failure"));
}

TEST_F(SftpClientTest, onlyTheServersReasonTellsThatThereIsNothingToRemove) {
    const std::string version = "echo SFTP protocol version 3\n";
    const auto refusing = [&](const std::string& words) {
        return runWith("read -r v; " + version + "read -r put; read -r v; echo 'write remote \"x\": Failure' >&2; " +
                       version + "read -r rm; read -r v; echo '" + words + "' >&2; " + version);
    };
    EXPECT_THAT(refusing("remote delete /No such file or directory/.tev-1: Failure").sentence,
                HasSubstr("may be left on the server"));
    EXPECT_THAT(refusing("remote delete /x: No such file or directory/\\\\303\\\\27").sentence,
                HasSubstr("may be left on the server"));
    EXPECT_THAT(refusing("remote delete /.tev-1: No such file or directory").sentence,
                testing::EndsWith("a limit reached: Failure"));
}

// The answer to the renaming may get lost. Then the temporary file's absence tells that the file is in its place.
TEST_F(SftpClientTest, lostAnswerToTheRenamingIsNoFailure) {
    const std::string version = "echo SFTP protocol version 3\n";
    const std::string first =
        "read -r v; " + version + "read -r put; read -r v; " + version + "read -r rename; exit 255\n";
    const std::string second = "read -r v; " + version + "read -r rm; read -r v; ";
    const std::string mark = local.path() / "mark";
    const std::string both = "if mkdir " + mark + "; then " + first + "fi\n" + second;
    EXPECT_EQ(runWith(both + "echo 'remote delete /x: No such file or directory' >&2; " + version), success);
    std::filesystem::remove(mark);
    EXPECT_THAT(runWith(both + version),
                outcome(-1, StartsWith("the connection to 127.0.0.1 broke in the middle of the transfer: ")));
}

TEST_F(SftpClientTest, hostKeyThatWasNotWrittenEndsTheTransferBeforeAnythingIsSent) {
    const Transfer transfer =
        transferWith("read -r v; echo SFTP protocol version 3; cat >" + local.path().string() + "/commands\n");
    const std::string file = state.write("known_hosts", "");
    EXPECT_THAT(transfer.run(),
                outcome(-1, file + ", where host keys are remembered, is empty: the server's key was not written"));
    EXPECT_EQ(contents(local.path() / "commands"), "");
}

TEST_F(SftpClientTest, wordsWithoutEndAreBorne) {
    const TransferOutcome result = runWith("head -c 20000000 /dev/zero | tr '\\0' x >&2; head -c 20000000 /dev/zero\n");
    EXPECT_THAT(result, outcome(-1, StartsWith("no connection to 127.0.0.1, port 22: xxx")));
    EXPECT_LT(result.sentence.size(), 5000U);
}

TEST_F(SftpClientTest, controlCharactersOfTheServerAreNotShown) {
    EXPECT_THAT(runWith("printf 'a\\033[2J\\007b\\n' >&2\n"),
                outcome(-1, "no connection to 127.0.0.1, port 22: a?[2J?b"));
}

}  // namespace

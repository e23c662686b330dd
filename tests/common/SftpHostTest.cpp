#include <fcntl.h>
#include <gmock/gmock.h>
#include <pwd.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <thread>

#include "FileText.h"
#include "LogCapture.h"
#include "SftpTest.h"
#include "TcpProxy.h"
#include "Wait.h"

#ifdef __SANITIZE_THREAD__
/// The thread sanitizer lets a process that has threads sleep for a second at its end, which is none of the transfer's.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
    return "atexit_sleep_ms=0";
}
#endif

namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::Not;
using testing::SizeIs;
using TevTest::contents;
using TevTest::EnvironmentVariable;
using TevTest::millisecondsOf;
using TevTest::SftpServer;
using TevTest::success;
using TevTest::TcpProxy;
using TevTest::Transfer;
using TevTest::TransferOutcome;
using TevTest::waitUntil;

/// Transfers in hosts of every kind.
class SftpHostTest : public TevTest::SftpTest {
protected:
    /// A transfer that takes too long ends with its time-out, and leaves nothing, in a host that `prepare` has
    /// prepared. The client slows itself down: with a proxy's threads here, the host could have none under the thread
    /// sanitizer.
    void expectTimeoutInChild(const std::function<void()>& prepare) {
        const SftpServer server;
        const std::string begun = local.path() / "begun";
        Transfer transfer = transferTo(server, TevTest::randomBytes(20'000'000));
        transfer.program = local.write("client",
                                       "#!/bin/bash\n"
                                       "until [ \"$(find " +
                                           server.folder().string() +
                                           " -name '.tev-*' -size +100k)\" ]; do sleep 0.01; done && touch " + begun +
                                           " &\n"
                                           "exec /usr/bin/sftp -l 48000 \"$@\"\n");  // 6 MB in a second
        ASSERT_EQ(chmod(transfer.program.c_str(), 0755), 0);
        transfer.timeout = 2000;
        EXPECT_THAT(millisecondsOf([&] {
                        EXPECT_EQ(transfer.runInChild(prepare),
                                  (TransferOutcome{-1, "the transfer was not over after 2000 ms"}));
                    }),
                    AllOf(Ge(2000), Lt(3000)));
        EXPECT_TRUE(std::filesystem::exists(begun));
        EXPECT_THAT(clients(), IsEmpty());
        EXPECT_THAT(server.names(), IsEmpty());
    }

    void expectSuccessInChild(const std::function<void()>& prepare) {
        const SftpServer server;
        const Transfer transfer = transferTo(server);
        EXPECT_EQ(transfer.runInChild(prepare), success);
        EXPECT_EQ(contents(transfer.remotePath), "new");
    }
};

TEST_F(SftpHostTest, ignoredSigchld) {
    const auto ignore = [] { std::signal(SIGCHLD, SIG_IGN); };
    expectSuccessInChild(ignore);
    expectTimeoutInChild(ignore);
}

TEST_F(SftpHostTest, threadThatWaitsForAllChildren) {
    const auto wait = [] {
        std::thread([] {
            for (;;) {
                if (waitpid(-1, nullptr, 0) < 0) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            }
        }).detach();
    };
    expectSuccessInChild(wait);
    expectTimeoutInChild(wait);
}

TEST_F(SftpHostTest, blockedSignals) {
    const auto block = [] {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
    };
    expectSuccessInChild(block);
    expectTimeoutInChild(block);
}

TEST_F(SftpHostTest, signalsThatInterruptCalls) {
    expectSuccessInChild([] {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often{{0, 500}, {0, 500}};
        setitimer(ITIMER_REAL, &often, nullptr);
    });
}

TEST_F(SftpHostTest, closedStandardStreams) {
    const auto close = [] {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(descriptor);
        }
    };
    expectSuccessInChild(close);
    expectTimeoutInChild(close);
}

TEST_F(SftpHostTest, manyOpenDescriptors) {
    expectSuccessInChild([] {
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 4096);
        setrlimit(RLIMIT_NOFILE, &limit);
        int last = 0;
        while (last < 1500) {
            // Inherited by every child.
            last = dup(STDIN_FILENO);
            if (last < 0) {
                throw std::runtime_error("not enough descriptors for the test");
            }
        }
    });
}

// One end of a pipe stayed open when there was no descriptor for the other.
TEST_F(SftpHostTest, tooFewDescriptorsAreToldWithWhatTheyAreMissingForAndNoneIsLeft) {
    const SftpServer server;
    const Transfer transfer = transferTo(server);
    std::vector<TransferOutcome> outcomes;
    // A transfer uses those from 10 on.
    for (rlim_t limit = 11; outcomes.empty() || outcomes.back().code == -1; ++limit) {
        outcomes.push_back(transfer.runInChild([limit] {
            const rlimit few{limit, limit};
            setrlimit(RLIMIT_NOFILE, &few);
        }));
    }
    EXPECT_EQ(outcomes.back(), success);
    outcomes.pop_back();
    for (const TransferOutcome& outcome : outcomes) {
        EXPECT_THAT(
            outcome.sentence,
            testing::MatchesRegex("(the local file .* cannot be read|.*known_hosts, .* cannot be written|no "
                                  "pipe|no pseudo terminal|no handle of the SFTP client): Too many open files"));
    }
    EXPECT_THAT(outcomes, SizeIs(Ge(5)));
}

TEST_F(SftpHostTest, clientGetsNoDescriptorOfTheHosts) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    proxy.holdAfter(1);
    Transfer transfer = transferTo(server);
    transfer.port = proxy.port();
    transfer.timeout = 2000;
    const std::string secret = local.write("secret", "");
    const int descriptor = open(secret.c_str(), O_RDONLY);
    std::thread looking([&] {
        waitUntil([&] { return clients().size() == 2 && proxy.bytes() > 0; });
        for (const pid_t client : clients()) {
            for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(client) + "/fd")) {
                std::error_code ignored;
                EXPECT_NE(std::filesystem::read_symlink(entry, ignored), secret);
            }
        }
    });
    transfer.run();
    looking.join();
    close(descriptor);
}

TEST_F(SftpHostTest, hostileEnvironment) {
    const std::string canary = local.path() / "canary";
    const std::string script = local.write("script", "#!/bin/sh\ntouch " + canary + "\n");
    ASSERT_EQ(chmod(script.c_str(), 0755), 0);
    for (const char* const name : {"ssh", "sftp"}) {
        std::filesystem::create_symlink(script, local.path() / name);
    }
    expectSuccessInChild([&] {
        for (const char* const name : {"SSH_ASKPASS", "SSH_ASKPASS_REQUIRE", "DISPLAY", "SSH_AUTH_SOCK", "LD_PRELOAD",
                                       "PATH", "HOME", "SSH_SK_PROVIDER", "LC_ALL", "POSIXLY_CORRECT"}) {
            setenv(name, script.c_str(), 1);
        }
        setenv("SSH_ASKPASS_REQUIRE", "force", 1);
        setenv("PATH", local.path().c_str(), 1);
    });
    EXPECT_FALSE(std::filesystem::exists(canary));
}

TEST_F(SftpHostTest, emptyEnvironment) {
    const std::string folder = state.path();
    expectSuccessInChild([&] {
        clearenv();
        setenv("TEV_STATE_DIR", folder.c_str(), 1);
    });
}

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Makes the calling process, which has no privileges, one that may mount; its user is seen there as `seenAs`.
void enterUserNamespace(uid_t seenAs) {
    const uid_t uid = geteuid();
    const gid_t gid = getegid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        throwErrno("unshare");
    }
    std::ofstream("/proc/self/uid_map") << seenAs << ' ' << uid << " 1\n";
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/gid_map") << gid << ' ' << gid << " 1\n";
}

void mountAt(const std::string& target, const std::string& source, unsigned long flags) {
    if (mount(source.c_str(), target.c_str(), nullptr, flags, nullptr) != 0) {
        throwErrno("mount " + target);
    }
}

class OwnMountsTest : public SftpHostTest {
protected:
    ~OwnMountsTest() override { umount2(base.path().c_str(), MNT_DETACH); }

    /// What the calling process mounts from now on is seen by it and its children only, also in a chroot.
    void enterOwnMounts() const {
        // Not every root may mount: one of a container may have to ask for a namespace as well.
        if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0) {
            enterUserNamespace(geteuid());
        }
        // A mount may pass on to others what is mounted on it, and a chroot cannot reach its own to forbid that. It can
        // forbid it to one of its own making, and go and live below it. Only this first one, a folder that shows
        // itself, is passed on.
        const std::string root = base.path() / "root";
        std::filesystem::create_directory(root);
        mountAt(base.path(), base.path(), MS_BIND);
        mountAt(base.path(), "none", MS_PRIVATE);
        mountAt(root, "/", MS_BIND | MS_REC);
        mountAt(root, "none", MS_PRIVATE | MS_REC);
        if (chroot(root.c_str()) != 0 || chdir("/") != 0) {
            throwErrno(root);
        }
    }

private:
    const TevTest::TempFolder base;
};

TEST_F(OwnMountsTest, usersOwnConfigurationOfTheClientIsNotRead) {
    const std::string canary = local.path() / "canary";
    std::filesystem::create_directory(local.path() / ".ssh");
    local.write(".ssh/config", "ProxyCommand touch " + canary + "\n");
    expectSuccessInChild([&] {
        enterOwnMounts();
        mountAt(getpwuid(geteuid())->pw_dir, local.path(), MS_BIND);
        // The trap works: without our settings the client falls into it.
        if (std::system("/usr/bin/ssh 127.0.0.1 true </dev/null >/dev/null 2>&1") == 0 || unlink(canary.c_str()) != 0) {
            throw std::runtime_error("the configuration has no effect at all");
        }
    });
    EXPECT_FALSE(std::filesystem::exists(canary));
}

TEST_F(SftpHostTest, userWithoutAnAccountIsTold) {
    const SftpServer server;
    const auto loseAccount = [this] {
        constexpr uid_t unknown = 54399;
        if (geteuid() != 0) {
            enterUserNamespace(unknown);
        } else if (chown(state.path().c_str(), unknown, unknown) != 0 ||
                   chown(local.path().c_str(), unknown, unknown) != 0 || setgid(unknown) != 0 || setuid(unknown) != 0) {
            throwErrno("setuid");
        }
    };
    EXPECT_EQ(
        transferTo(server).runInChild(loseAccount),
        (TransferOutcome{-1, "no connection to 127.0.0.1, port " + server.port() + ": No user exists for uid 54399"}));
}

// The client opened the file, could not write to it, said nothing and went on with a key that nobody had pinned.
TEST_F(OwnMountsTest, fullDiskUnderTheStateFolderIsTold) {
    const SftpServer server;
    const std::string file = state.path() / "known_hosts";
    EXPECT_EQ(
        transferTo(server).runInChild([&] {
            enterOwnMounts();
            if (mount("none", state.path().c_str(), "tmpfs", 0, "size=65536") != 0) {
                throwErrno("mount");
            }
            std::ofstream(state.path() / "other") << std::string(65536, 'x');  // as much as there is room for
        }),
        (TransferOutcome{-1, file + ", where host keys are remembered, cannot be written: No space left on device"}));
    EXPECT_THAT(server.names(), IsEmpty());
}

TEST_F(SftpHostTest, hostThatIsKilledLeavesNoClient) {
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    Transfer transfer = transferTo(server, TevTest::randomBytes(5'000'000));
    transfer.port = proxy.port();
    for (const std::size_t bytes : {std::size_t(1), std::size_t(2'000'000)}) {
        proxy.holdAfter(bytes);
        const std::size_t carried = proxy.bytes() + bytes;
        const pid_t host = fork();
        if (host == 0) {
            // What the client would inherit.
            std::signal(SIGHUP, SIG_IGN);
            sigset_t all;
            sigfillset(&all);
            sigprocmask(SIG_SETMASK, &all, nullptr);
            transfer.run();
            _exit(0);
        }
        waitUntil([&] { return proxy.bytes() >= carried; });
        EXPECT_THAT(clients(), SizeIs(2));
        kill(host, SIGKILL);
        TEMP_FAILURE_RETRY(waitpid(host, nullptr, 0));
        waitUntil([&] { return clients().empty(); });
    }
}

/// Everything of every process and file that might show a password.
std::vector<std::string> visibleTexts(const std::vector<std::filesystem::path>& folders) {
    std::vector<std::string> texts;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        if (std::filesystem::exists(entry.path() / "cmdline")) {
            texts.push_back(contents(entry.path() / "cmdline"));
            texts.push_back(contents(entry.path() / "environ"));
        }
    }
    for (const std::filesystem::path& folder : folders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                texts.push_back(contents(entry.path()));
            }
        }
    }
    return texts;
}

TEST_F(SftpHostTest, passwordIsSeenNowhere) {
    // Put together here, so that the test's own files do not hold it.
    SftpServer::Setting setting;
    setting.password = std::string("swordfish") + std::to_string(getpid());
    const SftpServer server(setting);
    const TevTest::LogCapture log(8);
    TcpProxy proxy(server.host(), server.port());
    proxy.holdAfter(200'000);
    Transfer transfer = transferTo(server, TevTest::randomBytes(1'000'000));
    transfer.port = proxy.port();
    transfer.debug = true;
    std::vector<std::string> texts;
    std::thread looking([&] {
        waitUntil([&] { return proxy.bytes() >= 200'000; });
        texts = visibleTexts({local.path(), state.path(), server.world()});
        proxy.resume();
    });
    EXPECT_EQ(transfer.run(), success);
    looking.join();
    for (const TevTest::LogRecord& record : log.records()) {
        texts.push_back(record.text);
    }
    EXPECT_THAT(texts, testing::Contains(HasSubstr("sftp: debug1: Next authentication method: password")));
    EXPECT_THAT(texts, testing::Contains(HasSubstr("-oUserKnownHostsFile=")));
    EXPECT_THAT(texts, Each(Not(HasSubstr(setting.password))));
}

TEST_F(SftpHostTest, twoHundredTransfersEightAtATimeLeaveNothing) {
    const SftpServer server;
    const std::string bytes = TevTest::randomBytes(10'000);
    const Transfer transfer = transferTo(server, bytes);
    const std::size_t descriptors = TevTest::openDescriptors();
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 25; ++i) {
                Transfer one = transfer;
                // Half of them write to the same file.
                one.remotePath += thread % 2 == 0 ? std::string() : std::to_string(thread * 100 + i);
                failures += one.run() == success ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(TevTest::openDescriptors(), descriptors);
    EXPECT_THAT(clients(), IsEmpty());
    EXPECT_THAT(server.names(), SizeIs(101));
    for (const std::string& name : server.names()) {
        EXPECT_TRUE(contents(server.folder() / name) == bytes) << name;
    }
}

}  // namespace

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "FileText.h"
#include "SftpTest.h"
#include "StoppedClock.h"
#include "TcpProxy.h"
#include "Wait.h"

namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Each;
using testing::Ge;
using testing::Lt;
using testing::Not;
using testing::StartsWith;
using TevTest::contents;
using TevTest::millisecondsOf;
using TevTest::randomBytes;
using TevTest::SftpServer;
using TevTest::StoppedClock;
using TevTest::success;
using TevTest::TcpProxy;
using TevTest::Transfer;
using TevTest::TransferOutcome;
using TevTest::waitUntil;

const TransferOutcome interrupted{-1, "the transfer was interrupted"};

/// Transfers that are stopped, by the host or by their time-out, at every moment of their lives.
class SftpStopTest : public TevTest::SftpTest {
protected:
    ~SftpStopTest() override { Tev::SftpWrapper::allowAgain(); }

    std::string writeScript(const std::string& text) const {
        const std::string path = local.write("client", "#!/bin/bash\n" + text);
        chmod(path.c_str(), 0755);
        return path;
    }
};

/// A line of the talk with the client: the n-th of its input or of its output.
struct Moment {
    std::string stream;
    int line;
    bool isLate = false;  ///< the file is on its way into its place, so the transfer may well succeed
};

std::ostream& operator<<(std::ostream& stream, const Moment& moment) {
    return stream << moment.stream << moment.line;
}

/// The real client, but the first one's talk is held before one line until it is released, and after that line again.
class SftpMomentTest : public SftpStopTest, public testing::WithParamInterface<Moment> {
protected:
    Transfer heldTransferTo(const SftpServer& server) const {
        const std::string line = std::to_string(GetParam().line);
        Transfer transfer = transferTo(server, randomBytes(1'000'000));
        transfer.program = writeScript("cd " + local.path().string() +
                                       "\n"
                                       "mkdir first || exec /usr/bin/sftp \"$@\"\n"
                                       "holdUntil() { until [ -e $1 ]; do sleep 0.01; done; }\n"
                                       "hold() {\n"
                                       "    for ((i = 1; ; i++)); do\n"
                                       "        IFS= read -r line || exit\n"
                                       "        [ $i -ne " +
                                       line +
                                       " ] || { touch held; holdUntil released; }\n"
                                       "        printf '%s\\n' \"$line\"\n"
                                       "        [ $i -ne " +
                                       line +
                                       " ] || { touch passed; holdUntil free; }\n"
                                       "    done\n"
                                       "}\n"
                                       "if [ " +
                                       GetParam().stream +
                                       " = input ]; then exec /usr/bin/sftp \"$@\" < <(hold)\n"
                                       "else exec /usr/bin/sftp \"$@\" > >(hold); fi\n");
        putOldFile(transfer);
        return transfer;
    }

    /// Runs the transfer, and once it is held lets `stop` have it stopped; it is released when it has seen that, and is
    /// free when it has seen the line. The clock stands still meanwhile: there is all the time that a slow machine
    /// needs, for another login too.
    TransferOutcome runAndStop(const Transfer& transfer, const std::function<void(StoppedClock&)>& stop) const {
        StoppedClock clock;
        std::atomic<bool> isOver{false};
        const auto waitForFile = [&](const char* name) {
            waitUntil([&] { return isOver || std::filesystem::exists(local.path() / name); });
        };
        // A transfer looks at the clock at most twice before it looks again at the client, and whether it has to stop.
        const auto waitUntilSeen = [&] {
            waitUntil([&, seen = clock.looks()] { return isOver || clock.looks() >= seen + 3; });
        };
        std::thread stopping([&] {
            waitForFile("held");
            stop(clock);
            waitUntilSeen();
            local.write("released", "");
            waitForFile("passed");
            waitUntilSeen();
            local.write("free", "");
        });
        const TransferOutcome outcome = transfer.run();
        isOver = true;
        stopping.join();
        return outcome;
    }

    void expectOneWholeFile(const SftpServer& server, const Transfer& transfer, const TransferOutcome& outcome,
                            const TransferOutcome& stopped) const {
        EXPECT_EQ(outcome, GetParam().isLate ? success : stopped);
        EXPECT_THAT(server.names(), testing::ElementsAre("remote"));
        EXPECT_TRUE(outcome == success ? contents(transfer.remotePath) == contents(transfer.localFile)
                                       : isOldFileWhole(transfer));
        // The script's own process was killed, but nobody waited for it.
        waitUntil([&] { return clients().empty(); });
    }
};

// A signal ends a client that is between two commands: the temporary file stayed on a server that answered, and one
// that had never been there was said to be left.
TEST_P(SftpMomentTest, interruptionLeavesNothingAndSaysNothingOfIt) {
    const SftpServer server;
    const Transfer transfer = heldTransferTo(server);
    const TransferOutcome outcome = runAndStop(transfer, [](StoppedClock&) { Tev::SftpWrapper::interruptAll(); });
    expectOneWholeFile(server, transfer, outcome, interrupted);
}

// The client reads a line before the file is sent, two for that, and two for the renaming. It writes each of them, and
// after every second one its answer.
INSTANTIATE_TEST_SUITE_P(, SftpMomentTest,
                         testing::Values(Moment{"input", 1}, Moment{"input", 2}, Moment{"input", 3},
                                         Moment{"input", 4, true}, Moment{"input", 5, true}, Moment{"output", 1},
                                         Moment{"output", 2}, Moment{"output", 3}, Moment{"output", 4},
                                         Moment{"output", 5}, Moment{"output", 6, true}, Moment{"output", 7, true},
                                         Moment{"output", 8, true}),
                         testing::PrintToStringParamName());

class SftpTimeoutMomentTest : public SftpMomentTest {};

TEST_P(SftpTimeoutMomentTest, timeoutLeavesNothingAndSaysNothingOfIt) {
    const SftpServer server;
    Transfer transfer = heldTransferTo(server);
    transfer.timeout = 2000;
    const TransferOutcome outcome =
        runAndStop(transfer, [&](StoppedClock& clock) { clock.moveOn(std::chrono::milliseconds(transfer.timeout)); });
    expectOneWholeFile(server, transfer, outcome, {-1, "the transfer was not over after 2000 ms"});
}

INSTANTIATE_TEST_SUITE_P(, SftpTimeoutMomentTest,
                         testing::Values(Moment{"input", 2}, Moment{"input", 4, true}, Moment{"output", 5}),
                         testing::PrintToStringParamName());

TEST_F(SftpStopTest, transfersInterruptedAtManyMomentsLeaveNothing) {
    constexpr std::size_t atATime = 8;
    constexpr std::size_t size = 300'000;
    constexpr std::size_t rounds = 20;
    const SftpServer server;
    TcpProxy proxy(server.host(), server.port());
    proxy.slowDownTo(1'000'000);
    Transfer transfer = transferTo(server, randomBytes(size));
    transfer.port = proxy.port();
    std::size_t countInterrupted = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        // From the first login, where few bytes are carried, to the last byte.
        const std::size_t moment = proxy.bytes() + atATime * size * round * round / (rounds * rounds);
        std::vector<TransferOutcome> outcomes(atATime);
        std::atomic<std::size_t> running{atATime};
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < atATime; ++i) {
            threads.emplace_back([&, i] {
                Transfer one = transfer;
                one.remotePath += std::to_string(i);
                outcomes[i] = one.run();
                --running;
            });
        }
        waitUntil([&] { return proxy.bytes() > moment || running == 0; });
        // Until they have ended: eight ends at a time may take a slow machine longer than the second that there is.
        const StoppedClock clock;
        Tev::SftpWrapper::interruptAll();
        for (std::thread& thread : threads) {
            thread.join();
        }
        Tev::SftpWrapper::allowAgain();
        EXPECT_THAT(outcomes, Each(AnyOf(success, interrupted))) << "round " << round;
        EXPECT_THAT(server.names(), Each(Not(StartsWith(".tev-")))) << "round " << round;
        countInterrupted += static_cast<std::size_t>(std::count(outcomes.begin(), outcomes.end(), interrupted));
    }
    EXPECT_GT(countInterrupted, rounds * atATime / 4);
}

// Each step of the end had a limit of its own; together they could take longer than the second after the time-out.
TEST_F(SftpStopTest, serverThatIsSlowWithEveryStepOfTheEndIsLeftInTime) {
    Transfer transfer;
    transfer.localFile = local.write("local", "");
    transfer.remotePath = "/x";
    transfer.timeout = 1000;
    state.write("known_hosts", "127.0.0.1 a key\n");
    transfer.program = writeScript("cd " + local.path().string() +
                                   "\n"
                                   "trap '' TERM HUP INT\n"
                                   "answer() { echo SFTP protocol version 3; }\n"
                                   "after() { touch $1; until [ -e after-$1 ]; do sleep 0.01; done; answer; }\n"
                                   "read -r version; answer\n"
                                   "read -r put; read -r version; after put\n"
                                   "read -r rm; read -r version; after rm; touch removed\n"
                                   "while :; do sleep 1; done\n");
    StoppedClock clock;
    std::chrono::milliseconds passed{0};
    const auto moveOn = [&](long milliseconds) {
        passed += std::chrono::milliseconds(milliseconds);
        clock.moveOn(std::chrono::milliseconds(milliseconds));
    };
    const auto waitFor = [&](const char* file) {
        waitUntil([&] { return std::filesystem::exists(local.path() / file); });
    };
    std::atomic<bool> isOver{false};
    std::thread moving([&] {
        waitFor("put");
        moveOn(1300);
        local.write("after-put", "");
        waitFor("rm");
        moveOn(300);
        local.write("after-rm", "");
        waitFor("removed");
        while (!isOver) {
            // No faster than the transfer can see.
            const unsigned long seen = clock.looks();
            moveOn(10);
            waitUntil([&] { return isOver || clock.looks() > seen + 1; });
        }
    });
    EXPECT_EQ(transfer.run(), (TransferOutcome{-1, "the transfer was not over after 1000 ms"}));
    isOver = true;
    moving.join();
    EXPECT_THAT(passed.count(), AllOf(Ge(1600), Lt(2000)));
}

}  // namespace

#ifndef SFTP_TEST_H
#define SFTP_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "EnvironmentVariable.h"
#include "SftpServer.h"
#include "SftpWrapper.h"
#include "TempFolder.h"

namespace TevTest {

/// A transfer's code and sentence.
struct TransferOutcome {
    TevReturnT code;
    std::string sentence;

    bool operator==(const TransferOutcome& other) const { return code == other.code && sentence == other.sentence; }
};

std::ostream& operator<<(std::ostream& stream, const TransferOutcome& outcome);

inline const TransferOutcome success{0, ""};

/// The fourteen settings of a transfer, to be changed one by one.
struct Transfer {
    std::string program = "/usr/bin/sftp";
    std::string user = "tester";
    std::string password = "open sesame";
    std::string host = "127.0.0.1";
    std::string port{};
    std::string localFile{};
    std::string remotePath{};
    bool debug = false;
    std::string ciphers{};
    std::string keyExchanges{};
    std::string macs{};
    long timeout = 60000;
    unsigned char dscp = 0;

    TransferOutcome run() const;

    /// Runs in a child process after `prepare`, which may change the process as it likes. The code is 99 when the child
    /// had another number of descriptors afterwards, or a child that nobody waited for, and 97 when nothing was tried.
    TransferOutcome runInChild(const std::function<void()>& prepare) const;
};

/// How long `action` takes, in milliseconds.
long millisecondsOf(const std::function<void()>& action);

/// A test's own state folder and local files. It fails when a transfer has left a process, a zombie or a descriptor.
class SftpTest : public testing::Test {
protected:
    SftpTest();
    ~SftpTest() override;

    /// Sends the file "local" (its text is `text`) to the file "remote" in the server's folder.
    Transfer transferTo(const SftpServer& server, const std::string& text = "new") const;

    /// Puts an old file into the place that `transfer` writes to, to be compared with by `isOldFileWhole`.
    static void putOldFile(const Transfer& transfer);
    static bool isOldFileWhole(const Transfer& transfer);

    /// The processes that have the test's state folder on their command line: SFTP clients and what they start.
    std::vector<pid_t> clients() const;

    const TempFolder local;
    const TempFolder state;

private:
    const EnvironmentVariable stateFolder;
    std::size_t descriptorsBefore;
};

/// How many descriptors the process has open.
std::size_t openDescriptors();

/// `size` bytes without a pattern that repeats.
std::string randomBytes(std::size_t size);

}  // namespace TevTest

#endif

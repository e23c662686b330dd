#ifndef SFTP_TEST_H
#define SFTP_TEST_H

#include <gtest/gtest.h>

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
};

/// A test's own state folder and local files. It fails when a transfer has left a process, a zombie or a descriptor.
class SftpTest : public testing::Test {
protected:
    SftpTest();
    void SetUp() override;
    void TearDown() override;

    /// Sends the file "local" (its text is `text`) to the file "remote" in the server's folder.
    Transfer transferTo(const SftpServer& server, const std::string& text = "new") const;

    /// The processes that have the test's state folder on their command line: SFTP clients and what they start.
    std::vector<pid_t> clients() const;

    const TempFolder local;
    const TempFolder state;

private:
    const EnvironmentVariable stateFolder;
    std::size_t descriptorsBefore = 0;
};

/// How many descriptors the process has open.
std::size_t openDescriptors();

/// `size` bytes without a pattern that repeats.
std::string randomBytes(std::size_t size);

}  // namespace TevTest

#endif

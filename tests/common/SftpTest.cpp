#include "SftpTest.h"

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <iterator>
#include <random>

#include "FileText.h"
#include "LoggingWrapper.h"

namespace TevTest {

std::ostream& operator<<(std::ostream& stream, const TransferOutcome& outcome) {
    return stream << outcome.code << " \"" << outcome.sentence << '"';
}

TransferOutcome Transfer::run() const {
    Tev::SftpWrapper wrapper(program, user, password, host, port, Tev::SftpWrapper::Upload, localFile, remotePath, debug,
                             ciphers, keyExchanges, macs, timeout, dscp);
    const TevReturnT code = wrapper.execute();
    return {code, wrapper.getErrorMessage()};
}

SftpTest::SftpTest() : stateFolder("TEV_STATE_DIR", state.path().string()) {}

void SftpTest::SetUp() {
    Tev::LoggingWrapper::instance();  // it keeps its file open
    descriptorsBefore = openDescriptors();
}

void SftpTest::TearDown() {
    EXPECT_EQ(openDescriptors(), descriptorsBefore);
    EXPECT_THAT(clients(), testing::IsEmpty());
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
}

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator first("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(first, std::filesystem::directory_iterator()));
}

Transfer SftpTest::transferTo(const SftpServer& server, const std::string& text) const {
    Transfer transfer;
    transfer.user = server.user();
    transfer.password = server.password();
    transfer.host = server.host();
    transfer.port = server.port();
    transfer.localFile = local.write("local", text);
    transfer.remotePath = server.folder() / "remote";
    return transfer;
}

std::vector<pid_t> SftpTest::clients() const {
    std::vector<pid_t> list;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        if (contents(entry.path() / "cmdline").find(state.path()) != std::string::npos) {
            list.push_back(std::stoi(entry.path().filename()));
        }
    }
    return list;
}

std::string randomBytes(std::size_t size) {
    std::mt19937_64 generator(size);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator());
    }
    return bytes;
}

}  // namespace TevTest

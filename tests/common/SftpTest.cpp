#include "SftpTest.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

#include "FileText.h"
#include "LoggingWrapper.h"

namespace TevTest {

std::ostream& operator<<(std::ostream& stream, const TransferOutcome& outcome) {
    return stream << outcome.code << " \"" << outcome.sentence << '"';
}

TransferOutcome Transfer::run() const {
    Tev::SftpWrapper wrapper(program, user, password, host, port, Tev::SftpWrapper::Upload, localFile, remotePath,
                             debug, ciphers, keyExchanges, macs, timeout, dscp);
    const TevReturnT code = wrapper.execute();
    return {code, wrapper.getErrorMessage()};
}

namespace {

/// What a child process of the test tells: nothing of it may get back into the test itself.
std::string outcomeAfter(const std::function<void()>& prepare, const Transfer& transfer) {
    try {
        prepare();
        const std::size_t descriptors = openDescriptors();
        TransferOutcome outcome = transfer.run();
        if (openDescriptors() != descriptors || waitpid(-1, nullptr, WNOHANG) != -1) {
            outcome.code = 99;
        }
        return std::to_string(outcome.code) + ' ' + outcome.sentence;
    } catch (const std::exception& error) {
        return std::string("97 ") + error.what();
    }
}

}  // namespace

TransferOutcome Transfer::runInChild(const std::function<void()>& prepare) const {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    const pid_t child = fork();
    if (child == 0) {
        const std::string text = outcomeAfter(prepare, *this);
        _exit(write(ends[1], text.data(), text.size()) > 0 ? 0 : 1);
    }
    close(ends[1]);
    std::string text;
    char buffer[1024];
    ssize_t count = 0;
    while ((count = TEMP_FAILURE_RETRY(read(ends[0], buffer, sizeof buffer))) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    TEMP_FAILURE_RETRY(waitpid(child, nullptr, 0));
    const std::size_t blank = text.find(' ');
    return blank == std::string::npos ? TransferOutcome{97, "the child ended early"}
                                      : TransferOutcome{std::stoi(text), text.substr(blank + 1)};
}

long millisecondsOf(const std::function<void()>& action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin).count());
}

SftpTest::SftpTest() : stateFolder("TEV_STATE_DIR", state.path().string()) {
    Tev::LoggingWrapper::instance();  // it keeps its file open
    descriptorsBefore = openDescriptors();
}

SftpTest::~SftpTest() {
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

void SftpTest::putOldFile(const Transfer& transfer) {
    std::ofstream(transfer.remotePath) << "old";
}

bool SftpTest::isOldFileWhole(const Transfer& transfer) {
    return contents(transfer.remotePath) == "old";
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
    std::string bytes;
    bytes.reserve(size + sizeof(std::uint64_t));
    while (bytes.size() < size) {
        const std::uint64_t next = generator();
        bytes.append(reinterpret_cast<const char*>(&next), sizeof next);
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace TevTest

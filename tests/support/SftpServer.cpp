#include "SftpServer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "FileText.h"

namespace TevTest {

namespace {

/// What the child does up to the script's first line.
[[noreturn]] void become(std::vector<std::string> words, int input, int output, const std::string& logFile,
                         rlim_t fileSizeLimit) {
    // The server goes when the test goes, however that ends.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGPIPE, SIGCHLD, SIGINT, SIGTERM}) {
        std::signal(signal, SIG_DFL);
    }
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(fileSizeLimit, limit.rlim_max);
    setrlimit(RLIMIT_FSIZE, &limit);
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(126);
}

std::string readToEnd(int descriptor) {
    std::string text;
    char buffer[1024];
    ssize_t count = 0;
    while ((count = TEMP_FAILURE_RETRY(read(descriptor, buffer, sizeof buffer))) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

/// Parent and name of every process.
std::map<pid_t, std::pair<pid_t, std::string>> allProcesses() {
    std::map<pid_t, std::pair<pid_t, std::string>> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        std::ifstream status(entry.path() / "stat");
        std::string line;
        if (name.find_first_not_of("0123456789") != std::string::npos || !std::getline(status, line)) {
            continue;
        }
        const std::size_t begin = line.find('(');
        const std::size_t end = line.rfind(')');
        found[std::stoi(name)] = {std::stoi(line.substr(end + 4)), line.substr(begin + 1, end - begin - 1)};
    }
    return found;
}

}  // namespace

SftpServer::SftpServer() : SftpServer(Setting{}) {}

SftpServer::SftpServer(const Setting& setting)
    : servedFolder(tempFolder.path() / "files"),
      hostText(setting.address.find(':') == std::string::npos ? setting.address : '[' + setting.address + ']'),
      userText(setting.user),
      passwordText(setting.password) {
    std::filesystem::permissions(tempFolder.path(), std::filesystem::perms(0755));
    start(setting);
    // A test's clients remember which host key they saw on a port: unless one is asked for, no port comes twice.
    static std::set<std::string> usedPorts;
    while (!usedPorts.insert(portText).second && setting.port.empty()) {
        stop();
        start(setting);
    }
}

SftpServer::~SftpServer() {
    stop();
    if (testing::Test::HasFailure()) {
        std::cerr << "The server's log:\n" << log();
    }
}

void SftpServer::start(const Setting& setting) {
    std::vector<std::string> words = {SFTP_SERVER_SCRIPT, "--address",  setting.address,
                                      "--user",           setting.user, "--password-stdin"};
    if (!setting.port.empty()) {
        words.insert(words.end(), {"--port", setting.port});
    }
    for (const std::string& line : setting.configuration) {
        words.insert(words.end(), {"--config", line});
    }
    words.push_back(servedFolder);
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    script = fork();
    if (script == 0) {
        become(words, input[0], output[1], tempFolder.path() / "log", setting.fileSizeLimit);
    }
    close(input[0]);
    close(output[1]);
    // A pipe holds this much.
    const ssize_t written = write(input[1], setting.password.data(), setting.password.size());
    close(input[1]);
    const std::string announcement = readToEnd(output[0]);
    close(output[0]);
    const std::size_t end = announcement.find(servedFolder.string() + "/\n");
    if (end == std::string::npos || written < 0) {
        throw std::runtime_error("the server does not start: " + log());
    }
    const std::size_t colon = announcement.rfind(':', end);
    portText = announcement.substr(colon + 1, end - colon - 1);
}

std::vector<std::string> SftpServer::names() const {
    std::vector<std::string> list;
    for (const auto& entry : std::filesystem::directory_iterator(servedFolder)) {
        list.push_back(entry.path().filename());
    }
    std::sort(list.begin(), list.end());
    return list;
}

std::string SftpServer::log() const {
    return contents(tempFolder.path() / "log");
}

std::string SftpServer::logWith(const std::string& text) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (true) {
        std::string logged = log();
        if (logged.find(text) != std::string::npos) {
            return logged;
        }
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("the server's log does not hold \"" + text + "\" but \"" + logged + "\"");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

std::vector<pid_t> SftpServer::processes(bool areSessionsOnly) const {
    const auto all = allProcesses();
    std::vector<pid_t> list;
    for (const auto& [pid, process] : all) {
        int depth = 0;
        for (auto above = all.find(pid); above != all.end() && above->first != script; ++depth) {
            above = all.find(above->second.first);
            if (above == all.end()) {
                depth = -1;
            }
        }
        // The server is the script's child, the sessions are the server's descendants.
        if (process.second == "sshd" && depth >= (areSessionsOnly ? 2 : 1)) {
            list.push_back(pid);
        }
    }
    return list;
}

void SftpServer::stop() {
    if (script <= 0) {
        return;
    }
    const std::vector<pid_t> sessions = processes(true);
    kill(script, SIGTERM);
    resume();
    TEMP_FAILURE_RETRY(waitpid(script, nullptr, 0));
    script = -1;
    for (const pid_t session : sessions) {
        kill(session, SIGKILL);
    }
}

void SftpServer::pause() const {
    for (const pid_t process : processes(false)) {
        kill(process, SIGSTOP);
    }
}

void SftpServer::resume() const {
    for (const pid_t process : processes(false)) {
        kill(process, SIGCONT);
    }
}

void SftpServer::cutSessions() const {
    for (const pid_t session : processes(true)) {
        kill(session, SIGKILL);
    }
}

void SftpServer::limitFileSize(rlim_t limit) const {
    for (const pid_t session : processes(true)) {
        rlimit limits{};
        prlimit(session, RLIMIT_FSIZE, nullptr, &limits);
        limits.rlim_cur = limit;
        prlimit(session, RLIMIT_FSIZE, &limits, nullptr);
    }
}

}  // namespace TevTest

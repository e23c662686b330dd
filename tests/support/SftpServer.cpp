#include "SftpServer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>

#include "Pipe.h"
#include "Wait.h"

namespace TevTest {

namespace {

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
    std::vector<std::string> words = {"--address", setting.address, "--user", setting.user, "--password-stdin"};
    if (!setting.port.empty()) {
        words.insert(words.end(), {"--port", setting.port});
    }
    for (const std::string& line : setting.configuration) {
        words.insert(words.end(), {"--config", line});
    }
    words.push_back(servedFolder);
    Pipe input(0);
    Pipe output(0);
    ChildProcess::Setting surroundings;
    surroundings.in = input.reading();
    surroundings.out = output.writing();
    surroundings.ignoredSignals = {SIGXFSZ};
    surroundings.fileSizeLimit = setting.fileSizeLimit;
    surroundings.endsWithTest = true;
    script.emplace(SFTP_SERVER_SCRIPT, words, surroundings);
    output.closeWriting();
    // A pipe holds this much.
    const ssize_t written = write(input.writing(), setting.password.data(), setting.password.size());
    input.closeWriting();
    const std::string announcement = output.readAll();
    const std::size_t end = announcement.find(servedFolder.string() + "/\n");
    if (end == std::string::npos || written < 0) {
        stop();
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
    return script->err();
}

std::string SftpServer::logWith(const std::string& text) const {
    waitUntil([&] { return log().find(text) != std::string::npos; });
    return log();
}

std::vector<pid_t> SftpServer::processes(bool areSessionsOnly) const {
    const auto all = allProcesses();
    std::vector<pid_t> list;
    for (const auto& [pid, process] : all) {
        int depth = 0;
        for (auto above = all.find(pid); above != all.end() && above->first != script->id(); ++depth) {
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
    const std::vector<pid_t> sessions = processes(true);
    script->send(SIGTERM);
    resume();
    script->wait();
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

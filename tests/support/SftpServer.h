#ifndef SFTP_SERVER_H
#define SFTP_SERVER_H

#include <sys/resource.h>
#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "TempFolder.h"

namespace TevTest {

/// A private sshd on loopback, started by `scripts/sftp-server`, with a host key of its own. Its log is printed when
/// the test has failed. Used by one thread.
class SftpServer {
public:
    struct Setting {
        std::string address = "127.0.0.1";  ///< or "::1"
        std::string port{};                 ///< empty: a free one
        std::string user = "tester";
        std::string password = "open sesame";
        std::vector<std::string> configuration{};  ///< further lines for sshd, before the usual ones
        rlim_t fileSizeLimit = RLIM_INFINITY;      ///< no file can be written beyond it: "Failure"
    };

    SftpServer();
    /// Returns once the server listens; throws std::runtime_error with the log when it does not.
    explicit SftpServer(const Setting& setting);
    ~SftpServer();
    SftpServer(const SftpServer&) = delete;
    SftpServer& operator=(const SftpServer&) = delete;

    /// As it stands in an URI: an IPv6 address in brackets.
    const std::string& host() const { return hostText; }
    const std::string& port() const { return portText; }
    const std::string& user() const { return userText; }
    const std::string& password() const { return passwordText; }

    /// The folder that the user owns; any other folder below `world` is the test's.
    const std::filesystem::path& folder() const { return servedFolder; }
    const std::filesystem::path& world() const { return tempFolder.path(); }

    /// The names in the served folder.
    std::vector<std::string> names() const;

    std::string log() const;

    /// The log, once it holds the text: what a client is told is logged later. The test fails when it does not come to
    /// hold it.
    std::string logWith(const std::string& text) const;

    /// Ends the server and every session at once.
    void stop();

    /// Stops the server and its sessions in their tracks, or lets them go on.
    void pause() const;
    void resume() const;

    /// Ends the sessions; the server goes on.
    void cutSessions() const;

    /// Changes the limit of the sessions that are there.
    void limitFileSize(rlim_t limit) const;

private:
    void start(const Setting& setting);
    std::vector<pid_t> processes(bool areSessionsOnly) const;

    TempFolder tempFolder;
    std::filesystem::path servedFolder;
    std::string hostText;
    std::string portText;
    std::string userText;
    std::string passwordText;
    std::optional<ChildProcess> script;
};

}  // namespace TevTest

#endif

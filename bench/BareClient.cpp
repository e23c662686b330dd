#include "BareClient.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "ClientCommandLine.h"
#include "KnownHosts.h"
#include "QuotedText.h"
#include "RemoteFile.h"

namespace TevBench {

namespace {

// As long as the component's own time for a connection.
constexpr int connectSeconds = 180;

void writeAll(const Tev::FileDescriptor& descriptor, const std::string& text) {
    // A pipe and a terminal hold this much.
    if (write(descriptor.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("the client takes nothing");
    }
}

/// What there is to read.
std::string readSome(const Tev::FileDescriptor& descriptor) {
    char buffer[4096];
    const ssize_t count = TEMP_FAILURE_RETRY(read(descriptor.get(), buffer, sizeof buffer));
    return {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
}

}  // namespace

void BareClient::upload(const Tev::TransferSettings& settings) {
    const Tev::KnownHosts knownHosts;
    const Tev::RemoteFile remote(settings.remotePath, settings.localFile);
    BareClient bare(settings, clientCommandLine(settings, knownHosts.option(), connectSeconds));
    bare.run("");
    bare.run(remote.putCommand() + '\n');
    bare.run(remote.renameCommand() + '\n');
    bare.leave();
}

void BareClient::uploadPlainly(const Tev::TransferSettings& settings) {
    const Tev::KnownHosts knownHosts;
    BareClient bare(
        settings, {settings.program, "-oBatchMode=no", "-b", "-", "-oPort=" + settings.port, "-oUser=" + settings.user,
                   "-oStrictHostKeyChecking=accept-new", "-oUserKnownHostsFile=" + knownHosts.option(), settings.host});
    bare.run("put " + Tev::quotedText(settings.localFile) + ' ' + Tev::quotedText(settings.remotePath) + '\n');
    bare.leave();
}

BareClient::BareClient(const Tev::TransferSettings& transferSettings, const std::vector<std::string>& words)
    : settings(transferSettings),
      local(open(settings.localFile.c_str(), O_RDONLY | O_CLOEXEC), "open"),
      client(words, local, terminal) {}

void BareClient::run(const std::string& command) {
    writeAll(client.input, command + "version\n");
    std::string output;
    std::string question;
    while (output.find("SFTP protocol version") == std::string::npos) {
        pollfd waiting[] = {{client.output.get(), POLLIN, 0},
                            {client.error.get(), POLLIN, 0},
                            {terminal.descriptor().get(), POLLIN, 0}};
        TEMP_FAILURE_RETRY(poll(waiting, std::size(waiting), -1));
        output += readSome(client.output);
        const std::string error = readSome(client.error);
        question += readSome(terminal.descriptor());
        if (client.hasEnded() || error.find("denied") != std::string::npos) {
            throw std::runtime_error("the bare client fails: " + error);
        }
        if (question.find("password: ") != std::string::npos) {
            writeAll(terminal.descriptor(), settings.password + '\n');
            question.clear();
        }
    }
}

void BareClient::leave() {
    client.input.close();
    pollfd waiting{client.ending().get(), POLLIN, 0};
    TEMP_FAILURE_RETRY(poll(&waiting, 1, -1));
    client.end();
}

}  // namespace TevBench

#include "SftpSession.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>

#include "ClientCommandLine.h"
#include "SigpipeGuard.h"
#include "TransferInterruption.h"

namespace Tev {

namespace {

// The client answers this command by itself, with a line that begins like that.
const char* const marker = "version\n";
constexpr std::string_view markerAnswer = "SFTP protocol version";

constexpr int pollSlice = 100;      // milliseconds, after which an interruption is seen
constexpr int timeToCleanUp = 750;  // milliseconds
constexpr int timeToLeave = 300;    // milliseconds

/// The time that the client itself gives to a connection: more than ours, so that a whole second ends nothing early.
/// When we set none, it still ends with a server that says nothing.
int connectSeconds(const TransferSettings& settings, const Deadline& deadline) {
    constexpr int withoutTimeout = 120;
    return settings.timeout > 0 ? deadline.timeLeft(INT_MAX - 1000) / 1000 + 1 : withoutTimeout;
}

/// Gives what there is to read to `take`, piece by piece, but no more than a pipe holds: the client may write faster
/// than we read. Returns false at the end of the stream.
template <class Take>
bool readSome(const FileDescriptor& descriptor, Take take) {
    constexpr std::size_t mostBytes = 65536;
    char buffer[4096];
    for (std::size_t total = 0; total < mostBytes;) {
        const ssize_t count = TEMP_FAILURE_RETRY(read(descriptor.get(), buffer, sizeof buffer));
        if (count <= 0) {
            return count < 0 && errno == EAGAIN;
        }
        take(std::string_view(buffer, static_cast<std::size_t>(count)));
        total += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

SftpSession::SftpSession(const TransferSettings& checkedSettings, const KnownHosts& knownHosts,
                         const FileDescriptor& file, const Deadline& deadline)
    : settings(checkedSettings),
      limit(deadline),
      client(clientCommandLine(settings, knownHosts.option(), connectSeconds(settings, deadline)), file, terminal),
      words(settings.debug) {}

bool SftpSession::connect() {
    send(marker);
    isConnected = answers();
    return isConnected;
}

bool SftpSession::run(const std::string& command) {
    send(command + '\n' + marker);
    return answers();
}

bool SftpSession::answers() {
    ++answersMissing;
    while (answersMissing > 0) {
        noticeStop();
        const bool isOver = reason != Stop::None && (!isConnected || limit.hasPassed());
        // Seen before the last words are read, so that none is missed.
        const bool hasEnded = client.hasEnded();
        if (!isOver && !hasEnded) {
            waitForWords();
        }
        readTerminal();
        readOutput();
        readError();
        if (isOver || (hasEnded && answersMissing > 0)) {
            client.end();
            return false;
        }
    }
    return true;
}

void SftpSession::noticeStop() {
    if (reason != Stop::None) {
        return;
    }
    if (TransferInterruption::isRequested()) {
        reason = Stop::Interrupted;
    } else if (limit.hasPassed()) {
        reason = Stop::TimedOut;
    } else if (!prompt.secondQuestion().empty()) {
        reason = Stop::QuestionAgain;
    } else {
        return;
    }
    limit = Deadline(timeToCleanUp);
    if (isConnected) {
        client.interrupt();
    }
}

void SftpSession::send(const std::string& line) {
    const SigpipeGuard guard;
    // The pipe holds more than all commands together. When the client is gone, its end is noticed elsewhere.
    [[maybe_unused]] const ssize_t written = TEMP_FAILURE_RETRY(write(client.input.get(), line.data(), line.size()));
}

void SftpSession::waitForWords() {
    pollfd waiting[] = {{client.ending().get(), POLLIN, 0},
                        {client.output.get(), POLLIN, 0},
                        {client.error.get(), POLLIN, 0},
                        {isTerminalOpen ? terminal.descriptor().get() : -1, POLLIN, 0}};
    poll(waiting, std::size(waiting), limit.timeLeft(pollSlice));
}

void SftpSession::readOutput() {
    const bool isOpen = readSome(client.output, [this](std::string_view bytes) {
        for (const char character : bytes) {
            if (character != '\n') {
                if (outputLine.size() < markerAnswer.size()) {
                    outputLine += character;
                }
                continue;
            }
            answersMissing -= outputLine == markerAnswer ? 1 : 0;
            outputLine.clear();
        }
    });
    if (!isOpen) {
        client.output.close();
    }
}

void SftpSession::readError() {
    if (!readSome(client.error, [this](std::string_view bytes) { words.add(bytes); })) {
        client.error.close();
    }
}

void SftpSession::readTerminal() {
    if (isTerminalOpen) {
        isTerminalOpen = readSome(terminal.descriptor(), [this](std::string_view bytes) { prompt.read(bytes); });
    }
    if (prompt.takeQuestion()) {
        const std::string answer = settings.password + '\n';
        [[maybe_unused]] const ssize_t written =
            TEMP_FAILURE_RETRY(write(terminal.descriptor().get(), answer.data(), answer.size()));
    }
}

void SftpSession::leave() {
    const Deadline end = Deadline::earlier(limit, Deadline(timeToLeave));
    client.input.close();
    while (!client.hasEnded() && !end.hasPassed()) {
        pollfd waiting{client.ending().get(), POLLIN, 0};
        poll(&waiting, 1, end.timeLeft(timeToLeave));
    }
    client.end();
}

}  // namespace Tev

#include "SftpSession.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>

#include "ClientCommandLine.h"
#include "Deadline.h"
#include "SigpipeGuard.h"

namespace Tev {

namespace {

using namespace std::string_view_literals;

// The client answers this command by itself, with a line that begins like that.
const char* const marker = "version\n";
constexpr std::string_view markerAnswer = "SFTP protocol version";

// Before a command the client writes what it is going to do.
constexpr std::string_view echo = "sftp> ";
constexpr std::string_view markerEcho = "sftp> version";

constexpr int pollSlice = 100;    // milliseconds, after which an interruption is seen
constexpr int timeToLeave = 300;  // milliseconds

/// The time that the client itself gives to a connection: more than ours, so that a whole second ends nothing early.
/// When we set none, it still ends with a server that says nothing.
int connectSeconds(const TransferSettings& settings, TransferTime& time) {
    constexpr int withoutTimeout = 120;
    return settings.timeout > 0 ? time.timeLeft(INT_MAX - 1000) / 1000 + 1 : withoutTimeout;
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
                         const FileDescriptor& file, TransferTime& transferTime)
    : settings(checkedSettings),
      time(transferTime),
      client(clientCommandLine(settings, knownHosts.option(), connectSeconds(settings, time)), file, terminal),
      words(settings.debug) {}

bool SftpSession::connect() {
    send(marker);
    const bool isConnected = answers();
    // A command that was begun leaves something behind.
    isToCleanUp = true;
    return isConnected;
}

bool SftpSession::connectToCleanUp() {
    isToCleanUp = true;
    return connect();
}

bool SftpSession::run(const std::string& command) {
    send(command + '\n' + marker);
    return answers();
}

bool SftpSession::runUntilStop(const std::string& command) {
    isInterruptible = true;
    const bool isAnswered = run(command);
    isInterruptible = false;
    return isAnswered;
}

bool SftpSession::answers() {
    ++answersMissing;
    while (answersMissing > 0) {
        const bool isOver = hasToEnd();
        // Seen before the last words are read, so that none is missed.
        const bool hasEnded = client.hasEnded();
        if (!isOver && !hasEnded) {
            waitForWords();
        }
        readTerminal();
        readOutput();
        readError();
        interruptCommand();
        if (isOver || (hasEnded && answersMissing > 0)) {
            client.end();
            return false;
        }
    }
    return true;
}

bool SftpSession::hasToEnd() {
    return !prompt.secondQuestion().empty() || (isToCleanUp ? time.isOver() : time.stop() != TransferTime::Stop::None);
}

/// A signal ends a client that is not in the midst of a command; so it is sent right after reading what the client
/// does.
void SftpSession::interruptCommand() {
    if (isInterruptible && isCommandUnderWay && time.stop() != TransferTime::Stop::None) {
        client.interrupt();
        isInterruptible = false;
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
    poll(waiting, std::size(waiting), time.timeLeft(pollSlice));
}

void SftpSession::readOutput() {
    const bool isOpen = readSome(client.output, [this](std::string_view bytes) {
        for (const char character : bytes) {
            if (character == '\n') {
                readOutputLine();
                outputLine.clear();
            } else if (outputLine.size() < markerAnswer.size()) {
                outputLine += character;
            }
        }
    });
    if (!isOpen) {
        client.output.close();
    }
}

void SftpSession::readOutputLine() {
    if (outputLine == markerAnswer) {
        --answersMissing;
    } else if (outputLine.compare(0, echo.size(), echo) == 0) {
        isCommandUnderWay = outputLine != markerEcho;
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
        for (const std::string_view part : {std::string_view(settings.password), "\n"sv}) {
            [[maybe_unused]] const ssize_t written =
                TEMP_FAILURE_RETRY(write(terminal.descriptor().get(), part.data(), part.size()));
        }
    }
}

void SftpSession::leave() {
    const Deadline end(timeToLeave);
    client.input.close();
    while (!client.hasEnded() && !end.hasPassed() && !time.isOver()) {
        pollfd waiting{client.ending().get(), POLLIN, 0};
        poll(&waiting, 1, time.timeLeft(end.timeLeft(timeToLeave)));
    }
    client.end();
}

}  // namespace Tev

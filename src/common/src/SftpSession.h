#ifndef TEV_SFTP_SESSION_H
#define TEV_SFTP_SESSION_H

#include <string>
#include <vector>

#include "ClientProcess.h"
#include "ClientWords.h"
#include "Deadline.h"
#include "FileDescriptor.h"
#include "KnownHosts.h"
#include "PasswordPrompt.h"
#include "PseudoTerminal.h"
#include "TransferSettings.h"

namespace Tev {

/// A running SFTP client and the talk with it. Used by one thread.
class SftpSession {
public:
    /// Why the talk has to end.
    enum class Stop {
        None,
        TimedOut,
        Interrupted,   ///< see TransferInterruption
        QuestionAgain  ///< the client asks for more than the password
    };

    /// Starts the client with `file` as its descriptor 3; `settings` have been checked and outlive the object. Throws
    /// TevException or std::system_error when that fails.
    SftpSession(const TransferSettings& settings, const KnownHosts& knownHosts, const FileDescriptor& file,
                const Deadline& deadline);

    /// Lets the client connect. Returns false when the client has ended, or was ended, before it was connected.
    bool connect();

    /// Lets the connected client carry out `command`, a line. Returns false when the client has ended, or was ended,
    /// before it was through. When the talk has to end meanwhile, the client is told to leave the command, and has 0.75
    /// s for that and for all commands that follow.
    bool run(const std::string& command);

    /// What the client has said since the last call.
    std::vector<std::string> takeWords() { return words.take(); }

    Stop stop() const { return reason; }

    /// What the client has asked when the reason to stop is a further question.
    std::string secondQuestion() const { return printable(prompt.secondQuestion()); }

    /// Ends the connection in good order, if the server plays along.
    void leave();

private:
    bool answers();
    void noticeStop();
    void send(const std::string& line);
    void waitForWords();
    void readOutput();
    void readError();
    void readTerminal();

    const TransferSettings& settings;
    Deadline limit;
    PseudoTerminal terminal;
    ClientProcess client;
    ClientWords words;
    PasswordPrompt prompt;
    Stop reason = Stop::None;
    bool isConnected = false;
    bool isTerminalOpen = true;
    int answersMissing = 0;
    std::string outputLine;  // its beginning
};

}  // namespace Tev

#endif

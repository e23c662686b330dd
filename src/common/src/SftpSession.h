#ifndef TEV_SFTP_SESSION_H
#define TEV_SFTP_SESSION_H

#include <string>
#include <vector>

#include "ClientProcess.h"
#include "ClientWords.h"
#include "FileDescriptor.h"
#include "KnownHosts.h"
#include "PasswordPrompt.h"
#include "PseudoTerminal.h"
#include "TransferSettings.h"
#include "TransferTime.h"

namespace Tev {

/// A running SFTP client and the talk with it. Used by one thread.
class SftpSession {
public:
    /// Starts the client with `file` as its descriptor 3. `settings` have been checked; they and `time` outlive the
    /// object. Throws TevException or std::system_error when that fails.
    SftpSession(const TransferSettings& settings, const KnownHosts& knownHosts, const FileDescriptor& file,
                TransferTime& time);

    /// Lets the client connect. Returns false when the client has ended before it was connected, or was ended because
    /// the transfer has to stop or the client asks for more than the password.
    bool connect();

    /// The same when there is something to clean up: the client is not ended before the time for that is over.
    bool connectToCleanUp();

    /// Lets the connected client carry out `command`, a line. Returns false when the client has ended, or was ended
    /// because all time is over, before it was through.
    bool run(const std::string& command);

    /// The same for a command that takes long: when the transfer has to stop, the client is told to leave the command.
    /// The command may just be through by then; in that case the client may end at any moment.
    bool runUntilStop(const std::string& command);

    /// What the client has said since the last call.
    std::vector<std::string> takeWords() { return words.take(); }

    /// What the client asks after the password; empty when it asks nothing.
    std::string secondQuestion() const { return printable(prompt.secondQuestion()); }

    /// Ends the connection in good order, if the server plays along for 0.3 s and there is time.
    void leave();

private:
    bool answers();
    bool hasToEnd();
    void interruptCommand();
    void send(const std::string& line);
    void waitForWords();
    void readOutput();
    void readOutputLine();
    void readError();
    void readTerminal();

    const TransferSettings& settings;
    TransferTime& time;
    PseudoTerminal terminal;
    ClientProcess client;
    ClientWords words;
    PasswordPrompt prompt;
    bool isToCleanUp = false;
    bool isInterruptible = false;    // the command that was sent last
    bool isCommandUnderWay = false;  // one of ours, not the one that makes the client answer
    bool isTerminalOpen = true;
    int answersMissing = 0;
    std::string outputLine;  // its beginning
};

}  // namespace Tev

#endif

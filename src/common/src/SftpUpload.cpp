#include "SftpUpload.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <vector>

namespace Tev {

namespace {

using Words = std::vector<std::string>;
using Stop = SftpSession::Stop;

constexpr long timeToRemove = 30000;  // milliseconds, where there is no time-out

/// Opens a regular file; nothing else "transfers" in a way that anybody wants.
FileDescriptor openLocal(const std::string& path) {
    const int opened = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (opened < 0) {
        const TevReturnT code = errno == ENOENT || errno == ENOTDIR ? TevReturnNotFound : TevReturnFailure;
        throw TevException(code, "the local file %s cannot be read: %s", printable(path).c_str(),
                           std::generic_category().message(errno).c_str());
    }
    FileDescriptor file(opened, "open");
    struct stat status {};
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw TevException(TevReturnInvalidArgument, "the local file %s is not a regular file",
                           printable(path).c_str());
    }
    return file;
}

}  // namespace

SftpUpload::SftpUpload(const TransferSettings& given)
    : deadline(given.timeout),
      settings(given.checked()),
      remote(settings.remotePath, settings.localFile),
      local(openLocal(settings.localFile)),
      failure(settings, knownHosts, remote.path()) {}

void SftpUpload::run() {
    SftpSession session(settings, knownHosts, local, deadline);
    if (!session.connect()) {
        throw session.stop() == Stop::None ? failure.ofConnection(session.takeWords()) : stopped(session);
    }
    knownHosts.checkKeyIsKept();
    // Warnings on the way, and in debug mode the server's banner.
    session.takeWords();

    const bool isSent = session.run(remote.putCommand());
    const Words putWords = session.takeWords();
    if (!isSent && session.stop() == Stop::None) {
        throw withRest(failure.ofBrokenConnection(putWords), removeAnew());
    }
    if (session.stop() != Stop::None) {
        throw withRest(stopped(session), isSent ? remove(session) : Removal::Failed);
    }
    if (!putWords.empty()) {
        throw withRest(failure.ofPut(putWords), remove(session));
    }

    const bool isRenamed = session.run(remote.renameCommand());
    const Words renameWords = session.takeWords();
    if (isRenamed && renameWords.empty()) {
        session.leave();
        return;
    }
    if (isRenamed) {
        throw withRest(session.stop() == Stop::None ? failure.ofRename(renameWords) : stopped(session),
                       remove(session));
    }
    if (session.stop() != Stop::None) {
        throw withRest(stopped(session), Removal::Failed);
    }
    // The answer got lost: the whole file is either still beside its place, or in it.
    const Removal removal = removeAnew();
    if (removal != Removal::NotThere) {
        throw withRest(failure.ofBrokenConnection(renameWords), removal);
    }
}

TevException SftpUpload::stopped(const SftpSession& session) const {
    switch (session.stop()) {
        case Stop::Interrupted:
            return TevException("the transfer was interrupted");
        case Stop::QuestionAgain:
            return TevException("the server %s refuses the password, or wants more than that; it asks: \"%s\"",
                                settings.host.c_str(), session.secondQuestion().c_str());
        default:
            return TevException("the transfer was not over after %ld ms", settings.timeout);
    }
}

TevException SftpUpload::withRest(const TevException& reason, Removal removal) const {
    if (removal != Removal::Failed) {
        return reason;
    }
    return {reason.getReturnCode(), "%s; %s may be left on the server", reason.what(),
            printable(remote.temporaryPath()).c_str()};
}

SftpUpload::Removal SftpUpload::remove(SftpSession& session) const {
    const bool isAnswered = session.run(remote.removeCommand());
    const Words words = session.takeWords();
    if (!isAnswered) {
        return Removal::Failed;
    }
    session.leave();
    if (words.empty()) {
        return Removal::Done;
    }
    return words.front().find("No such file") != std::string::npos ? Removal::NotThere : Removal::Failed;
}

SftpUpload::Removal SftpUpload::removeAnew() const {
    try {
        SftpSession session(settings, knownHosts, local, Deadline::earlier(deadline, Deadline(timeToRemove)));
        if (!session.connect()) {
            return Removal::Failed;
        }
        session.takeWords();
        return remove(session);
    } catch (const std::exception&) {
        return Removal::Failed;  // the reason that the operator gets is the first one
    }
}

}  // namespace Tev

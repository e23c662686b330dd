#include "SftpUpload.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <vector>

namespace Tev {

namespace {

using Words = std::vector<std::string>;
using Stop = TransferTime::Stop;

constexpr int timeToRemove = 30000;  // milliseconds, where there is no time-out

/// Opens a regular file and tells its status; nothing else "transfers" in a way that anybody wants.
FileDescriptor openLocal(const std::string& path, struct stat& status) {
    FileDescriptor file;
    try {
        file = FileDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY), "open");
    } catch (const std::system_error& error) {
        const int reason = error.code().value();
        const TevReturnT code = reason == ENOENT || reason == ENOTDIR ? TevReturnNotFound : TevReturnFailure;
        throw TevException(code, "the local file %s cannot be read: %s", printable(path).c_str(),
                           error.code().message().c_str());
    }
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw TevException(TevReturnInvalidArgument, "the local file %s is not a regular file",
                           printable(path).c_str());
    }
    return file;
}

}  // namespace

SftpUpload::SftpUpload(const TransferSettings& given)
    : time(given.timeout),
      settings(given.checked()),
      remote(settings.remotePath, settings.localFile),
      local(openLocal(settings.localFile, localBefore)),
      failure(settings, knownHosts, remote.path()) {}

void SftpUpload::run() {
    SftpSession session(settings, knownHosts, local, time);
    connect(session);
    put(session);
    bringIntoPlace(session);
}

void SftpUpload::connect(SftpSession& session) {
    if (!session.connect()) {
        throw notConnected(session);
    }
    knownHosts.checkKeyIsKept();
    // Warnings on the way, and in debug mode the server's banner.
    session.takeWords();
    if (time.stop() != Stop::None) {
        throw stopped();
    }
}

void SftpUpload::put(SftpSession& session) {
    const bool isSent = session.runUntilStop(remote.putCommand());
    const Words putWords = session.takeWords();
    if (time.stop() != Stop::None) {
        throw withRest(stopped(), isSent ? remove(session) : removeAnew());
    }
    if (!isSent) {
        throw withRest(failure.ofBrokenConnection(putWords), removeAnew());
    }
    if (TransferFailure::isIn(putWords)) {
        throw withRest(failure.ofPut(putWords),
                       TransferFailure::isNotOpened(putWords) ? Removal::NotThere : remove(session));
    }
    if (hasLocalChanged()) {
        throw withRest(
            TevException("the local file %s changed during the transfer", printable(settings.localFile).c_str()),
            remove(session));
    }
}

void SftpUpload::bringIntoPlace(SftpSession& session) {
    const bool isRenamed = session.run(remote.renameCommand());
    const Words renameWords = session.takeWords();
    const bool isStopped = time.stop() != Stop::None;
    if (!isRenamed) {
        // The answer got lost: the whole file is either still beside its place, or in it.
        const Removal removal = removeAnew();
        if (removal != Removal::NotThere) {
            throw withRest(isStopped ? stopped() : failure.ofBrokenConnection(renameWords), removal);
        }
    } else if (!renameWords.empty()) {
        const Removal removal = remove(session);
        // The words may be the server's own, as a text of the user's login there.
        if (TransferFailure::isIn(renameWords) || removal != Removal::NotThere) {
            throw withRest(isStopped ? stopped() : failure.ofRename(renameWords), removal);
        }
    } else {
        session.leave();
    }
}

bool SftpUpload::hasLocalChanged() const {
    struct stat now {};
    return fstat(local.get(), &now) != 0 || now.st_size != localBefore.st_size ||
           now.st_mtim.tv_sec != localBefore.st_mtim.tv_sec || now.st_mtim.tv_nsec != localBefore.st_mtim.tv_nsec;
}

TevException SftpUpload::notConnected(SftpSession& session) {
    if (!session.secondQuestion().empty()) {
        return TevException("the server %s refuses the password, or wants more than that; it asks: \"%s\"",
                            settings.host.c_str(), session.secondQuestion().c_str());
    }
    return time.stop() == Stop::None ? failure.ofConnection(session.takeWords()) : stopped();
}

TevException SftpUpload::stopped() {
    if (time.stop() == Stop::Interrupted) {
        return TevException("the transfer was interrupted");
    }
    return TevException("the transfer was not over after %ld ms", settings.timeout);
}

TevException SftpUpload::withRest(const TevException& reason, Removal removal) const {
    if (removal == Removal::Done || removal == Removal::NotThere) {
        return reason;
    }
    return {reason.getReturnCode(), "%s; %s may be left on the server", reason.what(),
            printable(remote.temporaryPath()).c_str()};
}

SftpUpload::Removal SftpUpload::remove(SftpSession& session) {
    const Removal removal = removeOver(session);
    return removal == Removal::NotAnswered ? removeAnew() : removal;
}

SftpUpload::Removal SftpUpload::removeAnew() {
    if (time.isOver()) {
        return Removal::NotAnswered;
    }
    time.shortenTo(timeToRemove);
    try {
        SftpSession session(settings, knownHosts, local, time);
        return session.connectToCleanUp() ? removeOver(session) : Removal::NotAnswered;
    } catch (const std::exception&) {
        return Removal::NotAnswered;  // the reason that the operator gets is the first one
    }
}

SftpUpload::Removal SftpUpload::removeOver(SftpSession& session) const {
    session.takeWords();  // what was said before
    const bool isAnswered = session.run(remote.removeCommand());
    const Words words = session.takeWords();
    if (!isAnswered) {
        return Removal::NotAnswered;
    }
    session.leave();
    if (!TransferFailure::isIn(words)) {
        return Removal::Done;
    }
    return TransferFailure::isNotThere(words) ? Removal::NotThere : Removal::Failed;
}

}  // namespace Tev

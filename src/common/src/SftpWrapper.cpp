#include "SftpWrapper.h"

#include <cerrno>
#include <new>
#include <system_error>

#include "SftpUpload.h"
#include "TevException.h"
#include "TransferInterruption.h"
#include "TransferSettings.h"

namespace Tev {

SftpWrapper::SftpWrapper(const std::string& program, const std::string& user, const std::string& password,
                         const std::string& host, const std::string& port, SftpAction action,
                         const std::string& localFile, const std::string& remotePath, bool debug,
                         const std::string& ciphers, const std::string& keyExchanges, const std::string& macs,
                         long timeout, unsigned char dscp)
    : settings(std::make_shared<const TransferSettings>(TransferSettings{program, user, password, host, port, action,
                                                                         localFile, remotePath, debug, ciphers,
                                                                         keyExchanges, macs, timeout, dscp})) {}

TevReturnT SftpWrapper::execute() {
    try {
        return transfer();
    } catch (const std::bad_alloc&) {
        errorMessage = "out of memory";  // short enough to need none
        return TevReturnNoMemory;
    }
}

TevReturnT SftpWrapper::transfer() {
    errorMessage.clear();
    try {
        SftpUpload(*settings).run();
        return TevReturnOk;
    } catch (const TevException& failure) {
        errorMessage = failure.what();
        return failure.getReturnCode();
    } catch (const std::system_error& error) {
        errorMessage = error.what();
        return error.code().value() == ENOMEM ? TevReturnNoMemory : TevReturnFailure;
    }
}

std::string SftpWrapper::getErrorMessage() const {
    return errorMessage;
}

void SftpWrapper::interruptAll() noexcept {
    TransferInterruption::request(true);
}

void SftpWrapper::allowAgain() noexcept {
    TransferInterruption::request(false);
}

}  // namespace Tev

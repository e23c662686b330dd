#include "FakeRunner.h"

#include <memory>
#include <stdexcept>

#include "SftpWrapper.h"

namespace TevTest {

namespace {

FakeRunner* theRunner = nullptr;

void doIfSet(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

}  // namespace

FakeRunner::FakeRunner() {
    if (theRunner != nullptr) {
        throw std::logic_error("there is a runner already");
    }
    theRunner = this;
}

FakeRunner::~FakeRunner() {
    theRunner = nullptr;
}

FakeRunner& FakeRunner::current() {
    if (theRunner == nullptr) {
        throw std::logic_error("no transfer was expected");
    }
    return *theRunner;
}

}  // namespace TevTest

namespace Tev {

using TevTest::FakeRunner;

SftpWrapper::SftpWrapper(const std::string& programPath, const std::string& userPart, const std::string& userPassword,
                         const std::string& hostName, const std::string& portNumber, SftpAction transferAction,
                         const std::string& file, const std::string& remote, bool isDebug,
                         const std::string& cipherList, const std::string& keyExchangeList, const std::string& macList,
                         long timeLimit, unsigned char dscpValue) {
    TevTest::doIfSet(FakeRunner::current().atConstruction);
    {
        const std::lock_guard<std::mutex> lock(FakeRunner::current().mutex);
        FakeRunner::current().constructed.emplace_back(programPath, userPart, userPassword, hostName, portNumber,
                                                       transferAction, file, remote, isDebug, cipherList,
                                                       keyExchangeList, macList, timeLimit, dscpValue);
    }
    // The class has no destructor of its own, but this member goes with the object.
    ++FakeRunner::current().alive;
    settings = std::shared_ptr<TransferSettings>(nullptr, [](TransferSettings*) { --FakeRunner::current().alive; });
}

TevReturnT SftpWrapper::execute() {
    TevTest::doIfSet(FakeRunner::current().atExecution);
    ++FakeRunner::current().executions;
    errorMessage = FakeRunner::current().errorMessage;
    return FakeRunner::current().code;
}

std::string SftpWrapper::getErrorMessage() const {
    TevTest::doIfSet(FakeRunner::current().atErrorMessage);
    return errorMessage;
}

}  // namespace Tev

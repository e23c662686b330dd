#include "TransactionService.h"

#include <algorithm>

#include "Barrier.h"
#include "Diagnostics.h"
#include "TableCheck.h"

namespace TevAgent {

struct TransactionService::Table {
    static DalOamSpiTransaction_2 transaction;
};

DalOamSpiTransaction_2 TransactionService::Table::transaction = {
    {componentName, "DalOamSpiTransaction", "2"}, TableEntry<&TransactionService::registerParticipant>::call};

namespace {

TevReturnT firstFailure(TevReturnT first, TevReturnT second) {
    return first != TevReturnOk ? first : second;
}

}  // namespace

DalOamSpiTransaction_2* TransactionService::table() {
    return &Table::transaction;
}

unsigned long TransactionService::begin() {
    const Tev::AnnotatedLock lock(mutex);
    open[++lastHandle];
    return lastHandle;
}

TevReturnT TransactionService::registerParticipant(unsigned long txHandle, Resource* participant) {
    const std::string fault = TableCheck::faultOf(participant);
    if (!fault.empty()) {
        Diagnostics::say(fault);
        return TevReturnInvalidArgument;
    }
    const Tev::AnnotatedLock lock(mutex);
    const auto found = open.find(txHandle);
    if (found == open.end() || found->second.isFinishing) {
        return TevReturnNotFound;
    }
    std::vector<Resource*>& participants = found->second.participants;
    if (std::find(participants.begin(), participants.end(), participant) == participants.end()) {
        participants.push_back(participant);
    }
    return TevReturnOk;
}

TevReturnT TransactionService::join(unsigned long txHandle, Resource& resource) {
    {
        const Tev::AnnotatedLock lock(mutex);
        const auto found = open.find(txHandle);
        if (found == open.end()) {
            return TevReturnNotFound;
        }
        if (found->second.joined.count(&resource) != 0) {
            return TevReturnOk;
        }
    }
    const TevReturnT code =
        Barrier::demand(resource.base.componentName, "join", [&] { return resource.join(txHandle); });
    const Tev::AnnotatedLock lock(mutex);
    const auto found = open.find(txHandle);
    if (code == TevReturnOk && found != open.end()) {
        found->second.joined.insert(&resource);
    }
    return code;
}

bool TransactionService::hasParticipant(unsigned long txHandle) const {
    const Tev::AnnotatedLock lock(mutex);
    const auto found = open.find(txHandle);
    return found != open.end() && !found->second.participants.empty();
}

TevReturnT TransactionService::commit(unsigned long txHandle) {
    if (!isOpen(txHandle)) {
        return TevReturnNotFound;
    }
    TevReturnT result = validate(txHandle);
    if (result == TevReturnOk) {
        result = tellAll(txHandle, "prepare", &Resource::prepare, AtFailure::Stop);
    }
    if (result == TevReturnOk) {
        result = tellAll(txHandle, "commit", &Resource::commit, AtFailure::GoOn);
    } else {
        tellAll(txHandle, "abort", &Resource::abort, AtFailure::GoOn);
    }
    return firstFailure(result, finish(txHandle));
}

TevReturnT TransactionService::abort(unsigned long txHandle) {
    if (!isOpen(txHandle)) {
        return TevReturnNotFound;
    }
    const TevReturnT result = tellAll(txHandle, "abort", &Resource::abort, AtFailure::GoOn);
    return firstFailure(result, finish(txHandle));
}

bool TransactionService::isOpen(unsigned long txHandle) const {
    const Tev::AnnotatedLock lock(mutex);
    return open.count(txHandle) != 0;
}

TransactionService::Resource* TransactionService::participant(unsigned long txHandle, std::size_t index) const {
    const Tev::AnnotatedLock lock(mutex);
    const std::vector<Resource*>& participants = open.at(txHandle).participants;
    return index < participants.size() ? participants[index] : nullptr;
}

TevReturnT TransactionService::validate(unsigned long txHandle) const {
    for (std::size_t index = 0; Resource* const resource = participant(txHandle, index); ++index) {
        const std::string name = resource->base.componentName;
        bool isValid = false;
        const TevReturnT code =
            Barrier::demand(name, "validate", [&] { return resource->validate(txHandle, &isValid); });
        if (code != TevReturnOk) {
            return code;
        }
        if (!isValid) {
            Diagnostics::say("component " + name + " finds the transaction invalid");
            return TevReturnFailure;
        }
    }
    return TevReturnOk;
}

TevReturnT TransactionService::tellAll(unsigned long txHandle, const char* name, Operation operation,
                                       AtFailure atFailure) const {
    TevReturnT result = TevReturnOk;
    for (std::size_t index = 0; Resource* const resource = participant(txHandle, index); ++index) {
        const TevReturnT code =
            Barrier::demand(resource->base.componentName, name, [&] { return (resource->*operation)(txHandle); });
        result = firstFailure(result, code);
        if (result != TevReturnOk && atFailure == AtFailure::Stop) {
            break;
        }
    }
    return result;
}

TevReturnT TransactionService::finish(unsigned long txHandle) {
    {
        // What a participant takes up from now on would be released by nobody.
        const Tev::AnnotatedLock lock(mutex);
        open.at(txHandle).isFinishing = true;
    }
    const TevReturnT result = tellAll(txHandle, "finish", &Resource::finish, AtFailure::GoOn);
    const Tev::AnnotatedLock lock(mutex);
    open.erase(txHandle);
    return result;
}

}  // namespace TevAgent

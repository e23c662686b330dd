#include "Operation.h"

#include "Diagnostics.h"
#include "Failure.h"
#include "ReturnCode.h"

namespace TevAgent {

namespace {

/// A value container that holds one text, and the array of such that an action takes.
class TextParameters {
public:
    explicit TextParameters(const std::vector<const char*>& texts) : cells(texts.size()), containers(texts.size()) {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            // Borrowed: the callee only reads them.
            cells[i].theString = const_cast<char*>(texts[i]);
            containers[i] = {DalMoTypeString, 1, &cells[i]};
            pointers.push_back(&containers[i]);
        }
        pointers.push_back(nullptr);
    }

    DalMoAttributeValueContainer** array() { return pointers.data(); }

private:
    std::vector<DalMoAttributeValue> cells;
    std::vector<DalMoAttributeValueContainer> containers;
    std::vector<DalMoAttributeValueContainer*> pointers;
};

}  // namespace

Operation::Operation(Agent& hostAgent)
    : agent(hostAgent),
      transaction(std::in_place, agent.transactions()),
      objectReader(agent.router(), transaction->handle()) {}

Operation::~Operation() {
    transaction.reset();
    for (const ThreadContext::Message& message : context.takeMessages()) {
        Diagnostics::say(message.text);
    }
}

void Operation::act(const std::string& dn, const std::string& action, const std::vector<const char*>& texts) {
    TextParameters parameters(texts);
    DalMoAttributeValueContainer* result = nullptr;
    Diagnostics::Capture capture;
    const TevReturnT code =
        agent.router().action(transaction->handle(), dn.c_str(), action.c_str(), parameters.array(), &result);
    if (code == TevReturnOk) {
        return;
    }
    for (const ThreadContext::Message& message : context.takeMessages()) {
        Diagnostics::say(message.text);
    }
    throw Failure(ExitStatus::OperationFailed,
                  capture.takeOr(agent.router().ownerOf(dn) + " returned " + ReturnCode::text(code)));
}

void Operation::commit() {
    Diagnostics::Capture capture;
    const TevReturnT code = transaction->commit();
    if (code != TevReturnOk) {
        throw Failure(ExitStatus::OperationFailed,
                      "the transaction failed: " + capture.takeOr("code " + ReturnCode::text(code)));
    }
}

}  // namespace TevAgent

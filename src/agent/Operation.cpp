#include "Operation.h"

#include "Diagnostics.h"
#include "Failure.h"
#include "ReturnCode.h"

namespace TevAgent {

Operation::Operation(Agent& agent)
    : transaction(std::in_place, agent.transactions()), objectReader(agent.router(), transaction->handle()) {}

Operation::~Operation() {
    transaction.reset();
    for (const ThreadContext::Message& message : context.takeMessages()) {
        Diagnostics::say(message.text);
    }
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

#ifndef TEV_AGENT_OPERATION_H
#define TEV_AGENT_OPERATION_H

#include <optional>

#include "Agent.h"
#include "ObjectReader.h"
#include "ScopedTransaction.h"
#include "ThreadContext.h"

namespace TevAgent {

/// One thing that the operator asked for: a transaction, what is read in it, and the messages that components left for
/// the operator, which are said when it ends. Without `commit` the transaction is aborted. Lives on its thread's stack.
class Operation {
public:
    explicit Operation(Agent& agent);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    const ObjectReader& reader() const { return objectReader; }

    /// Ends the transaction; nothing is read any more. Throws `Failure` (operation failed) when that fails.
    void commit();

private:
    ThreadContext::Operation context;
    std::optional<ScopedTransaction> transaction;
    const ObjectReader objectReader;
};

}  // namespace TevAgent

#endif

#ifndef TEV_AGENT_OPERATION_H
#define TEV_AGENT_OPERATION_H

#include <optional>
#include <string>
#include <vector>

#include "Agent.h"
#include "ObjectReader.h"
#include "ScopedTransaction.h"
#include "ThreadContext.h"

namespace TevAgent {

/// One thing that the operator asked for: a transaction, what is read or done in it, and the messages that components
/// left for the operator, which are said when it ends. Without `commit` the transaction is aborted. Lives on its
/// thread's stack.
class Operation {
public:
    explicit Operation(Agent& hostAgent);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    const ObjectReader& reader() const { return objectReader; }

    /// Carries out an action whose parameters are one text each; the texts are borrowed. Throws `Failure` (operation
    /// failed) with the messages for the operator, else with what else was said, else with the code.
    void act(const std::string& dn, const std::string& action, const std::vector<const char*>& texts);

    /// Ends the transaction; nothing is read any more. Throws `Failure` (operation failed) when that fails.
    void commit();

private:
    Agent& agent;
    ThreadContext::Operation context;
    std::optional<ScopedTransaction> transaction;
    const ObjectReader objectReader;
};

}  // namespace TevAgent

#endif

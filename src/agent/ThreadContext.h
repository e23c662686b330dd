#ifndef TEV_AGENT_THREAD_CONTEXT_H
#define TEV_AGENT_THREAD_CONTEXT_H

#include <cstdint>
#include <string>
#include <vector>

#include "DalMgmtSpiThreadContext.h"

namespace TevAgent {

/// Collects what components tell the operator, for each thread apart.
class ThreadContext {
public:
    struct Message {
        std::int32_t category;
        std::string text;
    };

    /// An operation that its thread serves. While it lives, the thread's messages are kept here; they go with it. An
    /// operation within another one collects its own. Lives on its thread's stack.
    class Operation {
    public:
        Operation();
        ~Operation();
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

        /// The messages so far, in their order; none is kept.
        std::vector<Message> takeMessages();

    private:
        friend class ThreadContext;

        Operation* const outer;
        std::vector<Message> messages;
    };

    /// The table that components are given.
    static DalMgmtSpiThreadContext_2* table();

    /// Adds a copy of `text` to the calling thread's operation. Returns 0, -1 when the thread serves none, -8 for null.
    static TevReturnT addMessage(std::int32_t category, const char* text);

private:
    struct Table;
};

}  // namespace TevAgent

#endif

#include "ThreadContext.h"

#include <utility>

#include "Barrier.h"

namespace TevAgent {

namespace {

thread_local ThreadContext::Operation* innermost = nullptr;

}  // namespace

struct ThreadContext::Table {
    static TevReturnT addMessage(std::int32_t category, const char* text) {
        return Barrier::serve("DalMgmtSpiThreadContextService",
                              [&] { return ThreadContext::addMessage(category, text); });
    }

    static DalMgmtSpiThreadContext_2 threadContext;
};

DalMgmtSpiThreadContext_2 ThreadContext::Table::threadContext = {
    {"DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"}, addMessage};

DalMgmtSpiThreadContext_2* ThreadContext::table() {
    return &Table::threadContext;
}

TevReturnT ThreadContext::addMessage(std::int32_t category, const char* text) {
    if (text == nullptr) {
        return TevReturnInvalidArgument;
    }
    if (innermost == nullptr) {
        return TevReturnFailure;
    }
    innermost->messages.push_back({category, text});
    return TevReturnOk;
}

ThreadContext::Operation::Operation() : outer(innermost) {
    innermost = this;
}

ThreadContext::Operation::~Operation() {
    innermost = outer;
}

std::vector<ThreadContext::Message> ThreadContext::Operation::takeMessages() {
    return std::exchange(messages, {});
}

}  // namespace TevAgent

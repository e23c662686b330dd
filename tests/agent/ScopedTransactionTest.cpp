#include "ScopedTransaction.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "Diagnostics.h"
#include "FakeComponent.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;

class ScopedTransactionTest : public testing::Test {
protected:
    std::vector<std::string> calls;
    TevTest::FakeComponent<> a{"A", calls};
    TransactionService service;
};

TEST_F(ScopedTransactionTest, isAbortedAtTheEndOfItsScope) {
    {
        const ScopedTransaction transaction(service);
        service.registerParticipant(transaction.handle(), &a.resource);
    }
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "A.finish 1"));
}

TEST_F(ScopedTransactionTest, isAbortedWhenAnExceptionLeavesItsScope) {
    try {
        const ScopedTransaction transaction(service);
        service.registerParticipant(transaction.handle(), &a.resource);
        throw std::runtime_error("broken");
    } catch (const std::runtime_error&) {
    }
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "A.finish 1"));
}

TEST_F(ScopedTransactionTest, endsOnceWhenCommitted) {
    Diagnostics::Capture capture;
    {
        ScopedTransaction transaction(service);
        service.registerParticipant(transaction.handle(), &a.resource);
        a.whenCalled("commit", [] { return TevReturnT(-6); });
        EXPECT_EQ(transaction.commit(), -6);
    }
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "A.prepare 1", "A.commit 1", "A.finish 1"));
    EXPECT_EQ(capture.takeOr(""), "component A returned -6 from commit");
}

}  // namespace

}  // namespace TevAgent

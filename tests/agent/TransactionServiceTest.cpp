#include "TransactionService.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "Diagnostics.h"
#include "FakeComponent.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;

class TransactionServiceTest : public testing::Test {
protected:
    unsigned long beginWithBoth() {
        const unsigned long handle = service.begin();
        EXPECT_EQ(service.registerParticipant(handle, &a.resource), 0);
        EXPECT_EQ(service.registerParticipant(handle, &b.resource), 0);
        return handle;
    }

    std::vector<std::string> calls;
    TevTest::FakeComponent<1> a{"A", calls};
    TevTest::FakeComponent<2> b{"B", calls};
    TransactionService service;
};

TEST_F(TransactionServiceTest, handlesBeginAtOneAndAreNeverUsedAgain) {
    EXPECT_EQ(service.begin(), 1U);
    EXPECT_EQ(service.commit(1), 0);
    EXPECT_EQ(service.begin(), 2U);
    EXPECT_EQ(service.begin(), 3U);
    EXPECT_EQ(service.abort(3), 0);
    EXPECT_EQ(service.begin(), 4U);
}

TEST_F(TransactionServiceTest, knowsWhetherAnybodyTakesPart) {
    const unsigned long handle = service.begin();
    EXPECT_FALSE(service.hasParticipant(handle));
    EXPECT_EQ(service.registerParticipant(handle, &a.resource), 0);
    EXPECT_TRUE(service.hasParticipant(handle));
    EXPECT_FALSE(service.hasParticipant(handle + 1));
    EXPECT_EQ(service.commit(handle), 0);
    EXPECT_FALSE(service.hasParticipant(handle));
}

TEST_F(TransactionServiceTest, committingValidatesPreparesCommitsAndFinishesEveryone) {
    EXPECT_EQ(service.commit(beginWithBoth()), 0);
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "B.validate 1", "A.prepare 1", "B.prepare 1", "A.commit 1",
                                   "B.commit 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, abortingAbortsAndFinishesEveryone) {
    EXPECT_EQ(service.abort(beginWithBoth()), 0);
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, aParticipantThatFindsItInvalidAbortsIt) {
    const unsigned long handle = beginWithBoth();
    a.isValid = false;
    Diagnostics::Capture capture;
    EXPECT_EQ(service.commit(handle), -1);
    EXPECT_EQ(capture.takeOr(""), "component A finds the transaction invalid");
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "A.abort 1", "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, aFailedPrepareAbortsItAndItsCodeIsTheResult) {
    const unsigned long handle = beginWithBoth();
    b.whenCalled("prepare", [] { return TevReturnT(-4); });
    b.whenCalled("abort", [] { return TevReturnT(-5); });
    Diagnostics::Capture capture;
    EXPECT_EQ(service.commit(handle), -4);
    EXPECT_EQ(capture.takeOr(""), "component B returned -4 from prepare; component B returned -5 from abort");
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "B.validate 1", "A.prepare 1", "B.prepare 1", "A.abort 1",
                                   "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, aFailedCommitOfOneDoesNotKeepTheOthersFromCommitting) {
    const unsigned long handle = beginWithBoth();
    a.whenCalled("commit", [] { return TevReturnT(-6); });
    Diagnostics::Capture capture;
    EXPECT_EQ(service.commit(handle), -6);
    EXPECT_EQ(capture.takeOr(""), "component A returned -6 from commit");
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "B.validate 1", "A.prepare 1", "B.prepare 1", "A.commit 1",
                                   "B.commit 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, everyoneFinishesWhicheverOperationThrows) {
    for (const char* operation : {"validate", "prepare", "commit", "finish"}) {
        calls.clear();
        const unsigned long handle = beginWithBoth();
        a.whenCalled(operation, []() -> TevReturnT { throw 42; });
        Diagnostics::Capture capture;
        EXPECT_EQ(service.commit(handle), -1) << operation;
        EXPECT_EQ(capture.takeOr(""), std::string("component A threw in ") + operation + ": an exception of type int");
        ASSERT_GE(calls.size(), 2U);
        const std::string suffix = ".finish " + std::to_string(handle);
        EXPECT_EQ(calls[calls.size() - 2], "A" + suffix) << operation;
        EXPECT_EQ(calls.back(), "B" + suffix) << operation;
        a.whenCalled(operation, [] { return TevReturnT(0); });
    }
}

TEST_F(TransactionServiceTest, everyoneFinishesWhenAnAbortThrows) {
    const unsigned long handle = beginWithBoth();
    a.whenCalled("abort", []() -> TevReturnT { throw std::runtime_error("broken"); });
    Diagnostics::Capture capture;
    EXPECT_EQ(service.abort(handle), -1);
    EXPECT_EQ(capture.takeOr(""), "component A threw in abort: broken");
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, aParticipantIsKeptOnce) {
    const unsigned long handle = beginWithBoth();
    EXPECT_EQ(service.registerParticipant(handle, &a.resource), 0);
    EXPECT_EQ(service.abort(handle), 0);
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, aParticipantThatComesWhileItEndsFinishesToo) {
    const unsigned long handle = service.begin();
    ASSERT_EQ(service.registerParticipant(handle, &a.resource), 0);
    a.whenCalled("prepare", [&] { return service.registerParticipant(handle, &b.resource); });
    EXPECT_EQ(service.commit(handle), 0);
    EXPECT_THAT(calls, ElementsAre("A.validate 1", "A.prepare 1", "B.prepare 1", "A.commit 1", "B.commit 1",
                                   "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, nobodyTakesPartAnyMoreOnceParticipantsAreToldToFinish) {
    const unsigned long handle = beginWithBoth();
    std::vector<TevReturnT> codes;
    b.whenCalled("finish", [&] {
        codes.push_back(service.registerParticipant(handle, &a.resource));
        codes.push_back(service.registerParticipant(handle, &b.resource));
        return TevReturnOk;
    });
    EXPECT_EQ(service.abort(handle), 0);
    EXPECT_THAT(codes, ElementsAre(-2, -2));
    EXPECT_THAT(calls, ElementsAre("A.abort 1", "B.abort 1", "A.finish 1", "B.finish 1"));
}

TEST_F(TransactionServiceTest, refusesAnUnknownTransactionEverywhere) {
    for (const unsigned long handle : {0UL, 1UL}) {
        EXPECT_EQ(service.registerParticipant(handle, &a.resource), -2);
        EXPECT_EQ(service.join(handle, a.resource), -2);
        EXPECT_EQ(service.commit(handle), -2);
        EXPECT_EQ(service.abort(handle), -2);
    }
    EXPECT_TRUE(calls.empty());
}

TEST_F(TransactionServiceTest, anEndedTransactionIsUnknown) {
    const unsigned long handle = service.begin();
    ASSERT_EQ(service.commit(handle), 0);
    EXPECT_EQ(service.registerParticipant(handle, &a.resource), -2);
    EXPECT_EQ(service.commit(handle), -2);
}

TEST_F(TransactionServiceTest, refusesAFaultyParticipantAndSaysWhy) {
    const unsigned long handle = service.begin();
    a.resource.finish = nullptr;
    Diagnostics::Capture capture;
    EXPECT_EQ(service.registerParticipant(handle, &a.resource), -8);
    EXPECT_EQ(capture.takeOr(""), "component A has no finish in its DalOamSpiTransactionalResource table");
    EXPECT_EQ(service.registerParticipant(handle, nullptr), -8);
    EXPECT_EQ(capture.takeOr(""), "a null participant was registered");
    EXPECT_EQ(service.commit(handle), 0);
}

TEST_F(TransactionServiceTest, aComponentJoinsEachTransactionOnce) {
    const unsigned long first = service.begin();
    const unsigned long second = service.begin();
    EXPECT_EQ(service.join(first, a.resource), 0);
    EXPECT_EQ(service.join(first, a.resource), 0);
    EXPECT_EQ(service.join(second, a.resource), 0);
    EXPECT_EQ(service.join(second, b.resource), 0);
    EXPECT_THAT(calls, ElementsAre("A.join 1", "A.join 2", "B.join 2"));
    service.abort(first);
    service.abort(second);
}

TEST_F(TransactionServiceTest, aJoinThatFailsIsTriedAgainAtTheNextCall) {
    const unsigned long handle = service.begin();
    a.whenCalled("join", [] { return TevReturnT(2); });
    Diagnostics::Capture capture;
    EXPECT_EQ(service.join(handle, a.resource), 2);
    EXPECT_EQ(capture.takeOr(""), "component A returned 2 (not started) from join");
    a.whenCalled("join", [] { return TevReturnT(0); });
    EXPECT_EQ(service.join(handle, a.resource), 0);
    EXPECT_THAT(calls, ElementsAre("A.join 1", "A.join 1"));
    service.abort(handle);
}

TEST_F(TransactionServiceTest, aComponentRegistersThroughTheTableWhileItJoins) {
    const unsigned long handle = service.begin();
    a.whenCalled("join", [&] { return TransactionService::table()->registerParticipant(handle, &a.resource); });
    EXPECT_EQ(service.join(handle, a.resource), 0);
    EXPECT_EQ(service.abort(handle), 0);
    EXPECT_THAT(calls, ElementsAre("A.join 1", "A.abort 1", "A.finish 1"));
}

TEST_F(TransactionServiceTest, isOfferedAsVersion2) {
    EXPECT_STREQ(TransactionService::table()->base.componentName, "DalOamSpiTransactionService");
    EXPECT_STREQ(TransactionService::table()->base.interfaceName, "DalOamSpiTransaction");
    EXPECT_STREQ(TransactionService::table()->base.interfaceVersion, "2");
}

}  // namespace

}  // namespace TevAgent

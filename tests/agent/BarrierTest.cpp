#include "Barrier.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "Diagnostics.h"
#include "TevException.h"

namespace TevAgent {

namespace {

struct Outcome {
    TevReturnT code;
    std::string said;
};

template <class Function>
Outcome called(Function&& function) {
    Diagnostics::Capture capture;
    const TevReturnT code = Barrier::call("Guilty", "start", function);
    return {code, capture.takeOr("")};
}

TEST(BarrierTest, returnsTheCodeOfACallThatThrowsNothing) {
    const Outcome outcome = called([] { return TevReturnT(7); });
    EXPECT_EQ(outcome.code, 7);
    EXPECT_EQ(outcome.said, "");
}

TEST(BarrierTest, catchesAnIntAndNamesComponentAndOperation) {
    const Outcome outcome = called([]() -> TevReturnT { throw 42; });
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.said, "component Guilty threw in start: an exception of type int");
}

TEST(BarrierTest, givesTheCodeAndTextOfATevException) {
    const Outcome outcome = called([]() -> TevReturnT { throw Tev::TevException(-10, "no more of %s", "it"); });
    EXPECT_EQ(outcome.code, -10);
    EXPECT_EQ(outcome.said, "component Guilty threw in start: no more of it");
}

TEST(BarrierTest, catchesAStandardExceptionWithItsText) {
    const Outcome outcome = called([]() -> TevReturnT { throw std::runtime_error("broken"); });
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.said, "component Guilty threw in start: broken");
}

TEST(BarrierTest, reportsTheCodeOfADemandedCall) {
    Diagnostics::Capture capture;
    EXPECT_EQ(Barrier::demand("Guilty", "stop", [] { return TevReturnT(-3); }), -3);
    EXPECT_EQ(capture.takeOr(""), "component Guilty returned -3 from stop");
}

TEST(BarrierTest, reportsAnExceptionOfADemandedCallOnce) {
    Diagnostics::Capture capture;
    EXPECT_EQ(Barrier::demand("Guilty", "stop", []() -> TevReturnT { throw 42; }), -1);
    EXPECT_EQ(capture.takeOr(""), "component Guilty threw in stop: an exception of type int");
}

TEST(BarrierTest, saysNothingOfADemandedCallThatSucceeds) {
    Diagnostics::Capture capture;
    EXPECT_EQ(Barrier::demand("Good", "stop", [] { return TevReturnT(0); }), 0);
    EXPECT_TRUE(capture.isEmpty());
}

TEST(BarrierTest, keepsExceptionsOfTheAgentFromComponents) {
    Diagnostics::Capture capture;
    EXPECT_EQ(Barrier::serve("SomeService", []() -> TevReturnT { throw std::runtime_error("broken"); }), -1);
    EXPECT_EQ(capture.takeOr(""), "the agent threw in SomeService: broken");
}

}  // namespace

}  // namespace TevAgent

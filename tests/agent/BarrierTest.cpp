#include "Barrier.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <thread>

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

TEST(BarrierTest, doesNotTakeAnExceptionWithTheCodeOfSuccessForSuccess) {
    const Outcome outcome = called([]() -> TevReturnT { throw Tev::TevException(TevReturnOk, "all is well"); });
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.said, "component Guilty threw in start: all is well");
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

TEST(BarrierTest, blamesTheInnermostCallOfTheThread) {
    const auto blamed = [] { return Barrier::blame("fell asleep"); };
    const std::string nobody = "a component fell asleep in a thread of its own";
    EXPECT_EQ(blamed(), nobody);
    Barrier::call("Outer", "start", [&] {
        EXPECT_EQ(blamed(), "component Outer fell asleep in start");
        Barrier::demand("Inner", "join", [&] {
            EXPECT_EQ(blamed(), "component Inner fell asleep in join");
            std::thread([&] { EXPECT_EQ(blamed(), nobody); }).join();
            return TevReturnOk;
        });
        Barrier::call("Thrower", "join", []() -> TevReturnT { throw 42; });
        EXPECT_EQ(blamed(), "component Outer fell asleep in start");
        return TevReturnOk;
    });
    EXPECT_EQ(blamed(), nobody);
}

TEST(BarrierTest, keepsExceptionsOfTheAgentFromComponents) {
    Diagnostics::Capture capture;
    EXPECT_EQ(Barrier::serve("SomeService", []() -> TevReturnT { throw std::runtime_error("broken"); }), -1);
    EXPECT_EQ(capture.takeOr(""), "the agent threw in SomeService: broken");
}

}  // namespace

}  // namespace TevAgent

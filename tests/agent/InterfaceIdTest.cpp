#include "InterfaceId.h"

#include <gmock/gmock.h>

namespace TevAgent {

namespace {

bool meets(const char* version, const char* wanted) {
    return InterfaceId("C", "I", version).meets(InterfaceId("C", "I", wanted));
}

TEST(InterfaceIdTest, aHigherVersionMeetsALowerOneAndNotTheOtherWayRound) {
    EXPECT_TRUE(meets("4", "1"));
    EXPECT_TRUE(meets("4", "4"));
    EXPECT_FALSE(meets("1", "4"));
}

TEST(InterfaceIdTest, versionsAreComparedAsNumbersOfAnyLength) {
    EXPECT_TRUE(meets("10", "9"));
    EXPECT_FALSE(meets("9", "10"));
    EXPECT_TRUE(meets("100000000000000000000000000001", "99999999999999999999999999999"));
    EXPECT_TRUE(meets("007", "7"));
    EXPECT_TRUE(meets("7", "007"));
    EXPECT_TRUE(meets("0", "000"));
    EXPECT_FALSE(meets("0", "1"));
}

TEST(InterfaceIdTest, aVersionThatIsNoNumberIsMetByItselfOnly) {
    EXPECT_TRUE(meets("beta", "beta"));
    EXPECT_FALSE(meets("beta", "1"));
    EXPECT_FALSE(meets("2", "1.0"));
    EXPECT_FALSE(meets("", "0"));
}

TEST(InterfaceIdTest, anotherComponentOrInterfaceDoesNotMeetIt) {
    EXPECT_FALSE(InterfaceId("C", "I", "2").meets(InterfaceId("D", "I", "1")));
    EXPECT_FALSE(InterfaceId("C", "I", "2").meets(InterfaceId("C", "J", "1")));
}

TEST(InterfaceIdTest, itsTextNamesComponentInterfaceAndVersion) {
    EXPECT_EQ(InterfaceId(DalMgmtSpiInterface_1{"C", "I", "2"}).text(), "C/I version 2");
}

}  // namespace

}  // namespace TevAgent

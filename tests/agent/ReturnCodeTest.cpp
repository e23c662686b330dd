#include "ReturnCode.h"

#include <gmock/gmock.h>

namespace TevAgent {

namespace {

TEST(ReturnCodeTest, tellsWhatAKnownCodeMeans) {
    EXPECT_EQ(ReturnCode::text(-1), "-1 (failure)");
    EXPECT_EQ(ReturnCode::text(-2), "-2 (not found)");
    EXPECT_EQ(ReturnCode::text(-8), "-8 (invalid argument)");
    EXPECT_EQ(ReturnCode::text(-10), "-10 (no memory)");
    EXPECT_EQ(ReturnCode::text(2), "2 (not started)");
}

TEST(ReturnCodeTest, givesAnyOtherCodeAsItIs) {
    EXPECT_EQ(ReturnCode::text(-13), "-13");
    EXPECT_EQ(ReturnCode::text(0), "0");
}

}  // namespace

}  // namespace TevAgent

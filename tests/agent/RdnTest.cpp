#include "Rdn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TevAgent {
namespace {

TEST(RdnTest, sequenceGivesClassAndKeyOfEveryStepFromTheRootOn) {
    const auto steps = Rdn::sequence("ManagedElement=1,Transport=main ring");
    ASSERT_TRUE(steps);
    ASSERT_EQ(steps->size(), 2U);
    EXPECT_EQ(steps->at(0).className, "ManagedElement");
    EXPECT_EQ(steps->at(0).key, "1");
    EXPECT_EQ(steps->at(1).className, "Transport");
    EXPECT_EQ(steps->at(1).key, "main ring");
}

TEST(RdnTest, sequenceRefusesWhatIsNoDn) {
    for (const char* text :
         {"", ",", "=", "A", "A=", "=1", "A=1,", ",A=1", "A=1,,B=1", "A=1=2", "A=1,B", "A=\n", "\t=1"}) {
        EXPECT_EQ(Rdn::sequence(text).has_value(), false) << text;
    }
}

}  // namespace
}  // namespace TevAgent

#include "Log.h"

#include <gtest/gtest.h>

#include "LogCapture.h"

namespace TevTest {

namespace {

constexpr const char* sourceFile = "tests/schema_populator/LogTest";

/// Counts how often an argument of a record is evaluated.
class LogTest : public testing::Test {
protected:
    int argument() { return ++evaluations; }

    int evaluations = 0;
};

}  // namespace

TEST_F(LogTest, messageIsWrittenTwiceFromItsLevelOn) {
    const LogCapture capture(5);
    SCHEMA_LOG_AS("function", 5, "%s", "text");
    EXPECT_THAT(capture.records(), testing::ElementsAreArray(message(5, sourceFile, "function", "text")));
}

TEST_F(LogTest, messageAboveTheLevelEvaluatesNoArgument) {
    const LogCapture capture(4);
    SCHEMA_LOG(5, "%d", argument());
    EXPECT_EQ(evaluations, 0);
    EXPECT_TRUE(capture.records().empty());
}

TEST_F(LogTest, traceIsWrittenTwiceAtLevelEight) {
    const LogCapture capture(8);
    SCHEMA_TRACE_AS("function", TevSchemaPopulator::TraceExit, "%s", "text");
    EXPECT_THAT(capture.records(), testing::ElementsAreArray(debugTrace(10, sourceFile, "function", "text")));
}

TEST_F(LogTest, traceBelowLevelEightEvaluatesNoArgument) {
    const LogCapture capture(7);
    SCHEMA_TRACE(TevSchemaPopulator::TraceDebug, "%d", argument());
    EXPECT_EQ(evaluations, 0);
    EXPECT_TRUE(capture.records().empty());
}

TEST_F(LogTest, recordsBearTheNameOfTheCallingFunction) {
    const LogCapture capture(8);
    const auto write = [] { SCHEMA_LOG(3, "text"); };
    write();
    EXPECT_THAT(capture.records(), testing::ElementsAreArray(message(3, sourceFile, "operator()", "text")));
}

}  // namespace TevTest

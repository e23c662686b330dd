#include "Log.h"

#include <gtest/gtest.h>

#include <vector>

#include "LogCapture.h"

namespace TevTest {

namespace {

constexpr const char* sourceFile = "tests/schema_populator/LogTest";

namespace WithLogOfItsOwn {

/// Stands in for the common library, whose log does not show the category.
namespace Tev {

namespace Trace {
constexpr int Schema = 0;
}

struct LoggingWrapper {
    static LoggingWrapper& instance() {
        static LoggingWrapper log;
        return log;
    }

    static int get_level() { return 8; }

    template <class... Arguments>
    void log_printf(const char*, int, int category, Arguments...) {
        categories.push_back(category);
    }

    template <class... Arguments>
    void trace_v2_printf(Arguments...) {}

    std::vector<int> categories;
};

}  // namespace Tev

std::vector<int> categoriesOfAMessage() {
    SCHEMA_LOG(3, "%s", "text");
    return Tev::LoggingWrapper::instance().categories;
}

}  // namespace WithLogOfItsOwn

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

TEST_F(LogTest, messageIsOfCategoryOne) {
    EXPECT_THAT(WithLogOfItsOwn::categoriesOfAMessage(), testing::ElementsAre(1));
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

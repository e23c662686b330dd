#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FileText.h"
#include "LogCapture.h"
#include "Pipe.h"
#include "TempFolder.h"

// What the log does with its environment: seen in processes that use it for the first time.

namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Gt;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using TevTest::ChildProcess;
using TevTest::contents;
using TevTest::LogRecord;
using TevTest::Pipe;
using TevTest::TempFolder;

std::vector<LogRecord> parse(const std::string& log) {
    std::vector<LogRecord> records;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        records.push_back(LogRecord::parse(line));
    }
    return records;
}

std::vector<std::string> texts(const std::string& log) {
    std::vector<std::string> texts;
    for (const LogRecord& record : parse(log)) {
        texts.push_back(record.text);
    }
    return texts;
}

/// Standard error goes into the pipe.
ChildProcess::Setting writingTo(const Pipe& pipe) {
    ChildProcess::Setting setting;
    setting.err = pipe.writing();
    return setting;
}

TEST(LoggingWrapperProcessTest, levelIsFourByDefault) {
    ChildProcess child(LOG_CHILD, {"level"}, {});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.out(), "4");
    EXPECT_EQ(child.err(), "");
}

TEST(LoggingWrapperProcessTest, levelComesFromTheEnvironment) {
    for (const char* const level : {"0", "1", "2", "3", "4", "5", "6", "7", "8"}) {
        ChildProcess child(LOG_CHILD, {"level"}, {{{"TEV_LOG_LEVEL", level}}});
        EXPECT_EQ(child.wait(), 0);
        EXPECT_EQ(child.out(), level);
        EXPECT_EQ(child.err(), "");
    }
}

TEST(LoggingWrapperProcessTest, badLevelIsReportedAndFourIsUsed) {
    for (const char* const level :
         {"", "9", "-1", "+1", "4x", " 4", "4 ", "4.0", "high", "0x4", "99999999999999999999"}) {
        ChildProcess child(LOG_CHILD, {"level"}, {{{"TEV_LOG_LEVEL", level}}});
        EXPECT_EQ(child.wait(), 0);
        EXPECT_EQ(child.out(), "4");
        EXPECT_THAT(texts(child.err()), ElementsAre(std::string("TEV_LOG_LEVEL is '") + level +
                                                    "', which is not a whole number from 0 to 8; level 4 is used"));
    }
}

TEST(LoggingWrapperProcessTest, badLevelIsReportedInTheLogFile) {
    const TempFolder folder;
    const std::string file = folder.path() / "log";
    ChildProcess child(LOG_CHILD, {"level"}, {{{"TEV_LOG_LEVEL", "9\n10"}, {"TEV_LOG_FILE", file}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.err(), "");
    EXPECT_THAT(texts(contents(file)), ElementsAre(HasSubstr("TEV_LOG_LEVEL is '9\\n10'")));
}

TEST(LoggingWrapperProcessTest, recordsGoToStandardErrorByDefault) {
    ChildProcess child(LOG_CHILD, {"once"}, {});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.out(), "");
    const std::vector<LogRecord> records = parse(child.err());
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].type, "LOG");
    EXPECT_EQ(records[0].function, "child");
    EXPECT_EQ(records[0].text, "record");
}

TEST(LoggingWrapperProcessTest, nothingIsLoggedAtLevelZero) {
    ChildProcess child(LOG_CHILD, {"once"}, {{{"TEV_LOG_LEVEL", "0"}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.err(), "");
}

TEST(LoggingWrapperProcessTest, fileIsAppendedTo) {
    const TempFolder folder;
    const std::string file = folder.write("log", "kept\n");
    ChildProcess child(LOG_CHILD, {"once"}, {{{"TEV_LOG_FILE", file}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.err(), "");
    const std::string log = contents(file);
    ASSERT_EQ(log.substr(0, 5), "kept\n");
    EXPECT_THAT(texts(log.substr(5)), ElementsAre("record"));
}

TEST(LoggingWrapperProcessTest, fileIsForOwnerAndGroupAndNotInherited) {
    const TempFolder folder;
    ChildProcess child(LOG_CHILD, {"show-file"}, {{{"TEV_LOG_FILE", folder.path() / "log"}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.out(), "mode 640 close-on-exec append");
}

TEST(LoggingWrapperProcessTest, fileThatIsCutIsFilledFromItsBeginning) {
    const TempFolder folder;
    const std::string file = folder.path() / "log";
    ChildProcess child(LOG_CHILD, {"rotation"}, {{{"TEV_LOG_FILE", file}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(texts(contents(file)), ElementsAre("after"));
}

TEST(LoggingWrapperProcessTest, standardErrorTakesThePlaceOfAFileThatCannotBeOpened) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    const std::map<std::string, std::string> reasons{{folder.path() / "no/log", "No such file or directory"},
                                                     {folder.path(), "Is a directory"},
                                                     {folder.path() / "pipe", "No such device or address"},
                                                     {"", "No such file or directory"}};
    for (const auto& [file, reason] : reasons) {
        ChildProcess child(LOG_CHILD, {"once"}, {{{"TEV_LOG_FILE", file}}});
        EXPECT_EQ(child.wait(), 0);
        EXPECT_THAT(texts(child.err()), ElementsAre("TEV_LOG_FILE is '" + file + "', which cannot be opened: " +
                                                        reason + "; standard error takes its place",
                                                    "record"));
    }
}

TEST(LoggingWrapperProcessTest, fileThatCannotBeOpenedIsReportedAtLevelZeroToo) {
    ChildProcess child(LOG_CHILD, {"once"}, {{{"TEV_LOG_LEVEL", "0"}, {"TEV_LOG_FILE", "/dev/null/log"}}});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(texts(child.err()), ElementsAre(HasSubstr("TEV_LOG_FILE is '/dev/null/log'")));
}

TEST(LoggingWrapperProcessTest, threadsWriteWholeLinesToStandardErrorInTheirOrder) {
    Pipe pipe(0);
    ChildProcess child(LOG_CHILD, {"threads"}, writingTo(pipe));
    pipe.closeWriting();
    std::map<std::string, int> next;
    for (const std::string& text : texts(pipe.readAll())) {
        const std::string thread = text.substr(0, text.find(' '));
        EXPECT_EQ(text, thread + ' ' + std::to_string(next[thread]++) + ' ' + std::string(10000, 'x'));
    }
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(next.size(), 8U);
    for (const auto& [thread, count] : next) {
        EXPECT_EQ(count, 100) << thread;
    }
}

TEST(LoggingWrapperProcessTest, recordIsWrittenWholeToAPipeThatIsFullAndDoesNotBlock) {
    Pipe pipe(O_NONBLOCK);
    ChildProcess child(LOG_CHILD, {"long"}, writingTo(pipe));
    pipe.closeWriting();
    pipe.waitUntilFull();
    EXPECT_THAT(texts(pipe.readAll()), ElementsAre(std::string(1000000, 'x') + "end"));
    EXPECT_EQ(child.wait(), 0);
}

TEST(LoggingWrapperProcessTest, recordIsWrittenWholeWhenSignalsInterruptIt) {
    Pipe ticks(0);
    Pipe pipe(0);
    ChildProcess child(LOG_CHILD, {"interrupted"}, {{}, -1, ticks.writing(), pipe.writing()});
    ticks.closeWriting();
    pipe.closeWriting();
    pipe.waitUntilFull();
    char tick = 0;
    ASSERT_EQ(read(ticks.reading(), &tick, 1), 1);
    EXPECT_THAT(texts(pipe.readAll()), ElementsAre(std::string(1000000, 'x') + "end"));
    EXPECT_EQ(child.wait(), 0);
}

TEST(LoggingWrapperProcessTest, recordCutByAFullDiskDoesNotSpoilTheNext) {
    const TempFolder folder;
    const std::string file = folder.path() / "log";
    ChildProcess child(LOG_CHILD, {"full-disk"}, {{{"TEV_LOG_FILE", file}}});
    EXPECT_EQ(child.wait(), 0);
    const std::vector<std::string> logged = texts(contents(file));
    ASSERT_EQ(logged.size(), 4U);
    EXPECT_EQ(logged[0], "first");
    EXPECT_THAT(logged[1], AllOf(StartsWith("secondx"), SizeIs(Lt(1000U))));
    EXPECT_EQ(logged[2], "fourth");
    EXPECT_EQ(logged[3], "sixth");
}

TEST(LoggingWrapperProcessTest, recordIsCutToWhatFitsWhenMemoryRunsOut) {
    ChildProcess child(LOG_CHILD, {"no-memory"}, {});
    EXPECT_EQ(child.wait(), 0);
    const std::vector<std::string> logged = texts(child.err());
    ASSERT_EQ(logged.size(), 8U);
    EXPECT_EQ(logged[0], "first");
    EXPECT_THAT(logged[1], AllOf(StartsWith(std::string(1000, 'x')), SizeIs(Lt(5000U))));
    for (std::size_t plain = 0; plain < 4; ++plain) {
        std::string whole(plain, '-');
        while (whole.size() < logged[2 + plain].size()) {
            whole += "\\x01\\x01a";
        }
        EXPECT_THAT(whole, StartsWith(logged[2 + plain]));
        EXPECT_THAT(logged[2 + plain], SizeIs(Gt(1000U)));
        EXPECT_THAT(logged[2 + plain], Not(AnyOf(EndsWith("\\"), EndsWith("\\x"), EndsWith("\\x0"))));
    }
    EXPECT_EQ(logged[6], "short");
    EXPECT_EQ(logged[7], std::string(100000, 'z'));
}

TEST(LoggingWrapperProcessTest, recordThatIsCutHasNoHoles) {
    ChildProcess child(LOG_CHILD, {"memory-back"}, {});
    EXPECT_EQ(child.wait(), 0);
    const std::vector<std::string> logged = texts(child.err());
    ASSERT_EQ(logged.size(), 1U);
    EXPECT_EQ(logged[0], std::string(logged[0].size(), 'x'));
    EXPECT_THAT(logged[0], SizeIs(AllOf(Gt(1000U), Lt(3000U))));
}

TEST(LoggingWrapperProcessTest, timeIsUtcWhateverTheTimeZone) {
    const std::time_t before = std::time(nullptr);
    ChildProcess child(LOG_CHILD, {"once"}, {{{"TZ", "East-10:30"}}});
    EXPECT_EQ(child.wait(), 0);
    const std::vector<LogRecord> records = parse(child.err());
    ASSERT_EQ(records.size(), 1U);
    std::tm utc{};
    ASSERT_NE(strptime(records[0].time.c_str(), "%Y-%m-%dT%H:%M:%S", &utc), nullptr);
    EXPECT_GE(timegm(&utc), before);
    EXPECT_LE(timegm(&utc), std::time(nullptr));
}

TEST(LoggingWrapperProcessTest, closedStandardErrorDropsTheRecord) {
    ChildProcess child(LOG_CHILD, {"once"}, {{}, -1, -1, ChildProcess::closed});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(child.out(), "");
}

TEST(LoggingWrapperProcessTest, readerThatIsGoneDropsTheRecordAndLeavesTheProcessAlone) {
    Pipe pipe(0);
    pipe.closeReading();
    ChildProcess child(LOG_CHILD, {"sigpipe"}, writingTo(pipe));
    EXPECT_EQ(child.wait(), 0);
}

TEST(LoggingWrapperProcessTest, destructorsMayStillLog) {
    ChildProcess child(LOG_CHILD, {"destructor"}, {});
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(texts(child.err()), ElementsAre("from main", "from a destructor"));
}

}  // namespace

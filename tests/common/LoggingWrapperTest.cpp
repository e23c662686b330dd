#include "LoggingWrapper.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <ctime>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "LogCapture.h"

namespace {

using testing::IsEmpty;
using Tev::LoggingWrapper;
using TevTest::LogCapture;
using TevTest::LogRecord;

void log(int level, const std::string& text) {
    LoggingWrapper::instance().log_printf("function", level, 1, "%s", text.c_str());
}

void trace(int level, const std::string& text) {
    LoggingWrapper::instance().trace_v2_printf(Tev::Trace::Schema, level, "src/File", "function", 7, "%s",
                                               text.c_str());
}

void debug(int kind, const std::string& text) {
    LoggingWrapper::instance().trace_printf("src/File", "function", 7, kind, "%s", text.c_str());
}

/// What `text` becomes in a record.
std::string logged(const std::string& text) {
    const LogCapture capture;
    log(1, text);
    const std::vector<LogRecord> records = capture.records();
    return records.size() == 1 ? records[0].text : "records: " + std::to_string(records.size());
}

std::string utcNow() {
    const std::time_t now = std::time(nullptr);
    std::ostringstream text;
    text << std::put_time(std::gmtime(&now), "%Y-%m-%dT%H:%M:%S");
    return text.str();
}

TEST(LoggingWrapperTest, thereIsOneLog) {
    EXPECT_EQ(&LoggingWrapper::instance(), &LoggingWrapper::instance());
}

TEST(LoggingWrapperTest, logRecordHasLevelFunctionAndText) {
    const LogCapture capture;
    LoggingWrapper::instance().log_printf("aFunction", 3, 1, "%s is %d", "answer", 42);
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].type, "LOG");
    EXPECT_EQ(records[0].level, 3);
    EXPECT_EQ(records[0].function, "aFunction");
    EXPECT_EQ(records[0].text, "answer is 42");
}

TEST(LoggingWrapperTest, traceRecordHasSubsystemLevelPlaceAndText) {
    const LogCapture capture;
    LoggingWrapper::instance().trace_v2_printf(Tev::Trace::Schema, 14, "src/one", "first", 12, "%s", "text one");
    LoggingWrapper::instance().trace_v2_printf(Tev::Trace::Common, 5, "src/two", "second", 345, "%s", "text two");
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].type, "TRACE");
    EXPECT_EQ(records[0].subsystem, "Schema");
    EXPECT_EQ(records[0].level, 14);
    EXPECT_EQ(records[0].file, "src/one");
    EXPECT_EQ(records[0].line, 12);
    EXPECT_EQ(records[0].function, "first");
    EXPECT_EQ(records[0].text, "text one");
    EXPECT_EQ(records[1].subsystem, "Common");
    EXPECT_EQ(records[1].level, 5);
    EXPECT_EQ(records[1].file, "src/two");
    EXPECT_EQ(records[1].line, 345);
    EXPECT_EQ(records[1].function, "second");
    EXPECT_EQ(records[1].text, "text two");
}

TEST(LoggingWrapperTest, debugRecordHasKindPlaceAndText) {
    const LogCapture capture;
    for (const int kind : {9, 0, 10}) {
        LoggingWrapper::instance().trace_printf("src/File", "function", 8, kind, " >> %d", kind);
    }
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].type, "DEBUG");
    EXPECT_EQ(records[0].level, 9);
    EXPECT_EQ(records[0].file, "src/File");
    EXPECT_EQ(records[0].line, 8);
    EXPECT_EQ(records[0].function, "function");
    EXPECT_EQ(records[0].text, " >> 9");
    EXPECT_EQ(records[1].level, 0);
    EXPECT_EQ(records[2].level, 10);
}

TEST(LoggingWrapperTest, recordTellsTheTimeInUtcAndTheThread) {
    const LogCapture capture;
    const std::string before = utcNow();
    log(1, "here");
    pid_t otherThread = 0;
    std::thread([&otherThread] {
        otherThread = gettid();
        log(1, "there");
    }).join();
    const std::string after = utcNow();
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].threadId, gettid());
    EXPECT_EQ(records[1].threadId, otherThread);
    EXPECT_LE(before, records[0].time.substr(0, before.size()));
    EXPECT_LE(records[0].time, records[1].time);
    EXPECT_LE(records[1].time.substr(0, after.size()), after);
}

TEST(LoggingWrapperTest, logRecordIsWrittenAtItsLevelAndAbove) {
    for (int level = 0; level <= 8; ++level) {
        const LogCapture capture(level);
        for (int recordLevel = 1; recordLevel <= 9; ++recordLevel) {
            log(recordLevel, "");
        }
        EXPECT_EQ(capture.records().size(), static_cast<std::size_t>(level)) << level;
    }
}

TEST(LoggingWrapperTest, traceRecordIsWrittenAtItsLevelAndAboveButAtMostEight) {
    for (int level = 0; level <= 8; ++level) {
        const LogCapture capture(level);
        for (int recordLevel = 1; recordLevel <= 14; ++recordLevel) {
            trace(recordLevel, "");
        }
        EXPECT_EQ(capture.records().size(), level == 8 ? 14U : static_cast<std::size_t>(level)) << level;
    }
}

TEST(LoggingWrapperTest, debugRecordIsWrittenAtLevelEightOnly) {
    for (int level = 0; level <= 8; ++level) {
        const LogCapture capture(level);
        debug(0, "");
        EXPECT_EQ(capture.records().size(), level == 8 ? 1U : 0U) << level;
    }
}

TEST(LoggingWrapperTest, levelIsBroughtIntoRange) {
    const LogCapture capture;
    LoggingWrapper& wrapper = LoggingWrapper::instance();
    wrapper.set_level(-1);
    EXPECT_EQ(wrapper.get_level(), 0);
    wrapper.set_level(9);
    EXPECT_EQ(wrapper.get_level(), 8);
    wrapper.set_level(5);
    EXPECT_EQ(wrapper.get_level(), 5);
}

TEST(LoggingWrapperTest, nothingIsFormattedWhenTheLevelIsTooLow) {
    const LogCapture capture(2);
    LoggingWrapper& wrapper = LoggingWrapper::instance();
    // Reading this text would end the process.
    const auto* const unreadable = reinterpret_cast<const char*>(sysconf(_SC_PAGESIZE) - 1);
    wrapper.log_printf("function", 3, 1, "%s", unreadable);
    wrapper.trace_printf("src/File", "function", 1, 9, "%s", unreadable);
    wrapper.trace_v2_printf(Tev::Trace::Schema, 14, "src/File", "function", 1, "%s", unreadable);
    EXPECT_THAT(capture.records(), IsEmpty());
    EXPECT_DEATH(
        {
            wrapper.set_level(8);
            wrapper.log_printf("function", 3, 1, "%s", unreadable);
        },
        "");
}

TEST(LoggingWrapperTest, controlCharactersAreEscaped) {
    EXPECT_EQ(logged("a\nb\rc\td"), "a\\nb\\rc\\td");
    std::string others;
    std::ostringstream escapes;
    for (int character = 1; character <= 0x7f; character = character == 0x1f ? 0x7f : character + 1) {
        if (character != '\n' && character != '\r' && character != '\t') {
            others += static_cast<char>(character);
            escapes << "\\x" << std::hex << std::setw(2) << std::setfill('0') << character;
        }
    }
    ASSERT_EQ(others.size(), 29U);
    EXPECT_EQ(logged(others), escapes.str());
    EXPECT_EQ(logged("\x1b[31m"), "\\x1b[31m");
}

TEST(LoggingWrapperTest, nulCharacterIsEscaped) {
    const LogCapture capture;
    LoggingWrapper::instance().log_printf("function", 1, 1, "a%cb", 0);
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].text, "a\\x00b");
}

TEST(LoggingWrapperTest, allOtherCharactersStayAsTheyAre) {
    std::string text;
    for (int character = 0x20; character <= 0xff; ++character) {
        if (character != 0x7f) {
            text += static_cast<char>(character);
        }
    }
    EXPECT_EQ(logged(text), text);
    EXPECT_EQ(logged("\\n \\x1b %s"), "\\n \\x1b %s");
}

TEST(LoggingWrapperTest, blanksAtTheEndsAndAnEmptyTextAreKept) {
    EXPECT_EQ(logged("  text [x] "), "  text [x] ");
    EXPECT_EQ(logged(""), "");
}

TEST(LoggingWrapperTest, namesCannotBreakTheLineEither) {
    const LogCapture capture;
    LoggingWrapper::instance().trace_v2_printf({"Sub"}, 1, "a\nfile", "a\nfunction", 1, "text");
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].file, "a\\nfile");
    EXPECT_EQ(records[0].function, "a\\nfunction");
}

TEST(LoggingWrapperTest, textOfAnyLengthIsWhole) {
    const LogCapture capture;
    std::vector<std::string> expected;
    for (std::size_t length = 0; length < 2500; ++length) {
        expected.push_back(std::string(length, 'x') + '.');
        log(1, expected.back());
    }
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(records[i].text, expected[i]);
    }
}

TEST(LoggingWrapperTest, longTextIsWhole) {
    std::string text;
    for (int i = 0; text.size() < 100000; ++i) {
        text += std::to_string(i) + ' ';
    }
    EXPECT_EQ(logged(text), text);
    EXPECT_EQ(logged(std::string(100000, '\n')).size(), 200000U);
    EXPECT_EQ(logged(std::string(100000, '\x01')).size(), 400000U);
}

TEST(LoggingWrapperTest, formatIsTheTextWhenAnArgumentCannotBeConverted) {
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    const LogCapture capture;
    const wchar_t unconvertible[] = {0x4e2d, 0};
    LoggingWrapper::instance().log_printf("function", 1, 1, "cannot read %ls", unconvertible);
    const std::vector<LogRecord> records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].text, "cannot read %ls");
}

TEST(LoggingWrapperTest, errnoOutlivesARecord) {
    const LogCapture capture;
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    const wchar_t unconvertible[] = {0x4e2d, 0};
    errno = EXDEV;
    LoggingWrapper::instance().log_printf("function", 1, 1, "%ls", unconvertible);
    EXPECT_EQ(errno, EXDEV);
    log(1, std::string(10000, 'x'));
    EXPECT_EQ(errno, EXDEV);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"  // %m is glibc's own
    LoggingWrapper::instance().log_printf("function", 1, 1, "%m");
#pragma GCC diagnostic pop
    EXPECT_EQ(errno, EXDEV);
    EXPECT_EQ(capture.records().back().text, "Invalid cross-device link");
}

TEST(LoggingWrapperTest, threadsWriteWholeLinesInTheirOrder) {
    constexpr int threadCount = 8;
    constexpr int recordCount = 300;
    const LogCapture capture;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < recordCount; ++i) {
                // Short ones and long ones, as they take different ways.
                log(1, std::to_string(thread) + ' ' + std::to_string(i) + std::string(i % 7 == 0 ? 5000 : 10, '.'));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::map<std::string, int> next;
    std::map<std::string, long> threadIds;
    for (const LogRecord& record : capture.records()) {
        const std::string thread = record.text.substr(0, record.text.find(' '));
        const int i = next[thread]++;
        EXPECT_EQ(record.text, thread + ' ' + std::to_string(i) + std::string(i % 7 == 0 ? 5000 : 10, '.'));
        EXPECT_EQ(threadIds.emplace(thread, record.threadId).first->second, record.threadId);
    }
    EXPECT_EQ(next.size(), static_cast<std::size_t>(threadCount));
    for (const auto& [thread, count] : next) {
        EXPECT_EQ(count, recordCount) << thread;
    }
}

TEST(LoggingWrapperTest, levelMayChangeWhileOthersLog) {
    const LogCapture capture;
    std::thread changer([] {
        for (int i = 0; i < 1000; ++i) {
            LoggingWrapper::instance().set_level(i % 9);
        }
    });
    for (int i = 0; i < 1000; ++i) {
        log(5, "text");
    }
    changer.join();
    LoggingWrapper::instance().set_level(5);
    log(5, "text");
    const std::vector<LogRecord> records = capture.records();
    EXPECT_THAT(records, testing::SizeIs(testing::AllOf(testing::Ge(1U), testing::Le(1001U))));
    EXPECT_THAT(records, testing::Each(testing::Field(&LogRecord::text, "text")));
}

}  // namespace

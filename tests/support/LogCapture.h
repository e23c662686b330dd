#ifndef LOG_CAPTURE_H
#define LOG_CAPTURE_H

#include <gmock/gmock.h>

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <vector>

#include "LoggingWrapper.h"

namespace TevTest {

/// One line of the log, taken apart.
struct LogRecord {
    std::string time;
    long threadId = 0;
    std::string type;       // "LOG", "TRACE" or "DEBUG"
    std::string subsystem;  // of a TRACE record
    int level = 0;          // of a DEBUG record: the kind
    std::string file;       // of TRACE and DEBUG records
    int line = 0;           // of TRACE and DEBUG records
    std::string function;
    std::string text;

    /// Takes a line apart; throws std::runtime_error when it does not have the log's format.
    static LogRecord parse(const std::string& line);
};

std::ostream& operator<<(std::ostream& stream, const LogRecord& record);

/// What records have to look like, one matcher for each, for `testing::ElementsAreArray`.
using Records = std::vector<testing::Matcher<LogRecord>>;

/// What is written to the process's log while the object lives. The log goes to a file of the test process, whatever
/// the environment says; the level is put back at the end.
class LogCapture {
public:
    explicit LogCapture(int level = Tev::LoggingWrapper::maxLevel);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The records since construction or the last `clear`, in the order of the file.
    std::vector<LogRecord> records() const;

    /// The records of `records` that `functionName` wrote.
    std::vector<LogRecord> recordsOf(const std::string& functionName) const;

    void clear();

private:
    int levelBefore;
    std::size_t begin = 0;
};

/// Matches the pair of records that a message of `level` leaves: a LOG record, then a TRACE record of the same level,
/// function and text. Append the matchers of several messages in their order.
Records message(int level, const std::string& sourceFile, const std::string& functionName, const std::string& text);

/// Matches the pair of records that a debug trace leaves: a DEBUG record of `kind`, then a TRACE record of level 14.
Records debugTrace(int kind, const std::string& sourceFile, const std::string& functionName, const std::string& text,
                   const std::string& subsystem = "Schema");

/// Puts lists of matchers one after the other, for `testing::ElementsAreArray`.
Records inOrder(std::initializer_list<Records> lists);

}  // namespace TevTest

#endif

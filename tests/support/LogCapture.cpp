#include "LogCapture.h"

#include <cstdlib>
#include <fstream>
#include <ostream>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "TempFolder.h"

namespace TevTest {

namespace {

/// The file that the log of this process goes to. Made before the log is first used, which reads the environment then.
class LogFile {
public:
    static const std::string& path() {
        static const LogFile logFile;
        return logFile.file;
    }

private:
    LogFile() : file(folder.write("log", "")) {
        setenv("TEV_LOG_FILE", file.c_str(), 1);
        unsetenv("TEV_LOG_LEVEL");
    }

    TempFolder folder;
    std::string file;
};

// Some test programs use the log before their first capture.
const std::string& atStart = LogFile::path();

std::string contents(const std::string& path, std::size_t begin) {
    std::ifstream stream(path, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(begin));
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

template <class... Matchers>
testing::Matcher<LogRecord> all(Matchers... matchers) {
    return testing::AllOf(matchers...);
}

testing::Matcher<LogRecord> traceRecord(const std::string& subsystem, int level, const std::string& sourceFile,
                                        const std::string& functionName, const std::string& text) {
    using testing::Field;
    using testing::Gt;
    return all(Field("type", &LogRecord::type, "TRACE"), Field("subsystem", &LogRecord::subsystem, subsystem),
               Field("level", &LogRecord::level, level), Field("file", &LogRecord::file, sourceFile),
               Field("line", &LogRecord::line, Gt(0)), Field("function", &LogRecord::function, functionName),
               Field("text", &LogRecord::text, text));
}

}  // namespace

LogRecord LogRecord::parse(const std::string& line) {
    static const std::regex head(
        R"((\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z) (\d+) (?:(LOG) (\d+)|(TRACE) (\w+) (\d+) (\S+):(\d+)|(DEBUG) (\d+) (\S+):(\d+)) (\S+): )");
    std::smatch match;
    if (!std::regex_search(line, match, head, std::regex_constants::match_continuous)) {
        throw std::runtime_error("not a log line: " + line);
    }
    LogRecord record;
    record.time = match[1];
    record.threadId = std::stol(match[2]);
    record.type = match[3].matched ? match[3] : match[5].matched ? match[5] : match[10];
    record.subsystem = match[6];
    record.level = std::stoi(match[4].matched ? match[4] : match[7].matched ? match[7] : match[11]);
    record.file = match[8].matched ? match[8] : match[12];
    const auto& lineNumber = match[9].matched ? match[9] : match[13];
    record.line = lineNumber.matched ? std::stoi(lineNumber) : 0;
    record.function = match[14];
    record.text = match.suffix();
    return record;
}

std::ostream& operator<<(std::ostream& stream, const LogRecord& record) {
    stream << record.type << ' ' << record.subsystem << ' ' << record.level << ' ' << record.file << ':' << record.line
           << ' ' << record.function << ": [" << record.text << ']';
    return stream;
}

LogCapture::LogCapture(int level) : levelBefore(Tev::LoggingWrapper::instance().get_level()) {
    Tev::LoggingWrapper::instance().set_level(level);
    clear();
}

LogCapture::~LogCapture() {
    Tev::LoggingWrapper::instance().set_level(levelBefore);
}

std::vector<LogRecord> LogCapture::records() const {
    std::istringstream lines(contents(LogFile::path(), begin));
    std::vector<LogRecord> records;
    for (std::string line; std::getline(lines, line);) {
        records.push_back(LogRecord::parse(line));
    }
    return records;
}

std::vector<LogRecord> LogCapture::recordsOf(const std::string& functionName) const {
    std::vector<LogRecord> found;
    for (const LogRecord& record : records()) {
        if (record.function == functionName) {
            found.push_back(record);
        }
    }
    return found;
}

void LogCapture::clear() {
    begin = static_cast<std::size_t>(std::filesystem::file_size(LogFile::path()));
}

Records message(int level, const std::string& sourceFile, const std::string& functionName, const std::string& text) {
    using testing::Field;
    return {all(Field("type", &LogRecord::type, "LOG"), Field("level", &LogRecord::level, level),
                Field("function", &LogRecord::function, functionName), Field("text", &LogRecord::text, text)),
            traceRecord("Schema", level, sourceFile, functionName, text)};
}

Records debugTrace(int kind, const std::string& sourceFile, const std::string& functionName, const std::string& text,
                   const std::string& subsystem) {
    using testing::Field;
    return {all(Field("type", &LogRecord::type, "DEBUG"), Field("kind", &LogRecord::level, kind),
                Field("file", &LogRecord::file, sourceFile), Field("line", &LogRecord::line, testing::Gt(0)),
                Field("function", &LogRecord::function, functionName), Field("text", &LogRecord::text, text)),
            traceRecord(subsystem, 14, sourceFile, functionName, text)};
}

Records inOrder(std::initializer_list<Records> lists) {
    Records joined;
    for (const auto& list : lists) {
        joined.insert(joined.end(), list.begin(), list.end());
    }
    return joined;
}

}  // namespace TevTest

#include "SchemaConfiguration.h"

#include <gmock/gmock.h>

#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "LogCapture.h"
#include "MemoryWatch.h"
#include "StandardOutputOf.h"
#include "TempFolder.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using TevSchemaPopulator::SchemaConfiguration;

using Records = std::vector<testing::Matcher<LogRecord>>;

constexpr const char* sourceFile = "src/schema_populator/SchemaConfiguration";

static_assert(std::is_base_of_v<Tev::TevConfiguration, SchemaConfiguration>);
static_assert(std::has_virtual_destructor_v<SchemaConfiguration>);

Records entry(const std::string& path) {
    return debugTrace(9, sourceFile, "load", " >> \\n" + path);
}

Records exit() {
    return debugTrace(10, sourceFile, "load", " << ");
}

Records found(const std::string& timeout) {
    return debugTrace(0, sourceFile, "load", "TevSchemaPopulatorService/sftpTimeout tag found: " + timeout + ".");
}

Records notFound() {
    return message(6, sourceFile, "load", "sftpTimeout not found in configuration, using default '180000'.");
}

Records noElement() {
    return message(6, sourceFile, "load", "Could not find any configuration for TevSchemaMoService");
}

Records severalElements() {
    return message(4, sourceFile, "load", "More than one TevSchemaMoService configuration found");
}

std::string withTimeout(const std::string& text) {
    return "<configuration><TevSchemaMoService><sftpTimeout>" + text +
           "</sftpTimeout></TevSchemaMoService></configuration>";
}

/// A configuration and a folder for its files.
class SchemaConfigurationTest : public testing::Test {
protected:
    /// Loads a file with this text, and checks what comes of it and every record.
    void expectLoad(const std::string& text, long timeout, std::initializer_list<Records> records) {
        SCOPED_TRACE(text);
        const std::string path = folder.write("configuration.xml", text);
        const LogCapture log;
        configuration.load(path);
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({entry(path), inOrder(records)})));
        expectValues(timeout);
    }

    /// Checks that a file cannot be loaded, and that the defaults stand.
    void expectFailure(const std::string& path) {
        SCOPED_TRACE(path);
        const LogCapture log;
        try {
            configuration.load(path);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Tev::TevException& e) {
            EXPECT_EQ(e.getReturnCode(), -1);
            EXPECT_THAT(e.what(), HasSubstr(path));
        }
        EXPECT_THAT(log.records(), ElementsAreArray(entry(path)));
        expectValues(180000);
    }

    void expectValues(long timeout) const {
        EXPECT_EQ(configuration.getSftpProgramDir(), "/usr/bin/");
        EXPECT_EQ(configuration.getSftpTimeout(), timeout);
    }

    TempFolder folder;
    SchemaConfiguration configuration;
};

TEST_F(SchemaConfigurationTest, hasDefaultsBeforeAnyLoad) {
    expectValues(180000);
}

TEST_F(SchemaConfigurationTest, timeoutIsReadFromTheFile) {
    expectLoad(withTimeout("60000"), 60000, {found("60000"), exit()});
}

TEST_F(SchemaConfigurationTest, timeoutIsWhatAtolMakesOfItsText) {
    expectLoad(withTimeout("letters"), 0, {found("0"), exit()});
    expectLoad(withTimeout(" \t\n  42abc"), 42, {found("42"), exit()});
    expectLoad(withTimeout("-5"), -5, {found("-5"), exit()});
    expectLoad(withTimeout("+7"), 7, {found("7"), exit()});
    expectLoad(withTimeout("0"), 0, {found("0"), exit()});
    expectLoad(withTimeout("1.9"), 1, {found("1"), exit()});
    expectLoad(withTimeout("x9"), 0, {found("0"), exit()});
    expectLoad(withTimeout("010"), 10, {found("10"), exit()});
    expectLoad(withTimeout("0x10"), 0, {found("0"), exit()});
}

TEST_F(SchemaConfigurationTest, timeoutMayBeAnyLong) {
    std::vector<long> timeouts = {std::numeric_limits<long>::max(), std::numeric_limits<long>::min()};
    if (sizeof(long) > 4) {
        timeouts.push_back(static_cast<long>(1LL << 32));
    }
    for (const long timeout : timeouts) {
        const std::string text = std::to_string(timeout);
        expectLoad(withTimeout(text), timeout, {found(text), exit()});
    }
}

TEST_F(SchemaConfigurationTest, missingTimeoutLeavesTheDefault) {
    expectLoad("<configuration><TevSchemaMoService/></configuration>", 180000, {notFound(), exit()});
    expectLoad("<configuration><TevSchemaMoService><other>5</other></TevSchemaMoService></configuration>", 180000,
               {notFound(), exit()});
}

TEST_F(SchemaConfigurationTest, emptyTimeoutLeavesTheDefault) {
    expectLoad(withTimeout(""), 180000, {notFound(), exit()});
}

TEST_F(SchemaConfigurationTest, timeoutOutsideTheComponentsElementIsNotRead) {
    expectLoad("<configuration><sftpTimeout>5</sftpTimeout><TevSchemaMoService/></configuration>", 180000,
               {notFound(), exit()});
}

TEST_F(SchemaConfigurationTest, elementMayStandAnywhere) {
    expectLoad("<TevSchemaMoService><sftpTimeout>5</sftpTimeout></TevSchemaMoService>", 5, {found("5"), exit()});
    expectLoad("<a><b/><c><TevSchemaMoService><sftpTimeout>6</sftpTimeout></TevSchemaMoService></c></a>", 6,
               {found("6"), exit()});
}

TEST_F(SchemaConfigurationTest, withoutTheElementTheDefaultsStand) {
    expectLoad("<configuration><sftpTimeout>5</sftpTimeout></configuration>", 180000, {noElement()});
    expectLoad(
        "<configuration><TevSchemaPopulatorService><sftpTimeout>5</sftpTimeout></TevSchemaPopulatorService>"
        "</configuration>",
        180000, {noElement()});
}

TEST_F(SchemaConfigurationTest, ofSeveralElementsNoneIsRead) {
    const std::string element = "<TevSchemaMoService><sftpTimeout>5</sftpTimeout></TevSchemaMoService>";
    expectLoad("<configuration>" + element + element + "</configuration>", 180000, {severalElements()});
    expectLoad("<configuration>" + element + element + element + "</configuration>", 180000, {severalElements()});
    expectLoad("<configuration><TevSchemaMoService>" + element + "</TevSchemaMoService></configuration>", 180000,
               {severalElements()});
}

TEST_F(SchemaConfigurationTest, nothingOfAnEarlierFileIsKept) {
    const std::string element = "<TevSchemaMoService><sftpTimeout>6</sftpTimeout></TevSchemaMoService>";
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectLoad("<configuration/>", 180000, {noElement()});
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectLoad(withTimeout(""), 180000, {notFound(), exit()});
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectLoad("<configuration>" + element + element + "</configuration>", 180000, {severalElements()});
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectLoad(withTimeout("7"), 7, {found("7"), exit()});
}

TEST_F(SchemaConfigurationTest, fileThatCannotBeReadThrowsAndLeavesTheDefaults) {
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectFailure((folder.path() / "missing.xml").string());
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectFailure(folder.path().string());
}

TEST_F(SchemaConfigurationTest, fileThatIsNotWellFormedThrowsAndLeavesTheDefaults) {
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
    expectFailure(folder.write("broken.xml", "<configuration><TevSchemaMoService></configuration>"));
    expectFailure(folder.write("empty.xml", ""));
    expectFailure(folder.write("text.xml", "sftpTimeout = 5"));
    expectLoad(withTimeout("5"), 5, {found("5"), exit()});
}

TEST_F(SchemaConfigurationTest, conversionCharactersOfAFileNameComeOutAsTheyAre) {
    expectFailure((folder.path() / "%s%n%d 100%.xml").string());
}

TEST_F(SchemaConfigurationTest, messagesNeedTheirLevels) {
    const auto recordsAt = [this](int level, const std::string& text) {
        const std::string path = folder.write("configuration.xml", text);
        const LogCapture log(level);
        configuration.load(path);
        return log.records();
    };
    const std::string none = "<configuration/>";
    const std::string two = "<configuration><TevSchemaMoService/><TevSchemaMoService/></configuration>";
    EXPECT_THAT(recordsAt(7, withTimeout("5")), IsEmpty());
    EXPECT_THAT(recordsAt(6, none), ElementsAreArray(noElement()));
    EXPECT_THAT(recordsAt(5, none), IsEmpty());
    EXPECT_THAT(recordsAt(6, withTimeout("")), ElementsAreArray(notFound()));
    EXPECT_THAT(recordsAt(5, withTimeout("")), IsEmpty());
    EXPECT_THAT(recordsAt(4, two), ElementsAreArray(severalElements()));
    EXPECT_THAT(recordsAt(3, two), IsEmpty());
}

/// How a load ended.
struct Outcome {
    bool failed = false;  // whether the failure that was asked for came
    std::optional<Tev::TevException> exception;
    bool threwInt = false;
    std::string output;
};

Outcome loadFailing(SchemaConfiguration& configuration, const std::string& path, unsigned int nthNew,
                    MemoryWatch::Thrown thrown) {
    Outcome outcome;
    outcome.output = standardOutputOf([&] {
        MemoryWatch watch;
        watch.failNew(nthNew, thrown);
        try {
            configuration.load(path);
        } catch (const Tev::TevException& e) {
            outcome.exception = e;
        } catch (int) {
            outcome.threwInt = true;
        }
        outcome.failed = watch.failed();
    });
    return outcome;
}

/// How often memory is asked for until the list of elements is there.
unsigned int newCallsUpToTheList(const std::string& path) {
    MemoryWatch watch;
    Tev::TevConfiguration configuration;
    configuration.load(path);
    const auto elements = configuration.getElementsByTagName("TevSchemaMoService");
    return watch.newCalls();
}

// A text that no small string holds, so that the steps after the list need memory too.
const std::string longText = std::string(100, ' ') + "42";

TEST_F(SchemaConfigurationTest, memoryThatRunsOutIsAnExceptionWithAWordOnStandardOutputOnceTheListIsThere) {
    const std::string path = folder.write("configuration.xml", withTimeout(longText));
    configuration.load(path);  // what is made once is made now
    const unsigned int upToTheList = newCallsUpToTheList(path);
    unsigned int nth = 1;
    for (;; ++nth) {
        SCOPED_TRACE(nth);
        const Outcome outcome = loadFailing(configuration, path, nth, MemoryWatch::Thrown::BadAlloc);
        if (!outcome.failed) {
            EXPECT_FALSE(outcome.exception);
            EXPECT_EQ(outcome.output, "");
            break;
        }
        ASSERT_TRUE(outcome.exception);
        EXPECT_EQ(outcome.exception->getReturnCode(), -1);
        EXPECT_STREQ(outcome.exception->what(), "std::bad_alloc");
        EXPECT_EQ(outcome.output, nth > upToTheList ? "Relase 2\n" : "");
        expectValues(180000);
    }
    EXPECT_GT(nth, upToTheList + 1);  // it ran out at least once in either part
    EXPECT_GT(upToTheList, 0U);
    expectValues(42);
}

TEST_F(SchemaConfigurationTest, exceptionOfAnotherTypePassesThrough) {
    const std::string path = folder.write("configuration.xml", withTimeout(longText));
    configuration.load(path);
    const Outcome outcome = loadFailing(configuration, path, newCallsUpToTheList(path) + 1, MemoryWatch::Thrown::Int);
    EXPECT_TRUE(outcome.failed);
    EXPECT_TRUE(outcome.threwInt);
    EXPECT_EQ(outcome.output, "");
    expectValues(180000);
}

}  // namespace

}  // namespace TevTest

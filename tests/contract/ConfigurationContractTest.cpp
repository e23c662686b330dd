#include <stdexcept>
#include <string>
#include <vector>

#include "ContractTest.h"
#include "StandardOutputOf.h"
#include "TempFolder.h"
#include "TevConfiguration.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* nullConfiguration = "Got zero pointer for configuration file using default values";
constexpr const char* noElement = "Could not find any configuration for TevSchemaMoService";
constexpr const char* severalElements = "More than one TevSchemaMoService configuration found";
constexpr const char* defaultTimeout = "sftpTimeout not found in configuration, using default '180000'.";

/// The component's element around `content`.
std::string element(const std::string& content) {
    return "<TevSchemaMoService>" + content + "</TevSchemaMoService>";
}

std::string timeoutOf(const std::string& text) {
    return element("<sftpTimeout>" + text + "</sftpTimeout>");
}

/// Why the common library cannot read the file.
std::string reasonAgainst(const std::string& path) {
    try {
        Tev::TevConfiguration().load(path);
    } catch (const Tev::TevException& e) {
        return e.what();
    }
    throw std::logic_error("the file can be read: " + path);
}

}  // namespace

/// The component taken off the portal; each `init` registers it anew and is looked at alone.
class ConfigurationContractTest : public ContractTest {
protected:
    ConfigurationContractTest() { component->terminate(); }

    /// A file whose root holds `content`; returns its path.
    std::string write(const std::string& name, const std::string& content) const {
        return folder.write(name, "<Configuration>" + content + "</Configuration>\n");
    }

    TevReturnT initAnew(const char* configuration) {
        component->terminate();
        log.clear();
        return init(configuration);
    }

    /// Expects `initialize` to load `path`, write `records` in between, and leave `load` with or without its trace.
    void expectLoad(const std::string& path, const Records& records, bool withExit) {
        EXPECT_EQ(initAnew(path.c_str()), 0);
        EXPECT_NE(host.component(), nullptr);
        EXPECT_THAT(log.records(),
                    ElementsAreArray(inOrder({debugTrace(9, serviceFile, "initialize", " >> "),
                                              debugTrace(9, configurationFile, "load", " >> \\n" + path), records,
                                              withExit ? debugTrace(10, configurationFile, "load", " << ") : Records(),
                                              debugTrace(10, serviceFile, "initialize", " << ")})));
    }

    void expectTimeout(const std::string& path, const std::string& timeout) {
        expectLoad(path,
                   debugTrace(0, configurationFile, "load",
                              "TevSchemaPopulatorService/sftpTimeout tag found: " + timeout + "."),
                   true);
    }

    void expectDefaultTimeout(const std::string& path) {
        expectLoad(path, message(6, configurationFile, "load", defaultTimeout), true);
    }

    void expectNoElement(const std::string& path) {
        expectLoad(path, message(6, configurationFile, "load", noElement), false);
    }

    void expectSeveralElements(const std::string& path) {
        expectLoad(path, message(4, configurationFile, "load", severalElements), false);
    }

    void expectUnreadable(const std::string& path) {
        expectLoad(path, message(4, serviceFile, "initialize", "Caught exception " + reasonAgainst(path)), false);
    }

    /// Expects `records` from an init at `level` and none at the level below.
    void expectRecordsFromLevel(int level, const char* path, const Records& records) {
        {
            const LogCapture capture(level);
            EXPECT_EQ(initAnew(path), 0);
            EXPECT_THAT(capture.records(), ElementsAreArray(records));
        }
        const LogCapture below(level - 1);
        EXPECT_EQ(initAnew(path), 0);
        EXPECT_THAT(below.records(), IsEmpty());
    }

    TempFolder folder;
};

// The time-out.

TEST_F(ConfigurationContractTest, timeoutOfTheComponentsElementIsTaken) {
    expectTimeout(write("a.cfg", timeoutOf("60000")), "60000");
}

TEST_F(ConfigurationContractTest, timeoutOfLettersIsZero) {
    expectTimeout(write("a.cfg", timeoutOf("soon")), "0");
}

TEST_F(ConfigurationContractTest, timeoutIsReadPastBlanksUpToTheFirstLetter) {
    expectTimeout(write("a.cfg", timeoutOf(" \t\n 42ms")), "42");
}

TEST_F(ConfigurationContractTest, timeoutBelowZeroIsTakenAsItIs) {
    expectTimeout(write("a.cfg", timeoutOf("-5")), "-5");
}

TEST_F(ConfigurationContractTest, timeoutOfZeroIsTakenAsItIs) {
    expectTimeout(write("a.cfg", timeoutOf("0")), "0");
}

TEST_F(ConfigurationContractTest, timeoutOfBlanksIsZero) {
    expectTimeout(write("a.cfg", timeoutOf("  ")), "0");
}

TEST_F(ConfigurationContractTest, timeoutAmongOtherSettingsIsFound) {
    expectTimeout(
        write("a.cfg", "<Other/>" + element("<isSftpDebugMode/><!-- ms --><sftpTimeout>7</sftpTimeout><more>8</more>")),
        "7");
}

TEST_F(ConfigurationContractTest, elementIsFoundDeepInTheDocument) {
    expectTimeout(write("a.cfg", "<a><b><c>" + timeoutOf("7") + "</c></b></a>"), "7");
}

TEST_F(ConfigurationContractTest, elementMayBeTheRoot) {
    expectTimeout(folder.write("a.cfg", timeoutOf("7")), "7");
}

TEST_F(ConfigurationContractTest, missingTimeoutGivesTheDefault) {
    expectDefaultTimeout(write("a.cfg", element("<isSftpDebugMode/>")));
}

TEST_F(ConfigurationContractTest, emptyTimeoutGivesTheDefault) {
    expectDefaultTimeout(write("a.cfg", timeoutOf("")));
    expectDefaultTimeout(write("b.cfg", element("<sftpTimeout/>")));
}

TEST_F(ConfigurationContractTest, emptyElementGivesTheDefault) {
    expectDefaultTimeout(write("a.cfg", "<TevSchemaMoService/>"));
}

TEST_F(ConfigurationContractTest, timeoutElsewhereInTheDocumentIsNotTaken) {
    expectDefaultTimeout(
        write("a.cfg", "<sftpTimeout>7</sftpTimeout>" + element("<a><sftpTimeout>8</sftpTimeout></a>")));
}

// The component's element.

TEST_F(ConfigurationContractTest, missingElementIsANotice) {
    expectNoElement(write("a.cfg", "<sftpTimeout>7</sftpTimeout>"));
}

TEST_F(ConfigurationContractTest, elementOfAnotherNameIsNotTaken) {
    expectNoElement(write("a.cfg",
                          "<TevSchemaPopulatorService><sftpTimeout>7</sftpTimeout></TevSchemaPopulatorService>"
                          "<tevSchemaMoService><sftpTimeout>8</sftpTimeout></tevSchemaMoService>"));
}

TEST_F(ConfigurationContractTest, twoElementsAreAWarningAndNeitherIsTaken) {
    expectSeveralElements(write("a.cfg", timeoutOf("7") + timeoutOf("8")));
}

TEST_F(ConfigurationContractTest, threeElementsAreAWarning) {
    expectSeveralElements(write("a.cfg", timeoutOf("7") + "<a>" + timeoutOf("8") + "</a>" + timeoutOf("9")));
}

TEST_F(ConfigurationContractTest, elementInsideTheOtherCountsToo) {
    expectSeveralElements(write("a.cfg", element("<sftpTimeout>7</sftpTimeout>" + timeoutOf("8"))));
}

// Files that cannot be read.

TEST_F(ConfigurationContractTest, missingFileIsAWarning) {
    const std::string path = (folder.path() / "none.cfg").string();
    EXPECT_THAT(reasonAgainst(path), HasSubstr(path));
    expectUnreadable(path);
}

TEST_F(ConfigurationContractTest, fileThatIsNotWellFormedIsAWarning) {
    const std::string path = folder.write("a.cfg", timeoutOf("60000") + "<");
    EXPECT_THAT(reasonAgainst(path), HasSubstr(path));
    expectUnreadable(path);
}

TEST_F(ConfigurationContractTest, emptyFileIsAWarning) {
    expectUnreadable(folder.write("a.cfg", ""));
}

TEST_F(ConfigurationContractTest, folderInPlaceOfTheFileIsAWarning) {
    expectUnreadable(folder.path().string());
}

TEST_F(ConfigurationContractTest, emptyPathIsAWarning) {
    expectUnreadable("");
}

TEST_F(ConfigurationContractTest, conversionsInTheNameOfAMissingFileComeOutAsTheyAre) {
    for (const char* name : {"100%s%n.cfg", "a%%b.cfg", "%", "%d%%%5$s.cfg"}) {
        const std::string path = (folder.path() / name).string();
        EXPECT_THAT(reasonAgainst(path), HasSubstr(path));
        expectUnreadable(path);
    }
}

TEST_F(ConfigurationContractTest, conversionsInTheNameOfAFileDoNotMatter) {
    expectTimeout(write("100%s%n.cfg", timeoutOf("7")), "7");
    expectTimeout(write("a%%b.cfg", timeoutOf("8")), "8");
}

TEST_F(ConfigurationContractTest, conversionsInTheNameOfAFileThatIsNotWellFormedComeOutAsTheyAre) {
    for (const char* name : {"100%s%n.cfg", "a%%b.cfg"}) {
        const std::string path = folder.write(name, "<");
        EXPECT_THAT(reasonAgainst(path), HasSubstr(path));
        expectUnreadable(path);
    }
}

TEST_F(ConfigurationContractTest, nothingIsWrittenToStandardOutput) {
    const std::string good = write("a.cfg", timeoutOf("7"));
    const std::string bad = folder.write("b.cfg", "<");
    const std::string output = standardOutputOf([&] {
        EXPECT_EQ(initAnew(good.c_str()), 0);
        EXPECT_EQ(initAnew(bad.c_str()), 0);
        EXPECT_EQ(initAnew(nullptr), 0);
    });
    EXPECT_EQ(output, "");
}

// The configuration argument.

TEST_F(ConfigurationContractTest, noConfigurationIsAWarningAndNothingIsLoaded) {
    EXPECT_EQ(initAnew(nullptr), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({debugTrace(9, serviceFile, "initialize", " >> "),
                                                         message(4, serviceFile, "initialize", nullConfiguration),
                                                         debugTrace(10, serviceFile, "initialize", " << ")})));
}

TEST_F(ConfigurationContractTest, pathIsUsedAsItIsGiven) {
    write("a.cfg", timeoutOf("7"));
    expectTimeout((folder.path() / "." / ".." / folder.path().filename() / "a.cfg").string(), "7");
}

TEST_F(ConfigurationContractTest, componentStartsWithAFileThatCannotBeRead) {
    expectUnreadable(folder.write("a.cfg", "<"));
    startWith({{"A"}});
    EXPECT_EQ(list(begin()), std::vector<std::string>{"A"});
}

// Loading again.

TEST_F(ConfigurationContractTest, secondFileReplacesTheFirst) {
    expectTimeout(write("a.cfg", timeoutOf("60000")), "60000");
    expectTimeout(write("b.cfg", timeoutOf("70000")), "70000");
}

TEST_F(ConfigurationContractTest, defaultIsRestoredByASecondFileWithoutTheTimeout) {
    expectTimeout(write("a.cfg", timeoutOf("60000")), "60000");
    expectDefaultTimeout(write("b.cfg", element("")));
}

TEST_F(ConfigurationContractTest, secondFileWithoutTheElementFindsNothingOfTheFirst) {
    expectTimeout(write("a.cfg", timeoutOf("60000")), "60000");
    expectNoElement(write("b.cfg", "<a/>"));
    expectDefaultTimeout(write("c.cfg", element("")));
}

TEST_F(ConfigurationContractTest, fileIsReadAgainAfterOneThatCouldNotBe) {
    expectTimeout(write("a.cfg", timeoutOf("60000")), "60000");
    expectUnreadable((folder.path() / "none.cfg").string());
    expectTimeout(write("a.cfg", timeoutOf("70000")), "70000");
}

// Levels.

TEST_F(ConfigurationContractTest, missingElementIsLoggedFromLevelSix) {
    expectRecordsFromLevel(6, write("a.cfg", "<a/>").c_str(), message(6, configurationFile, "load", noElement));
}

TEST_F(ConfigurationContractTest, missingTimeoutIsLoggedFromLevelSix) {
    expectRecordsFromLevel(6, write("a.cfg", element("")).c_str(),
                           message(6, configurationFile, "load", defaultTimeout));
}

TEST_F(ConfigurationContractTest, severalElementsAreLoggedFromLevelFour) {
    expectRecordsFromLevel(4, write("a.cfg", element("") + element("")).c_str(),
                           message(4, configurationFile, "load", severalElements));
}

TEST_F(ConfigurationContractTest, unreadableFileIsLoggedFromLevelFour) {
    const std::string path = (folder.path() / "none.cfg").string();
    expectRecordsFromLevel(4, path.c_str(),
                           message(4, serviceFile, "initialize", "Caught exception " + reasonAgainst(path)));
}

TEST_F(ConfigurationContractTest, noConfigurationIsLoggedFromLevelFour) {
    expectRecordsFromLevel(4, nullptr, message(4, serviceFile, "initialize", nullConfiguration));
}

TEST_F(ConfigurationContractTest, timeoutIsTracedAtLevelEightOnly) {
    const LogCapture capture(7);
    EXPECT_EQ(initAnew(write("a.cfg", timeoutOf("60000")).c_str()), 0);
    EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace TevTest

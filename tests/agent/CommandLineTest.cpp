#include "CommandLine.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "Failure.h"
#include "TempFolder.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

Settings parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "tev-agent");
    return CommandLine::parse(static_cast<int>(arguments.size()), arguments.data());
}

/// Why the arguments are wrong usage.
std::string refusal(const std::vector<const char*>& arguments) {
    try {
        parse(arguments);
        return "taken";
    } catch (const Failure& e) {
        EXPECT_EQ(e.status(), ExitStatus::WrongUsage);
        return e.what();
    }
}

TEST(CommandLineTest, takesEveryOptionBeforeTheCommand) {
    const Settings settings =
        parse({"--models", "m", "--objects", "o.xml", "--component", "a.so", "--component", "b.so", "--config",
               "d/libtev_schema_populator.cfg", "--log-level", "8", "--log-file", "log", "--output", "json", "list"});
    EXPECT_EQ(settings.models, "m");
    EXPECT_EQ(settings.objects, "o.xml");
    EXPECT_THAT(settings.components, ElementsAre("a.so", "b.so"));
    EXPECT_EQ(settings.configuration, "d/libtev_schema_populator.cfg");
    EXPECT_TRUE(settings.isConfigurationNamed);
    EXPECT_EQ(settings.logLevel, 8);
    EXPECT_EQ(settings.logFile, "log");
    EXPECT_EQ(settings.output, Settings::Output::Json);
    EXPECT_EQ(settings.command, Settings::Command::List);
    EXPECT_EQ(settings.information, "");
}

TEST(CommandLineTest, takesOptionsBehindTheCommandToo) {
    const Settings settings = parse({"get", "Transport", "--models=m", "version", "--output=json"});
    EXPECT_EQ(settings.command, Settings::Command::Get);
    EXPECT_EQ(settings.models, "m");
    EXPECT_EQ(settings.output, Settings::Output::Json);
    EXPECT_EQ(settings.target, "Transport");
    EXPECT_THAT(settings.attributes, ElementsAre("version"));
}

TEST(CommandLineTest, hasNothingSetWithoutOptions) {
    const Settings settings = parse({"check"});
    EXPECT_EQ(settings.models, "");
    EXPECT_EQ(settings.objects, "");
    EXPECT_EQ(settings.configuration, "");
    EXPECT_THAT(settings.components, IsEmpty());
    EXPECT_EQ(settings.logLevel, std::nullopt);
    EXPECT_EQ(settings.output, Settings::Output::Table);
    EXPECT_EQ(settings.checkedLibrary, "");
}

TEST(CommandLineTest, aNodeStandsForItsThreeFiles) {
    const TevTest::TempFolder folder;
    const std::string node = folder.path();
    folder.write("libtev_schema_populator.cfg", "");
    const Settings settings = parse({"--node", node.c_str(), "list"});
    EXPECT_EQ(settings.models, node + "/models");
    EXPECT_EQ(settings.objects, node + "/managed-objects.xml");
    EXPECT_EQ(settings.configuration, node + "/libtev_schema_populator.cfg");
}

TEST(CommandLineTest, aNodesConfigurationCountsAsThereWhenItIsALinkToNothing) {
    const TevTest::TempFolder folder;
    const std::string node = folder.path();
    std::filesystem::create_symlink("nowhere", node + "/libtev_schema_populator.cfg");
    const Settings settings = parse({"--node", node.c_str(), "list"});
    EXPECT_EQ(settings.configuration, node + "/libtev_schema_populator.cfg");
    EXPECT_FALSE(settings.isConfigurationNamed);
}

TEST(CommandLineTest, aNodeIsTakenAsItIsBecauseTheWayUpMayLeadElsewhereBehindALink) {
    EXPECT_EQ(parse({"--node", "link/..", "list"}).models, "link/../models");
    EXPECT_EQ(parse({"--node", "node/", "list"}).models, "node/models");
}

TEST(CommandLineTest, takesANodeThatTheFileSystemRefuses) {
    const std::string node(10000, 'x');
    EXPECT_EQ(parse({"--node", node.c_str(), "list"}).models, node + "/models");
}

TEST(CommandLineTest, aNodeMayLackItsConfiguration) {
    const TevTest::TempFolder folder;
    EXPECT_EQ(parse({"--node", folder.path().c_str(), "list"}).configuration, "");
}

TEST(CommandLineTest, whatIsNamedGoesBeforeTheNodesOwn) {
    const TevTest::TempFolder folder;
    folder.write("libtev_schema_populator.cfg", "");
    const std::string node = folder.path();
    const Settings settings =
        parse({"--node", node.c_str(), "--models", "m", "--config", "d/libtev_schema_populator.cfg", "list"});
    EXPECT_EQ(settings.models, "m");
    EXPECT_EQ(settings.objects, node + "/managed-objects.xml");
    EXPECT_EQ(settings.configuration, "d/libtev_schema_populator.cfg");
}

TEST(CommandLineTest, aComponentOptionTakesOneFileSoThatACommandMayFollow) {
    const Settings settings = parse({"--models", "m", "--component", "a.so", "list"});
    EXPECT_THAT(settings.components, ElementsAre("a.so"));
    EXPECT_EQ(settings.command, Settings::Command::List);
}

TEST(CommandLineTest, aSchemaMayBeCalledLikeACommand) {
    const Settings settings = parse({"--models", "m", "get", "list", "check"});
    EXPECT_EQ(settings.command, Settings::Command::Get);
    EXPECT_EQ(settings.target, "list");
    EXPECT_THAT(settings.attributes, ElementsAre("check"));
}

TEST(CommandLineTest, aTargetMayBeADn) {
    EXPECT_EQ(parse({"--models", "m", "get", "ManagedElement=1,SysM=1", "a"}).target, "ManagedElement=1,SysM=1");
    EXPECT_EQ(parse({"--models", "m", "get", "ManagedElement=1,Schema=x"}).target, "ManagedElement=1,Schema=x");
}

TEST(CommandLineTest, checkTakesALibrary) {
    const Settings settings = parse({"check", "x.so"});
    EXPECT_EQ(settings.command, Settings::Command::Check);
    EXPECT_EQ(settings.checkedLibrary, "x.so");
}

TEST(CommandLineTest, checkTakesWhatToListAndReadAndWhichItemsToTry) {
    const Settings usual = parse({"check", "x.so"});
    EXPECT_FALSE(usual.isInProcess);
    EXPECT_EQ(usual.timeLimit, 10U);
    const Settings settings =
        parse({"check", "--class", "C", "--parent", "P=1", "--attribute", "a", "--attribute", "b", "--only", "load",
               "--only", "lifecycle.start", "--in-process", "--time-limit", "3", "x.so"});
    EXPECT_EQ(settings.checkedLibrary, "x.so");
    EXPECT_EQ(settings.checkedClass, "C");
    EXPECT_EQ(settings.checkedParent, "P=1");
    EXPECT_THAT(settings.attributes, ElementsAre("a", "b"));
    EXPECT_THAT(settings.onlyItems, ElementsAre("load", "lifecycle.start"));
    EXPECT_TRUE(settings.isInProcess);
    EXPECT_EQ(settings.timeLimit, 3U);
    for (const char* limit : {"0", "-1", "3601", "x", ""}) {
        EXPECT_THAT(refusal({"check", "x.so", "--time-limit", limit}), StartsWith("--time-limit: ")) << limit;
    }
}

TEST(CommandLineTest, exportTakesAModelAndWhereItGoes) {
    const Settings settings = parse({"--models", "m", "export", "Transport", "sftp://u@h/p/%3F%23"});
    EXPECT_EQ(settings.command, Settings::Command::Export);
    EXPECT_EQ(settings.target, "Transport");
    EXPECT_EQ(settings.uri, "sftp://u@h/p/%3F%23");
    EXPECT_FALSE(settings.isEveryModel);
    EXPECT_FALSE(settings.isPasswordFromInput);
    EXPECT_EQ(settings.passwordFile, "");
    EXPECT_TRUE(parse({"--models", "m", "export", "x", "sftp://h/p", "--password-stdin"}).isPasswordFromInput);
    EXPECT_EQ(parse({"--models", "m", "export", "--password-file", "f", "x", "sftp://h/p"}).passwordFile, "f");
}

TEST(CommandLineTest, exportOfEveryModelTakesAFolder) {
    const Settings settings = parse({"--models", "m", "export", "--all", "--jobs", "3", "sftp://h/p"});
    EXPECT_TRUE(settings.isEveryModel);
    EXPECT_EQ(settings.target, "");
    EXPECT_EQ(settings.uri, "sftp://h/p/");
    EXPECT_EQ(settings.jobs, 3U);
    EXPECT_EQ(parse({"--models", "m", "export", "sftp://h/p/", "--all"}).uri, "sftp://h/p/");
    EXPECT_EQ(parse({"--models", "m", "export", "sftp://h/p", "--all"}).jobs, 4U);
}

TEST(CommandLineTest, refusesAnExportThatIsIncompleteOrTooMuch) {
    EXPECT_THAT(refusal({"--models", "m", "export"}), StartsWith("DN|SCHEMA-ID is required ("));
    EXPECT_THAT(refusal({"--models", "m", "export", "x"}), StartsWith("SFTP-URI is required ("));
    EXPECT_THAT(refusal({"--models", "m", "export", "--all"}), StartsWith("SFTP-URI is required ("));
    EXPECT_THAT(refusal({"--models", "m", "export", "--all", "x", "sftp://h/p"}),
                StartsWith("with --all no model is named, so x is one too many ("));
    EXPECT_THAT(refusal({"--models", "m", "export", "x", "sftp://h/p", "--jobs", "2"}),
                HasSubstr("--jobs requires --all"));
    for (const char* jobs : {"0", "65", "-1", "x", "1.5"}) {
        EXPECT_THAT(refusal({"--models", "m", "export", "--all", "--jobs", jobs, "sftp://h/p"}), HasSubstr("--jobs"))
            << jobs;
    }
    EXPECT_THAT(refusal({"--models", "m", "export", "--all", "--jobs", "", "sftp://h/p"}),
                StartsWith("--jobs: the value is empty ("));
    EXPECT_THAT(refusal({"--models", "m", "export", "x", "sftp://h/p", "--password-stdin", "--password-file", "f"}),
                HasSubstr("excludes"));
    EXPECT_THAT(refusal({"--models", "m", "export", "x", "sftp://h/p", "--password-file", ""}),
                StartsWith("--password-file: the value is empty ("));
    EXPECT_THAT(refusal({"export", "x", "sftp://h/p"}), HasSubstr("neither --node nor --models"));
}

TEST(CommandLineTest, refusesAnUriWhosePathWouldEndUnseen) {
    for (const char* uri : {"sftp://h/a?b", "sftp://h/a#b", "sftp://h/?", "sftp://u#x@h/"}) {
        EXPECT_THAT(refusal({"--models", "m", "export", "x", uri}),
                    StartsWith("the URI has a query or a fragment; write %3F for ? and %23 for # ("));
        EXPECT_THAT(refusal({"--models", "m", "export", "--all", uri}),
                    StartsWith("the URI has a query or a fragment"));
    }
}

// Each model failed of it, once the password was given.
TEST(CommandLineTest, refusesAnUriThatNamesNothing) {
    const std::string sentence =
        "the URI names neither a file nor a folder on the server, as sftp://USER@HOST/FOLDER/ does (";
    for (const char* uri : {"sftp://u@h", "sftp://u@h/", "sftp://u@h:22", "sftp://[::1]/", "sftp://"}) {
        EXPECT_THAT(refusal({"--models", "m", "export", "x", uri}), StartsWith(sentence)) << uri;
        EXPECT_THAT(refusal({"--models", "m", "export", "--all", uri}), StartsWith(sentence)) << uri;
    }
    EXPECT_EQ(parse({"--models", "m", "export", "x", "sftp://h/p"}).uri, "sftp://h/p");
    EXPECT_EQ(parse({"--models", "m", "export", "x", "elsewhere"}).uri, "elsewhere");
}

TEST(CommandLineTest, showsHelpForTheProgramAndEachCommand) {
    EXPECT_THAT(parse({"--help"}).information, testing::AllOf(HasSubstr("--node"), HasSubstr("check")));
    EXPECT_THAT(parse({"--help"}).information,
                testing::AllOf(HasSubstr("Usage: tev-agent [OPTIONS] COMMAND\n"), HasSubstr("Commands:\n")));
    EXPECT_THAT(parse({"-h"}).information, HasSubstr("--node"));
    EXPECT_THAT(parse({"list", "--help"}).information, HasSubstr("tev-agent list"));
    EXPECT_THAT(parse({"get", "--help"}).information, HasSubstr("DN|SCHEMA-ID"));
    EXPECT_THAT(parse({"export", "--help"}).information, HasSubstr("SFTP-URI"));
    EXPECT_THAT(parse({"check", "--help"}).information, HasSubstr("FILE.so"));
}

TEST(CommandLineTest, helpShowsWhatTheOptionHelpDoes) {
    EXPECT_EQ(parse({"help"}).information, parse({"--help"}).information);
    for (const char* const command : {"list", "get", "export", "check", "shell", "help"}) {
        EXPECT_THAT(parse({"help", command}).information, HasSubstr(std::string("Usage: tev-agent ") + command));
        EXPECT_EQ(parse({"help", command}).information, parse({command, "--help"}).information);
    }
    EXPECT_THAT(refusal({"help", "nothing"}), StartsWith("there is no command nothing ("));
}

TEST(CommandLineTest, helpFitsTheScreen) {
    for (const char* const command : {"--help", "list", "get", "export", "check", "shell", "help"}) {
        const std::vector<const char*> arguments = {"tev-agent", command, "--help"};
        for (const std::size_t width : {0U, 80U, 60U, 120U}) {
            const std::string help = CommandLine::parse(3, arguments.data(), {width, false}).information;
            std::istringstream lines(help);
            for (std::string line; std::getline(lines, line);) {
                const bool isExample = line.find("  tev-agent ") == 0;
                EXPECT_LE(line.size(), isExample || width == 0 ? 80 : width) << line;
            }
        }
    }
    const std::vector<const char*> arguments = {"tev-agent", "--help"};
    const auto atWidth = [&](std::size_t width) {
        return CommandLine::parse(2, arguments.data(), {width, false}).information;
    };
    EXPECT_THAT(atWidth(40),
                HasSubstr("\n  --node DIR  The node: DIR/models,\n              DIR/managed-objects.xml\n"));
    EXPECT_THAT(atWidth(140), HasSubstr(" is there, DIR/libtev_schema_populator.cfg\n"));
    EXPECT_THAT(atWidth(1), HasSubstr("node:\nDIR/models,\n"));
}

TEST(CommandLineTest, showsExamplesOfACommand) {
    EXPECT_THAT(parse({"list", "--help"}).information,
                HasSubstr("\n  tev-agent --node DIR list --filter 'Transport*'\n"));
    EXPECT_THAT(parse({"get", "--help"}).information, HasSubstr("  tev-agent --node DIR get TransportModel\n"));
    EXPECT_THAT(parse({"shell", "--help"}).information, HasSubstr("  tev-agent --node DIR shell\n"));
}

class LineTest : public testing::Test {
protected:
    Settings parseLine(const std::vector<std::string>& words) const { return CommandLine::parseLine(words, session); }

    std::string lineRefusal(const std::vector<std::string>& words) const {
        try {
            parseLine(words);
            return "taken";
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::WrongUsage);
            return e.what();
        }
    }

    const Settings session =
        parse({"--models", "m", "--component", "a.so", "--output", "json", "--log-level=3", "shell"});
};

TEST_F(LineTest, aLineIsACommandForTheSameNode) {
    const Settings settings = parseLine({"get", "Transport", "version"});
    EXPECT_EQ(settings.command, Settings::Command::Get);
    EXPECT_EQ(settings.target, "Transport");
    EXPECT_THAT(settings.attributes, ElementsAre("version"));
    EXPECT_EQ(settings.models, "m");
    EXPECT_THAT(settings.components, ElementsAre("a.so"));
    EXPECT_EQ(settings.output, Settings::Output::Json);
}

TEST_F(LineTest, theOutputOfALineGoesBeforeThatOfTheShell) {
    EXPECT_EQ(parseLine({"list", "--output", "table"}).output, Settings::Output::Table);
    EXPECT_EQ(CommandLine::parseLine({"list", "--output", "json"}, parse({"--models", "m", "shell"})).output,
              Settings::Output::Json);
}

TEST_F(LineTest, tellsWhatTheProgramIsGivenForTheSame) {
    EXPECT_THAT(parseLine({"check", "b.so"}).arguments,
                ElementsAre("--models=m", "--component=a.so", "--log-level=3", "--output=json", "check", "b.so"));
    EXPECT_THAT(parseLine({"check", "--output=table"}).arguments,
                ElementsAre("--models=m", "--component=a.so", "--log-level=3", "check", "--output=table"));
}

TEST_F(LineTest, refusesWhatHoldsForTheWholeShell) {
    for (const std::string option : {"--node", "--models", "--objects", "--component", "--config", "--log-file"}) {
        EXPECT_EQ(lineRefusal({"list", option, "x"}),
                  option + " holds for the whole shell, and stands before its name (help shows the usage)");
    }
    EXPECT_THAT(lineRefusal({"--log-level", "1", "list"}), StartsWith("--log-level holds for the whole shell"));
    EXPECT_THAT(lineRefusal({"shell"}), HasSubstr("shell"));
}

TEST_F(LineTest, helpShowsTheCommandsOrTheUsageOfOneWithExamples) {
    EXPECT_EQ(parseLine({"help"}).command, Settings::Command::Help);
    const std::string all = parseLine({"help"}).information;
    for (const std::string& command : CommandLine::lineCommands()) {
        EXPECT_THAT(all, HasSubstr(command));
        const std::string one = parseLine({"help", command}).information;
        EXPECT_THAT(one, HasSubstr("Usage: "));
        EXPECT_EQ(one.find("tev-agent"), std::string::npos) << "a line has no name of a program";
        EXPECT_EQ(one.find("\n\n\n"), std::string::npos) << one;
        EXPECT_THAT(one, testing::Not(testing::EndsWith("\n\n")));
    }
    EXPECT_EQ(all.find("--node"), std::string::npos);
    EXPECT_EQ(all.find("\n\n\n"), std::string::npos);
    EXPECT_THAT(all, testing::Not(testing::EndsWith("\n\n")));
    EXPECT_THAT(parseLine({"help", "get"}).information, HasSubstr("Examples:\n  get TransportModel\n"));
    EXPECT_EQ(lineRefusal({"help", "list", "get"}).find("taken"), std::string::npos);
    EXPECT_EQ(lineRefusal({"help", "nothing"}), "there is no command nothing (help shows the usage)");
}

TEST_F(LineTest, tellsTheCommandsAndTheirOptions) {
    EXPECT_THAT(CommandLine::lineCommands(),
                testing::UnorderedElementsAre("list", "get", "export", "check", "help", "quit", "exit"));
    const std::map<std::string, bool> options = CommandLine::lineOptions("export");
    EXPECT_THAT(options, testing::IsSupersetOf({std::pair<const std::string, bool>("--all", false),
                                                {"--help", false},
                                                {"--jobs", true},
                                                {"--output", true},
                                                {"--password-file", true}}));
    EXPECT_EQ(options.count("--node"), 0U);
    EXPECT_THAT(CommandLine::lineOptions("nothing"), IsEmpty());
}

TEST(CommandLineTest, showsTheVersionEverywhere) {
    for (const std::vector<const char*>& arguments :
         {std::vector<const char*>{"--version"}, {"list", "--version"}, {"get", "--version"}, {"check", "--version"}}) {
        EXPECT_THAT(parse(arguments).information, testing::MatchesRegex("tev-agent [0-9.]+\n"));
    }
}

TEST(CommandLineTest, refusesAnUnknownOptionOrCommand) {
    const std::string usage = " (tev-agent --help shows the usage)";
    EXPECT_EQ(refusal({"--models", "m", "list", "--nothing"}), "there is no option --nothing" + usage);
    EXPECT_EQ(refusal({"--nod", "n", "list"}), "there is no option --nod" + usage);
    EXPECT_EQ(refusal({"--models", "m", "shout", "loud"}),
              "there is no command shout; the commands are list, get, export, check, shell, help" + usage);
    EXPECT_EQ(refusal({"--models", "m", "list", "extra", "more"}), "extra is one too many" + usage);
    EXPECT_EQ(refusal({"check", "a.so", "b.so"}), "b.so is one too many" + usage);
    EXPECT_EQ(refusal({"--models", "m", "list", "list"}), "list is one too many" + usage);
}

TEST(CommandLineTest, refusesACommandLineWithoutACommand) {
    EXPECT_THAT(refusal({}), HasSubstr("no command is given"));
    EXPECT_THAT(refusal({"--models", "m"}), HasSubstr("no command is given"));
}

TEST(CommandLineTest, refusesWhatLacksItsValue) {
    EXPECT_THAT(refusal({"--models"}), StartsWith("--models stands without its value ("));
    EXPECT_THAT(refusal({"--component"}), StartsWith("--component stands without its value ("));
    EXPECT_THAT(refusal({"--models", "m", "get"}), HasSubstr("DN|SCHEMA-ID is required"));
}

TEST(CommandLineTest, refusesAnOptionThatStandsTwice) {
    EXPECT_THAT(refusal({"--node", "a", "--node", "b", "list"}), StartsWith("--node stands more than once ("));
}

TEST(CommandLineTest, refusesEmptyFileNames) {
    for (const char* option : {"--node", "--models", "--objects", "--component", "--config", "--log-file"}) {
        EXPECT_THAT(refusal({"--models=m", option, "", "list"}),
                    StartsWith(std::string(option) + ": the value is empty ("));
    }
    EXPECT_THAT(refusal({"check", ""}), StartsWith("FILE.so: the value is empty ("));
}

TEST(CommandLineTest, refusesAnEmptyAttribute) {
    EXPECT_THAT(refusal({"--models", "m", "get", "x", "version", ""}), StartsWith("ATTRIBUTE: the value is empty ("));
}

TEST(CommandLineTest, refusesAnAttributeThatIsNamedTwice) {
    EXPECT_THAT(refusal({"--models", "m", "get", "x", "version", "schemaId", "version"}),
                StartsWith("the attribute version is named twice ("));
}

TEST(CommandLineTest, refusesAnObjectOfAnotherClassWithoutAttributes) {
    for (const std::string dn : {"ManagedElement=1", "ManagedElement=1,Schema=x,Part=1", "Schemas=1"}) {
        EXPECT_THAT(
            refusal({"--models", "m", "get", dn.c_str()}),
            StartsWith("the attributes to show of " + dn + " must be named, because it is no Schema instance ("));
    }
}

TEST(CommandLineTest, refusesValuesOutsideTheirRange) {
    EXPECT_THAT(refusal({"--models", "m", "--output", "xml", "list"}),
                StartsWith("--output: \"xml\" is neither table nor json ("));
    for (const std::string level : {"9", "-1", "10", "4.5", "all", ""}) {
        EXPECT_THAT(refusal({"--models", "m", "--log-level", level.c_str(), "list"}),
                    StartsWith("--log-level: \"" + level + "\" is not a whole number from 0 to 8 ("));
    }
}

TEST(CommandLineTest, refusesAConfigurationOfAnotherName) {
    EXPECT_THAT(refusal({"--models", "m", "--config", "/etc/other.cfg", "list"}),
                HasSubstr("the file of --config must be named libtev_schema_populator.cfg, not other.cfg"));
}

TEST(CommandLineTest, refusesToListOrGetWithoutModels) {
    EXPECT_THAT(refusal({"list"}), HasSubstr("neither --node nor --models says where the models are"));
    EXPECT_THAT(refusal({"get", "x"}), HasSubstr("neither --node nor --models says where the models are"));
    EXPECT_THAT(refusal({"get", "SysM=1,Schema=x"}), HasSubstr("neither --node nor --models"));
    EXPECT_THAT(refusal({"get", "SysM=1,Schema=x,Part=1", "a"}), HasSubstr("neither --node nor --models"));
}

TEST(CommandLineTest, takesAnObjectOfAnotherClassWithoutModels) {
    EXPECT_EQ(parse({"--objects", "o.xml", "get", "ManagedElement=1", "a"}).models, "");
}

TEST(CommandLineTest, tellsHowToNameASchemaThatLooksLikeAnOption) {
    EXPECT_THAT(refusal({"--models", "m", "get", "-x"}),
                HasSubstr("; what begins with - but is no option stands behind -- ("));
    EXPECT_THAT(refusal({"--models", "m", "get", "-x", "version"}), HasSubstr("-x; what begins with -"));
    EXPECT_THAT(refusal({"--models", "m", "get"}), testing::Not(HasSubstr("behind --")));
    EXPECT_THAT(refusal({"--models", "m", "list", "-x"}), testing::Not(HasSubstr("behind --")));
    EXPECT_EQ(parse({"--models", "m", "get", "--", "-x"}).target, "-x");
}

}  // namespace

}  // namespace TevAgent

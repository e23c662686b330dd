// The program from its command line: every command, every option and every exit status.

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <utility>

#include "AgentProcess.h"
#include "FileText.h"
#include "Pipe.h"
#include "TestNode.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string table =
    "schemaId   identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n"
    "Equipment  Equipment                        1.2                        Hot Swap\n"
    "Plain      Plain\n"
    "Transport  Transport   OrvaTransport        2.1.5    3.4               IpSec, Sync\n";

std::vector<Poco::JSON::Object::Ptr> objectsIn(const std::string& json, const std::string& array) {
    Poco::JSON::ParseHandler::Ptr inFileOrder(new Poco::JSON::ParseHandler(true));
    const auto root = Poco::JSON::Parser(inFileOrder).parse(json).extract<Poco::JSON::Object::Ptr>();
    EXPECT_EQ(root->size(), 1U);
    std::vector<Poco::JSON::Object::Ptr> objects;
    for (const auto& element : *root->getArray(array)) {
        objects.push_back(element.extract<Poco::JSON::Object::Ptr>());
    }
    return objects;
}

std::vector<std::string> texts(const Poco::JSON::Array::Ptr& array) {
    std::vector<std::string> result;
    for (const auto& element : *array) {
        result.push_back(element.convert<std::string>());
    }
    return result;
}

class ProgramTest : public testing::Test {
protected:
    AgentOutcome onNode(const std::vector<std::string>& command, const AgentProcess::Setting& setting = {}) const {
        return AgentProcess::run(nodeAnd(command), setting);
    }

    std::vector<std::string> nodeAnd(const std::vector<std::string>& command) const {
        std::vector<std::string> words = {"--node", node.path()};
        words.insert(words.end(), command.begin(), command.end());
        return words;
    }

    /// The command fails with this status, this sentence and no result.
    static void expectFailure(const AgentOutcome& outcome, int status, const testing::Matcher<std::string>& said) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_THAT(outcome.err, AllOf(StartsWith("tev-agent: "), said));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }

    static AgentProcess::Setting unprivileged() {
        AgentProcess::Setting setting;
        setting.isUnprivileged = true;
        return setting;
    }

    std::string modelFile(const std::string& name) const { return node.path() + "/models/" + name; }

    TestNode node;
};

// list

TEST_F(ProgramTest, listShowsEverySchemaInstanceInTheOrderOfTheirNames) {
    const AgentOutcome outcome = onNode({"list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, table);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ProgramTest, listWritesJsonThatAParserReadsBack) {
    const AgentOutcome outcome = onNode({"--output", "json", "list"});
    EXPECT_EQ(outcome.status, 0);
    const auto schemas = objectsIn(outcome.out, "schemas");
    ASSERT_EQ(schemas.size(), 3U);
    for (const auto& schema : schemas) {
        EXPECT_THAT(schema->getNames(), ElementsAre("schemaId", "identifier", "baseModelIdentifier", "version",
                                                    "baseModelVersion", "selectedModelOptions"));
    }
    EXPECT_EQ(schemas[0]->getValue<std::string>("schemaId"), "Equipment");
    EXPECT_TRUE(schemas[0]->isNull("baseModelIdentifier"));
    EXPECT_EQ(schemas[0]->getValue<std::string>("version"), "1.2");
    EXPECT_TRUE(schemas[0]->isNull("baseModelVersion"));
    EXPECT_THAT(texts(schemas[0]->getArray("selectedModelOptions")), ElementsAre("Hot Swap"));
    EXPECT_EQ(schemas[1]->getValue<std::string>("schemaId"), "Plain");
    EXPECT_EQ(schemas[1]->getValue<std::string>("version"), "");
    EXPECT_THAT(texts(schemas[1]->getArray("selectedModelOptions")), IsEmpty());
    EXPECT_EQ(schemas[2]->getValue<std::string>("identifier"), "Transport");
    EXPECT_EQ(schemas[2]->getValue<std::string>("baseModelIdentifier"), "OrvaTransport");
    EXPECT_EQ(schemas[2]->getValue<std::string>("version"), "2.1.5");
    EXPECT_EQ(schemas[2]->getValue<std::string>("baseModelVersion"), "3.4");
    EXPECT_THAT(texts(schemas[2]->getArray("selectedModelOptions")), ElementsAre("IpSec", "Sync"));
}

TEST_F(ProgramTest, listOfAnEmptyFolderHasNoRows) {
    const TempFolder empty;
    const AgentOutcome outcome = AgentProcess::run({"--models", empty.path(), "list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "schemaId  identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(objectsIn(AgentProcess::run({"--models", empty.path(), "--output=json", "list"}).out, "schemas"),
                IsEmpty());
}

TEST_F(ProgramTest, listReportsEachBadModelFileOnOneLineAndListsTheOthers) {
    node.writeModel("bad-empty.xml", "");
    node.writeModel("bad-no-xml.xml", "mom name=Transport");
    node.writeModel("bad-no-name.xml", "<mom version=\"1\"/>");
    node.writeModel("bad-name.xml", "<mom name=\"a=b\"/>");
    node.writeModel("bad-cut.xml", "<mom name=\"Cut\">\n<domain name=\"ORVA\">\n<prop");
    node.writeModel("bad-big.xml",
                    "<mom name=\"Big\"><feature name=\"f\"/><!--" + std::string(300000, 'x') + "--><class/></mom>");
    node.writeModel("bad-root.xml", "<model name=\"Root\"/>");
    node.writeModel("bad-secret.xml", "<mom name=\"Secret\"/>");
    std::filesystem::permissions(modelFile("bad-secret.xml"), std::filesystem::perms::none);
    node.writeModel("bad-twin.xml", R"(<mom name="Transport" version="2" release="9"/>)");
    std::filesystem::create_directory(modelFile("bad-folder.xml"));
    std::filesystem::create_symlink("nowhere", modelFile("bad-link.xml"));
    // Before the twin in path order.
    std::filesystem::rename(modelFile("1.xml"), modelFile("0.xml"));
    const AgentOutcome outcome = onNode({"list"}, unprivileged());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, table);
    const std::vector<std::string> problems = {
        "bad-big.xml:1: the model's head, before its first class, is larger than 262144 bytes",
        "bad-cut.xml:3: the file ends too early, inside an element",
        "bad-empty.xml: the file is empty",
        "bad-folder.xml: a folder, not a file",
        "bad-link.xml: a link to a file that does not exist",
        "bad-name.xml:1: the name of <mom> holds '=': \"a=b\"",
        "bad-no-name.xml:1: <mom> has no name",
        "bad-no-xml.xml:1: not well-formed XML: syntax error",
        "bad-root.xml:1: the root element is <model>, not <mom>",
        "bad-secret.xml: cannot be opened: Permission denied",
        "bad-twin.xml: left out, because " + modelFile("0.xml") +
            " holds the same model: name \"Transport\" and version \"2\""};
    std::string said;
    for (const std::string& problem : problems) {
        said += "tev-agent: " + modelFile(problem) + "\n";
    }
    EXPECT_EQ(outcome.err, said);
}

TEST_F(ProgramTest, listReadsNoMoreThanTheHeadsOfManyFiles) {
    constexpr std::uint64_t count = 2000;
    constexpr std::uint64_t size = 1024;
    constexpr std::uint64_t slack = 64UL << 10U;
    const TempFolder models;
    const std::vector<std::string> list = {"--models", models.path(), "list"};
    const AgentOutcome none = AgentProcess::run(list);
    for (std::uint64_t i = 0; i < count; ++i) {
        std::string text = "<mom name=\"Model" + std::to_string(i) + "\"><class name=\"C\"/></mom>";
        text.resize(size, '\n');
        models.write("model" + std::to_string(i) + ".xml", text);
    }
    const AgentOutcome many = AgentProcess::run(list);
    std::filesystem::resize_file(models.write("sparse.xml", R"(<mom name="Sparse"><class name="C">)"), 50UL << 20U);
    const AgentOutcome withSparse = AgentProcess::run(list);
    const auto rows = [](const AgentOutcome& outcome) {
        return std::count(outcome.out.begin(), outcome.out.end(), '\n');
    };
    EXPECT_EQ(rows(many), count + 1);
    EXPECT_EQ(rows(withSparse), count + 2);
    // What the program and its libraries read besides is the same each time, but for a little.
    EXPECT_LT(many.bytesRead, none.bytesRead + count * size + slack);
    EXPECT_LT(withSparse.bytesRead, many.bytesRead + slack);
    EXPECT_GT(many.bytesRead, none.bytesRead + count);
}

TEST_F(ProgramTest, listShowsOneRowForSeveralVersionsAndSaysOnceWhichOne) {
    node.writeModel("4.xml", R"(<mom name="Transport" version="3"/>)");
    node.writeModel("5.xml", R"(<mom name="Transport" version="4"/>)");
    node.writeModel("6.xml", R"(<mom name="Plain" version="4"/>)");
    const AgentOutcome outcome = onNode({"list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, table);
    EXPECT_EQ(outcome.err,
              "tev-agent: there are several versions of Plain (shown: the one without a version), Transport (shown: "
              "2.1.5)\n");
}

TEST_F(ProgramTest, listNeedsASysMObjectWhenThereAreManagedObjects) {
    node.writeObjects("<managedObjects><mo class=\"ManagedElement\" id=\"1\"/></managedObjects>");
    expectFailure(onNode({"list"}), 1,
                  HasSubstr("managed-objects.xml has no SysM object that schemas could stand under; it needs one below "
                            "ManagedElement and SystemFunctions\n"));
}

TEST_F(ProgramTest, listShowsTheExampleNode) {
    const AgentOutcome outcome = AgentProcess::run({"--node", TEV_EXAMPLE_NODE, "--output", "json", "list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const std::filesystem::path models = std::filesystem::path(TEV_EXAMPLE_NODE) / "models";
    const auto files = std::distance(std::filesystem::directory_iterator(models), {});
    EXPECT_EQ(static_cast<std::ptrdiff_t>(objectsIn(outcome.out, "schemas").size()), files);
}

TEST_F(ProgramTest, listDoesNotDependOnTheOrderOfTheFiles) {
    std::filesystem::rename(modelFile("1.xml"), modelFile("8.xml"));
    std::filesystem::rename(modelFile("3.xml"), modelFile("0.xml"));
    EXPECT_EQ(onNode({"list"}).out, table);
}

TEST_F(ProgramTest, listShowsTheInstancesThatTheFilterMatches) {
    EXPECT_EQ(onNode({"list", "--filter", "*"}).out, table);
    const AgentOutcome some = onNode({"list", "--filter", "*p?rt*"});
    EXPECT_EQ(some.status, 0);
    EXPECT_EQ(some.out,
              "schemaId   identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n"
              "Transport  Transport   OrvaTransport        2.1.5    3.4               IpSec, Sync\n");
    EXPECT_EQ(some.err, "");
    const auto schemas = objectsIn(onNode({"--output=json", "list", "--filter", "[!P]*t"}).out, "schemas");
    ASSERT_EQ(schemas.size(), 2U);
    EXPECT_EQ(schemas[0]->getValue<std::string>("schemaId"), "Equipment");
    EXPECT_EQ(schemas[1]->getValue<std::string>("schemaId"), "Transport");
}

TEST_F(ProgramTest, aFilterThatMatchesNothingShowsTheTitlesAndSaysSo) {
    for (const std::string filter : {"plain", "Plai", "lain"}) {
        const AgentOutcome outcome = onNode({"list", "--filter", filter});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out,
                  "schemaId  identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n");
        EXPECT_EQ(outcome.err, "tev-agent: no schema id matches \"" + filter + "\"; without --filter all are shown\n");
    }
    EXPECT_THAT(objectsIn(onNode({"--output=json", "list", "--filter", "x"}).out, "schemas"), IsEmpty());
}

TEST_F(ProgramTest, aFilterSaysNothingOfVersionsOfOthers) {
    node.writeModel("4.xml", R"(<mom name="Transport" version="3"/>)");
    node.writeModel("5.xml", R"(<mom name="Plain" version="4"/>)");
    EXPECT_EQ(onNode({"list", "--filter", "P*"}).err,
              "tev-agent: there are several versions of Plain (shown: the one without a version)\n");
}

TEST_F(ProgramTest, onlyInstancesThatTheFilterMatchesAreRead) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/read_fails.so";
    EXPECT_EQ(onNode({"--component", library, "list"}).status, 1);
    EXPECT_EQ(onNode({"--component", library, "list", "--filter", "not*"}).status, 0);
}

// get

TEST_F(ProgramTest, getShowsOneInstanceByItsSchemaId) {
    const AgentOutcome outcome = onNode({"get", "Transport"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "schemaId   identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n"
              "Transport  Transport   OrvaTransport        2.1.5    3.4               IpSec, Sync\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ProgramTest, invisibleCharactersOfANameReachNoTerminal) {
    node.writeModel("4.xml", "<mom name=\"Trap\xe2\x80\xae\xe2\x80\x8b\"><feature name=\"\xe2\x80\xad\"/></mom>");
    node.writeModel("6\xe2\x80\xae.xml", "");
    const std::string invisible = "\xe2\x80";
    const AgentOutcome outcome = onNode({"list"});
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("\nTrap\\u202e\\u200b  Trap\\u202e\\u200b  "), Not(HasSubstr(invisible))));
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("6\\u202e.xml"), Not(HasSubstr(invisible))));
    const std::string json = onNode({"--output=json", "list"}).out;
    EXPECT_THAT(json, Not(HasSubstr(invisible)));
    EXPECT_EQ(objectsIn(json, "schemas")[3]->getValue<std::string>("schemaId"), "Trap\xe2\x80\xae\xe2\x80\x8b");
}

TEST_F(ProgramTest, getTakesADnAsItIs) {
    EXPECT_EQ(onNode({"get", "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=Transport", "version"}).out,
              "version\n2.1.5\n");
    EXPECT_EQ(onNode({"get", "ManagedElement=1,Transport=1,ServiceCategory=OamBulk", "dscp"}).out, "dscp\n10\n");
    EXPECT_EQ(AgentProcess::run({"--objects", node.path() + "/managed-objects.xml", "get",
                                 "ManagedElement=1,Transport=1,ServiceCategory=OamBulk", "dscp"})
                  .out,
              "dscp\n10\n");
}

TEST_F(ProgramTest, getShowsJustTheAttributesNamedInTheirOrder) {
    EXPECT_EQ(onNode({"get", "Transport", "selectedModelOptions", "schemaId"}).out,
              "selectedModelOptions  schemaId\nIpSec, Sync           Transport\n");
    const auto schemas =
        objectsIn(onNode({"--output=json", "get", "Transport", "selectedModelOptions", "schemaId"}).out, "schemas");
    ASSERT_EQ(schemas.size(), 1U);
    EXPECT_THAT(schemas[0]->getNames(), ElementsAre("selectedModelOptions", "schemaId"));
}

TEST_F(ProgramTest, getOfAnUnknownInstanceSaysThatThereIsNone) {
    expectFailure(onNode({"get", "Nothing"}), 1,
                  HasSubstr("there is no " + TestNode::schemaDn("Nothing") + "; list shows those that there are\n"));
    expectFailure(onNode({"get", ""}), 1,
                  HasSubstr("there is no " + TestNode::schemaDn("") + "; list shows those that there are\n"));
    expectFailure(onNode({"get", "ManagedElement=2", "dscp"}), 1,
                  HasSubstr("there is no ManagedElement=2; the file of managed objects tells which there are\n"));
    expectFailure(onNode({"get", "ManagedElement=1,Schema=Transport"}), 1,
                  HasSubstr("there is no ManagedElement=1,Schema=Transport; list shows those that there are\n"));
}

TEST_F(ProgramTest, nothingIsKnownOfWhichObjectsAnotherClassOfAComponentHas) {
    node.writeObjects(R"(<managedObjects>
        <route class="Licence" parent="ManagedElement" component="TevSchemaMoService"/>
        <mo class="ManagedElement" id="1"/>
      </managedObjects>)");
    expectFailure(onNode({"get", "ManagedElement=1,Licence=5", "expiry"}), 1,
                  HasSubstr("there is no ManagedElement=1,Licence=5\n"));
}

TEST_F(ProgramTest, getOfAnUnknownAttributeSaysThatTheInstanceHasNone) {
    expectFailure(onNode({"get", "Plain", "Version"}), 1,
                  HasSubstr(TestNode::schemaDn("Plain") +
                            " has no attribute Version; it has schemaId, identifier, baseModelIdentifier, version, "
                            "baseModelVersion, selectedModelOptions\n"));
    expectFailure(onNode({"get", "ManagedElement=1", "dscp"}), 1,
                  HasSubstr("ManagedElement=1 has no attribute dscp\n"));
    expectFailure(onNode({"get", "ManagedElement=1,Transport=1,ServiceCategory=OamBulk", "DSCP"}), 1,
                  HasSubstr("OamBulk has no attribute DSCP; it has dscp\n"));
}

// check

TEST_F(ProgramTest, checkTriesTheComponentThatIsLoaded) {
    const AgentOutcome outcome = onNode({"check", "--only", "load.opens"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, std::string("passed   load.opens                       The library can be loaded: ") +
                               TEV_COMPONENT_LIBRARY + "\n1 passed\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ProgramTest, checkHandsTheConfigurationOfTheNodeOn) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/tells_configuration.so";
    const AgentOutcome outcome = onNode({"check", library, "--only", "output.untouched"});
    EXPECT_THAT(outcome.out, HasSubstr("configuration " + node.path() + "/libtev_schema_populator.cfg"));
}

// options

TEST_F(ProgramTest, theFilesOfANodeMayBeNamedOneByOne) {
    const AgentOutcome outcome = AgentProcess::run(
        {"--models", node.path() + "/models", "--objects", node.path() + "/managed-objects.xml", "--config",
         node.path() + "/libtev_schema_populator.cfg", "--component", TEV_COMPONENT_LIBRARY, "list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, table);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ProgramTest, modelsAloneAreEnough) {
    EXPECT_EQ(AgentProcess::run({"--models", node.path() + "/models", "list"}).out, table);
    expectFailure(AgentProcess::run({"--models", node.path() + "/models", "get", "Nothing"}), 1,
                  HasSubstr("there is no ManagedElement=1,SystemFunctions=1,SysM=1,Schema=Nothing"));
}

TEST_F(ProgramTest, pathsMayBeRelative) {
    AgentProcess::Setting setting;
    setting.workingFolder = node.path();
    EXPECT_EQ(AgentProcess::run({"--node", ".", "list"}, setting).out, table);
    setting.workingFolder = std::filesystem::path(TEV_COMPONENT_LIBRARY).parent_path();
    const std::string name = std::filesystem::path(TEV_COMPONENT_LIBRARY).filename();
    EXPECT_EQ(onNode({"--component", name, "list"}, setting).out, table);
}

TEST_F(ProgramTest, aNodeBehindALinkIsWhereTheLinkLeads) {
    const TempFolder folder;
    std::filesystem::create_directory_symlink(node.path() + "/models", folder.path() / "link");
    EXPECT_EQ(AgentProcess::run({"--node", folder.path() / "link/..", "list"}).out, table);
}

TEST_F(ProgramTest, theComponentGetsThePathOfItsConfigurationAndFindsItASecondTime) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/tells_configuration.so";
    EXPECT_EQ(onNode({"--component", library, "get", "one", "version"}).err,
              "configuration " + node.path() + "/libtev_schema_populator.cfg, folder " + node.path() + "\n");
    AgentProcess::Setting setting;
    setting.workingFolder = node.path();
    EXPECT_EQ(AgentProcess::run({"--models", "models", "--config", "libtev_schema_populator.cfg", "--component",
                                 library, "get", "one", "version"},
                                setting)
                  .err,
              "configuration libtev_schema_populator.cfg, folder " + node.path() + "\n");
}

TEST_F(ProgramTest, theComponentGetsNoPathWithoutAConfiguration) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/tells_configuration.so";
    EXPECT_EQ(
        AgentProcess::run({"--models", node.path() + "/models", "--component", library, "get", "one", "version"}).err,
        "configuration none, folder none\n");
}

TEST_F(ProgramTest, aConfigurationThatCannotBeReadIsReportedAndTheDefaultsAreUsed) {
    const TempFolder folder;
    const std::string file = folder.write("libtev_schema_populator.cfg", "<configuration>\n<cut");
    const AgentOutcome outcome = onNode({"--config", file, "list"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, table);
    EXPECT_THAT(outcome.err, AllOf(StartsWith("tev-agent: "), HasSubstr(file), HasSubstr("the defaults are used\n")));
}

TEST_F(ProgramTest, aConfigurationThatIsNamedButNotThereIsStatus3) {
    const TempFolder folder;
    const std::string file = folder.path() / "libtev_schema_populator.cfg";
    const std::string said = "tev-agent: the file of --config, " + file + ", cannot be used: ";
    expectFailure(onNode({"--config", file, "list"}), 3, testing::Eq(said + "No such file or directory\n"));
    std::filesystem::create_symlink(file, file);
    expectFailure(onNode({"--config", file, "list"}), 3, testing::Eq(said + "Too many levels of symbolic links\n"));
}

TEST_F(ProgramTest, aConfigurationOfTheNodeThatIsALinkToNothingIsReportedAndTheDefaultsAreUsed) {
    const std::string file = node.path() + "/libtev_schema_populator.cfg";
    const std::string said = "tev-agent: " + file + ": ";
    for (const auto& [target, reason] : {std::pair("nowhere", "No such file or directory"),
                                         std::pair(file.c_str(), "Too many levels of symbolic links")}) {
        std::filesystem::remove(file);
        std::filesystem::create_symlink(target, file);
        const AgentOutcome outcome = onNode({"list"});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, table);
        EXPECT_EQ(outcome.err, said + reason + "; the defaults are used\n");
    }
}

TEST_F(ProgramTest, furtherRoutesStandInTheObjectsFile) {
    const std::string objects = std::string(TEV_EXAMPLE_NODE) + "/../component/managed-objects.xml";
    const AgentOutcome outcome = AgentProcess::run(
        {"--objects", objects, "--component", TEV_EXAMPLE_COMPONENT, "get", "ManagedElement=1,Uptime=1", "seconds"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, testing::MatchesRegex("seconds\n[0-9]+\n"));
}

// It answered for whatever stood below an instance.
TEST_F(ProgramTest, theExampleOfAComponentHasNothingBelowItsInstance) {
    const std::string objects = std::string(TEV_EXAMPLE_NODE) + "/../component/managed-objects.xml";
    for (const char* const below : {"Uptime=1,Other=1", "Uptime=1,Uptime=1", "Uptime=0,Other=1"}) {
        const AgentOutcome outcome = AgentProcess::run({"--objects", objects, "--component", TEV_EXAMPLE_COMPONENT,
                                                        "get", std::string("ManagedElement=1,") + below, "seconds"});
        EXPECT_EQ(outcome.status, 1) << below;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(ProgramTest, aRouteToAComponentThatIsNotThereNamesIt) {
    node.writeObjects(R"(<managedObjects>
        <route class="Licence" parent="ManagedElement" component="LicenceService"/>
        <mo class="ManagedElement" id="1"/>
      </managedObjects>)");
    expectFailure(onNode({"get", "ManagedElement=1,Licence=5", "expiry"}), 1,
                  HasSubstr("cannot read attribute expiry of ManagedElement=1,Licence=5: class Licence belongs to "
                            "component LicenceService, which is not there or offers no managed objects; the option "
                            "--component of tev-agent loads it\n"));
}

TEST_F(ProgramTest, logsNothingUnlessAsked) {
    EXPECT_EQ(onNode({"get", "Plain", "version"}).err, "");
}

TEST_F(ProgramTest, logsToStandardErrorAtTheLevelAskedFor) {
    const AgentOutcome outcome = onNode({"--log-level", "8", "get", "Plain", "version"});
    EXPECT_EQ(outcome.out, "version\n\n");
    EXPECT_THAT(outcome.err, AllOf(HasSubstr(" LOG 6 "), HasSubstr(" DEBUG ")));
    EXPECT_THAT(onNode({"--log-level", "6", "get", "Plain", "version"}).err,
                AllOf(HasSubstr(" LOG 6 "), Not(HasSubstr(" DEBUG "))));
}

TEST_F(ProgramTest, theEnvironmentMayAskForALogToo) {
    AgentProcess::Setting setting;
    setting.environment = {{"TEV_LOG_LEVEL", "6"}};
    EXPECT_THAT(onNode({"get", "Plain", "version"}, setting).err, HasSubstr(" LOG 6 "));
    EXPECT_EQ(onNode({"--log-level", "0", "get", "Plain", "version"}, setting).err, "");
}

TEST_F(ProgramTest, logsToAFile) {
    const TempFolder folder;
    const std::string file = folder.path() / "agent.log";
    const AgentOutcome outcome = onNode({"--log-file", file, "--log-level", "6", "get", "Plain", "version"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(contents(file), HasSubstr(" LOG 6 "));
    // Asking for a file is asking for a log: the usual level, at which a refused instance is noted.
    const std::string other = folder.path() / "other.log";
    EXPECT_EQ(onNode({"--log-file", other, "get", "Nothing"}).status, 1);
    EXPECT_THAT(contents(other), AllOf(HasSubstr(" LOG 3 "), Not(HasSubstr(" LOG 6 "))));
}

TEST_F(ProgramTest, aLogFileThatCannotBeOpenedIsStatus3) {
    const TempFolder folder;
    expectFailure(onNode({"--log-file", folder.path(), "list"}), 3,
                  testing::Eq("tev-agent: the file of --log-file, " + folder.path().string() +
                              ", cannot be used: Is a directory\n"));
    expectFailure(onNode({"--log-file", "/nowhere/log", "list"}), 3,
                  HasSubstr("--log-file, /nowhere/log, cannot be used: No such file or directory\n"));
}

/// For a program that was taken away from its libraries.
AgentProcess::Setting withTheLibraries() {
    AgentProcess::Setting setting;
    setting.environment["LD_LIBRARY_PATH"] = std::filesystem::path(TEV_COMPONENT_LIBRARY).parent_path();
    return setting;
}

TEST_F(ProgramTest, theUsualComponentIsTheLibraryBesideTheProgram) {
    const TempFolder prefix;
    std::filesystem::create_directory(prefix.path() / "bin");
    std::filesystem::create_directory(prefix.path() / "lib");
    const std::string program = prefix.path() / "bin" / "tev-agent";
    std::filesystem::copy_file(TEV_AGENT_PROGRAM, program);
    const std::filesystem::path library = prefix.path() / "lib" / "libtev_schema_populator.so";
    std::filesystem::copy_file(TEV_COMPONENT_LIBRARY, library);
    EXPECT_THAT(AgentProcess({"check", "--only", "load.opens"}, withTheLibraries(), program).outcome().out,
                HasSubstr(": " + library.string() + "\n"));
}

TEST_F(ProgramTest, withoutALibraryBesideItTheUsualComponentIsTheInstalledOne) {
    const TempFolder prefix;
    const std::string program = prefix.path() / "tev-agent";
    std::filesystem::copy_file(TEV_AGENT_PROGRAM, program);
    EXPECT_THAT(AgentProcess({"check", "--only", "load.opens"}, withTheLibraries(), program).outcome().out,
                HasSubstr(std::string(": ") + TEV_INSTALLED_LIBRARIES + "/libtev_schema_populator.so: "));
}

TEST_F(ProgramTest, helpAndVersionAreResults) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"list", "--help"}, {"get", "--help"}, {"check", "-h"}}) {
        const AgentOutcome outcome = AgentProcess::run(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Usage: tev-agent"));
        EXPECT_EQ(outcome.err, "");
    }
    EXPECT_THAT(AgentProcess::run({"--help"}).out, AllOf(HasSubstr("--node"), HasSubstr("list"), HasSubstr("check")));
    const AgentOutcome version = AgentProcess::run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.out, testing::MatchesRegex("tev-agent [0-9.]+\n"));
}

// exit statuses

TEST_F(ProgramTest, wrongUsageIsStatus2) {
    expectFailure(AgentProcess::run({}), 2, HasSubstr("no command is given"));
    expectFailure(AgentProcess::run({"list"}), 2, HasSubstr("--node"));
    expectFailure(onNode({"--nothing", "list"}), 2, HasSubstr("--nothing"));
    expectFailure(onNode({"shout"}), 2, HasSubstr("shout"));
    expectFailure(onNode({"get"}), 2, HasSubstr("DN|SCHEMA-ID"));
    expectFailure(onNode({"get", "ManagedElement=1"}), 2, HasSubstr("ManagedElement=1 must be named"));
    expectFailure(onNode({"get", "Plain", "version", "version"}), 2, HasSubstr("version is named twice"));
    expectFailure(onNode({"--component", "", "list"}), 2, HasSubstr("--component: the value is empty"));
    expectFailure(onNode({"--log-file", "", "list"}), 2, HasSubstr("--log-file: the value is empty"));
    expectFailure(onNode({"list", "--filter", ""}), 2, HasSubstr("--filter: the value is empty"));
    expectFailure(onNode({"get", "Plain", "--filter", "P*"}), 2, HasSubstr("--filter"));
    expectFailure(onNode({"--output", "xml", "list"}), 2, HasSubstr("xml"));
    expectFailure(onNode({"--log-level", "9", "list"}), 2, HasSubstr("--log-level"));
    expectFailure(onNode({"list", "--config", "/etc/other.cfg"}), 2, HasSubstr("libtev_schema_populator.cfg"));
}

TEST_F(ProgramTest, anAgentThatCannotStartIsStatus3) {
    expectFailure(AgentProcess::run({"--models", "/nowhere", "list"}), 3, HasSubstr("/nowhere"));
    expectFailure(onNode({"--objects", "/nowhere", "list"}), 3, HasSubstr("/nowhere"));
    expectFailure(onNode({"--component", "/nowhere.so", "list"}), 3,
                  HasSubstr("cannot use component library /nowhere.so: "));
}

TEST_F(ProgramTest, aNodeThatTheFileSystemRefusesIsStatus3) {
    expectFailure(
        AgentProcess::run({"--node", "/" + std::string(300, 'x'), "list"}), 3,
        HasSubstr("the folder of models cannot be read: File name too long; --node or --models names another\n"));
    const TempFolder folder;
    const std::filesystem::path secret = folder.path() / "secret";
    std::filesystem::create_directory(secret);
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    expectFailure(AgentProcess::run({"--node", secret, "list"}, unprivileged()), 3,
                  HasSubstr(secret.string() + "/models: the folder of models cannot be read: Permission denied; "
                                              "--node or --models names another\n"));
}

TEST_F(ProgramTest, aBadObjectsFileIsStatus3WithFileLineAndReason) {
    const std::string place = "tev-agent: " + node.path() + "/managed-objects.xml:2: ";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"<managedObjects>\n<mo class=\"A\" id=\"1\"><attribute name=\"a\" type=\"int9\"/></mo></managedObjects>",
         "the attribute \"a\" has an unknown type \"int9\""},
        {"<managedObjects>\n<mo class=\"A\" id=\"1\"><attribute name=\"a\" "
         "type=\"int8\"><value>128</value></attribute></mo></managedObjects>",
         "the attribute \"a\": \"128\" is out of the range of type int8"},
        {"<managedObjects><mo class=\"A\" id=\"1\"/>\n<mo class=\"A\" id=\"1\"/></managedObjects>",
         "there is an object of class \"A\" and id \"1\" with this parent already"},
        {"<managedObjects>\n<thing/></managedObjects>", "<thing> does not belong here"},
        {"<managedObjects>\n<mo class=\"Schema\" id=\"1\"/></managedObjects>",
         "objects of class \"Schema\" belong to component \"TevSchemaMoService\", and could not be read from here"}};
    for (const auto& [bad, reason] : cases) {
        node.writeObjects(bad);
        expectFailure(onNode({"list"}), 3, testing::Eq(place + reason + "\n"));
    }
}

TEST_F(ProgramTest, twoRoutesOfAClassToDifferentComponentsAreStatus3) {
    node.writeObjects(R"(<managedObjects><route class="Schema" parent="ManagedElement,SystemFunctions,SysM"
                         component="Thief"/></managedObjects>)");
    expectFailure(onNode({"list"}), 3,
                  HasSubstr("class Schema is routed to two components, TevSchemaMoService and Thief; take the route to "
                            "the latter out of the file of --objects\n"));
}

TEST_F(ProgramTest, resultsThatCannotBeWrittenAreStatus1) {
    AgentProcess::Setting full;
    full.out = open("/dev/full", O_WRONLY | O_CLOEXEC);
    AgentProcess::Setting closed;
    closed.out = AgentProcess::closed;
    for (const std::vector<std::string>& command : {std::vector<std::string>{"list"},
                                                    {"get", "Plain"},
                                                    {"check"},
                                                    {"--output=json", "list"},
                                                    {"--help"},
                                                    {"--version"}}) {
        expectFailure(onNode(command, full), 1, HasSubstr("cannot write to standard output: No space left on device"));
        expectFailure(onNode(command, closed), 1, HasSubstr("cannot write to standard output: Bad file descriptor"));
    }
    close(full.out);
}

// "tev-agent list | head -1" told of a broken pipe.
TEST_F(ProgramTest, aReaderWhoHasGoneAwayIsStatus141AndNothingIsSaid) {
    Pipe unread(0);
    unread.closeReading();
    AgentProcess::Setting gone;
    gone.out = unread.writing();
    for (const std::vector<std::string>& command : {std::vector<std::string>{"list"},
                                                    {"get", "Plain"},
                                                    {"check"},
                                                    {"check", "--in-process"},
                                                    {"--output=json", "list"},
                                                    {"--help"},
                                                    {"--version"}}) {
        const AgentOutcome outcome = onNode(command, gone);
        EXPECT_EQ(outcome.status, 141) << command.front();
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(ProgramTest, waitsForAFullOutputThatIsNonBlocking) {
    Pipe pipe(O_NONBLOCK);
    AgentProcess::Setting setting;
    setting.out = pipe.writing();
    const std::string longName(100000, 'L');
    node.writeModel("long.xml", "<mom name=\"" + longName + "\"/>");
    AgentProcess agent(nodeAnd({"get", longName, "schemaId"}), setting);
    pipe.closeWriting();
    pipe.waitUntilFull();
    EXPECT_EQ(pipe.readAll(), "schemaId\n" + longName + "\n");
    EXPECT_EQ(agent.outcome().status, 0);
}

TEST_F(ProgramTest, waitsForAFullStandardErrorThatIsNonBlocking) {
    Pipe pipe(O_NONBLOCK);
    AgentProcess::Setting setting;
    setting.err = pipe.writing();
    const std::string longName(100000, 'L');
    AgentProcess agent(nodeAnd({"get", longName}), setting);
    pipe.closeWriting();
    pipe.waitUntilFull();
    EXPECT_EQ(pipe.readAll(),
              "tev-agent: there is no " + TestNode::schemaDn(longName) + "; list shows those that there are\n");
    EXPECT_EQ(agent.outcome().status, 1);
}

TEST_F(ProgramTest, anInterruptedCommandIsStatus130UnlessInterruptsAreIgnored) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/interrupts_itself.so";
    const std::vector<std::string> command = {"--component", library, "get", "one", "version"};
    expectFailure(onNode(command), 130, HasSubstr("tev-agent: interrupted\n"));
    AgentProcess::Setting setting;
    setting.ignoredSignals = {SIGINT};
    EXPECT_EQ(onNode(command, setting).out, "version\nvalue\n");
}

}  // namespace

}  // namespace TevTest

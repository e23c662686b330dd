// What the program writes as JSON is what docs/tev-agent.schema.json describes, as a validator of its own sees it.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "AgentProcess.h"
#include "TestNode.h"

namespace TevTest {

namespace {

class JsonSchemaTest : public testing::Test {
protected:
    /// What the program writes for a command on the node.
    std::string written(const std::vector<std::string>& command) const {
        std::vector<std::string> words = {"--node", node.path(), "--output", "json"};
        words.insert(words.end(), command.begin(), command.end());
        return AgentProcess::run(words).out;
    }

    /// What the validator has against `document` as one of those that `definition` describes; nothing when it is one.
    std::string faultsOf(const std::string& document, const std::string& definition) const {
        const std::string file = folder.write("document", document);
        ChildProcess::Setting setting;
        setting.in = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        ChildProcess validator(TEV_VALIDATE_JSON, {TEV_JSON_SCHEMA, definition}, setting);
        close(setting.in);
        const int code = validator.wait();
        EXPECT_EQ(validator.err(), "");
        EXPECT_EQ(code, validator.out().empty() ? 0 : 1);
        return validator.out();
    }

    /// The same, of a document with `replacement` in place of the first `part`.
    std::string faultsWith(std::string document, const std::string& part, const std::string& replacement,
                           const std::string& definition) const {
        const std::size_t position = document.find(part);
        EXPECT_NE(position, std::string::npos) << part;
        return faultsOf(document.replace(position, part.size(), replacement), definition);
    }

    TestNode node;
    const TempFolder folder;
};

TEST_F(JsonSchemaTest, describesList) {
    node.writeModel("4.xml", "<mom name=\"Sch\xc3\xb6n &quot;\xe4\xb8\xad&quot;\" version=\"1\"/>");
    EXPECT_EQ(faultsOf(written({"list"}), "list"), "");
    EXPECT_EQ(faultsOf(written({"list", "--filter", "Nothing*"}), "list"), "");
}

TEST_F(JsonSchemaTest, refusesWhatListDoesNotWrite) {
    const std::string list = written({"list"});
    EXPECT_NE(faultsWith(list, "schemas", "models", "list"), "");
    EXPECT_NE(faultsWith(list, "\"version\"", "\"Version\"", "list"), "");
    EXPECT_NE(faultsWith(list, "\"version\"", "\"more\":null,\"version\"", "list"), "");
    EXPECT_NE(faultsWith(list, "\"1.2\"", "1.2", "list"), "");
    EXPECT_NE(faultsWith(list, "[\"Hot Swap\"]", "\"Hot Swap\"", "list"), "");
    EXPECT_NE(faultsOf(written({"get", "Plain", "version"}), "list"), "");
}

TEST_F(JsonSchemaTest, describesGet) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"get", "Transport"}, {"get", "Plain", "selectedModelOptions", "version"}}) {
        const std::string document = written(command);
        EXPECT_EQ(faultsOf(document, "get"), "");
        EXPECT_EQ(faultsOf(document, "getSchema"), "");
    }
    const std::string other = written({"get", "ManagedElement=1,Transport=1,ServiceCategory=OamBulk", "dscp"});
    EXPECT_EQ(faultsOf(other, "get"), "");
    EXPECT_EQ(faultsOf(other, "getObject"), "");
}

TEST_F(JsonSchemaTest, refusesWhatGetDoesNotWrite) {
    EXPECT_NE(faultsOf(written({"list"}), "get"), "");
    const std::string one = written({"get", "Plain", "version", "selectedModelOptions"});
    for (const std::string definition : {"get", "getSchema"}) {
        EXPECT_NE(faultsWith(one, "\"version\":\"\"", "\"version\":7", definition), "");
        EXPECT_NE(faultsWith(one, "[]", "\"\"", definition), "");
    }
    // An array for a single value passed for an attribute of another class.
    EXPECT_NE(faultsWith(one, "\"version\":\"\"", "\"version\":[]", "getSchema"), "");
    EXPECT_NE(faultsWith(one, "\"version\":\"\"", "\"version\":[\"1\"]", "getSchema"), "");
    const std::string other = written({"get", "ManagedElement=1,Transport=1,ServiceCategory=OamBulk", "dscp"});
    EXPECT_NE(faultsWith(other, "[\"10\"]", "[10]", "get"), "");
    EXPECT_NE(faultsWith(other, "[\"10\"]", "\"10\"", "getObject"), "");
}

TEST_F(JsonSchemaTest, describesCheck) {
    EXPECT_EQ(faultsOf(written({"check"}), "check"), "");
    EXPECT_EQ(faultsOf(written({"check", "/nowhere.so"}), "check"), "");
}

TEST_F(JsonSchemaTest, refusesWhatCheckDoesNotWrite) {
    const std::string check = written({"check"});
    EXPECT_NE(faultsWith(check, "\"result\":\"passed\"", "\"result\":\"fine\"", "check"), "");
    EXPECT_NE(faultsWith(check, "\"remark\"", "\"Remark\"", "check"), "");
    EXPECT_NE(faultsOf(written({"list"}), "check"), "");
}

TEST_F(JsonSchemaTest, describesExport) {
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/exports_in_company.so";
    const std::string exports = written({"export", "--all", "--jobs=2", "sftp://h/p", "--component", library,
                                         "--password-file", folder.write("password", "secret\n")});
    EXPECT_THAT(exports, testing::AllOf(testing::HasSubstr("true"), testing::HasSubstr("false")));
    EXPECT_EQ(faultsOf(exports, "export"), "");
    EXPECT_EQ(faultsOf(written({"export", "1", "sftp://h/p", "--component",
                                std::string(TEV_HOSTILE_COMPONENTS) + "/exports_as_told.so", "--password-file",
                                folder.path() / "password"}),
                       "export"),
              "");
    EXPECT_NE(faultsWith(exports, "\"exported\":false", "\"exported\":null", "export"), "");
    EXPECT_NE(faultsWith(exports, "\"model\"", "\"more\":\"\",\"model\"", "export"), "");
    EXPECT_NE(faultsWith(exports, "\"message\"", "\"remark\"", "export"), "");
}

}  // namespace

}  // namespace TevTest

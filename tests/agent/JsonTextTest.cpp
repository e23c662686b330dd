#include "JsonText.h"

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <gmock/gmock.h>

namespace TevAgent {

namespace {

using testing::ElementsAre;

const std::string schemaDn = "ManagedElement=1,Schema=Transport";

Poco::JSON::Object::Ptr parsed(const std::string& text) {
    Poco::JSON::ParseHandler::Ptr inFileOrder(new Poco::JSON::ParseHandler(true));
    return Poco::JSON::Parser(inFileOrder).parse(text).extract<Poco::JSON::Object::Ptr>();
}

Poco::JSON::Object::Ptr onlySchema(const Instance& instance) {
    const auto schemas = parsed(JsonText::of(std::vector<Instance>{instance}))->getArray("schemas");
    EXPECT_EQ(schemas->size(), 1U);
    return schemas->getObject(0);
}

TEST(JsonTextTest, showsAttributesInTheirOrder) {
    const auto schema = onlySchema({schemaDn, {{"z", {"1"}}, {"a", {"2"}}, {"m", {"3"}}}});
    EXPECT_THAT(schema->getNames(), ElementsAre("z", "a", "m"));
    EXPECT_EQ(schema->getValue<std::string>("z"), "1");
    EXPECT_EQ(schema->getValue<std::string>("a"), "2");
}

TEST(JsonTextTest, showsNoValueAsNullAndAnEmptyTextAsAnEmptyString) {
    const auto schema = onlySchema({schemaDn, {{"none", {}}, {"empty", {""}}}});
    EXPECT_TRUE(schema->isNull("none"));
    EXPECT_FALSE(schema->isNull("empty"));
    EXPECT_EQ(schema->getValue<std::string>("empty"), "");
}

TEST(JsonTextTest, showsTheOptionsAlwaysAsAnArray) {
    EXPECT_EQ(JsonText::of(std::vector<Instance>{{schemaDn, {{"selectedModelOptions", {}}}}}),
              "{\"schemas\":[\n{\"selectedModelOptions\":[]}\n]}\n");
    EXPECT_EQ(onlySchema({schemaDn, {{"selectedModelOptions", {"x"}}}})->getArray("selectedModelOptions")->size(), 1U);
    const auto two = onlySchema({schemaDn, {{"selectedModelOptions", {"x", "y"}}}})->getArray("selectedModelOptions");
    ASSERT_EQ(two->size(), 2U);
    EXPECT_EQ(two->getElement<std::string>(0), "x");
    EXPECT_EQ(two->getElement<std::string>(1), "y");
}

TEST(JsonTextTest, showsSeveralValuesOfAnyAttributeAsAnArray) {
    EXPECT_EQ(onlySchema({schemaDn, {{"version", {"x", "y"}}}})->getArray("version")->size(), 2U);
}

TEST(JsonTextTest, showsAttributesOfOtherClassesAlwaysAsArrays) {
    for (const std::string dn : {"ManagedElement=1,Ssh=1", "Ssh=1", "Schema=1,Ssh=1"}) {
        EXPECT_EQ(JsonText::of(std::vector<Instance>{{dn, {{"version", {}}, {"b", {"x"}}, {"c", {"x", "y"}}}}}),
                  "{\"schemas\":[\n{\"version\":[],\"b\":[\"x\"],\"c\":[\"x\",\"y\"]}\n]}\n");
    }
}

TEST(JsonTextTest, isADocumentWithoutInstancesToo) {
    EXPECT_EQ(JsonText::of(std::vector<Instance>{}), "{\"schemas\":[]}\n");
}

TEST(JsonTextTest, whatItWritesIsReadBack) {
    for (const std::string& text : {std::string("a/b\\c\"d"), std::string("line\nfeed\ttab\x01\x1f\x7f"),
                                    std::string("B\xc3\xb6se \xe2\x82\xac \xf0\x9f\x98\x80"), std::string("{}[],:")}) {
        EXPECT_EQ(onlySchema({schemaDn, {{"a", {text}}}})->getValue<std::string>("a"), text);
    }
}

TEST(JsonTextTest, repairsBytesThatAreNotUtf8) {
    EXPECT_EQ(onlySchema({schemaDn, {{"a", {"x\xff"}}}})->getValue<std::string>("a"), "x\xef\xbf\xbd");
}

TEST(JsonTextTest, putsEachInstanceOnALineOfItsOwn) {
    EXPECT_EQ(JsonText::of(std::vector<Instance>{{schemaDn, {{"a", {"1"}}}}, {schemaDn, {{"a", {"2"}}}}}),
              "{\"schemas\":[\n{\"a\":\"1\"},\n{\"a\":\"2\"}\n]}\n");
}

TEST(JsonTextTest, showsCheckResults) {
    using Outcome = CheckResult::Outcome;
    const auto checks = parsed(JsonText::of(std::vector<CheckResult>{{"a.b", "It is", Outcome::Passed, ""},
                                                                     {"a.c", "It does", Outcome::Crashed, "why"}}))
                            ->getArray("checks");
    ASSERT_EQ(checks->size(), 2U);
    EXPECT_THAT(checks->getObject(0)->getNames(), ElementsAre("id", "description", "result", "remark"));
    EXPECT_EQ(checks->getObject(0)->getValue<std::string>("id"), "a.b");
    EXPECT_EQ(checks->getObject(0)->getValue<std::string>("description"), "It is");
    EXPECT_EQ(checks->getObject(0)->getValue<std::string>("result"), "passed");
    EXPECT_EQ(checks->getObject(1)->getValue<std::string>("result"), "crashed");
    EXPECT_EQ(checks->getObject(1)->getValue<std::string>("remark"), "why");
}

TEST(JsonTextTest, readsCheckResultsBack) {
    using Outcome = CheckResult::Outcome;
    for (const Outcome outcome :
         {Outcome::Passed, Outcome::Failed, Outcome::Skipped, Outcome::Warning, Outcome::Crashed}) {
        const std::vector<CheckResult> results =
            JsonText::checkResults(JsonText::of(std::vector<CheckResult>{{"a.b", "It \"is\"", outcome, "\xc3\xa9"}}));
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results[0].id, "a.b");
        EXPECT_EQ(results[0].description, "It \"is\"");
        EXPECT_EQ(results[0].outcome, outcome);
        EXPECT_EQ(results[0].remark, "\xc3\xa9");
    }
}

TEST(JsonTextTest, takesNothingElseForCheckResults) {
    for (const char* text :
         {"", "{}", "[]", "{\"checks\":[1]}", "{\"checks\":[{\"id\":\"a.b\"}]}",
          "{\"checks\":[{\"id\":\"a\",\"description\":\"b\",\"result\":\"fine\",\"remark\":\"\"}]}"}) {
        EXPECT_THROW(JsonText::checkResults(text), std::exception) << text;
    }
}

}  // namespace

}  // namespace TevAgent

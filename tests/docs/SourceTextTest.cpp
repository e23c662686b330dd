// What the tests of the pages see of a source.

#include "SourceText.h"

#include <gmock/gmock.h>

namespace TevTest {

namespace {

using testing::ElementsAre;

std::vector<std::string> textsOf(const std::string& source) {
    std::vector<std::string> texts;
    for (const SourceText& text : SourceText::in(source)) {
        texts.push_back(text.text);
    }
    return texts;
}

TEST(SourceTextTest, joinsLiteralsThatFollowEachOther) {
    EXPECT_THAT(textsOf("say(\"a \"\n    \"b\" + name + \"c\");"), ElementsAre("a b", "c"));
}

TEST(SourceTextTest, replacesEscapes) {
    EXPECT_THAT(textsOf(R"(say("\"a\\b\n");)"), ElementsAre("\"a\\b\n"));
}

TEST(SourceTextTest, passesCommentsIncludesAndCharactersOver) {
    EXPECT_THAT(textsOf("#include \"A.h\"\n// \"b\"\n/* \"c\" */ if (c == '\"' || c == '\\'' || n > 1'000) {\n"
                        "    say(\"d\");  // \"e\"\n}\n"),
                ElementsAre("d"));
}

TEST(SourceTextTest, takesRawLiterals) {
    EXPECT_THAT(textsOf("f(R\"(a \"b\")\", R\"x(c)\")x\");"), ElementsAre("a \"b\"", "c)\""));
}

TEST(SourceTextTest, leavesOutWhatStandsBeforeAReturnCodeInAList) {
    EXPECT_THAT(textsOf("rows = {{\"a\", \"b\", TevReturnFailure, \"c\"}, {\"d\", \"e\"}};"),
                ElementsAre("c", "d", "e"));
    EXPECT_THAT(textsOf("void f() { say(\"a\"); return TevReturnOk; }"), ElementsAre("a"));
}

TEST(SourceTextTest, knowsTheLineAndWhatTheTextIsFor) {
    const std::vector<SourceText> texts = SourceText::in(
        "\nouter([&] { inner(\"a\", g(1)); });\nthrow E(\"b\");\nconst Texts list = {{\"c\"}};\nf(1);\n\"d\";");
    ASSERT_EQ(texts.size(), 4U);
    EXPECT_EQ(texts[0].line, 2U);
    EXPECT_THAT(texts[0].names, ElementsAre("outer", "inner"));
    EXPECT_TRUE(texts[0].isIn({"other", "outer"}));
    EXPECT_FALSE(texts[0].isIn({"g"}));
    EXPECT_EQ(texts[1].line, 3U);
    EXPECT_THAT(texts[1].names, ElementsAre("E"));
    EXPECT_THAT(texts[2].names, ElementsAre("list"));
    EXPECT_THAT(texts[3].names, ElementsAre());
}

}  // namespace

}  // namespace TevTest

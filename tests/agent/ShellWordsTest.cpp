#include "ShellWords.h"

#include <gmock/gmock.h>

#include "Failure.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Quote = ShellWords::Quote;

std::string refusal(const std::string& line) {
    try {
        ShellWords::of(line);
        return "taken";
    } catch (const Failure& e) {
        EXPECT_EQ(e.status(), ExitStatus::WrongUsage);
        return e.what();
    }
}

TEST(ShellWordsTest, blanksPartWords) {
    EXPECT_THAT(ShellWords::of("  get\tTransport  version "), ElementsAre("get", "Transport", "version"));
    EXPECT_THAT(ShellWords::of(""), IsEmpty());
    EXPECT_THAT(ShellWords::of(" \t"), IsEmpty());
}

TEST(ShellWordsTest, quotedCharactersHaveNoMeaning) {
    EXPECT_THAT(ShellWords::of(R"('a b' "c # d" e\ f \# \'g)"), ElementsAre("a b", "c # d", "e f", "#", "'g"));
    EXPECT_THAT(ShellWords::of(R"('a\' "b\"\\\n'" x'y'"z")"), ElementsAre(R"(a\)", R"(b"\\n')", "xyz"));
    EXPECT_THAT(ShellWords::of(R"('' "")"), ElementsAre("", ""));
}

TEST(ShellWordsTest, aNumberSignBeginsACommentWhereAWordWouldBegin) {
    EXPECT_THAT(ShellWords::of("# all 'of it"), IsEmpty());
    EXPECT_THAT(ShellWords::of("list # the rest"), ElementsAre("list"));
    EXPECT_THAT(ShellWords::of("a#b"), ElementsAre("a#b"));
}

TEST(ShellWordsTest, aQuotationThatDoesNotEndIsRefused) {
    EXPECT_EQ(refusal("get 'a"), "a ' has no second one that ends its quotation");
    EXPECT_EQ(refusal("get \"a"), "a \" has no second one that ends its quotation");
    EXPECT_EQ(refusal("get \"a\\"), "a \" has no second one that ends its quotation");
    EXPECT_EQ(refusal("get a\\"), "nothing stands behind the \\ at the line's end");
}

TEST(ShellWordsTest, tellsTheWordThatIsBegun) {
    const auto word = ShellWords::begun(R"(get "Hot S)");
    ASSERT_TRUE(word);
    EXPECT_THAT(word->before, ElementsAre("get"));
    EXPECT_EQ(word->word, "Hot S");
    EXPECT_EQ(word->quote, Quote::Double);
    const auto fresh = ShellWords::begun("get 'a' ");
    ASSERT_TRUE(fresh);
    EXPECT_THAT(fresh->before, ElementsAre("get", "a"));
    EXPECT_EQ(fresh->word, "");
    EXPECT_EQ(fresh->quote, Quote::None);
    EXPECT_EQ(ShellWords::begun("'a")->quote, Quote::Single);
    EXPECT_FALSE(ShellWords::begun("list # a"));
    EXPECT_FALSE(ShellWords::begun("get \\"));
}

TEST(ShellWordsTest, whatGoesOnWithAWordIsReadBackAsItIs) {
    const std::string text = R"(a b'c"d\e	#f)";
    for (const auto& [begin, quote] : {std::pair("x", Quote::None), {"'x", Quote::Single}, {"\"x", Quote::Double}}) {
        const std::string line = begin + ShellWords::continued(text, quote) + ShellWords::end(quote);
        EXPECT_THAT(ShellWords::of(line), ElementsAre("x" + text)) << line;
        EXPECT_EQ(line.back(), ' ');
    }
    EXPECT_EQ(ShellWords::continued("plain,A=1", Quote::None), "plain,A=1");
}

}  // namespace

}  // namespace TevAgent

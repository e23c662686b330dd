#include "Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace TevAgent {
namespace {

using testing::ElementsAre;

TEST(TextTest, findsEveryAsciiControlCharacter) {
    for (int code = 0; code < 0x80; ++code) {
        const bool isControl = code < 0x20 || code == 0x7f;
        EXPECT_EQ(Text::hasControl("a" + std::string(1, static_cast<char>(code)) + "b"), isControl) << code;
    }
}

TEST(TextTest, findsTheControlCharactersBeyondAscii) {
    EXPECT_TRUE(Text::hasControl("a\xc2\x80"));
    EXPECT_TRUE(Text::hasControl("a\xc2\x9fz"));
    EXPECT_FALSE(Text::hasControl("a\xc2\xa0z"));
    EXPECT_FALSE(
        Text::hasControl("Stra\xc3\x9f"
                         "e"));
    EXPECT_FALSE(Text::hasControl("\xc2"));
}

TEST(TextTest, escapesControlCharactersAndNothingElse) {
    EXPECT_EQ(Text::escaped("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(Text::escaped("\x1b[31m\x7f"), "\\x1b[31m\\x7f");
    EXPECT_EQ(Text::escaped("\xc2\x9b"
                            "31m"),
              "\\x9b31m");
    EXPECT_EQ(Text::escaped("plain \\ \"quoted\" gr\xc3\xbc\xc3\x9f"), "plain \\ \"quoted\" gr\xc3\xbc\xc3\x9f");
    EXPECT_EQ(Text::escaped(std::string("a\0b", 3)), "a\\x00b");
}

TEST(TextTest, escapesInvisibleCharactersThatChangeHowOthersAreShown) {
    EXPECT_EQ(Text::escaped("a\xe2\x80\xae"
                            "b"),
              "a\\u202eb");
    EXPECT_EQ(Text::escaped("\xe2\x81\xa6\xe2\x80\x8f\xe2\x80\x8b\xef\xbb\xbf"), "\\u2066\\u200f\\u200b\\ufeff");
    EXPECT_EQ(Text::escaped("\xe2\x80\xa8\xe2\x80\xa9"), "\\u2028\\u2029");
    EXPECT_EQ(Text::escaped("\xf3\xa0\x81\x81"), "\\U000e0041");
    EXPECT_FALSE(Text::hasControl("\xe2\x80\xae"));
}

TEST(TextTest, escapesNoLetterOfAnyScript) {
    for (const char* text : {"\xd7\xa9\xd7\x9c", "\xe4\xb8\xad", "\xf0\x9f\x98\x80", "e\xcc\x81"}) {
        EXPECT_EQ(Text::escaped(text), text);
    }
}

TEST(TextTest, escapedTextHasNoByteThatATerminalMayTakeForAControlCharacter) {
    EXPECT_EQ(Text::escaped("a\x9b[2J\xff"), "a\xef\xbf\xbd[2J\xef\xbf\xbd");
}

TEST(TextTest, trimsWhiteSpaceAtTheEndsOnly) {
    EXPECT_EQ(Text::trimmed(" \t\r\n a b \n"), "a b");
    EXPECT_EQ(Text::trimmed(" \n "), "");
    EXPECT_EQ(Text::trimmed(""), "");
}

TEST(TextTest, shortensLongTextsAtACharacterBorder) {
    EXPECT_EQ(Text::shortened(std::string(80, 'a')), std::string(80, 'a'));
    EXPECT_EQ(Text::shortened(std::string(81, 'a')), std::string(80, 'a') + "...");
    EXPECT_EQ(Text::quoted(std::string(79, 'a') + "\xc3\xbcz"), '"' + std::string(79, 'a') + "...\"");
}

TEST(TextTest, splitGivesOnePartMoreThanSeparators) {
    EXPECT_THAT(Text::split("a,b,c", ','), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Text::split(",a,", ','), ElementsAre("", "a", ""));
    EXPECT_THAT(Text::split("", ','), ElementsAre(""));
}

TEST(TextTest, tellsWhyATextCannotStandInAnRdn) {
    EXPECT_EQ(Text::faultOfRdnPart("TransportModel v2"), "");
    EXPECT_EQ(Text::faultOfRdnPart(""), "is empty");
    EXPECT_EQ(Text::faultOfRdnPart("a=b"), "holds '=': \"a=b\"");
    EXPECT_EQ(Text::faultOfRdnPart("a,b"), "holds ',': \"a,b\"");
    EXPECT_EQ(Text::faultOfRdnPart("a\nb"), "holds a control character: \"a\nb\"");
}

}  // namespace
}  // namespace TevAgent

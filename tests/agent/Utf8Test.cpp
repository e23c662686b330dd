#include "Utf8.h"

#include <gmock/gmock.h>

namespace TevAgent {

namespace {

TEST(Utf8Test, leavesWellFormedTextAsItIs) {
    for (const char* text : {"", "plain", "B\xc3\xb6se", "\xe2\x82\xac", "\xf0\x9f\x98\x80 end", "\x1b[2J", "\x7f"}) {
        EXPECT_EQ(Utf8::repaired(text), text);
    }
    EXPECT_EQ(Utf8::repaired(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Utf8Test, replacesEachByteThatBelongsToNoCharacter) {
    EXPECT_EQ(Utf8::repaired("a\xffz"), "a\xef\xbf\xbdz");
    EXPECT_EQ(Utf8::repaired("\x80"), "\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("cut \xe2\x82"), "cut \xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("\xc3(\xc3\xb6"), "\xef\xbf\xbd(\xc3\xb6");
}

TEST(Utf8Test, replacesOverlongFormsSurrogatesAndWhatIsBeyondUnicode) {
    EXPECT_EQ(Utf8::repaired("\xc0\xaf"), "\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("\xe0\x80\xaf"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("\xed\xa0\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("\xf4\x90\x80\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(Utf8::repaired("\xf8\x88\x80\x80\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
}

TEST(Utf8Test, countsCharactersNotBytes) {
    EXPECT_EQ(Utf8::length(""), 0U);
    EXPECT_EQ(Utf8::length("abc"), 3U);
    EXPECT_EQ(Utf8::length("B\xc3\xb6se \xe2\x82\xac"), 6U);
}

}  // namespace

}  // namespace TevAgent

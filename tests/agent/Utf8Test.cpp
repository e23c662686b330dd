#include "Utf8.h"

#include <gmock/gmock.h>
#include <locale.h>

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

TEST(Utf8Test, countsTheColumnsOfATerminal) {
    EXPECT_EQ(Utf8::columns(""), 0U);
    EXPECT_EQ(Utf8::columns("abc"), 3U);
    EXPECT_EQ(Utf8::columns("B\xc3\xb6se \xe2\x82\xac"), 6U);
    EXPECT_EQ(Utf8::columns("\xe4\xb8\xad\xf0\x9f\x98\x80"), 4U) << "double width";
    EXPECT_EQ(Utf8::columns("Bo\xcc\x88se"), 4U) << "a diaeresis of its own";
    EXPECT_EQ(Utf8::columns("\xef\xbf\xbd\xee\x80\x80"), 2U) << "one that nobody knows";
}

TEST(Utf8Test, fitsWholeCharactersIntoColumns) {
    EXPECT_EQ(Utf8::fitted("abc", 2), "ab");
    EXPECT_EQ(Utf8::fitted("abc", 3), "abc");
    EXPECT_EQ(Utf8::fitted("abc", 0), "");
    EXPECT_EQ(Utf8::fitted("", 5), "");
    EXPECT_EQ(Utf8::fitted("a\xe4\xb8\xadz", 2), "a");
    EXPECT_EQ(Utf8::fitted("a\xe4\xb8\xadz", 3), "a\xe4\xb8\xad");
    EXPECT_EQ(Utf8::fitted("ao\xcc\x88z", 2), "ao\xcc\x88");
}

TEST(Utf8Test, leavesTheLocaleAsItIs) {
    EXPECT_EQ(Utf8::columns("\xe4\xb8\xad"), 2U);
    EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
}

}  // namespace

}  // namespace TevAgent

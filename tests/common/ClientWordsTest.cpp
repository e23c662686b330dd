#include "ClientWords.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Tev::ClientWords;

TEST(ClientWordsTest, linesAreCutAnywhere) {
    ClientWords words(false);
    words.add("one\r\ntw");
    words.add("o\nthr");
    words.add("ee");
    EXPECT_THAT(words.take(), ElementsAre("one", "two", "three"));
    EXPECT_THAT(words.take(), IsEmpty());
}

TEST(ClientWordsTest, whatTheClientSaysInAnyCaseIsLeftOut) {
    ClientWords words(false);
    words.add(
        "@@@@@@@@@@@\n"
        "Warning: Permanently added 'h' (ED25519) to the list of known hosts.\r\n"
        "debug1: Authentication succeeded (password).\n"
        "\rInterrupt  \n"
        "   \n"
        "Couldn't send packet: Broken pipe\n"
        "Connection closed  \r\n"
        "Connection closed by 127.0.0.1 port 1\n");
    EXPECT_THAT(words.take(), ElementsAre("Connection closed by 127.0.0.1 port 1"));
}

TEST(ClientWordsTest, placeInTheClientsSourceIsCutOff) {
    ClientWords words(false);
    words.add("packet.c:sshpkt_vfatal():1931 (pid=1): Unable to negotiate with h port 22: no matching MAC found\n");
    EXPECT_THAT(words.take(), ElementsAre("Unable to negotiate with h port 22: no matching MAC found"));
}

// What comes before a lone carriage return may be the server's: "Received disconnect from h: foo\rHost key for …".
TEST(ClientWordsTest, carriageReturnWithinALineEndsNone) {
    ClientWords words(false);
    words.add("one\rtwo\r");
    words.add("\n\rthree  \r\r\n");
    EXPECT_THAT(words.take(), ElementsAre("one?two", "three"));
}

TEST(ClientWordsTest, logIsNotFloodedBetweenTwoCalls) {
    const TevTest::LogCapture log(6);
    ClientWords words(true);
    for (int i = 0; i < 1000; ++i) {
        words.add("a\n");
    }
    words.take();
    words.add("b\n");
    std::vector<std::string> texts;
    for (const TevTest::LogRecord& record : log.recordsOf("execute")) {
        if (record.type == "LOG") {
            texts.push_back(record.text);
        }
    }
    ASSERT_EQ(texts.size(), 202U);
    EXPECT_EQ(texts[199], "sftp: a");
    EXPECT_EQ(texts[200], "sftp: (more, which is dropped)");
    EXPECT_EQ(texts[201], "sftp: b");
}

TEST(ClientWordsTest, controlCharactersAreReplaced) {
    EXPECT_EQ(Tev::printable("a\x1b[2J\t\x7f\xc3\xa4"), "a?[2J??\xc3\xa4");
    // Some terminals take U+009B for an escape and a bracket.
    EXPECT_EQ(Tev::printable("\xc2\x9b"
                             "2J\xc2\x80\xc2\xa0\xc3\x9b"),
              "?2J?\xc2\xa0\xc3\x9b");
}

// Some terminals take the byte 0x9b for an escape and a bracket, too.
TEST(ClientWordsTest, bytesThatAreNoCharacterAreReplaced) {
    EXPECT_EQ(Tev::printable("\x9bm\xff\xc2"), "?m??");
    EXPECT_EQ(Tev::printable("\xe2\x82\xac\xf0\x9f\x98\x80\xe2\x82"), "\xe2\x82\xac\xf0\x9f\x98\x80??");
    EXPECT_EQ(Tev::printable("\xc2\x1b[2J"), "??[2J") << "what follows is a character of its own";
}

}  // namespace

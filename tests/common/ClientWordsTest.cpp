#include "ClientWords.h"

#include <gmock/gmock.h>

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

TEST(ClientWordsTest, controlCharactersAreReplaced) {
    EXPECT_EQ(Tev::printable("a\x1b[2J\t\x7f\xc3\xa4"), "a?[2J??\xc3\xa4");
}

}  // namespace

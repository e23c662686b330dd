#include "PasswordPrompt.h"

#include <gtest/gtest.h>

namespace {

using Tev::PasswordPrompt;

// The client writes a carriage return, throws away what was typed, and only then asks.
TEST(PasswordPromptTest, loneCarriageReturnIsNoQuestion) {
    PasswordPrompt prompt;
    EXPECT_FALSE(prompt.read("\r"));
    EXPECT_TRUE(prompt.read("tester@host's password: "));
}

TEST(PasswordPromptTest, questionInPiecesIsOne) {
    PasswordPrompt prompt;
    EXPECT_TRUE(prompt.read("\rtester@host's "));
    EXPECT_FALSE(prompt.read("password: "));
    EXPECT_FALSE(prompt.read("\n"));
    EXPECT_EQ(prompt.secondQuestion(), "");
}

TEST(PasswordPromptTest, questionAfterTheAnswerIsTheSecond) {
    PasswordPrompt prompt;
    EXPECT_TRUE(prompt.read("\r(tester@host) Password: "));
    EXPECT_FALSE(prompt.read("\n\r"));
    EXPECT_EQ(prompt.secondQuestion(), "");
    EXPECT_FALSE(prompt.read("New "));
    EXPECT_FALSE(prompt.read("password: "));
    EXPECT_EQ(prompt.secondQuestion(), "New password: ");
}

}  // namespace

#include "PasswordPrompt.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using Tev::PasswordPrompt;

/// Whether the question stands there after `bytes`, with nothing more to read.
bool isQuestionAfter(PasswordPrompt& prompt, std::string_view bytes) {
    prompt.read(bytes);
    return prompt.takeQuestion();
}

// The client writes a carriage return, throws away what was typed, and only then asks.
TEST(PasswordPromptTest, loneCarriageReturnIsNoQuestion) {
    PasswordPrompt prompt;
    EXPECT_FALSE(prompt.takeQuestion());
    EXPECT_FALSE(isQuestionAfter(prompt, "\r"));
    EXPECT_TRUE(isQuestionAfter(prompt, "tester@host's password: "));
}

TEST(PasswordPromptTest, questionInPiecesIsOne) {
    PasswordPrompt prompt;
    EXPECT_TRUE(isQuestionAfter(prompt, "\rtester@host's "));
    EXPECT_FALSE(isQuestionAfter(prompt, "password: "));
    EXPECT_FALSE(isQuestionAfter(prompt, "\n"));
    EXPECT_EQ(prompt.secondQuestion(), "");
}

// A question of two lines was taken for two questions, and the password said to be refused.
TEST(PasswordPromptTest, questionOfTwoLinesIsOne) {
    const std::string_view question = "\r(tester@host) Welcome to the vault.\nPassword: ";
    for (std::size_t cut = 0; cut <= question.size(); ++cut) {
        PasswordPrompt prompt;
        const int questions =
            isQuestionAfter(prompt, question.substr(0, cut)) + isQuestionAfter(prompt, question.substr(cut));
        EXPECT_EQ(questions, 1) << cut;
        EXPECT_FALSE(isQuestionAfter(prompt, "\n"));
        EXPECT_EQ(prompt.secondQuestion(), "") << cut;
    }
}

TEST(PasswordPromptTest, firstLineAloneIsNoQuestion) {
    PasswordPrompt prompt;
    EXPECT_FALSE(isQuestionAfter(prompt, "\rWelcome to the vault.\n"));
    EXPECT_FALSE(isQuestionAfter(prompt, "\r\n"));
    EXPECT_TRUE(isQuestionAfter(prompt, "Password: "));
}

TEST(PasswordPromptTest, questionAfterTheAnswerIsTheSecond) {
    PasswordPrompt prompt;
    EXPECT_TRUE(isQuestionAfter(prompt, "\r(tester@host) Password: "));
    EXPECT_FALSE(isQuestionAfter(prompt, "\n\r"));
    EXPECT_EQ(prompt.secondQuestion(), "");
    EXPECT_FALSE(isQuestionAfter(prompt, "New "));
    EXPECT_FALSE(isQuestionAfter(prompt, "password: "));
    EXPECT_EQ(prompt.secondQuestion(), "New password: ");
}

}  // namespace

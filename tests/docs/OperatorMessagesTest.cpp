// docs/operator-guide.md tells of every text that an operator may read: those that the component posts to the thread
// context, the sentences of the SFTP runner, and what the agent says.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "FileText.h"
#include "MarkdownPage.h"
#include "SourceText.h"

namespace TevTest {

namespace {

namespace fs = std::filesystem;

const std::string anything = "\u2026";

// The calls, and what is assigned to, whose texts go to the log or into the help.
const std::vector<std::string> otherNames = {
    "SCHEMA_LOG", "SCHEMA_LOG_AS", "SCHEMA_TRACE",    "SCHEMA_TRACE_AS", "SCHEMA_TRACE_TO", "addCommand",
    "add_flag",   "add_option",    "footer",          "logic_error",     "set_help_flag",   "set_version_flag",
    "app",        "static_assert", "aboutTheProgram", "addExamples",     "examples",        "el_wset",
    "fputs"};

// What these say, only the log tells of; ClientWords.cpp knows the SFTP client's words. What the items of a check find,
// beside the sentence that the contract has for it, is for those who write components.
const std::set<std::string> otherFiles = {"CheckHost.cpp",
                                          "CheckTransaction.cpp",
                                          "ClientWords.cpp",
                                          "LifeChecks.cpp",
                                          "MoAccessor.cpp",
                                          "ObjectChecks.cpp",
                                          "ProcessState.cpp",
                                          "RegularExpression.cpp",
                                          "SchemaConfiguration.cpp",
                                          "SchemaData.cpp",
                                          "SchemaData.h",
                                          "SchemaPopulatorService.cpp",
                                          "TransactionChecks.cpp",
                                          "TransactionContextManager.cpp"};

// Words of the SFTP client that are looked for, its commands, and a reason that nobody is told.
const std::set<std::string> otherTexts = {": No such file or directory",
                                          "SFTP protocol version",
                                          "dest open ",
                                          "write remote ",
                                          "remote fsync",
                                          "close remote",
                                          "remote rename ",
                                          "remote delete ",
                                          "sftp> version",
                                          "-put -f -- \"/dev/fd/3\" ",
                                          "no room"};

/// Whether a text says something: a word alone is a name, or means nothing without what stands beside it.
bool isSentence(const std::string& text) {
    std::istringstream words(text);
    const auto isLetter = [](unsigned char c) { return std::isalpha(c) != 0; };
    int count = 0;
    for (std::string word; words >> word;) {
        count += std::count_if(word.begin(), word.end(), isLetter) > 1 ? 1 : 0;
    }
    return count > 1;
}

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \n");
    return text.substr(begin, text.find_last_not_of(" \n") - begin + 1);
}

/// The text as the page writes it, with `anything` in the place of each conversion and without blanks around it.
std::string shown(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 1 < text.size() && std::isalpha(static_cast<unsigned char>(text[i + 1])) != 0) {
            i += text.compare(i + 1, 2, "ld") == 0 ? 2 : 1;
            result += anything;
        } else {
            result += text[i];
        }
    }
    return trimmed(result);
}

/// The sentences between what stands for something else, and between the colons where one is put behind another.
std::vector<std::string> piecesOf(const std::string& message) {
    const std::regex gap(anything + "|: ");
    std::vector<std::string> pieces;
    for (std::sregex_token_iterator piece(message.begin(), message.end(), gap, -1), end; piece != end; ++piece) {
        if (isSentence(*piece)) {
            pieces.push_back(trimmed(*piece));
        }
    }
    return pieces;
}

struct Sentence {
    std::string place;
    std::string text;
};

/// The sentences that the sources hold, as the page writes them.
std::vector<Sentence> sentencesOfTheSources() {
    std::vector<Sentence> sentences;
    for (const std::string folder : {"src/agent", "src/common/src", "src/schema_populator"}) {
        for (const fs::directory_entry& file : fs::recursive_directory_iterator(fs::path(TEV_SOURCES) / folder)) {
            const std::string name = file.path().filename();
            const bool isSource = file.path().extension() == ".cpp" || file.path().extension() == ".h";
            if (!isSource || otherFiles.count(name) != 0) {
                continue;
            }
            for (const SourceText& text : SourceText::in(contents(file.path()))) {
                if (isSentence(text.text) && !text.isIn(otherNames) && otherTexts.count(text.text) == 0) {
                    sentences.push_back(
                        {fs::relative(file.path(), TEV_SOURCES).string() + ":" + std::to_string(text.line),
                         shown(text.text)});
                }
            }
        }
    }
    return sentences;
}

class OperatorMessagesTest : public testing::Test {
protected:
    OperatorMessagesTest() {
        for (const auto& row : page.rows()) {
            for (std::size_t cell = 0; cell < row.size(); ++cell) {
                const std::vector<std::string> code = MarkdownPage::codeIn(row[cell]);
                std::vector<std::string>& texts = cell == 0 ? messages : parts;
                texts.insert(texts.end(), code.begin(), code.end());
            }
        }
    }

    const MarkdownPage page{contents(TEV_SOURCES "/docs/operator-guide.md")};
    std::vector<std::string> messages;  ///< those that the page tells of: the code in the first cells
    std::vector<std::string> parts;     ///< the code in the other cells, which may stand for a part of a message
};

bool isHeldBySome(const std::vector<std::string>& texts, const std::string& piece) {
    return std::any_of(texts.begin(), texts.end(),
                       [&](const std::string& text) { return text.find(piece) != std::string::npos; });
}

TEST_F(OperatorMessagesTest, tellsOfEverySentenceOfTheSources) {
    const std::vector<Sentence> sentences = sentencesOfTheSources();
    ASSERT_GT(sentences.size(), 150U);
    for (const Sentence& sentence : sentences) {
        EXPECT_TRUE(isHeldBySome(messages, sentence.text) || isHeldBySome(parts, sentence.text))
            << sentence.place << " says \"" << sentence.text << "\", and no table of docs/operator-guide.md does";
    }
}

TEST_F(OperatorMessagesTest, tellsOfNoSentenceThatNobodySays) {
    std::vector<std::string> said;
    for (const Sentence& sentence : sentencesOfTheSources()) {
        said.push_back(sentence.text);
    }
    for (const std::string& message : messages) {
        for (const std::string& piece : piecesOf(message)) {
            EXPECT_TRUE(isHeldBySome(said, piece))
                << "docs/operator-guide.md has \"" << message << "\", but no source says \"" << piece << '"';
        }
    }
}

TEST_F(OperatorMessagesTest, saysOfEachWhatItMeansAndWhatToDo) {
    for (const auto& row : page.rows()) {
        ASSERT_THAT(row, testing::SizeIs(3)) << row.at(0);
        EXPECT_THAT(row, testing::Each(testing::Not(testing::IsEmpty()))) << row[0];
    }
}

}  // namespace

}  // namespace TevTest

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "FileError.h"
#include "ModelHead.h"
#include "ModelReader.h"
#include "ModelSummary.h"
#include "ObjectsFile.h"
#include "Problem.h"
#include "Text.h"

// Files cut off and files with wrong bytes: whatever they hold, there is a result or a reason, and neither lies.

namespace TevAgent {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// The text of a file of the example node.
std::string example(const std::string& name) {
    const std::string path = std::string(TEV_EXAMPLE_NODE) + "/" + name;
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    if (!stream || text.str().empty()) {
        throw std::runtime_error("cannot read " + path);
    }
    return text.str();
}

/// `text` with up to `most` of its bytes replaced, the same ones for the same state of `random`.
std::string damaged(std::string text, std::size_t most, std::mt19937& random) {
    const std::size_t count = 1 + random() % most;
    for (std::size_t i = 0; i < count; ++i) {
        text[random() % text.size()] = static_cast<char>(random() % 256);
    }
    return text;
}

/// What the head of a model file with this text gives, taken in the reader's blocks.
std::variant<Model, Problem> readModel(const std::string& text) {
    try {
        ModelHead head;
        for (std::size_t begin = 0; !head.isComplete(); begin = std::min(begin + ModelReader::blockSize, text.size())) {
            head.take(std::string_view(text).substr(begin, ModelReader::blockSize), begin == text.size());
        }
        return head.model();
    } catch (const FileError& error) {
        return Problem{"model.xml", error.line(), error.what()};
    }
}

/// Expects a model that keeps the rules, or a problem that a person can act on.
void expectModelOrProblem(const std::string& text) {
    const auto outcome = readModel(text);
    if (const auto* problem = std::get_if<Problem>(&outcome)) {
        EXPECT_NE(problem->reason, "");
        EXPECT_LT(problem->reason.size(), 300U);
        EXPECT_FALSE(Text::hasControl(problem->text()));
        const auto isLineEnd = [](char byte) { return byte == '\n' || byte == '\r'; };
        EXPECT_LE(problem->line, 1 + static_cast<unsigned long>(std::count_if(text.begin(), text.end(), isLineEnd)));
        return;
    }
    const auto& model = std::get<Model>(outcome);
    EXPECT_EQ(Text::faultOfRdnPart(model.name), "");
    EXPECT_FALSE(Text::hasControl(TevTest::summary(model)));
}

/// Why `text` is refused as an objects file, with the line; empty when it is accepted.
std::string refusalOf(const std::string& text) {
    try {
        ObjectsFile().take(text);
        return "";
    } catch (const FileError& error) {
        return Problem{"objects.xml", error.line(), error.what()}.text();
    }
}

TEST(DamagedFilesTest, modelCutOffInsideTheHeadIsAProblemAndBehindItTheWholeModel) {
    const std::string text = example("models/TransportModel.xml");
    const std::string whole = TevTest::summary(std::get<Model>(readModel(text)));
    const std::size_t headAndTag = text.find('>', text.find("<class ")) + 1;
    ASSERT_LT(headAndTag, text.size());
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const auto outcome = readModel(text.substr(0, size));
        ASSERT_EQ(std::holds_alternative<Model>(outcome), size >= headAndTag) << size;
        if (size >= headAndTag) {
            ASSERT_EQ(TevTest::summary(std::get<Model>(outcome)), whole) << size;
        } else {
            ASSERT_THAT(std::get<Problem>(outcome).reason,
                        AnyOf("the file is empty", "the file ends too early, inside an element",
                              "not well-formed XML: no element found"))
                << size;
        }
    }
}

TEST(DamagedFilesTest, modelWithWrongBytesIsAModelOrAProblem) {
    const std::string text = example("models/TransportModel.xml");
    const std::string head = text.substr(0, text.find("<class "));
    std::mt19937 random(20261120);
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        expectModelOrProblem(damaged(head, 3, random) + "<class name=\"C\"/></mom>");
    }
}

TEST(DamagedFilesTest, modelOfRandomBytesIsAModelOrAProblem) {
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        expectModelOrProblem(damaged(std::string(1 + random() % 300, '<'), 300, random));
    }
}

TEST(DamagedFilesTest, objectsFileCutOffIsRefusedWithALine) {
    const std::string text = example("managed-objects.xml");
    const std::string end = "</managedObjects>";
    const std::size_t whole = text.rfind(end) + end.size();
    for (std::size_t size = 1; size < whole; ++size) {
        ASSERT_THAT(
            refusalOf(text.substr(0, size)),
            AllOf(StartsWith("objects.xml:"), AnyOf(HasSubstr("ends too early"), HasSubstr("no element found"))))
            << size;
    }
    EXPECT_EQ(refusalOf(text.substr(0, whole)), "");
}

TEST(DamagedFilesTest, objectsFileWithWrongBytesIsAcceptedOrRefusedWithALine) {
    const std::string text = example("managed-objects.xml");
    constexpr int count = 10000;
    std::mt19937 random(20261121);
    int refused = 0;
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE(i);
        const std::string refusal = refusalOf(damaged(text, 3, random));
        if (!refusal.empty()) {
            ++refused;
            EXPECT_THAT(refusal, MatchesRegex("objects\\.xml:[0-9]+: .+"));
            EXPECT_FALSE(Text::hasControl(refusal));
        }
    }
    EXPECT_GT(refused, count / 2);
    EXPECT_LT(refused, count);
}

}  // namespace
}  // namespace TevAgent

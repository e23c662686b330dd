#include "ModelFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "AsNobody.h"
#include "ModelReader.h"
#include "ModelSummary.h"
#include "TempFolder.h"
#include "TevException.h"

namespace TevAgent {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string hint = "; --node or --models names another";

class ModelFolderTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return (folder.path() / name).string(); }

    std::vector<std::string> summaries() const {
        std::vector<std::string> texts;
        for (const Model& model : ModelFolder::read(folder.path()).models()) {
            texts.push_back(TevTest::summary(model));
        }
        return texts;
    }

    std::vector<std::string> problems() const {
        std::vector<std::string> texts;
        const ModelFolder models = ModelFolder::read(folder.path());
        for (const Problem& problem : models.problems()) {
            texts.push_back(problem.text());
        }
        return texts;
    }

    const TevTest::TempFolder folder;
};

std::string mom(const std::string& attributes) {
    return "<mom " + attributes + "/>";
}

TEST_F(ModelFolderTest, ofAnEmptyFolderIsEmpty) {
    EXPECT_THAT(summaries(), IsEmpty());
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(ModelFolderTest, listsModelsInTheOrderOfTheirNames) {
    folder.write("1.xml", mom(R"(name="b")"));
    folder.write("2.xml", mom("name=\"\xc3\xa4\""));
    folder.write("3.xml", mom(R"(name="B")"));
    folder.write("4.xml", mom(R"(name="aa")"));
    folder.write("5.xml", mom(R"(name="a")"));
    EXPECT_THAT(summaries(), ElementsAre("B -/-/-", "a -/-/-", "aa -/-/-", "b -/-/-", "\xc3\xa4 -/-/-"));
}

TEST_F(ModelFolderTest, listsVersionsOfOneNameInOrderWithNoVersionFirst) {
    folder.write("a.xml", mom(R"(name="A" version="2")"));
    folder.write("b.xml", mom(R"(name="A" version="10")"));
    folder.write("c.xml", mom(R"(name="A")"));
    folder.write("d.xml", mom(R"(name="A" version="3" release="1")"));
    EXPECT_THAT(summaries(), ElementsAre("A -/-/-", "A 10/-/-", "A 2/-/-", "A 3/1/-"));
}

TEST_F(ModelFolderTest, keepsTheFirstInPathOrderOfTwoFilesWithTheSameModel) {
    folder.write("a.xml", mom(R"(name="A" version="2" release="1")"));
    folder.write("b.xml", mom(R"(name="A" version="2" release="9")"));
    folder.write("c.xml", mom(R"(name="A")"));
    folder.write("d.xml", mom(R"(name="A" version="")"));
    EXPECT_THAT(summaries(), ElementsAre("A -/-/-", "A 2/1/-"));
    EXPECT_THAT(problems(), ElementsAre(path("b.xml") + ": left out, because " + path("a.xml") +
                                            " holds the same model: name \"A\" and version \"2\"",
                                        path("d.xml") + ": left out, because " + path("c.xml") +
                                            " holds the same model: name \"A\", without a version"));
}

TEST_F(ModelFolderTest, doesNotDependOnTheOrderOfTheFileSystem) {
    constexpr int count = 20;
    const auto fill = [](const TevTest::TempFolder& target, int number) {
        const std::string name = "Model" + std::to_string(number);
        target.write(name + "-first.xml", mom("name=\"" + name + "\" release=\"1\""));
        target.write(name + "-second.xml", mom("name=\"" + name + "\" release=\"2\""));
    };
    const TevTest::TempFolder backwards;
    for (int i = 0; i < count; ++i) {
        fill(folder, i);
    }
    for (int i = count; i-- > 0;) {
        const std::string name = "Model" + std::to_string(i);
        backwards.write(name + "-second.xml", mom("name=\"" + name + "\" release=\"2\""));
        backwards.write(name + "-first.xml", mom("name=\"" + name + "\" release=\"1\""));
    }
    for (const auto& root : {folder.path(), backwards.path()}) {
        const ModelFolder models = ModelFolder::read(root);
        ASSERT_THAT(models.models(), SizeIs(count));
        ASSERT_THAT(models.problems(), SizeIs(count));
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(models.models()[i].release, "1");
            EXPECT_THAT(models.problems()[i].file, HasSubstr("-second.xml"));
        }
        EXPECT_EQ(models.problems().front().file, (root / "Model0-second.xml").string());
        EXPECT_EQ(models.problems().back().file, (root / "Model9-second.xml").string());
    }
}

TEST_F(ModelFolderTest, listsTheGoodModelsBesideTheBadFiles) {
    folder.write("a-empty.xml", "");
    folder.write("b-good.xml", mom(R"(name="Good")"));
    folder.write("c-text.xml", "no model");
    folder.write("d-name.xml", mom(R"(name="A=B")"));
    std::filesystem::create_symlink("gone", folder.path() / "e-link.xml");
    std::filesystem::create_directory(folder.path() / "f-folder.xml");
    ASSERT_EQ(mkfifo(path("g-fifo.xml").c_str(), 0600), 0);
    folder.write("h-good.xml", mom(R"(name="Better")"));
    EXPECT_THAT(summaries(), ElementsAre("Better -/-/-", "Good -/-/-"));
    EXPECT_THAT(problems(), ElementsAre(path("a-empty.xml") + ": the file is empty",
                                        path("c-text.xml") + ":1: not well-formed XML: syntax error",
                                        path("d-name.xml") + ":1: the name of <mom> holds '=': \"A=B\"",
                                        path("e-link.xml") + ": a link to a file that does not exist",
                                        path("f-folder.xml") + ": a folder, not a file",
                                        path("g-fifo.xml") + ": not a regular file"));
}

TEST_F(ModelFolderTest, passesOverHiddenAndOtherFiles) {
    folder.write(".hidden.xml", mom(R"(name="Hidden")"));
    folder.write(".xml", mom(R"(name="NoName")"));
    folder.write("model.xml.bak", mom(R"(name="Backup")"));
    folder.write("README", "These are models.");
    folder.write("xml", mom(R"(name="Suffix")"));
    folder.write("real", mom(R"(name="Real")"));
    std::filesystem::create_directory(folder.path() / ".git");
    std::filesystem::create_symlink("real", folder.path() / "link.xml");
    EXPECT_THAT(summaries(), ElementsAre("Real -/-/-"));
    EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(ModelFolderTest, saysThatASubFolderIsNotRead) {
    std::filesystem::create_directory(folder.path() / "more");
    std::filesystem::create_symlink("more", folder.path() / "other");
    EXPECT_THAT(problems(),
                ElementsAre(path("more") + ": a folder, not a file", path("other") + ": a folder, not a file"));
}

TEST_F(ModelFolderTest, givesAbsolutePathsForARelativeFolder) {
    folder.write("a.xml", mom(R"(name="A")"));
    folder.write("b.xml", "");
    const auto relative = std::filesystem::relative(folder.path());
    const ModelFolder models = ModelFolder::read(relative);
    ASSERT_THAT(models.models(), SizeIs(1));
    const std::filesystem::path file = models.models().front().file;
    EXPECT_TRUE(file.is_absolute());
    EXPECT_TRUE(std::filesystem::equivalent(file, folder.path() / "a.xml"));
    ASSERT_THAT(models.problems(), SizeIs(1));
    EXPECT_TRUE(std::filesystem::path(models.problems().front().file).is_absolute());
}

TEST_F(ModelFolderTest, readsNoMoreThanTheHeadsOfManyFiles) {
    constexpr int count = 2000;
    constexpr std::size_t size = 1024;
    constexpr std::uintmax_t large = 50UL << 20U;
    for (int i = 0; i < count; ++i) {
        std::string text = "<mom name=\"Model" + std::to_string(i) + "\"><class name=\"C\"/></mom>";
        text.resize(size, '\n');
        folder.write("model" + std::to_string(i) + ".xml", text);
    }
    const std::string sparse = folder.write("sparse.xml", R"(<mom name="Sparse"><class name="C">)");
    std::filesystem::resize_file(sparse, large);
    const ModelFolder models = ModelFolder::read(folder.path());
    EXPECT_THAT(models.models(), SizeIs(count + 1));
    EXPECT_THAT(models.problems(), IsEmpty());
    EXPECT_EQ(models.bytesRead(), count * size + ModelReader::blockSize);
}

/// The text of what reading `path` throws.
std::string refusalOf(const std::filesystem::path& path) {
    try {
        ModelFolder::read(path);
    } catch (const Tev::TevException& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST_F(ModelFolderTest, throwsForAFolderThatIsNotThere) {
    EXPECT_EQ(refusalOf(path("none")),
              path("none") + ": the folder of models cannot be read: No such file or directory" + hint);
}

TEST_F(ModelFolderTest, throwsForAFile) {
    const std::string file = folder.write("a.xml", mom(R"(name="A")"));
    EXPECT_EQ(refusalOf(file), file + ": the folder of models cannot be read: Not a directory" + hint);
}

TEST_F(ModelFolderTest, throwsForAnEmptyPath) {
    EXPECT_THAT(refusalOf(""), HasSubstr("the folder of models cannot be read"));
}

TEST_F(ModelFolderTest, throwsForAFolderThatMayNotBeListed) {
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    std::filesystem::create_directory(path("secret"));
    ASSERT_EQ(chmod(path("secret").c_str(), 0), 0);
    const TevTest::AsNobody nobody;
    EXPECT_EQ(refusalOf(path("secret")),
              path("secret") + ": the folder of models cannot be read: Permission denied" + hint);
}

}  // namespace
}  // namespace TevAgent

#include "ModelReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "AsNobody.h"
#include "ModelHead.h"
#include "ModelSummary.h"
#include "TempFolder.h"

namespace TevAgent {
namespace {

using testing::HasSubstr;
using TevTest::summary;

/// A folder for one model file.
class ModelReaderTest : public testing::Test {
protected:
    Model modelOf(const std::string& text) { return modelIn(folder.write("model.xml", text)); }

    Model modelIn(const std::string& path) {
        std::variant<Model, Problem> outcome = reader.read(path);
        if (const auto* problem = std::get_if<Problem>(&outcome)) {
            throw std::runtime_error(problem->text());
        }
        return std::get<Model>(outcome);
    }

    Problem problemOf(const std::string& text) { return problemIn(folder.write("model.xml", text)); }

    Problem problemIn(const std::string& path) {
        std::variant<Model, Problem> outcome = reader.read(path);
        if (const auto* model = std::get_if<Model>(&outcome)) {
            throw std::runtime_error("accepted: " + summary(*model));
        }
        Problem problem = std::get<Problem>(outcome);
        EXPECT_EQ(problem.file, path);
        return problem;
    }

    /// Expects that a file with `text` is refused for `reason` at `line`.
    void expectRefused(const std::string& text, unsigned long line, const std::string& reason) {
        const Problem problem = problemOf(text);
        EXPECT_EQ(problem.reason, reason);
        EXPECT_EQ(problem.line, line);
    }

    const TevTest::TempFolder folder;
    ModelReader reader;
};

/// A model whose head is `size` bytes long, with a class after it.
std::string modelWithHeadOf(std::size_t size) {
    std::string text = R"(<mom name="Large" version="1">)";
    text.append(size - text.size(), ' ');
    return text + "<class name=\"A\"/></mom>";
}

TEST_F(ModelReaderTest, readsEverythingThatAHeadHolds) {
    const Model model = modelOf(R"(<?xml version="1.0"?>
<mom name="TransportModel" version="2" release="1" correction="5">
  <domain name="ORVA">
    <property key="orvaMomName" value="OrvaTransport"/>
    <property key="orvaMomVersion" value="3"/>
  </domain>
  <feature name="IpSec"/>
  <feature name="Ipv6"/>
  <class name="Transport"/>
</mom>)");
    EXPECT_EQ(summary(model), "TransportModel 2/1/5 ORVA:orvaMomName=OrvaTransport;orvaMomVersion=3; +IpSec +Ipv6");
    EXPECT_EQ(model.file, (folder.path() / "model.xml").string());
}

TEST_F(ModelReaderTest, needsNothingButAName) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"/>)")), "A -/-/-");
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"></mom>)")), "A -/-/-");
}

TEST_F(ModelReaderTest, takesAnEmptyVersionReleaseOrCorrectionForAbsent) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A" version="" release="" correction=""/>)")), "A -/-/-");
}

TEST_F(ModelReaderTest, keepsFeaturesInTheFilesOrder) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><feature name="Z"/><feature name="B"/></mom>)")), "A -/-/- +Z +B");
}

TEST_F(ModelReaderTest, joinsTheElementsOfOneDomain) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><domain name="X"><property key="a" value="1"/></domain>
<feature name="F"/><domain name="Y"/><domain name="X"><property key="b" value="2"/></domain></mom>)")),
              "A -/-/- X:a=1;b=2; Y: +F");
}

TEST_F(ModelReaderTest, passesOverFurtherAttributesAndComments) {
    EXPECT_EQ(summary(modelOf(
                  R"(<!-- x --><mom xmlns="urn:x" name="A" author="me"><!-- y --><feature id="1" name="F"/></mom>)")),
              "A -/-/- +F");
}

TEST_F(ModelReaderTest, decodesReferencesAndEncodings) {
    EXPECT_EQ(modelOf(R"(<mom name="A&amp;B &#x47;"/>)").name, "A&B G");
    EXPECT_EQ(modelOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><mom name=\"gr\xfcn\"/>").name, "gr\xc3\xbcn");
    EXPECT_EQ(modelOf("\xef\xbb\xbf<mom name=\"A\"/>").name, "A");
}

TEST_F(ModelReaderTest, looksAtNothingAfterTheHead) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><class name="C"></wrong><feature name="Late"/>)")), "A -/-/-");
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><class/>)" + std::string(100, '\0'))), "A -/-/-");
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"/>trailing <<<)")), "A -/-/-");
}

TEST_F(ModelReaderTest, readsAHeadThatBlocksCutAnywhere) {
    const std::string head =
        R"(<mom name="Split" version="2"><domain name="D"><property key="k" value="v"/></domain><feature name="F"/><class name="C">)";
    const std::string body(5 * ModelReader::blockSize, 'x');
    for (std::size_t before = 0; before <= head.size(); ++before) {
        const std::string padding = "<!--" + std::string(ModelReader::blockSize - before - 7, 'x') + "-->";
        ASSERT_EQ(summary(modelOf(padding + head + body)), "Split 2/-/- D:k=v; +F") << before;
    }
}

TEST_F(ModelReaderTest, readsNoMoreThanTheHeadAndOneBlock) {
    for (const std::size_t head : {100UL, 4096UL, 10000UL, 200000UL}) {
        ModelReader fresh;
        const std::string path = folder.write("large.xml", modelWithHeadOf(head) + std::string(1000000, ' '));
        ASSERT_TRUE(std::holds_alternative<Model>(fresh.read(path))) << head;
        EXPECT_GE(fresh.bytesRead(), head);
        EXPECT_LE(fresh.bytesRead(), head + ModelReader::blockSize);
    }
}

TEST_F(ModelReaderTest, stopsReadingAHeadThatIsTooLarge) {
    EXPECT_THAT(problemOf(modelWithHeadOf(5000000)).reason, HasSubstr("larger than 262144 bytes"));
    EXPECT_LE(reader.bytesRead(), ModelHead::maxBytes + ModelReader::blockSize);
}

TEST_F(ModelReaderTest, acceptsAHeadOfExactlyTheLimit) {
    EXPECT_EQ(summary(modelOf(modelWithHeadOf(ModelHead::maxBytes))), "Large 1/-/-");
}

TEST_F(ModelReaderTest, refusesAHeadOneByteOverTheLimit) {
    expectRefused(modelWithHeadOf(ModelHead::maxBytes + 1), 1,
                  "the model's head, before its first class, is larger than 262144 bytes");
}

TEST_F(ModelReaderTest, countsTheRootsEndTagAsPartOfTheHead) {
    const std::string start = R"(<mom name="A">)";
    const std::string end = "</mom>";
    const std::string fitting(ModelHead::maxBytes - start.size() - end.size(), ' ');
    EXPECT_EQ(summary(modelOf(start + fitting + end)), "A -/-/-");
    EXPECT_THAT(problemOf(start + fitting + " " + end).reason, HasSubstr("larger than 262144 bytes"));
}

TEST_F(ModelReaderTest, refusesAnEmptyFile) {
    expectRefused("", 0, "the file is empty");
}

TEST_F(ModelReaderTest, refusesWhatIsNotXml) {
    expectRefused("models live here\n", 1, "not well-formed XML: syntax error");
    expectRefused("\n\n", 3, "not well-formed XML: no element found");
}

TEST_F(ModelReaderTest, refusesXmlThatIsNotWellFormed) {
    expectRefused("<mom name=\"A\">\n<domain name=\"D\">\n</feature>", 3, "not well-formed XML: mismatched tag");
    expectRefused("<mom\nname=\"A\" name=\"B\"/>", 2, "not well-formed XML: duplicate attribute");
    expectRefused("<mom name=\"\xff\"/>", 1, "not well-formed XML: not well-formed (invalid token)");
    expectRefused(R"(<mom name="&unknown;"/>)", 1, "not well-formed XML: undefined entity");
}

TEST_F(ModelReaderTest, refusesAFileThatEndsInsideTheHead) {
    expectRefused("<mom name=\"A\">\n<feature name=\"F\"/>\n", 3, "the file ends too early, inside an element");
    expectRefused("<mom\nname=\"A", 1, "the file ends too early, inside an element");
}

TEST_F(ModelReaderTest, refusesAnotherRoot) {
    expectRefused("\n<model name=\"A\"/>", 2, "the root element is <model>, not <mom>");
    expectRefused("<Mom name=\"A\"/>", 1, "the root element is <Mom>, not <mom>");
}

TEST_F(ModelReaderTest, refusesAModelWithoutAName) {
    expectRefused("<mom version=\"2\"/>", 1, "<mom> has no name");
    expectRefused("<mom name=\"\"/>", 1, "the name of <mom> is empty");
}

TEST_F(ModelReaderTest, refusesANameThatCannotStandInADn) {
    expectRefused(R"(<mom name="A=B"/>)", 1, "the name of <mom> holds '=': \"A=B\"");
    expectRefused(R"(<mom name="A,B"/>)", 1, "the name of <mom> holds ',': \"A,B\"");
    EXPECT_EQ(problemOf(R"(<mom name="A&#10;B"/>)").text(),
              (folder.path() / "model.xml").string() + ":1: the name holds a control character: \"A\\nB\"");
}

TEST_F(ModelReaderTest, refusesControlCharactersEverywhere) {
    const std::string reason = "holds a control character";
    EXPECT_THAT(problemOf(R"(<mom name="A" version="1&#9;"/>)").reason, HasSubstr("the version " + reason));
    EXPECT_THAT(problemOf(R"(<mom name="A" release="&#x7f;"/>)").reason, HasSubstr("the release " + reason));
    EXPECT_THAT(problemOf(R"(<mom name="A" correction="&#x9b;"/>)").reason, HasSubstr("the correction " + reason));
    EXPECT_THAT(problemOf(R"(<mom name="A"><feature name="&#13;"/></mom>)").reason, HasSubstr("the name " + reason));
    EXPECT_THAT(problemOf(R"(<mom name="A"><domain name="D"><property key="k" value="&#9;"/></domain></mom>)").reason,
                HasSubstr("the value " + reason));
}

TEST_F(ModelReaderTest, refusesAFeatureWithoutAName) {
    expectRefused("<mom name=\"A\">\n<feature/></mom>", 2, "<feature> has no name");
    expectRefused("<mom name=\"A\">\n<feature name=\"\"/></mom>", 2, "the name of <feature> is empty");
}

TEST_F(ModelReaderTest, listsAFeatureAsOftenAsItIsNamed) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><feature name="F"/><feature name="G"/><feature name="F"/></mom>)")),
              "A -/-/- +F +G +F");
}

TEST_F(ModelReaderTest, refusesADomainWithoutAName) {
    expectRefused("<mom name=\"A\"><domain/></mom>", 1, "<domain> has no name");
}

TEST_F(ModelReaderTest, refusesAPropertyWithoutKeyOrValue) {
    const auto inDomain = [](const std::string& property) {
        return "<mom name=\"A\"><domain name=\"D\">\n" + property + "</domain></mom>";
    };
    expectRefused(inDomain("<property value=\"v\"/>"), 2, "<property> has no key");
    expectRefused(inDomain("<property key=\"k\"/>"), 2, "<property> has no value");
    expectRefused(inDomain("<property key=\"\" value=\"v\"/>"), 2, "the key of <property> is empty");
}

TEST_F(ModelReaderTest, takesAPropertyWithAnEmptyValueForAbsent) {
    EXPECT_EQ(summary(modelOf(R"(<mom name="A"><domain name="D"><property key="k" value=""/>
<property key="l" value="1"/><property key="k" value="2"/><property key="l" value=""/></domain></mom>)")),
              "A -/-/- D:k=2;l=1;");
}

TEST_F(ModelReaderTest, refusesAPropertyGivenTwice) {
    expectRefused(R"(<mom name="A"><domain name="D"><property key="k" value="1"/></domain>
<domain name="D"><property key="k" value="2"/></domain></mom>)",
                  2, "the domain \"D\" has the property \"k\" twice");
}

TEST_F(ModelReaderTest, refusesOtherElementsInsideDomainsAndFeatures) {
    expectRefused("<mom name=\"A\"><domain name=\"D\">\n<prop/></domain></mom>", 2, "<prop> does not belong here");
    expectRefused("<mom name=\"A\"><feature name=\"F\">\n<property key=\"k\" value=\"v\"/></feature></mom>", 2,
                  "<property> does not belong here");
    expectRefused(
        "<mom name=\"A\"><domain name=\"D\"/><feature name=\"F\">\n<property key=\"k\" value=\"v\"/></feature></mom>",
        2, "<property> does not belong here");
}

TEST_F(ModelReaderTest, refusesTextInTheHead) {
    expectRefused("<mom name=\"A\">\nversion=\"2\"<class/></mom>", 2, "there is text where none belongs");
    expectRefused("<mom name=\"A\"><feature name=\"F\"><![CDATA[x]]></feature></mom>", 1,
                  "there is text where none belongs");
}

TEST_F(ModelReaderTest, refusesADocumentTypeSoNoEntityCanGrow) {
    expectRefused("\n<!DOCTYPE mom [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>\n<mom name=\"&b;\"/>", 2,
                  "a document type declaration (DOCTYPE) is not accepted");
    expectRefused("<!DOCTYPE mom SYSTEM \"/etc/hostname\"><mom name=\"A\"/>", 1,
                  "a document type declaration (DOCTYPE) is not accepted");
}

TEST_F(ModelReaderTest, shortensWhatItQuotes) {
    EXPECT_LE(problemOf("<mom name=\"" + std::string(100000, '=') + "\"/>").reason.size(), 200U);
    EXPECT_LE(problemOf("<" + std::string(100000, 'm') + " name=\"A\"/>").reason.size(), 200U);
}

TEST_F(ModelReaderTest, refusesAFolder) {
    const std::filesystem::path path = folder.path() / "folder.xml";
    std::filesystem::create_directory(path);
    EXPECT_EQ(problemIn(path).text(), path.string() + ": a folder, not a file");
}

TEST_F(ModelReaderTest, refusesAFileThatIsNotThere) {
    EXPECT_EQ(problemIn(folder.path() / "none.xml").reason, "cannot be opened: No such file or directory");
}

TEST_F(ModelReaderTest, refusesADanglingLink) {
    const std::filesystem::path path = folder.path() / "link.xml";
    std::filesystem::create_symlink("nowhere.xml", path);
    EXPECT_EQ(problemIn(path).text(), path.string() + ": a link to a file that does not exist");
}

TEST_F(ModelReaderTest, refusesALinkToItself) {
    const std::filesystem::path path = folder.path() / "link.xml";
    std::filesystem::create_symlink("link.xml", path);
    EXPECT_EQ(problemIn(path).reason, "cannot be opened: Too many levels of symbolic links");
}

TEST_F(ModelReaderTest, followsALinkToAModel) {
    folder.write("real", R"(<mom name="A"/>)");
    std::filesystem::create_symlink("real", folder.path() / "link.xml");
    EXPECT_EQ(modelIn(folder.path() / "link.xml").file, (folder.path() / "link.xml").string());
}

TEST_F(ModelReaderTest, givesTheAbsolutePathOfAFileNamedByARelativeOne) {
    folder.write("model.xml", R"(<mom name="A"/>)");
    const std::string file = modelIn(std::filesystem::relative(folder.path() / "model.xml")).file;
    EXPECT_TRUE(std::filesystem::path(file).is_absolute());
    EXPECT_TRUE(std::filesystem::equivalent(file, folder.path() / "model.xml"));
}

TEST_F(ModelReaderTest, refusesAFileThatMayNotBeRead) {
    const std::string path = folder.write("secret.xml", R"(<mom name="A"/>)");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    const TevTest::AsNobody nobody;
    EXPECT_EQ(problemIn(path).reason, "cannot be opened: Permission denied");
}

TEST_F(ModelReaderTest, refusesAFileWhoseReadingFails) {
    const std::filesystem::path path = folder.path() / "memory.xml";
    std::filesystem::create_symlink("/proc/self/mem", path);  // nothing is at address 0
    EXPECT_EQ(problemIn(path).text(), path.string() + ": cannot be read: Input/output error");
}

TEST_F(ModelReaderTest, refusesAFifoWithoutWaitingForIt) {
    const std::filesystem::path path = folder.path() / "fifo.xml";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(problemIn(path).text(), path.string() + ": not a regular file");
}

TEST_F(ModelReaderTest, refusesADevice) {
    EXPECT_EQ(problemIn("/dev/zero").reason, "not a regular file");
}

TEST_F(ModelReaderTest, keepsNoFileOpen) {
    const auto openFiles = [] {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    };
    const auto before = openFiles();
    modelOf(R"(<mom name="A"/>)");
    problemOf("<mom");
    problemIn(folder.path());
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace TevAgent

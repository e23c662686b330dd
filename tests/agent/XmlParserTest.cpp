#include "XmlParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "FileError.h"

namespace TevAgent {
namespace {

using testing::ElementsAre;

/// Notes what it is told; stops or throws when it meets certain names.
class Recorder : public XmlParser {
public:
    std::vector<std::string> events;

private:
    void startElement(const std::string& name, const XmlAttributes& attributes) override {
        events.push_back(name + "@" + std::to_string(line()) + " depth " + std::to_string(depth()) + " at " +
                         std::to_string(tagBegin()) + "-" + std::to_string(tagEnd()));
        for (const auto& [key, value] : attributes) {
            events.push_back(key + "=" + value);
        }
        if (name == "stop") {
            stop();
        } else if (name == "throw") {
            throw std::out_of_range("thrown by the handler");
        } else if (name == "fail") {
            fail("the handler does not like it");
        }
    }

    void endElement() override {
        events.push_back("end depth " + std::to_string(depth()) + " at " + std::to_string(tagBegin()) + "-" +
                         std::to_string(tagEnd()));
    }

    void text(std::string_view piece) override { events.push_back("text " + std::string(piece)); }
};

TEST(XmlParserTest, tellsElementsAttributesAndTextWithTheirPlaces) {
    Recorder parser;
    parser.parse("<a>\n<b y=\"2\" x=\"1\"/>t</a>", true);
    EXPECT_THAT(parser.events, ElementsAre("a@1 depth 1 at 0-3", "text \n", "b@2 depth 2 at 4-20", "x=1", "y=2",
                                           "end depth 2 at 20-20", "text t", "end depth 1 at 21-25"));
}

TEST(XmlParserTest, tellsTheSameWhereverTheDocumentIsCut) {
    const std::string document = "<a><b key=\"value\"/></a>";
    Recorder whole;
    whole.parse(document, true);
    for (std::size_t cut = 0; cut <= document.size(); ++cut) {
        Recorder parser;
        parser.parse(document.substr(0, cut), false);
        parser.parse(document.substr(cut), true);
        EXPECT_EQ(parser.events, whole.events) << cut;
    }
}

TEST(XmlParserTest, tellsNothingOnceItWasStopped) {
    Recorder parser;
    parser.parse("<a><stop/>text<b/></wrong>", false);
    parser.parse("<<<", true);
    EXPECT_THAT(parser.events, ElementsAre("a@1 depth 1 at 0-3", "stop@1 depth 2 at 3-10"));
}

TEST(XmlParserTest, letsAnExceptionOutAndTellsNothingMore) {
    Recorder parser;
    EXPECT_THROW(parser.parse("<a><throw/><b/></a>", true), std::out_of_range);
    EXPECT_THAT(parser.events, ElementsAre("a@1 depth 1 at 0-3", "throw@1 depth 2 at 3-11"));
}

TEST(XmlParserTest, failsWithTheLineThatIsBeingTold) {
    Recorder parser;
    try {
        parser.parse("<a>\n\n<fail/>\n</a>", true);
        FAIL() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.line(), 3U);
        EXPECT_STREQ(error.what(), "the handler does not like it");
    }
}

}  // namespace
}  // namespace TevAgent

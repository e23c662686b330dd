#include "TevConfiguration.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "TevException.h"

namespace {

using Poco::XML::Element;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Tev::TevConfiguration;
using TevTest::TempFolder;

std::string repeat(const std::string& text, int count) {
    std::string all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

/// Why `path` cannot be loaded; "loaded" when it can. Whatever was held before is gone.
std::string failure(const std::string& path) {
    const TempFolder folder;
    TevConfiguration configuration;
    configuration.load(folder.write("before.cfg", "<before/>"));
    try {
        configuration.load(path);
    } catch (const Tev::TevException& exception) {
        EXPECT_EQ(exception.getReturnCode(), -1);
        EXPECT_THROW(configuration.getElementsByTagName("before"), Tev::TevException);
        return exception.what();
    }
    return "loaded";
}

/// Why a file with this text cannot be loaded, after the file's name.
std::string failureOf(const std::string& text) {
    const TempFolder folder;
    const std::string path = folder.write("test.cfg", text);
    const std::string reason = failure(path);
    return reason.rfind(path, 0) == 0 ? reason.substr(path.size()) : reason;
}

/// A loaded configuration.
class Loaded {
public:
    explicit Loaded(const std::string& text) { configuration.load(folder.write("test.cfg", text)); }

    /// The texts of all elements named `name`.
    std::vector<std::string> texts(const std::string& name) const {
        const auto list = configuration.getElementsByTagName(name);
        std::vector<std::string> found;
        for (unsigned long i = 0; i < list->length(); ++i) {
            found.push_back(list->item(i)->innerText());
        }
        return found;
    }

    /// The value of `name` under the first element named `parent`.
    std::string value(const std::string& parent, const std::string& name) const {
        const auto list = configuration.getElementsByTagName(parent);
        const auto* const element = dynamic_cast<const Element*>(list->item(0));
        EXPECT_NE(element, nullptr);
        return TevConfiguration::getElementValue(configuration, element, name);
    }

    TempFolder folder;
    TevConfiguration configuration;
};

/// Runs `work` on a thread with a small stack, as a host's threads may have.
void runOnSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 1024UL * 1024), 0);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(
                  &thread, &attributes,
                  [](void* function) -> void* {
                      (*static_cast<const std::function<void()>*>(function))();
                      return nullptr;
                  },
                  const_cast<void*>(static_cast<const void*>(&work))),
              0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

/// Tells whether a file is opened.
class OpenWatch {
public:
    explicit OpenWatch(const std::string& path) : descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(inotify_add_watch(descriptor, path.c_str(), IN_OPEN), 0) << path;
    }
    ~OpenWatch() { close(descriptor); }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    bool opened() const {
        char events[4096];
        return read(descriptor, events, sizeof events) > 0;
    }

private:
    const int descriptor;
};

TEST(TevConfigurationTest, elementsAreFoundInDocumentOrderWhereverTheyStand) {
    const Loaded loaded("<a>1<b><a>2</a><c><a>3</a></c></b><a>4</a></a>");
    EXPECT_THAT(loaded.texts("a"), ElementsAre("1234", "2", "3", "4"));
    EXPECT_THAT(loaded.texts("c"), ElementsAre("3"));
    EXPECT_THAT(loaded.texts("d"), IsEmpty());
}

TEST(TevConfigurationTest, withoutDocumentThereIsNothingToSearch) {
    TevConfiguration configuration;
    try {
        configuration.getElementsByTagName("a");
        FAIL() << "nothing thrown";
    } catch (const Tev::TevException& exception) {
        EXPECT_EQ(exception.getReturnCode(), -1);
    }
}

TEST(TevConfigurationTest, unloadReleasesTheDocument) {
    Loaded loaded("<a/>");
    loaded.configuration.unload();
    EXPECT_THROW(loaded.configuration.getElementsByTagName("a"), Tev::TevException);
    loaded.configuration.unload();
    EXPECT_THROW(loaded.configuration.getElementsByTagName("a"), Tev::TevException);
}

TEST(TevConfigurationTest, loadingAgainReplacesTheDocument) {
    Loaded loaded("<a><b/></a>");
    loaded.configuration.load(loaded.folder.write("second.cfg", "<a><c/></a>"));
    EXPECT_EQ(loaded.configuration.getElementsByTagName("b")->length(), 0U);
    EXPECT_EQ(loaded.configuration.getElementsByTagName("c")->length(), 1U);
}

TEST(TevConfigurationTest, valueIsTheTextOfTheFirstChildOfThatName) {
    const Loaded loaded("<a><b>first</b><b>second</b></a>");
    EXPECT_EQ(loaded.value("a", "b"), "first");
}

TEST(TevConfigurationTest, valueOfMissingAndEmptyChildIsEmpty) {
    const Loaded loaded("<a><b/><c></c></a>");
    EXPECT_EQ(loaded.value("a", "b"), "");
    EXPECT_EQ(loaded.value("a", "c"), "");
    EXPECT_EQ(loaded.value("a", "d"), "");
}

TEST(TevConfigurationTest, valueUnderNullIsEmpty) {
    const Loaded loaded("<a><b>text</b></a>");
    EXPECT_EQ(TevConfiguration::getElementValue(loaded.configuration, nullptr, "b"), "");
}

TEST(TevConfigurationTest, onlyDirectChildrenHaveAValue) {
    const Loaded loaded("<a>own<c><b>nested</b></c></a>");
    EXPECT_EQ(loaded.value("a", "b"), "");
    EXPECT_EQ(loaded.value("a", "a"), "");
    EXPECT_EQ(loaded.value("c", "b"), "nested");
}

TEST(TevConfigurationTest, valueIsTheWholeTextOfTheChild) {
    const Loaded loaded(
        "<!DOCTYPE a [<!ENTITY word 'put in'>]>"
        "<a><b> 1 <![CDATA[<&>]]><!-- no --><c>2</c>&lt;&#65;&word;\n</b></a>");
    EXPECT_EQ(loaded.value("a", "b"), " 1 <&>2<Aput in\n");
}

TEST(TevConfigurationTest, prefixIsPartOfTheName) {
    const Loaded loaded("<p:a xmlns:p='urn:x'><p:b>1</p:b><b>2</b><q:b>3</q:b></p:a>");
    EXPECT_THAT(loaded.texts("b"), ElementsAre("2"));
    EXPECT_EQ(loaded.value("p:a", "p:b"), "1");
    EXPECT_EQ(loaded.value("p:a", "q:b"), "3");
}

TEST(TevConfigurationTest, byteOrderMarkAndOtherEncodingsAreUnderstood) {
    EXPECT_EQ(Loaded("\xef\xbb\xbf<a><b>\xc3\xa4</b></a>").value("a", "b"), "\xc3\xa4");
    EXPECT_EQ(Loaded("<?xml version='1.0' encoding='ISO-8859-1'?><a><b>\xe4</b></a>").value("a", "b"), "\xc3\xa4");
}

TEST(TevConfigurationTest, fileThatCannotBeOpenedIsReportedWithTheReason) {
    const TempFolder folder;
    const std::string file = folder.write("file", "<a/>");
    const std::string loop = folder.path() / "loop";
    std::filesystem::create_symlink(loop, loop);
    const std::string longName = folder.path() / std::string(300, 'x');
    EXPECT_EQ(failure(folder.path() / "none"), (folder.path() / "none").string() + ": No such file or directory");
    EXPECT_EQ(failure(file + "/none"), file + "/none: Not a directory");
    EXPECT_EQ(failure(loop), loop + ": Too many levels of symbolic links");
    EXPECT_EQ(failure(longName), longName + ": File name too long");
    EXPECT_EQ(failure(""), ": No such file or directory");
}

TEST(TevConfigurationTest, onlyARegularFileIsRead) {
    const TempFolder folder;
    const std::string pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(failure(folder.path()), folder.path().string() + ": not a regular file");
    EXPECT_EQ(failure(pipe), pipe + ": not a regular file");
    EXPECT_EQ(failure("/dev/zero"), "/dev/zero: not a regular file");
}

TEST(TevConfigurationTest, fileThatCannotBeReadIsReportedWithTheReason) {
    // Regular, and open to its owner, but the first read fails: nothing is mapped at its beginning.
    EXPECT_EQ(failure("/proc/self/mem"), "/proc/self/mem: Input/output error");
}

TEST(TevConfigurationTest, nameWithANulIsRefused) {
    const TempFolder folder;
    const std::string path = folder.write("file", "<a/>");
    EXPECT_EQ(failure(path), "loaded");
    EXPECT_THAT(failure(path + std::string("\0x", 2)), StartsWith(path + ": "));
}

TEST(TevConfigurationTest, nameMayHoldPercentSigns) {
    const TempFolder folder;
    const std::string path = folder.write("%s%n%d.cfg", "<a>");
    EXPECT_THAT(failure(path), StartsWith(path + ":1: "));
    folder.write("%s%n%d.cfg", "<a/>");
    EXPECT_EQ(failure(path), "loaded");
}

TEST(TevConfigurationTest, malformedDocumentIsReportedWithLineAndReason) {
    EXPECT_THAT(failureOf(""), StartsWith(":1: No element found"));
    EXPECT_THAT(failureOf("sftpTimeout=5"), StartsWith(":1: Invalid token"));
    EXPECT_THAT(failureOf("<a>\n<b>\n</a>\n"), StartsWith(":3: Tag mismatch"));
    EXPECT_THAT(failureOf("<a>\n<b>\n\n</b>\n"), StartsWith(":5: No element found"));
    EXPECT_THAT(failureOf("<a>\n&none;</a>"), StartsWith(":2: Undefined entity"));
    EXPECT_THAT(failureOf("<a>\n\n\xff</a>"), StartsWith(":3: Invalid token"));
    EXPECT_THAT(failureOf(std::string("<a>\n\0</a>", 9)), StartsWith(":2: Invalid token"));
    EXPECT_THAT(failureOf("<?xml version='1.0' encoding='none'?><a/>"), StartsWith(":1: Unknown encoding"));
}

TEST(TevConfigurationTest, sizeLimitIsExact) {
    const std::string largest = "<a>" + std::string(TevConfiguration::maxBytes - 7, 'x') + "</a>";
    ASSERT_EQ(largest.size(), 1048576U);
    EXPECT_EQ(failureOf(largest), "loaded");
    EXPECT_EQ(failureOf(largest + "\n"), ": more than 1048576 bytes");
}

TEST(TevConfigurationTest, hugeFileIsNotReadWhole) {
    const TempFolder folder;
    const std::string path = folder.write("huge.cfg", "<a/>");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 40U);  // takes no room on the disk
    EXPECT_EQ(failure(path), path + ": more than 1048576 bytes");
}

TEST(TevConfigurationTest, depthLimitIsExact) {
    const auto nested = [](int depth) { return repeat("<a>\n", depth) + repeat("</a>\n", depth); };
    EXPECT_EQ(failureOf(nested(64)), "loaded");
    EXPECT_EQ(failureOf(nested(65)), ":65: more than 64 levels of elements");
    EXPECT_EQ(failureOf(nested(100)), ":65: more than 64 levels of elements");
    EXPECT_EQ(failureOf("<r>" + repeat(nested(63), 3) + "</r>"), "loaded");
}

TEST(TevConfigurationTest, deepNestingIsRefusedOnASmallStack) {
    runOnSmallStack([] {
        EXPECT_EQ(failureOf(repeat("<a>", 200000)), ":1: more than 64 levels of elements");
        EXPECT_EQ(failureOf(repeat("<a>", 140000) + repeat("</a>", 140000)), ":1: more than 64 levels of elements");
    });
}

TEST(TevConfigurationTest, nestingInsideAnEntityCounts) {
    const std::string declaration = "<!DOCTYPE a [<!ENTITY deep '" + repeat("<a>", 40) + repeat("</a>", 40) + "'>]>\n";
    EXPECT_EQ(failureOf(declaration + repeat("<a>", 24) + "&deep;" + repeat("</a>", 24)), "loaded");
    EXPECT_EQ(failureOf(declaration + repeat("<a>", 25) + "&deep;" + repeat("</a>", 25)),
              ":2: more than 64 levels of elements");
}

/// A document type in which every entity e<i> is made of `factor` times e<i-1>, and e0 is `seed`.
std::string entities(int count, int factor, const std::string& seed) {
    std::string text = "<!DOCTYPE a [<!ENTITY e0 '" + seed + "'>";
    for (int i = 1; i < count; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '" + repeat("&e" + std::to_string(i - 1) + ";", factor) + "'>";
    }
    return text + "]>\n";
}

constexpr char tooLarge[] = ":2: more than 1048576 bytes with entities put in";

/// A document whose element "a" holds `count` times an entity of the given text.
std::string documentWith(int count, const std::string& entity) {
    return entities(1, 1, entity) + "<a>" + repeat("&e0;", count) + "</a>";
}

TEST(TevConfigurationTest, limitOfWhatEntitiesMakeIsExact) {
    const std::string half((1048576 - std::string("<a/>").size()) / 2, 'x');
    EXPECT_EQ(failureOf(documentWith(2, half)), "loaded");
    EXPECT_EQ(failureOf(documentWith(2, half + 'x')), tooLarge);
    EXPECT_EQ(failureOf(entities(1, 1, half) + "<a>&e0;&e0;x</a>"), tooLarge);
    EXPECT_EQ(failureOf(entities(10, 10, "bomb") + "<a>&e9;</a>"), tooLarge);
}

TEST(TevConfigurationTest, everythingThatEntitiesMakeCounts) {
    const std::string content = "0123456789012345678901234567890123456789";
    for (const std::string& text : {std::string("<b/>"), std::string("<b c=\"\"/>"), std::string("<!---->"),
                                    std::string("<?p?>"), std::string("<![CDATA[]]>"), "<b c=\"" + content + "\"/>",
                                    "<!--" + content + "-->", "<?p " + content + "?>", "<![CDATA[" + content + "]]>"}) {
        // 16 times 65,536 is the limit, a little less when the root element is there as well.
        const std::string entity = repeat(text, 65536 / static_cast<int>(text.size()));
        EXPECT_EQ(failureOf(documentWith(15, entity)), "loaded") << text;
        EXPECT_EQ(failureOf(documentWith(17, entity + repeat(text, 1000))), tooLarge) << text;
    }
}

TEST(TevConfigurationTest, attributesThatEntitiesMakeTooLargeAreRefused) {
    EXPECT_EQ(failureOf(entities(2, 32, std::string(1024, 'x')) + repeat("<a b='&e1;'>", 33) + repeat("</a>", 33)),
              tooLarge);
}

TEST(TevConfigurationTest, attributesThatDefaultsMakeTooManyAreRefused) {
    std::string declaration = "<!DOCTYPE a [<!ATTLIST a";
    for (int i = 0; i < 100; ++i) {
        declaration += ' ' + std::string(1000, 'n') + std::to_string(i) + " CDATA ''";
    }
    EXPECT_EQ(failureOf(declaration + ">]>\n<r>" + repeat("<a/>", 10) + "</r>"), "loaded");
    EXPECT_EQ(failureOf(declaration + ">]>\n<r>" + repeat("<a/>", 11) + "</r>"), tooLarge);
}

TEST(TevConfigurationTest, documentWithoutEntitiesMayBeAsLargeAsItsFile) {
    for (const std::string text : {"<b/>", "<b c=''/>", "<!---->", "<?p?>", "<![CDATA[]]>", "&lt;", "<b>x</b>"}) {
        const std::string document = "<a>" + repeat(text, (1048576 - 7) / static_cast<int>(text.size())) + "</a>";
        EXPECT_EQ(failureOf(document), "loaded") << text;
    }
}

TEST(TevConfigurationTest, entityLimitIsExact) {
    EXPECT_EQ(failureOf(entities(256, 1, "x") + "<a>&e255;</a>"), "loaded");
    EXPECT_EQ(failureOf(entities(257, 1, "x") + "<a>&e256;</a>"), ":1: more than 256 entities declared");
}

TEST(TevConfigurationTest, longChainOfEntitiesIsRefusedOnASmallStack) {
    runOnSmallStack([] {
        EXPECT_EQ(failureOf(entities(256, 1, "x") + "<a>&e255;</a>"), "loaded");
        EXPECT_EQ(failureOf(entities(30000, 1, "x") + "<a>&e29999;</a>"), ":1: more than 256 entities declared");
    });
}

TEST(TevConfigurationTest, recursiveEntityIsRefused) {
    EXPECT_THAT(failureOf("<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c '&b;'>]>\n<a>&b;</a>"),
                StartsWith(":2: Recursive entity reference"));
}

TEST(TevConfigurationTest, longNamespaceNameOfManyElementsCostsNothing) {
    // What a parser that puts the namespace into every name would make of this has 50 gigabytes.
    const std::string text = "<r xmlns='" + std::string(400000, 'x') + "'>" + repeat("<a/>", 130000) + "</r>";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf(text), "loaded");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

// The DOM's pool of names throws when it is full, out of a handler of the parser, which was never freed then.
TEST(TevConfigurationTest, nameLimitIsExact) {
    const auto document = [](int count) {
        std::string text = "<r>";
        for (int i = 1; i < count; ++i) {
            text += "<a" + std::to_string(i) + "/>";
        }
        return text + "</r>";
    };
    EXPECT_EQ(failureOf(document(4000)), "loaded");
    EXPECT_EQ(failureOf(document(4001)), ":1: more than 4000 different names");
    EXPECT_EQ(failureOf("<a>" + repeat("<a/>", 5000) + "</a>"), "loaded");
}

TEST(TevConfigurationTest, namesOfAttributesCountAsWell) {
    const auto document = [](int count) {
        std::string text = "<r";
        for (int i = 1; i < count; ++i) {
            text += " a" + std::to_string(i) + "=''";
        }
        return text + "/>";
    };
    EXPECT_EQ(failureOf(document(4000)), "loaded");
    EXPECT_EQ(failureOf(document(4001)), ":1: more than 4000 different names");
}

TEST(TevConfigurationTest, watchSeesAFileBeingOpened) {
    const TempFolder folder;
    const std::string path = folder.write("canary", "");
    const OpenWatch watch(path);
    EXPECT_FALSE(watch.opened());
    EXPECT_TRUE(std::ifstream(path).is_open());
    EXPECT_TRUE(watch.opened());
}

TEST(TevConfigurationTest, externalEntitiesAreNotRead) {
    const TempFolder folder;
    const std::string canary = folder.write("canary", "<!ENTITY e 'canary'>");
    const OpenWatch watch(canary);
    for (const std::string& location : {canary, "file://" + canary, std::string("canary")}) {
        const std::string general = "<!DOCTYPE a [<!ENTITY e SYSTEM '" + location + "'>]>\n";
        EXPECT_THAT(failure(folder.write("used.cfg", general + "<a>&e;</a>")), HasSubstr(":2: Error in processing"));
        EXPECT_EQ(failure(folder.write("unused.cfg", general + "<a/>")), "loaded");
        const std::string parameter = "<!DOCTYPE a [<!ENTITY % e SYSTEM '" + location + "'> %e;]>\n<a/>";
        EXPECT_EQ(failure(folder.write("parameter.cfg", parameter)), "loaded");
        const std::string subset = "<!DOCTYPE a SYSTEM '" + location + "'>\n<a/>";
        EXPECT_EQ(failure(folder.write("subset.cfg", subset)), "loaded");
    }
    EXPECT_FALSE(watch.opened());
}

}  // namespace

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "CommandOutput.h"
#include "FileText.h"
#include "TempFolder.h"

// What is installed has to work where it is, without the tree that it was built in.

namespace TevTest {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

Outcome run(const std::string& program, const std::vector<std::string>& arguments,
            const ChildProcess::Setting& setting = {}) {
    ChildProcess process(program, arguments, setting);
    const int code = process.wait();
    return {code, process.out(), process.err()};
}

void cmake(const std::vector<std::string>& arguments, const ChildProcess::Setting& setting = {}) {
    const Outcome outcome = run(TEV_CMAKE, arguments, setting);
    ASSERT_EQ(outcome.code, 0) << outcome.out << outcome.err;
}

/// Where the loader finds the common library for a program or a library.
std::filesystem::path commonLibraryOf(const std::filesystem::path& file) {
    const std::string listed = outputOf("ldd '" + file.string() + "'");
    const std::string name = "libtev_common.so.0 => ";
    const std::size_t found = listed.find(name) + name.size();
    return std::filesystem::weakly_canonical(listed.substr(found, listed.find(" (", found) - found));
}

}  // namespace

class InstalledTreeTest : public testing::Test {
protected:
    void install() const { cmake({"--install", TEV_BUILD_FOLDER, "--prefix", prefix}); }

    const TempFolder folder;
    const std::filesystem::path prefix = folder.path() / "usr";
    const std::filesystem::path libraries = prefix / TEV_LIBRARY_FOLDER;
    const std::filesystem::path program = prefix / "bin/tev-agent";
    const std::filesystem::path component = prefix / TEV_PLUGIN_FOLDER / "libtev_schema_populator.so";
    const std::filesystem::path node = prefix / "share/doc/tev-agent/examples/node";
};

TEST_F(InstalledTreeTest, theProgramShowsItsExampleWithTheComponentBesideIt) {
    install();
    const Outcome outcome = run(program, {"--node", node, "list"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, run(TEV_AGENT_PROGRAM, {"--node", TEV_EXAMPLE_NODE, "list"}).out);
    // It was that one: without it there is none.
    std::filesystem::remove(component);
    EXPECT_THAT(run(program, {"--node", node, "list"}).err, StartsWith("tev-agent: cannot use component library "));
}

TEST_F(InstalledTreeTest, itsFilesUseItsOwnCommonLibrary) {
    install();
    const std::filesystem::path common = std::filesystem::weakly_canonical(libraries / "libtev_common.so.0");
    ASSERT_TRUE(std::filesystem::exists(common));
    EXPECT_EQ(commonLibraryOf(program), common);
    EXPECT_EQ(commonLibraryOf(component), common);
}

// An empty piece of the loader's path, which a list in CMake leaves easily, is the current folder.
TEST_F(InstalledTreeTest, takesNoLibraryFromTheFolderThatItIsCalledIn) {
    install();
    folder.write("libPocoFoundation.so.80", "no library");
    folder.write("libPocoXML.so.80", "no library");
    ChildProcess::Setting setting;
    setting.workingFolder = folder.path();
    const Outcome outcome = run(program, {"--node", node, "list"}, setting);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
}

// A page once referred to others that were not installed beside it.
TEST_F(InstalledTreeTest, itsPagesReferOnlyToWhatIsThere) {
    install();
    const std::regex link("\\]\\(([^)#:]+)(?:#[^)]*)?\\)");
    unsigned int links = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(prefix / "share/doc")) {
        if (entry.path().extension() == ".md") {
            const std::string page = contents(entry.path());
            for (std::sregex_iterator match(page.begin(), page.end(), link), end; match != end; ++match, ++links) {
                const std::filesystem::path target = entry.path().parent_path() / (*match)[1].str();
                EXPECT_TRUE(std::filesystem::exists(target)) << entry.path() << " refers to " << target;
            }
        }
    }
    EXPECT_GT(links, 30U);
}

TEST_F(InstalledTreeTest, bothReadersGetTheExampleOfAComponentAndThePageThatWalksThroughIt) {
    install();
    for (const std::string package : {"tev-agent", "libtev-dev"}) {
        EXPECT_TRUE(std::filesystem::exists(prefix / "share/doc" / package / "writing-a-component.md")) << package;
        EXPECT_TRUE(std::filesystem::exists(prefix / "share/doc" / package / "examples/component/Uptime.cpp"))
            << package;
    }
}

TEST_F(InstalledTreeTest, hasNoHeaderThatIsForTheSourceTreeAlone) {
    install();
    EXPECT_TRUE(std::filesystem::exists(prefix / "include/tev/LoggingWrapper.h"));
    EXPECT_FALSE(std::filesystem::exists(prefix / "include/tev/AnnotatedMutex.h"));
}

TEST_F(InstalledTreeTest, mayBePutElsewhereAsAWhole) {
    ChildProcess::Setting setting;
    setting.environment["DESTDIR"] = folder.path() / "stage";
    cmake({"--install", TEV_BUILD_FOLDER}, setting);
    std::filesystem::rename(folder.path() / "stage" / TEV_PREFIX, folder.path() / "else where");
    const Outcome outcome =
        run(folder.path() / "else where/bin/tev-agent", {"--node", TEV_EXAMPLE_NODE, "get", "TransportModel"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("OrvaTransport"));
}

TEST_F(InstalledTreeTest, componentsOfAnotherProjectAreBuiltWithItInCxxAndInC) {
    install();
    const std::filesystem::path build = folder.path() / "build";
    std::vector<std::string> configure = {"-S", TEV_CONSUMER, "-B", build, "-DCMAKE_PREFIX_PATH=" + prefix.string()};
    configure.insert(configure.end(), {TEV_CONSUMER_OPTIONS});
    cmake(configure);
    cmake({"--build", build});
    const Outcome outcome = run(program, {"--node", node, "--log-level", "1", "--component", component, "--component",
                                          build / "libgreeter.so", "--component", build / "libtables.so", "list"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr(" LOG 1 start: greetings\n"));
    EXPECT_THAT(outcome.err, HasSubstr("C greets, too\n"));
    EXPECT_EQ(commonLibraryOf(build / "libgreeter.so"), std::filesystem::canonical(libraries / "libtev_common.so.0"));
}

}  // namespace TevTest

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "CommandOutput.h"
#include "FileText.h"

// What the compiler and the linker were told to do against faults can be seen in the files that they made, and in how
// the compiler was called.

namespace TevTest {

namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct BuiltFile {
    std::string name;
    std::string path;
};

void PrintTo(const BuiltFile& file, std::ostream* stream) {
    *stream << file.path;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::set<std::string> importedFunctions(const BuiltFile& file) {
    std::set<std::string> names;
    for (const std::string& line :
         linesOf(outputOf(TEV_NM " --dynamic --undefined-only --format=just-symbols '" + file.path + "'"))) {
        names.insert(line.substr(0, line.find('@')));
    }
    return names;
}

/// Addresses of the functions that other files of the program, or other programs, may call, as `nm` and `objdump` write
/// them.
std::set<std::string> callableFunctions(const BuiltFile& file) {
    const std::set<std::string> ofTheSystem = {"_start", "_init", "_fini"};
    std::set<std::string> addresses;
    for (const std::string& line : linesOf(outputOf(TEV_NM " --defined-only '" + file.path + "'"))) {
        std::istringstream words(line);
        std::string address;
        std::string type;
        std::string name;
        words >> address >> type >> name;
        if (type == "T" && name.rfind("__", 0) != 0 && ofTheSystem.count(name) == 0) {
            addresses.insert(address);
        }
    }
    return addresses;
}

}  // namespace

class BuiltFilesTest : public testing::TestWithParam<BuiltFile> {
protected:
    /// What `readelf` shows with the given options.
    static std::string shown(const std::string& options) {
        return outputOf(TEV_READELF " --wide " + options + " '" + GetParam().path + "'");
    }
};

TEST_P(BuiltFilesTest, isPutWhereTheLoaderLikes) {
    EXPECT_THAT(shown("--file-header"), ContainsRegex("Type: +DYN "));
}

TEST_P(BuiltFilesTest, hasNoAddressThatCanBeWrittenAfterLoading) {
    EXPECT_THAT(shown("--program-headers"), HasSubstr("GNU_RELRO"));
    EXPECT_THAT(shown("--dynamic"), HasSubstr("BIND_NOW"));
}

TEST_P(BuiltFilesTest, hasNoCodeThatCanBeWritten) {
    EXPECT_THAT(shown("--dynamic"), Not(HasSubstr("TEXTREL")));
    const std::string segments = shown("--program-headers");
    EXPECT_THAT(segments, ContainsRegex("LOAD .* R E 0x"));
    EXPECT_THAT(segments, Not(HasSubstr(" RWE ")));
}

TEST_P(BuiltFilesTest, hasAStackWithoutCode) {
    EXPECT_THAT(shown("--program-headers"), ContainsRegex("GNU_STACK .* RW  0x"));
}

TEST_P(BuiltFilesTest, checksTheStack) {
    EXPECT_THAT(importedFunctions(GetParam()), Contains("__stack_chk_fail"));
}

#if TEV_FORTIFIED
// These have a checked form that takes their place wherever they stand; others have one where a size is known. The
// standard library takes the address of vsnprintf.
TEST_P(BuiltFilesTest, formatsTextWithCheckedFunctions) {
    for (const std::string& name : importedFunctions(GetParam())) {
        EXPECT_THAT(name, Not(testing::MatchesRegex("(sn|v?[sfd]|v?as)?printf")));
    }
}

TEST(BufferChecksTest, areInTheProgramAndTheCommonLibrary) {
    EXPECT_THAT(importedFunctions({"agent", TEV_AGENT_PROGRAM}), Contains(testing::EndsWith("_chk")));
    EXPECT_THAT(importedFunctions({"common", TEV_COMMON_LIBRARY}), Contains(testing::EndsWith("_chk")));
}
#endif

#if TEV_CF_PROTECTION
// The note that tells a kernel so is missing as long as the system's own start files have none.
TEST_P(BuiltFilesTest, marksEveryFunctionThatOthersMayCall) {
    std::set<std::string> functions = callableFunctions(GetParam());
    ASSERT_FALSE(functions.empty());
    const auto lines = linesOf(outputOf(TEV_OBJDUMP " --disassemble --no-show-raw-insn '" + GetParam().path + "'"));
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        if (line->find(" <") != std::string::npos && functions.erase(line->substr(0, line->find(' '))) > 0) {
            ASSERT_NE(line + 1, lines.end());
            EXPECT_THAT(line[1], HasSubstr("endbr")) << *line;
        }
    }
    EXPECT_THAT(functions, testing::IsEmpty());
}
#endif

// One source without them would not show in a file that others went into as well.
TEST(CompileCommandsTest, haveTheProtectionsForEverySource) {
    unsigned int sources = 0;
    for (const std::string& line : linesOf(contents(TEV_COMPILE_COMMANDS))) {
        if (line.find("\"command\": ") == std::string::npos || line.find(" -o src/") == std::string::npos) {
            continue;
        }
        ++sources;
        EXPECT_THAT(line, HasSubstr(" -fstack-protector-strong "));
        EXPECT_THAT(line, ContainsRegex(" -f(PIC|PIE) "));
#if TEV_FORTIFIED
        EXPECT_THAT(line, HasSubstr(" -D_FORTIFY_SOURCE=2 "));
        EXPECT_THAT(line, Not(HasSubstr(" -U_FORTIFY_SOURCE")));
#endif
#if TEV_CF_PROTECTION
        EXPECT_THAT(line, HasSubstr(" -fcf-protection=full "));
#endif
    }
    EXPECT_GT(sources, 50U);
}

INSTANTIATE_TEST_SUITE_P(, BuiltFilesTest,
                         testing::Values(BuiltFile{"program", TEV_AGENT_PROGRAM},
                                         BuiltFile{"commonLibrary", TEV_COMMON_LIBRARY},
                                         BuiltFile{"component", TEV_COMPONENT_LIBRARY}),
                         [](const auto& file) { return file.param.name; });

}  // namespace TevTest

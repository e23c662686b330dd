#include "ComponentLibrary.h"

#include <dlfcn.h>
#include <elf.h>
#include <gmock/gmock.h>

#include <cstddef>
#include <filesystem>

#include "Diagnostics.h"
#include "Failure.h"
#include "FileText.h"
#include "PortalService.h"
#include "TempFolder.h"

namespace TevAgent {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

std::string library(const std::string& name) {
    return std::string(TEV_HOSTILE_COMPONENTS) + "/" + name + ".so";
}

std::string refusal(const std::string& path) {
    PortalService portal;
    try {
        const ComponentLibrary loaded(path, portal);
        return "loaded";
    } catch (const Failure& e) {
        EXPECT_EQ(e.status(), ExitStatus::NotStarted);
        return e.what();
    }
}

bool isLoaded(const std::string& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

TEST(ComponentLibraryTest, isUnloadedAtItsEnd) {
    const std::string path = library("registers_nothing");
    PortalService portal;
    {
        const ComponentLibrary loaded(path, portal);
        EXPECT_EQ(loaded.path(), path);
        EXPECT_TRUE(isLoaded(path));
    }
    EXPECT_FALSE(isLoaded(path));
}

TEST(ComponentLibraryTest, isUnloadedWhenAnEntryPointIsMissing) {
    EXPECT_EQ(refusal(library("no_terminate")),
              "cannot use component library " + library("no_terminate") + ": undefined symbol: dalLCMterminate");
    EXPECT_FALSE(isLoaded(library("no_terminate")));
}

TEST(ComponentLibraryTest, namesPathAndReasonOfAFileThatCannotBeLoaded) {
    EXPECT_EQ(refusal("/nowhere/x.so"),
              "cannot use component library /nowhere/x.so: cannot open shared object file: No such file or directory");
    const TevTest::TempFolder folder;
    const std::string text = folder.write("text.so", "no library");
    EXPECT_THAT(refusal(text), AllOf(StartsWith("cannot use component library " + text + ": "),
                                     EndsWith("; it is no shared library, so name the component's .so file")));
}

// The loader says of it that it is not there.
TEST(ComponentLibraryTest, tellsALibraryForAnotherMachine) {
    const TevTest::TempFolder folder;
    const std::string here = TevTest::contents(library("registers_nothing"));
    for (const std::size_t place : {std::size_t{EI_CLASS}, std::size_t{EI_DATA}, offsetof(Elf64_Ehdr, e_machine)}) {
        std::string there = here;
        there[place] = static_cast<char>(there[place] ^ 3);
        EXPECT_THAT(refusal(folder.write("there.so", there)),
                    EndsWith("; it is made for another machine than this program, so build it for this one"));
    }
}

TEST(ComponentLibraryTest, looksForANameWithoutAFolderInTheWorkingFolderOnly) {
    EXPECT_THAT(refusal("libtev_common.so"), EndsWith("No such file or directory"));
}

TEST(ComponentLibraryTest, goesUpFromWhereALinkLeads) {
    const TevTest::TempFolder folder;
    std::filesystem::create_directories(folder.path() / "far" / "away");
    std::filesystem::create_directory_symlink("far/away", folder.path() / "link");
    std::filesystem::copy_file(library("registers_nothing"), folder.path() / "far" / "x.so");
    const std::string path = folder.path() / "link/../x.so";
    PortalService portal;
    EXPECT_EQ(ComponentLibrary(path, portal).path(), path);
}

TEST(ComponentLibraryTest, refusesAnEmptyPath) {
    EXPECT_EQ(refusal(""), "cannot use component library : Invalid argument");
}

TEST(ComponentLibraryTest, terminatesWhatItInitialized) {
    PortalService portal;
    {
        ComponentLibrary loaded(library("votes_no"), portal);
        loaded.initialize(nullptr);
        EXPECT_EQ(portal.registered().size(), 1U);
        EXPECT_EQ(loaded.components(), portal.registered());
    }
    EXPECT_TRUE(portal.registered().empty());
}

TEST(ComponentLibraryTest, unregistersWhatItLeftRegisteredAndSaysSo) {
    PortalService portal;
    for (const std::string name : {"stays_registered", "terminate_throws", "init_fails_late"}) {
        Diagnostics::Capture capture;
        {
            ComponentLibrary loaded(library(name), portal);
            try {
                loaded.initialize(nullptr);
            } catch (const Failure&) {
                EXPECT_EQ(name, "init_fails_late");
            }
            EXPECT_EQ(portal.registered().size(), 1U) << name;
        }
        EXPECT_TRUE(portal.registered().empty()) << name;
        EXPECT_THAT(capture.takeOr(""), testing::EndsWith("component library " + library(name) +
                                                          " left component TevSchemaMoService registered"));
    }
}

TEST(ComponentLibraryTest, givesTheCodeOfAnInitializationThatFails) {
    PortalService portal;
    ComponentLibrary loaded(library("init_returns_code"), portal);
    try {
        loaded.initialize(nullptr);
        FAIL() << "it was initialized";
    } catch (const Failure& e) {
        EXPECT_EQ(e.status(), ExitStatus::NotStarted);
        EXPECT_EQ(e.what(), "cannot use component library " + loaded.path() + ": dalLCMinit returned -17");
    }
}

}  // namespace

}  // namespace TevAgent

#include <gmock/gmock.h>
#include <sys/socket.h>

#include <cstdint>
#include <new>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "ExportParameters.h"
#include "FakeHost.h"
#include "FakeResolver.h"
#include "FakeRunner.h"
#include "LogCapture.h"
#include "MemoryWatch.h"
#include "Portal.h"
#include "SchemaMoImpl.h"
#include "TempFolder.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using TevSchemaPopulator::SchemaData;
using TevSchemaPopulator::SchemaMoImpl;

constexpr const char* sourceFile = "src/schema_populator/SchemaMoImpl";
constexpr unsigned long txHandle = 7;

std::vector<std::pair<std::int32_t, std::string>> posted;

TevReturnT post(std::int32_t category, const char* text) {
    posted.emplace_back(category, text);
    return 0;
}

/// A provider over one record whose file is there, with a thread context and nothing else set.
class SchemaMoImplExportTest : public testing::Test {
protected:
    SchemaMoImplExportTest() {
        catalogue[0].schemaId = "Mom";
        catalogue[0].completeFileName = folder.write("Mom.xml", "");
        moImpl.setThreadContext(&threadContext);
        posted.clear();
    }

    ~SchemaMoImplExportTest() override {
        EXPECT_EQ(runner.alive, 0U);
        EXPECT_EQ(moImpl.finish(txHandle), 0);
        Tev::Portal::setAccessor(nullptr);
    }

    TevReturnT doExport() { return moImpl.action(txHandle, dn.c_str(), "export", parameters.array, &result); }

    std::vector<void*> releasedByFinish() {
        MemoryWatch watch;
        EXPECT_EQ(moImpl.finish(txHandle), 0);
        return watch.released();
    }

    /// Exports while an allocation in the reading of the configuration file, which switches debug on, throws. Gives
    /// what that logs.
    std::vector<LogRecord> recordsOfAFailingDebugRead(MemoryWatch::Thrown thrown) {
        moImpl.setConfigPath(folder.write("a.cfg", "<a><TevSchemaMoService/><isSftpDebugMode/></a>"));
        FakeHost host;
        Tev::Portal::setAccessor(host.accessor());
        const LogCapture log(4);
        // The file is read some allocations after the last call of the framework.
        bool isFailing = true;
        for (unsigned int nth = 1; isFailing && log.recordsOf("isDebugModeSet").empty(); ++nth) {
            MemoryWatch watch;
            unsigned int calls = 0;
            host.whenCalled("router.newMoIterator", [&] {
                if (++calls == 2) {
                    watch.failNew(nth, thrown);
                }
            });
            EXPECT_EQ(doExport(), 0);
            isFailing = watch.failed();
        }
        EXPECT_FALSE(std::get<8>(runner.constructed.back()));
        return log.recordsOf("isDebugModeSet");
    }

    const TempFolder folder;
    const std::string dn = "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=Mom";
    std::vector<SchemaData> catalogue{1};
    SchemaMoImpl moImpl{catalogue};
    DalMgmtSpiThreadContext_2 threadContext{{"Service", "DalMgmtSpiThreadContext", "2"}, post};
    FakeResolver resolver;
    FakeRunner runner;
    ExportParameters parameters{"sftp://user@10.0.0.1:22/f", "secret"};
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
};

TEST_F(SchemaMoImplExportTest, nothingIsSetBeforeItIsSet) {
    EXPECT_EQ(doExport(), 0);
    ASSERT_THAT(runner.constructed, SizeIs(1));
    EXPECT_EQ(runner.constructed[0],
              FakeRunner::Arguments("sftp", "user", "secret", "10.0.0.1", "22", 1, catalogue[0].completeFileName, "/f",
                                    false, "", "", "", 0, 0));
}

TEST_F(SchemaMoImplExportTest, programFolderIsPutBeforeTheProgramAsItIs) {
    for (const std::string programFolder : {"/usr/bin/", "/opt", "x y/"}) {
        moImpl.setSftProgramDir(programFolder);
        EXPECT_EQ(doExport(), 0);
        EXPECT_EQ(std::get<0>(runner.constructed.back()), programFolder + "sftp");
    }
}

TEST_F(SchemaMoImplExportTest, resultIsOneBlockThatFinishFrees) {
    std::vector<void*> allocated;
    {
        MemoryWatch watch;
        EXPECT_EQ(doExport(), 0);
        allocated = watch.allocated();
        EXPECT_THAT(watch.mallocSizes(), ElementsAre(sizeof(DalMoAttributeValueContainer)));
        EXPECT_THAT(watch.released(), IsEmpty());
    }
    void* const block = result;
    EXPECT_THAT(allocated, ElementsAre(block));
    EXPECT_THAT(releasedByFinish(), ElementsAre(block));
}

TEST_F(SchemaMoImplExportTest, missingMemoryForTheResultIsItsOwnCodeAfterTheSuccessIsTold) {
    const LogCapture log(3);
    {
        MemoryWatch watch;
        watch.failMalloc();
        EXPECT_EQ(doExport(), -10);
        EXPECT_TRUE(watch.failed());
    }
    EXPECT_EQ(result, nullptr);
    EXPECT_THAT(posted, ElementsAre(std::pair(1, "File transfer successful")));
    EXPECT_THAT(log.records(), ElementsAreArray(message(3, sourceFile, "setVoidActionResult",
                                                        "Can not allocate memory for attributeValueContainer")));
    EXPECT_THAT(releasedByFinish(), IsEmpty());
    const LogCapture below(2);
    MemoryWatch watch;
    watch.failMalloc();
    EXPECT_EQ(doExport(), -10);
    EXPECT_THAT(below.records(), IsEmpty());
}

TEST_F(SchemaMoImplExportTest, resultThatCannotBeRegisteredIsFreedAndNotHandedOut) {
    unsigned int refusals = 0;
    bool isFailing = true;
    for (unsigned int nth = 1; isFailing; ++nth) {
        {
            MemoryWatch watch;
            runner.atExecution = [&watch, nth] { watch.failNew(nth); };
            try {
                EXPECT_EQ(doExport(), 0);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(result, &untouched) << nth;
                EXPECT_EQ(watch.released(), watch.allocated()) << nth;
                refusals += watch.allocated().empty() ? 0 : 1;
            }
            isFailing = watch.failed();
        }
        EXPECT_EQ(moImpl.finish(txHandle), 0);
    }
    EXPECT_GT(refusals, 0U);
}

TEST_F(SchemaMoImplExportTest, failingExportAllocatesNothingForTheFramework) {
    runner.code = -1;
    MemoryWatch watch;
    EXPECT_EQ(doExport(), -1);
    EXPECT_THAT(watch.allocated(), IsEmpty());
}

TEST_F(SchemaMoImplExportTest, missingMemorySwitchesDebugOff) {
    EXPECT_THAT(recordsOfAFailingDebugRead(MemoryWatch::Thrown::BadAlloc),
                ElementsAreArray(message(4, sourceFile, "isDebugModeSet",
                                         "Caught exception std::bad_alloc. Setting sftp debug mode to false")));
}

TEST_F(SchemaMoImplExportTest, exceptionOfAnyTypeSwitchesDebugOff) {
    EXPECT_THAT(recordsOfAFailingDebugRead(MemoryWatch::Thrown::Int),
                ElementsAreArray(
                    message(4, sourceFile, "isDebugModeSet", "Caught exception. Setting sftp debug mode to false")));
}

TEST_F(SchemaMoImplExportTest, whereverMemoryRunsOutTheExceptionGoesToTheCallerAndTheAddressesAreFreed) {
    resolver.setFamilies("a-host-with-a-name-that-no-small-string-holds", {AF_INET6});
    ExportParameters longOnes("sftp://user@a-host-with-a-name-that-no-small-string-holds/f", "secret");
    ASSERT_EQ(doExport(), 0);  // what is made once only is made now, so that every export allocates the same
    unsigned int failures = 0;
    bool isFailing = true;
    while (isFailing) {
        {
            MemoryWatch watch;
            watch.failNew(++failures);
            try {
                EXPECT_EQ(moImpl.action(txHandle, dn.c_str(), "export", longOnes.array, &result), 0) << failures;
            } catch (const std::bad_alloc&) {
            }
            isFailing = watch.failed();
        }
        EXPECT_EQ(resolver.held(), 0U) << failures;
        EXPECT_EQ(moImpl.finish(txHandle), 0);
    }
    EXPECT_GT(resolver.asked().size(), 10U);  // so often it went on until after the host was looked up
}

}  // namespace

}  // namespace TevTest

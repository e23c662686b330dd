#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>

#include "ExportTest.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* internalError = "Internal error";
constexpr const char* success = "File transfer successful";

}  // namespace

/// The transfer and what becomes of it.
class ExportContractTest : public ExportTest {
protected:
    ExportContractTest() { Tev::LoggingWrapper::instance().set_level(7); }

    TevReturnT exportOf(const std::string& dn) {
        ExportParameters parameters(uri, "secret");
        return act(dn, "export", parameters.array);
    }

    /// Expects `code`, the error record and "Internal error" from the export of an instance, and nothing else.
    void expectInternalError(const std::string& dn, const char* destination, TevReturnT code, const std::string& text) {
        SCOPED_TRACE(text);
        forget();
        ExportParameters parameters(destination, "secret");
        EXPECT_EQ(act(dn, "export", parameters.array), code);
        EXPECT_THAT(log.records(), ElementsAreArray(error("action", text)));
        EXPECT_THAT(host.calls(), ElementsAre("addMessage 1,Internal error"));
        EXPECT_THAT(resolver.asked(), IsEmpty());
        EXPECT_THAT(runner.constructed, IsEmpty());
        EXPECT_TRUE(isResultUntouched());
    }

    void expectThrown(const std::function<void()>& doExport) {
        EXPECT_THROW(doExport(), std::out_of_range);
        EXPECT_THAT(host.messages(), IsEmpty());
        EXPECT_THAT(log.records(), IsEmpty());
        EXPECT_TRUE(isResultUntouched());
        Tev::LoggingWrapper::instance().set_level(8);
        EXPECT_EQ(resource().finish(txHandle), 0);
        EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
    }

    static FakeModel model(const std::string& name, const std::string& path) {
        FakeModel made{name};
        made.file = path;
        return made;
    }
};

// The instance.

TEST_F(ExportContractTest, unknownInstanceIsAnInternalError) {
    for (const std::string id : {"foo", "mom", "Mo", "Moms", "", "%s%n"}) {
        expectInternalError(dnOf(id), uri, -2, "Could not find schema for schemaId [" + id + "] ");
    }
    expectInternalError(dnOf("Mom,Extra"), uri, -2, "Could not find schema for schemaId [Mom,Extra] ");
    expectInternalError(dnOf("Mom,Extra=b"), uri, -2, "Could not find schema for schemaId [b] ");
}

TEST_F(ExportContractTest, instanceIsTheOneNamedAfterTheLastEqualsSign) {
    EXPECT_EQ(exportOf(dnOf("Other,Extra=Mom")), 0);
    ASSERT_THAT(runner.constructed, SizeIs(1));
    EXPECT_EQ(runner.constructed[0], plainArguments());
}

TEST_F(ExportContractTest, fileOfTheInstancesOwnModelIsSent) {
    host.models = {model("First", folder.write("a.xml", "")), model("Mom", folder.write("b.xml", "")),
                   model("Mom", folder.write("c.xml", ""))};
    restart();
    EXPECT_EQ(std::get<6>(argumentsOf()), folder.path() / "b.xml");
}

TEST_F(ExportContractTest, missingFileIsAnInternalErrorWhateverTheUri) {
    std::filesystem::remove(file);
    expectInternalError(dnOf("Mom"), uri, -1, "Fragment file does not exist: " + file);
    expectInternalError(dnOf("Mom"), "sftp:", -1, "Fragment file does not exist: " + file);
}

TEST_F(ExportContractTest, fileBehindADanglingLinkIsMissing) {
    std::filesystem::remove(file);
    std::filesystem::create_symlink("nowhere", file);
    expectInternalError(dnOf("Mom"), uri, -1, "Fragment file does not exist: " + file);
}

TEST_F(ExportContractTest, folderInThePlaceOfTheFileIsTheRunnersBusiness) {
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(argumentsOf(), plainArguments());
}

TEST_F(ExportContractTest, fileIsLookedForAtEachExport) {
    std::filesystem::remove(file);
    EXPECT_EQ(exportTo(uri), -1);
    folder.write("Mom.xml", "");
    EXPECT_EQ(exportTo(uri), 0);
}

TEST_F(ExportContractTest, conversionsInFileNamesComeOutAsTheyAre) {
    host.models = {model("Mom", (folder.path() / "100%s%n.xml").string())};
    restart();
    expectInternalError(dnOf("Mom"), uri, -1,
                        "Fragment file does not exist: " + (folder.path() / "100%s%n.xml").string());
    folder.write("100%s%n.xml", "");
    EXPECT_EQ(std::get<6>(argumentsOf()), folder.path() / "100%s%n.xml");
}

TEST_F(ExportContractTest, internalErrorsAreLoggedFromLevelThree) {
    std::filesystem::remove(file);
    expectRecordsFromLevel(3, uri, error("action", "Fragment file does not exist: " + file));
    host.models = {};
    restart();
    expectRecordsFromLevel(3, uri, error("action", "Could not find schema for schemaId [Mom] "));
    EXPECT_THAT(host.messages(), testing::Each(std::pair(1, internalError)));
}

// The transfer.

TEST_F(ExportContractTest, runnerGetsExactlyTheseArguments) {
    EXPECT_EQ(argumentsOf("sftp://admin@10.0.0.1:2222/tmp/f", "secret"),
              FakeRunner::Arguments("/usr/bin/sftp", "admin", "secret", "10.0.0.1", "2222", 1, file, "/tmp/f", false,
                                    "", "", "", 180000, 0));
    EXPECT_EQ(runner.executions, 1U);
}

TEST_F(ExportContractTest, timeoutOfTheConfigurationIsPassedOnUnchanged) {
    for (const long timeout : {60000L, 0L, -5L, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()}) {
        restart(folder.write("timeout.cfg", "<TevSchemaMoService><sftpTimeout>" + std::to_string(timeout) +
                                                "</sftpTimeout></TevSchemaMoService>"));
        EXPECT_EQ(std::get<12>(argumentsOf()), timeout);
    }
    restart();
    EXPECT_EQ(std::get<12>(argumentsOf()), 180000);
}

TEST_F(ExportContractTest, successIsToldAndGivesAVoidResult) {
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, success)));
    ASSERT_FALSE(isResultUntouched());
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->type, 15);
    EXPECT_EQ(result->nrOfValues, 0U);
    EXPECT_EQ(result->values, nullptr);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(ExportContractTest, resultBelongsToTheTransaction) {
    EXPECT_EQ(exportTo(uri), 0);
    Tev::LoggingWrapper::instance().set_level(8);
    log.clear();
    // Nothing is said of an unknown transaction: it was there and is gone now.
    EXPECT_EQ(resource().finish(txHandle), 0);
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_EQ(resource().finish(txHandle), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
}

TEST_F(ExportContractTest, failureGivesTheRunnersCodeAndTellsItsReason) {
    for (const TevReturnT code : {-1, -2, -8, -10, 1, 2, 17, std::numeric_limits<TevReturnT>::min()}) {
        SCOPED_TRACE(code);
        runner.code = code;
        runner.errorMessage = "no %s: " + std::to_string(code);
        forget();
        EXPECT_EQ(exportTo(uri), code);
        EXPECT_EQ(host.messages().back(), std::pair(1, "SFTP error: no %s: " + std::to_string(code)));
        EXPECT_THAT(log.records(), IsEmpty());
        EXPECT_TRUE(isResultUntouched());
    }
    EXPECT_THAT(host.messages(), SizeIs(8));
    EXPECT_EQ(runner.executions, 8U);
    Tev::LoggingWrapper::instance().set_level(8);
    log.clear();
    EXPECT_EQ(resource().finish(txHandle), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
}

TEST_F(ExportContractTest, failureWithoutAReasonIsToldAllTheSame) {
    runner.code = -1;
    EXPECT_EQ(exportTo(uri), -1);
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, "SFTP error: ")));
}

TEST_F(ExportContractTest, operatorIsToldWhenTheTransferIsOver) {
    runner.atExecution = [this] {
        EXPECT_THAT(host.messages(), IsEmpty());
        EXPECT_TRUE(isResultUntouched());
    };
    bool isResultMade = true;
    host.whenCalled("addMessage", [&] {
        EXPECT_EQ(runner.executions, 1U);
        isResultMade = !isResultUntouched();
    });
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_FALSE(isResultMade);
}

TEST_F(ExportContractTest, settingsAreReadBeforeTheRunnerIsMade) {
    runner.atConstruction = [this] {
        EXPECT_THAT(host.calls(), testing::Contains("router.getMoAttribute 815,,ServiceCategory=OamBulk,dscp"));
    };
    host.clearCalls();
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(runner.constructed, SizeIs(1));
}

TEST_F(ExportContractTest, exceptionsOfTheRunnerGoToTheCaller) {
    runner.atExecution = [] { throw std::out_of_range("execute"); };
    expectThrown([this] { exportTo(uri); });
}

TEST_F(ExportContractTest, exceptionsOfTheRunnersConstructionGoToTheCaller) {
    runner.atConstruction = [] { throw std::out_of_range("construction"); };
    expectThrown([this] { exportTo(uri); });
}

TEST_F(ExportContractTest, exceptionsOfTheRunnersReasonGoToTheCaller) {
    runner.code = -1;
    runner.atErrorMessage = [] { throw std::out_of_range("reason"); };
    expectThrown([this] { exportTo(uri); });
}

TEST_F(ExportContractTest, exceptionsOfTheThreadContextGoToTheCaller) {
    host.whenCalled("addMessage", [] { throw std::out_of_range("addMessage"); });
    expectThrown([this] { exportTo(uri); });
    runner.code = -1;
    EXPECT_THROW(exportTo(uri), std::out_of_range);
    EXPECT_THROW(exportTo("sftp:"), std::out_of_range);
    EXPECT_THROW(exportOf(dnOf("Other")), std::out_of_range);
}

TEST_F(ExportContractTest, exceptionsOfTheFrameworkAndOfNoTypeGoToTheCallerToo) {
    runner.atExecution = [] { throw Tev::TevException(-5, "busy"); };
    EXPECT_THROW(exportTo(uri), Tev::TevException);
    runner.atExecution = [] { throw 42; };
    EXPECT_THROW(exportTo(uri), int);
    EXPECT_THAT(host.messages(), IsEmpty());
}

TEST_F(ExportContractTest, nothingOfAnExportIsLeftForTheNext) {
    runner.code = -1;
    runner.errorMessage = "refused";
    EXPECT_EQ(exportTo("sftp://other@[fe80::1]/g", "another"), -1);
    runner.code = 0;
    EXPECT_EQ(argumentsOf(), plainArguments());
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, "SFTP error: refused"), std::pair(1, success)));
}

TEST_F(ExportContractTest, exportIsDoneInTheCallersThreadAndOthersReadMeanwhile) {
    std::promise<void> isUnderWay;
    std::promise<void> mayEnd;
    std::thread::id executing;
    runner.atExecution = [&] {
        executing = std::this_thread::get_id();
        isUnderWay.set_value();
        mayEnd.get_future().wait();
    };
    std::future<TevReturnT> code = std::async(std::launch::async, [&] {
        const TevReturnT exported = exportTo(uri);
        EXPECT_EQ(executing, std::this_thread::get_id());
        return exported;
    });
    ASSERT_EQ(isUnderWay.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    const unsigned long other = begin();
    EXPECT_THAT(list(other), ElementsAre("Mom"));
    EXPECT_THAT(read(other, "Mom", "schemaId"), ElementsAre("Mom"));
    finish(other);
    mayEnd.set_value();
    EXPECT_EQ(code.get(), 0);
}

TEST_F(ExportContractTest, exportsOfTwoThreadsAreUnderWayAtOnce) {
    std::promise<void> bothAreUnderWay;
    const std::shared_future<void> both = bothAreUnderWay.get_future().share();
    std::atomic<unsigned int> underWay = 0;
    runner.atExecution = [&bothAreUnderWay, &both, &underWay] {
        if (++underWay == 2) {
            bothAreUnderWay.set_value();
        }
        const std::shared_future<void> mine = both;
        EXPECT_EQ(mine.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    };
    const auto exportIn = [this](unsigned long transaction) {
        ExportParameters parameters(uri, "secret");
        DalMoAttributeValueContainer* given = nullptr;
        return objects().action(transaction, dnOf("Mom").c_str(), "export", parameters.array, &given);
    };
    std::future<TevReturnT> code = std::async(std::launch::async, exportIn, begin());
    EXPECT_EQ(exportIn(begin()), 0);
    EXPECT_EQ(code.get(), 0);
    EXPECT_THAT(runner.constructed, ElementsAre(plainArguments(), plainArguments()));
}

// The thread context.

TEST_F(ExportContractTest, threadContextOfTheLatestStartIsUsed) {
    EXPECT_EQ(exportTo(uri), 0);
    host.changeThreadContext();
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(host.messages(), IsEmpty());
    ASSERT_EQ(stop(), 0);
    ASSERT_EQ(start(), 0);
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, success)));
}

TEST_F(ExportContractTest, threadContextStaysThatOfAStartThatFailedLater) {
    host.changeThreadContext();
    host.failCall("getInterface", -2, 3);
    ASSERT_EQ(start(), -2);
    EXPECT_EQ(exportTo(uri), 0);
    EXPECT_THAT(host.messages(), ElementsAre(std::pair(1, success)));
}

}  // namespace TevTest

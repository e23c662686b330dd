#include "TransactionContextManager.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LogCapture.h"
#include "MemoryWatch.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;
using TevSchemaPopulator::TransactionContextManager;

constexpr const char* sourceFile = "src/schema_populator/TransactionContextManager";

std::vector<void*> releasedBy(TransactionContextManager& manager, unsigned long txHandle) {
    MemoryWatch watch;
    manager.cleanup(txHandle);
    return watch.released();
}

std::vector<testing::Matcher<LogRecord>> noContext(unsigned long txHandle) {
    return debugTrace(0, sourceFile, "cleanup",
                      "Could not find transaction context [" + std::to_string(txHandle) + "] to clean up");
}

void expectUnknown(TransactionContextManager& manager, void* itHandle) {
    try {
        manager.getNextIteratorContext(itHandle);
        ADD_FAILURE() << "the handle is known";
    } catch (const Tev::TevException& e) {
        EXPECT_EQ(e.getReturnCode(), -1);
        EXPECT_STREQ(e.what(), "Iterator handle is not valid");
    }
}

TEST(TransactionContextManagerTest, iteratorGivesItsIndexBeforeItMovesOn) {
    TransactionContextManager manager;
    void* const iterator = manager.getNewIteratorHandle(5);
    for (unsigned int index = 0; index < 1000; ++index) {
        EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(index, 5UL));
    }
    manager.cleanup(5);
}

TEST(TransactionContextManagerTest, iteratorsMoveOnIndependently) {
    TransactionContextManager manager;
    void* const first = manager.getNewIteratorHandle(5);
    void* const second = manager.getNewIteratorHandle(5);
    void* const other = manager.getNewIteratorHandle(6);
    EXPECT_THAT(manager.getNextIteratorContext(first), Pair(0U, 5UL));
    EXPECT_THAT(manager.getNextIteratorContext(first), Pair(1U, 5UL));
    EXPECT_THAT(manager.getNextIteratorContext(second), Pair(0U, 5UL));
    EXPECT_THAT(manager.getNextIteratorContext(other), Pair(0U, 6UL));
    EXPECT_THAT(manager.getNextIteratorContext(first), Pair(2U, 5UL));
    EXPECT_THAT(manager.getNextIteratorContext(second), Pair(1U, 5UL));
    manager.cleanup(5);
    manager.cleanup(6);
}

TEST(TransactionContextManagerTest, iteratorHandleIsABlockOfFourBytes) {
    TransactionContextManager manager;
    std::vector<void*> allocated;
    std::vector<std::size_t> sizes;
    void* iterator = nullptr;
    {
        MemoryWatch watch;
        iterator = manager.getNewIteratorHandle(5);
        allocated = watch.allocated();
        sizes = watch.mallocSizes();
    }
    EXPECT_THAT(allocated, ElementsAre(iterator));
    EXPECT_THAT(sizes, ElementsAre(4U));
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(iterator));
}

TEST(TransactionContextManagerTest, unknownIteratorThrowsAndChangesNothing) {
    TransactionContextManager manager;
    expectUnknown(manager, nullptr);
    void* const iterator = manager.getNewIteratorHandle(5);
    expectUnknown(manager, &manager);
    expectUnknown(manager, static_cast<char*>(iterator) + 1);
    EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(0U, 5UL));
    manager.cleanup(5);
    expectUnknown(manager, iterator);
}

TEST(TransactionContextManagerTest, cleanupFreesBlocksInTheOrderOfTheirRegistration) {
    TransactionContextManager manager;
    std::vector<void*> blocks;
    for (int i = 0; i < 3; ++i) {
        blocks.push_back(std::malloc(16));
        manager.addMemory(5, blocks.back());
        blocks.push_back(manager.getNewIteratorHandle(5));
    }
    EXPECT_THAT(releasedBy(manager, 5), ElementsAreArray(blocks));
}

TEST(TransactionContextManagerTest, cleanupForgetsIteratorsBeforeItFreesBlocks) {
    TransactionContextManager manager;
    void* const iterator = manager.getNewIteratorHandle(5);
    bool freed = false;
    MemoryWatch watch;
    watch.atNextFree([&] {
        freed = true;
        expectUnknown(manager, iterator);  // the thread that has the lock may take it again
    });
    manager.cleanup(5);
    EXPECT_TRUE(freed);
}

TEST(TransactionContextManagerTest, cleanupLeavesOtherTransactionsAlone) {
    TransactionContextManager manager;
    void* const ended = std::malloc(1);
    void* const open = std::malloc(1);
    manager.addMemory(5, ended);
    manager.addMemory(6, open);
    void* const iterator = manager.getNewIteratorHandle(6);
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(ended));
    EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(0U, 6UL));
    EXPECT_THAT(releasedBy(manager, 6), ElementsAre(open, iterator));
}

TEST(TransactionContextManagerTest, cleanupOfAKnownTransactionWritesNoTrace) {
    TransactionContextManager manager;
    manager.addMemory(5, std::malloc(1));
    manager.getNewIteratorHandle(5);
    const LogCapture log;
    manager.cleanup(5);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TransactionContextManagerTest, secondCleanupOnlyWritesATrace) {
    TransactionContextManager manager;
    manager.addMemory(5, std::malloc(1));
    manager.cleanup(5);
    const LogCapture log;
    EXPECT_THAT(releasedBy(manager, 5), IsEmpty());
    EXPECT_THAT(log.records(), ElementsAreArray(noContext(5)));
}

TEST(TransactionContextManagerTest, cleanupOfATransactionThatRegisteredNothingChangesNothing) {
    TransactionContextManager manager;
    void* const iterator = manager.getNewIteratorHandle(5);
    const LogCapture log;
    EXPECT_THAT(releasedBy(manager, 6), IsEmpty());
    EXPECT_THAT(log.records(), ElementsAreArray(noContext(6)));
    EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(0U, 5UL));
    manager.cleanup(5);
}

TEST(TransactionContextManagerTest, traceOfAnUnknownTransactionNeedsTheHighestLevel) {
    TransactionContextManager manager;
    const LogCapture log(7);
    manager.cleanup(5);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TransactionContextManagerTest, zeroIsAnOrdinaryTransaction) {
    TransactionContextManager manager;
    void* const block = std::malloc(1);
    manager.addMemory(0, block);
    void* const iterator = manager.getNewIteratorHandle(0);
    EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(0U, 0UL));
    EXPECT_THAT(releasedBy(manager, 0), ElementsAre(block, iterator));
    expectUnknown(manager, iterator);
}

TEST(TransactionContextManagerTest, transactionHandleMayBeUsedAgain) {
    TransactionContextManager manager;
    manager.addMemory(5, std::malloc(1));
    manager.cleanup(5);
    void* const block = std::malloc(1);
    manager.addMemory(5, block);
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(block));
}

TEST(TransactionContextManagerTest, nullBlockIsAcceptedAndPassedToFree) {
    TransactionContextManager manager;
    void* const block = std::malloc(1);
    manager.addMemory(5, nullptr);
    manager.addMemory(5, block);
    manager.addMemory(5, nullptr);
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(nullptr, block, nullptr));
}

TEST(TransactionContextManagerTest, blockRegisteredTwiceIsNotRefused) {
    void* const block = std::malloc(1);
    {
        TransactionContextManager manager;
        manager.addMemory(5, block);
        EXPECT_NO_THROW(manager.addMemory(5, block));
    }
    std::free(block);
}

TEST(TransactionContextManagerTest, missingMemoryForAnIteratorHandleIsNotNoticed) {
    TransactionContextManager manager;
    void* iterator = &manager;
    {
        MemoryWatch watch;
        watch.failMalloc();
        iterator = manager.getNewIteratorHandle(5);
    }
    EXPECT_EQ(iterator, nullptr);
    EXPECT_THAT(manager.getNextIteratorContext(nullptr), Pair(0U, 5UL));
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(nullptr));
    expectUnknown(manager, nullptr);
}

TEST(TransactionContextManagerTest, iteratorThatCannotBeNotedLeavesNothingBehind) {
    for (unsigned int nth = 1; nth <= 4; ++nth) {  // the transaction, its block, its handle, the iterator
        SCOPED_TRACE(nth);
        TransactionContextManager manager;
        MemoryWatch watch;
        watch.failNew(nth);
        EXPECT_THROW(manager.getNewIteratorHandle(5), std::bad_alloc);
        manager.cleanup(5);
        EXPECT_THAT(watch.released(), ElementsAreArray(watch.allocated()));
    }
}

TEST(TransactionContextManagerTest, blockThatCannotBeRegisteredIsFreed) {
    for (const unsigned int nth : {1U, 2U}) {
        SCOPED_TRACE(nth);
        TransactionContextManager manager;
        void* const block = strdup("block");
        MemoryWatch watch;
        watch.failNew(nth);
        EXPECT_THROW(manager.addMemory(5, block), std::bad_alloc);
        EXPECT_THAT(watch.released(), ElementsAre(block));
    }
}

TEST(TransactionContextManagerTest, blocksOfOpenTransactionsOutliveTheManager) {
    char* const block = strdup("still there");
    {
        TransactionContextManager manager;
        manager.addMemory(5, block);
    }
    EXPECT_STREQ(block, "still there");
    std::free(block);
}

TEST(TransactionContextManagerTest, destroyIteratorContextErasesAKnownHandleInSilence) {
    TransactionContextManager::IteratorContexts contexts;
    int first = 0;
    int second = 0;
    contexts[&first] = {1, 5};
    contexts[&second] = {2, 5};
    const LogCapture log;
    TransactionContextManager::DestroyIteratorContext destroy(&contexts);
    destroy(&first);
    EXPECT_THAT(contexts, ElementsAre(Pair(&second, Pair(2U, 5UL))));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TransactionContextManagerTest, destroyIteratorContextTracesAnUnknownHandle) {
    TransactionContextManager::IteratorContexts contexts;
    int known = 0;
    int unknown = 0;
    contexts[&known] = {1, 5};
    char shown[32];
    std::snprintf(shown, sizeof shown, "%p", static_cast<void*>(&unknown));
    const LogCapture log;
    TransactionContextManager::DestroyIteratorContext destroy(&contexts);
    destroy(&unknown);
    EXPECT_EQ(contexts.size(), 1U);
    EXPECT_THAT(log.records(), ElementsAreArray(debugTrace(
                                   0, sourceFile, "operator()",
                                   std::string("Could not erase iteratorContext with handle [") + shown + "]")));
}

TEST(TransactionContextManagerTest, cleanupTracesAnIteratorHandleThatIsGone) {
    TransactionContextManager manager;
    // Without memory for their blocks, two iterators have one handle, and the second finds the first's entry erased.
    for (int i = 0; i < 2; ++i) {
        MemoryWatch watch;
        watch.failMalloc();
        manager.getNewIteratorHandle(5);
    }
    const LogCapture log;
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(nullptr, nullptr));
    EXPECT_THAT(log.records(), ElementsAreArray(debugTrace(0, sourceFile, "operator()",
                                                           "Could not erase iteratorContext with handle [(nil)]")));
    expectUnknown(manager, nullptr);
}

/// Something done in a thread of its own.
class Contender {
public:
    explicit Contender(std::function<void()> operation)
        : thread([this, operation = std::move(operation)] {
              threadId = gettid();
              operation();
              done = true;
          }) {}

    ~Contender() { thread.join(); }

    /// Returns, once it can be told, whether the operation sleeps before it is done.
    bool waits() const {
        while (!done && !(threadId != 0 && sleeps())) {
            std::this_thread::yield();
        }
        return !done;
    }

private:
    bool sleeps() const {
        std::ifstream file("/proc/self/task/" + std::to_string(threadId) + "/stat");
        std::string status;
        std::getline(file, status);
        return status.find(") S ") != std::string::npos;
    }

    std::atomic<pid_t> threadId{0};
    std::atomic<bool> done{false};
    std::thread thread;
};

TEST(TransactionContextManagerTest, operationsWaitForTheOneUnderWay) {
    TransactionContextManager manager;
    void* const iterator = manager.getNewIteratorHandle(1);
    using Operation = std::function<void()>;
    // While it allocates or frees memory, an operation has the lock.
    const std::vector<std::pair<Operation, void (MemoryWatch::*)(Operation)>> underWay = {
        {[&] { manager.addMemory(5, nullptr); }, &MemoryWatch::atNextNew},
        {[&] { manager.getNewIteratorHandle(5); }, &MemoryWatch::atNextNew},
        {[&] { expectUnknown(manager, nullptr); }, &MemoryWatch::atNextNew},
        {[&] { manager.cleanup(5); }, &MemoryWatch::atNextFree}};
    const std::vector<Operation> contending = {
        [&] { manager.addMemory(6, nullptr); }, [&] { manager.getNewIteratorHandle(6); },
        [&] { manager.getNextIteratorContext(iterator); }, [&] { manager.cleanup(6); }};
    for (std::size_t first = 0; first < underWay.size(); ++first) {
        for (std::size_t second = 0; second < contending.size(); ++second) {
            manager.addMemory(5, nullptr);
            manager.addMemory(6, nullptr);
            std::optional<Contender> contender;
            MemoryWatch watch;
            (watch.*underWay[first].second)([&] {
                contender.emplace(contending[second]);
                EXPECT_TRUE(contender->waits()) << "operation " << second << " during operation " << first;
            });
            underWay[first].first();
            ASSERT_TRUE(contender);
        }
    }
    for (const unsigned long txHandle : {1UL, 5UL, 6UL}) {
        manager.cleanup(txHandle);
    }
}

TEST(TransactionContextManagerTest, lockIsReleasedWhenAnIteratorIsUnknown) {
    TransactionContextManager manager;
    expectUnknown(manager, nullptr);
    // The thread that got the exception could take its own lock again; another would wait for good.
    std::thread([&manager] { manager.addMemory(5, nullptr); }).join();
    EXPECT_THAT(releasedBy(manager, 5), ElementsAre(nullptr));
}

TEST(TransactionContextManagerTest, threadsMayWorkInDifferentTransactionsAtOnce) {
    TransactionContextManager manager;
    std::vector<std::thread> threads;
    for (unsigned long txHandle = 0; txHandle < 4; ++txHandle) {
        threads.emplace_back([&manager, txHandle] {
            for (int round = 0; round < 50; ++round) {
                void* const iterator = manager.getNewIteratorHandle(txHandle);
                for (unsigned int index = 0; index < 10; ++index) {
                    manager.addMemory(txHandle, std::malloc(1));
                    EXPECT_THAT(manager.getNextIteratorContext(iterator), Pair(index, txHandle));
                }
                manager.cleanup(txHandle);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace

}  // namespace TevTest

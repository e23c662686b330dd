#include <limits>
#include <set>

#include "ContractTest.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// What lives in a transaction, how long, and what its end leaves alone. That memory is released, and released once, is
/// for the leak and address checks to see.
class TransactionsContractTest : public ContractTest {
protected:
    TransactionsContractTest() { startWith({FakeModel{"One"}, FakeModel{"Two"}, FakeModel{"Three"}}); }

    /// The next key, null at the end of the listing.
    const char* next(void* iterator) {
        char* key = nullptr;
        EXPECT_EQ(objects().nextMo(iterator, &key), 0);
        return key;
    }

    /// Checks that this is no iterator, or no longer.
    void expectUnknown(void* iterator) {
        char unset = '\0';
        char* key = &unset;
        log.clear();
        EXPECT_EQ(objects().nextMo(iterator, &key), -1);
        EXPECT_EQ(key, nullptr);
        EXPECT_THAT(log.recordsOf("nextMo"),
                    ElementsAreArray(inOrder(
                        {debugTrace(0, moImplFile, "nextMo", "itHandle " + shownHandle(iterator)),
                         message(3, moImplFile, "nextMo", "Could not get next Mo: [Iterator handle is not valid]")})));
    }

    /// Checks that the component holds nothing for the transaction.
    void expectNothingHeld(unsigned long txHandle) {
        log.clear();
        EXPECT_EQ(resource().finish(txHandle), 0);
        EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
    }
};

TEST_F(TransactionsContractTest, iteratorsOfOneTransactionAdvanceIndependently) {
    const unsigned long txHandle = begin();
    void* const first = newIterator(txHandle);
    void* const second = newIterator(txHandle);
    EXPECT_STREQ(next(first), "One");
    EXPECT_STREQ(next(first), "Two");
    EXPECT_STREQ(next(second), "One");
    EXPECT_STREQ(next(first), "Three");
    EXPECT_STREQ(next(second), "Two");
    EXPECT_EQ(next(first), nullptr);
    EXPECT_STREQ(next(second), "Three");
    EXPECT_EQ(next(second), nullptr);
}

TEST_F(TransactionsContractTest, iteratorsOfDifferentTransactionsAdvanceIndependently) {
    void* const first = newIterator(begin());
    void* const second = newIterator(begin());
    EXPECT_STREQ(next(first), "One");
    EXPECT_STREQ(next(second), "One");
    EXPECT_STREQ(next(second), "Two");
    EXPECT_STREQ(next(first), "Two");
}

TEST_F(TransactionsContractTest, iteratorHandlesOfOpenTransactionsAreAllDifferent) {
    std::set<void*> handles;
    for (int i = 0; i < 10; ++i) {
        const unsigned long txHandle = begin();
        for (int j = 0; j < 50; ++j) {
            handles.insert(newIterator(txHandle));
        }
    }
    EXPECT_EQ(handles.size(), 500U);
}

TEST_F(TransactionsContractTest, finishEndsTheTransactionsIterators) {
    const unsigned long txHandle = begin();
    void* const first = newIterator(txHandle);
    void* const second = newIterator(txHandle);
    EXPECT_STREQ(next(first), "One");
    finish(txHandle);
    expectUnknown(first);
    expectUnknown(second);
}

TEST_F(TransactionsContractTest, finishLeavesOtherTransactionsAlone) {
    const unsigned long ended = begin();
    const unsigned long open = begin();
    void* const endedIterator = newIterator(ended);
    void* const openIterator = newIterator(open);
    EXPECT_STREQ(next(endedIterator), "One");
    const char* const key = next(openIterator);
    DalMoAttributeValueContainer* value = nullptr;
    EXPECT_EQ(objects().getMoAttribute(open, dnOf("Two").c_str(), "schemaId", &value), 0);
    finish(ended);
    EXPECT_STREQ(key, "One");
    EXPECT_STREQ(value->values[0].theString, "Two");
    EXPECT_STREQ(next(openIterator), "Two");
    expectUnknown(endedIterator);
}

TEST_F(TransactionsContractTest, keysLiveInTheIteratorsTransaction) {
    const unsigned long ofIterator = begin();
    const unsigned long other = begin();
    void* const iterator = newIterator(ofIterator);
    read(other, "One", "schemaId");
    const char* const key = next(iterator);
    finish(other);
    EXPECT_STREQ(key, "One");
    finish(ofIterator);
    expectNothingHeld(other);
    expectNothingHeld(ofIterator);
}

TEST_F(TransactionsContractTest, valuesLiveInTheTransactionOfTheRead) {
    const unsigned long ofIterator = begin();
    const unsigned long ofRead = begin();
    newIterator(ofIterator);
    DalMoAttributeValueContainer* value = nullptr;
    EXPECT_EQ(objects().getMoAttribute(ofRead, dnOf("One").c_str(), "schemaId", &value), 0);
    finish(ofIterator);
    EXPECT_STREQ(value->values[0].theString, "One");
}

TEST_F(TransactionsContractTest, keysStayUntilFinish) {
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    const char* const first = next(iterator);
    const char* const second = next(iterator);
    EXPECT_STREQ(next(iterator), "Three");
    EXPECT_EQ(next(iterator), nullptr);
    EXPECT_STREQ(first, "One");
    EXPECT_STREQ(second, "Two");
}

TEST_F(TransactionsContractTest, onlyFinishEndsAnIterator) {
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    EXPECT_STREQ(next(iterator), "One");
    bool valid = false;
    EXPECT_EQ(resource().validate(txHandle, &valid), 0);
    EXPECT_EQ(resource().prepare(txHandle), 0);
    EXPECT_STREQ(next(iterator), "Two");
    EXPECT_EQ(resource().commit(txHandle), 0);
    EXPECT_EQ(resource().abort(txHandle), 0);
    EXPECT_STREQ(next(iterator), "Three");
    EXPECT_EQ(next(iterator), nullptr);
    EXPECT_EQ(next(iterator), nullptr);
    finish(txHandle);
    expectUnknown(iterator);
}

TEST_F(TransactionsContractTest, finishOfATransactionThatHoldsSomethingLogsNothing) {
    const unsigned long txHandle = begin();
    next(newIterator(txHandle));
    read(txHandle, "One", "schemaId");
    log.clear();
    finish(txHandle);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(TransactionsContractTest, secondFinishFindsNothing) {
    const unsigned long txHandle = begin();
    next(newIterator(txHandle));
    finish(txHandle);
    expectNothingHeld(txHandle);
    expectNothingHeld(txHandle);
}

TEST_F(TransactionsContractTest, finishOfATransactionThatReadNothingFindsNothing) {
    const unsigned long used = begin();
    void* const iterator = newIterator(used);
    expectNothingHeld(begin());
    EXPECT_STREQ(next(iterator), "One");
}

TEST_F(TransactionsContractTest, finishEndsATransactionWithValuesButNoIterators) {
    const unsigned long txHandle = begin();
    read(txHandle, "One", "schemaId");
    finish(txHandle);
    expectNothingHeld(txHandle);
}

TEST_F(TransactionsContractTest, finishEndsATransactionWithIteratorsButNoValues) {
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    finish(txHandle);
    expectNothingHeld(txHandle);
    expectUnknown(iterator);
}

TEST_F(TransactionsContractTest, zeroIsAnOrdinaryTransactionHandle) {
    expectNothingHeld(0);
    void* const iterator = newIterator(0);
    EXPECT_STREQ(next(iterator), "One");
    EXPECT_THAT(read(0, "Two", "schemaId"), ElementsAre("Two"));
    EXPECT_EQ(resource().finish(0), 0);
    expectUnknown(iterator);
    expectNothingHeld(0);
}

TEST_F(TransactionsContractTest, largestTransactionHandleIsAnOrdinaryOne) {
    constexpr unsigned long txHandle = std::numeric_limits<unsigned long>::max();
    expectNothingHeld(txHandle);
    EXPECT_THAT(list(txHandle), ElementsAre("One", "Two", "Three"));
    EXPECT_EQ(resource().finish(txHandle), 0);
    expectNothingHeld(txHandle);
}

TEST_F(TransactionsContractTest, transactionHandleMayBeUsedAgain) {
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    EXPECT_STREQ(next(iterator), "One");
    finish(txHandle);
    expectUnknown(iterator);
    EXPECT_THAT(list(txHandle), ElementsAre("One", "Two", "Three"));
    EXPECT_THAT(read(txHandle, "Two", "schemaId"), ElementsAre("Two"));
    finish(txHandle);
    expectNothingHeld(txHandle);
}

TEST_F(TransactionsContractTest, whatWasNeverHandedOutAsAnIteratorIsNone) {
    const unsigned long txHandle = begin();
    void* const iterator = newIterator(txHandle);
    char* key = nullptr;
    EXPECT_EQ(objects().nextMo(iterator, &key), 0);
    int local = 0;
    expectUnknown(&local);
    expectUnknown(nullptr);
    expectUnknown(key);
    expectUnknown(static_cast<char*>(iterator) + 1);
    EXPECT_STREQ(next(iterator), "Two");
}

}  // namespace

}  // namespace TevTest

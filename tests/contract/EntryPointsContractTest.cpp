#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

#include "ContractTest.h"
#include "TevException.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr unsigned long txHandle = 815;
constexpr const char* notStarted = "SchemaPopulator is not started";

}  // namespace

/// The tables' functions, kept so that they can also be called while the component is not registered.
class EntryPointsContractTest : public ContractTest {
protected:
    EntryPointsContractTest() : transactional(resource()), managed(objects()) {
        host.models = {{"A", "1", "2", "3", {}, {}, {}}};
        forget();
    }

    /// Registered and not started, start failed, stopped, unregistered after that; registered again at the end.
    void inEveryStateThatIsNotStarted(const std::function<void()>& check) {
        inState("registered", check);
        host.failCall("getInterface", -1, 4);
        EXPECT_EQ(start(), -1);
        inState("start failed", check);
        EXPECT_EQ(start(), 0);
        EXPECT_EQ(stop(), 0);
        inState("stopped", check);
        component->terminate();
        inState("unregistered", check);
        EXPECT_EQ(init(), 0);
    }

    void inEveryState(const std::function<void()>& check) {
        inEveryStateThatIsNotStarted(check);
        EXPECT_EQ(start(), 0);
        inState("started", check);
    }

    /// Expects 2 from `call` while the component is not started, the guard's message under `function`, and no more.
    void expectGuard(const std::string& function, const std::function<TevReturnT()>& call) {
        inEveryStateThatIsNotStarted([&] {
            EXPECT_EQ(call(), 2);
            EXPECT_THAT(log.records(), ElementsAreArray(message(3, serviceFile, function, notStarted)));
            EXPECT_THAT(host.calls(), IsEmpty());
        });
    }

    /// Expects `code` from `call` and the records of a message of `level` under `function` from that level on only.
    void expectMessageFromLevel(int level, const std::string& function, const std::string& text, TevReturnT code,
                                const std::function<TevReturnT()>& call) {
        {
            const LogCapture capture(level);
            EXPECT_EQ(call(), code);
            EXPECT_THAT(capture.records(), ElementsAreArray(message(level, serviceFile, function, text)));
        }
        const LogCapture below(level - 1);
        EXPECT_EQ(call(), code);
        EXPECT_THAT(below.records(), IsEmpty());
    }

    /// Expects `code` from `call` in every state, and neither a record nor a call of the host.
    void expectSilentInEveryState(TevReturnT code, const std::function<TevReturnT()>& call) {
        inEveryState([&] {
            EXPECT_EQ(call(), code);
            EXPECT_THAT(log.records(), IsEmpty());
            EXPECT_THAT(host.calls(), IsEmpty());
        });
    }

    TevReturnT readA(DalMoAttributeValueContainer** result) {
        return managed.getMoAttribute(txHandle, dnOf("A").c_str(), "schemaId", result);
    }

    DalOamSpiTransactionalResource_2& transactional;
    DalOamSpiManagedObject_1& managed;

private:
    void inState(const char* state, const std::function<void()>& check) {
        SCOPED_TRACE(state);
        forget();
        check();
    }
};

// Refusal while not started.

TEST_F(EntryPointsContractTest, joinIsRefusedWhileNotStarted) {
    expectGuard("_tevSchemaPopulator_join_if", [&] { return transactional.join(txHandle); });
    EXPECT_THAT(host.participants(txHandle), IsEmpty());
}

TEST_F(EntryPointsContractTest, getMoAttributeIsRefusedWhileNotStarted) {
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
    expectGuard("_tevSchemaPopulator_getMoAttribute_if", [&] { return readA(&result); });
    EXPECT_EQ(result, &untouched);
}

TEST_F(EntryPointsContractTest, newMoIteratorIsRefusedWhileNotStarted) {
    int untouched = 0;
    void* iterator = &untouched;
    expectGuard("_tevSchemaPopulator_newMoIterator_if",
                [&] { return managed.newMoIterator(txHandle, parentDn, "Schema", &iterator); });
    EXPECT_EQ(iterator, &untouched);
}

TEST_F(EntryPointsContractTest, nextMoIsRefusedWhileNotStarted) {
    char untouched[] = "key";
    char* key = untouched;
    expectGuard("_tevSchemaPopulator_nextMo_if", [&] { return managed.nextMo(&untouched, &key); });
    EXPECT_EQ(key, untouched);
}

TEST_F(EntryPointsContractTest, actionIsRefusedWhileNotStarted) {
    DalMoAttributeValueContainer* noParameters = nullptr;
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
    expectGuard("_tevSchemaPopulator_action_if",
                [&] { return managed.action(txHandle, dnOf("A").c_str(), "export", &noParameters, &result); });
    EXPECT_EQ(result, &untouched);
}

TEST_F(EntryPointsContractTest, guardComesBeforeAnyCheckOfTheArguments) {
    inEveryStateThatIsNotStarted([&] {
        EXPECT_EQ(managed.getMoAttribute(txHandle, nullptr, nullptr, nullptr), 2);
        EXPECT_EQ(managed.newMoIterator(txHandle, nullptr, nullptr, nullptr), 2);
        EXPECT_EQ(managed.nextMo(nullptr, nullptr), 2);
        EXPECT_EQ(managed.action(txHandle, nullptr, nullptr, nullptr, nullptr), 2);
    });
}

TEST_F(EntryPointsContractTest, openIteratorIsRefusedAfterStopAndGoesOnAfterARestart) {
    startWith({{"A"}, {"B"}});
    const unsigned long transaction = begin();
    void* iterator = nullptr;
    char* key = nullptr;
    ASSERT_EQ(managed.newMoIterator(transaction, parentDn, "Schema", &iterator), 0);
    ASSERT_EQ(managed.nextMo(iterator, &key), 0);
    EXPECT_STREQ(key, "A");
    stop();
    EXPECT_EQ(managed.nextMo(iterator, &key), 2);
    startWith({{"First"}, {"Second"}, {"Third"}});
    for (const char* expected : {"Second", "Third"}) {
        ASSERT_EQ(managed.nextMo(iterator, &key), 0);
        EXPECT_STREQ(key, expected);
    }
    ASSERT_EQ(managed.nextMo(iterator, &key), 0);
    EXPECT_EQ(key, nullptr);
}

TEST_F(EntryPointsContractTest, refusalsAreLoggedFromLevelThree) {
    DalMoAttributeValueContainer* container = nullptr;
    void* iterator = nullptr;
    char* key = nullptr;
    expectMessageFromLevel(3, "_tevSchemaPopulator_join_if", notStarted, 2,
                           [&] { return transactional.join(txHandle); });
    expectMessageFromLevel(3, "_tevSchemaPopulator_getMoAttribute_if", notStarted, 2,
                           [&] { return readA(&container); });
    expectMessageFromLevel(3, "_tevSchemaPopulator_newMoIterator_if", notStarted, 2,
                           [&] { return managed.newMoIterator(txHandle, parentDn, "Schema", &iterator); });
    expectMessageFromLevel(3, "_tevSchemaPopulator_nextMo_if", notStarted, 2,
                           [&] { return managed.nextMo(iterator, &key); });
    expectMessageFromLevel(3, "_tevSchemaPopulator_action_if", notStarted, 2,
                           [&] { return managed.action(txHandle, dnOf("A").c_str(), "export", nullptr, &container); });
}

// Forwarding.

TEST_F(EntryPointsContractTest, joinMakesTheTransactionalResourceAParticipant) {
    ASSERT_EQ(start(), 0);
    forget();
    EXPECT_EQ(transactional.join(txHandle), 0);
    EXPECT_THAT(host.participants(txHandle), ElementsAre(&transactional));
    EXPECT_THAT(host.calls(), ElementsAre("registerParticipant 815"));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EntryPointsContractTest, joinPassesEveryHandleUnchanged) {
    ASSERT_EQ(start(), 0);
    for (const unsigned long handle : {0UL, std::numeric_limits<unsigned long>::max()}) {
        EXPECT_EQ(transactional.join(handle), 0);
        EXPECT_THAT(host.participants(handle), ElementsAre(&transactional));
    }
}

TEST_F(EntryPointsContractTest, joinFailsWhileStartedWithoutTransactionService) {
    ASSERT_EQ(start(), 0);
    // A start that fails leaves the component started, but the portal has taken the transaction service away.
    host.failCall("getInterface", -2);
    ASSERT_EQ(start(), -2);
    forget();
    EXPECT_EQ(transactional.join(txHandle), -1);
    EXPECT_THAT(log.records(),
                ElementsAreArray(message(3, serviceFile, "join", "transaction Service is not avaliable")));
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(EntryPointsContractTest, failuresOfJoinAreLoggedFromLevelThree) {
    ASSERT_EQ(start(), 0);
    expectMessageFromLevel(3, "join", "Failed to registerParticipant", 7, [&] {
        host.failCall("registerParticipant", 7);
        return transactional.join(txHandle);
    });
    host.failCall("getInterface", -2);
    ASSERT_EQ(start(), -2);
    expectMessageFromLevel(3, "join", "transaction Service is not avaliable", -1,
                           [&] { return transactional.join(txHandle); });
}

TEST_F(EntryPointsContractTest, joinLetsExceptionsOfTheTransactionServiceThrough) {
    ASSERT_EQ(start(), 0);
    host.whenCalled("registerParticipant", [] { throw Tev::TevException(-8, "no more room"); });
    log.clear();
    EXPECT_THROW(transactional.join(txHandle), Tev::TevException);
    host.whenCalled("registerParticipant", [] { throw std::out_of_range("handle"); });
    EXPECT_THROW(transactional.join(txHandle), std::out_of_range);
    host.whenCalled("registerParticipant", [] { throw 42; });
    EXPECT_THROW(transactional.join(txHandle), int);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EntryPointsContractTest, getMoAttributeGivesTheProvidersCodesAndRecordsUnchanged) {
    ASSERT_EQ(start(), 0);
    const std::string dnOfA = dnOf("A");
    const std::string dnOfB = dnOf("B");
    DalMoAttributeValueContainer* container = nullptr;
    log.clear();
    EXPECT_EQ(managed.getMoAttribute(txHandle, nullptr, "schemaId", &container), -8);
    EXPECT_EQ(managed.getMoAttribute(txHandle, dnOfA.c_str(), nullptr, &container), -8);
    EXPECT_EQ(managed.getMoAttribute(txHandle, dnOfA.c_str(), "schemaId", nullptr), -8);
    EXPECT_EQ(managed.getMoAttribute(txHandle, "A", "schemaId", &container), -1);
    EXPECT_EQ(managed.getMoAttribute(txHandle, dnOfB.c_str(), "version", &container), -2);
    EXPECT_EQ(readA(&container), 0);
    const auto error = [](const std::string& text) { return message(3, moImplFile, "getMoAttribute", text); };
    const Records invalid = error("Invalid input arguments");
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({invalid, invalid, invalid, readTrace(txHandle, "A", "schemaId"),
                                          error("Dn is not valid [A]"), readTrace(txHandle, dnOfB, "version"),
                                          error("Could not find schema for schemaId [B] "),
                                          readTrace(txHandle, dnOfA, "schemaId")})));
    EXPECT_EQ(transactional.finish(txHandle), 0);
}

TEST_F(EntryPointsContractTest, newMoIteratorGivesTheProvidersCodesAndRecordsUnchanged) {
    ASSERT_EQ(start(), 0);
    void* iterator = nullptr;
    log.clear();
    EXPECT_EQ(managed.newMoIterator(txHandle, nullptr, "Schema", &iterator), -8);
    EXPECT_EQ(managed.newMoIterator(txHandle, parentDn, nullptr, &iterator), -8);
    EXPECT_EQ(managed.newMoIterator(txHandle, parentDn, "Schema", nullptr), -8);
    EXPECT_EQ(managed.newMoIterator(txHandle, "", "Schema", &iterator), -1);
    EXPECT_EQ(managed.newMoIterator(txHandle, parentDn, "schema", &iterator), -1);
    EXPECT_EQ(managed.newMoIterator(txHandle, parentDn, "Schema", &iterator), 0);
    const auto error = [](const std::string& text) { return message(3, moImplFile, "newMoIterator", text); };
    const Records invalid = error("Invalid input arguments");
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({invalid, invalid, invalid, error("Dn is not valid  []"),
                                          error("ClassName is not valid [schema]"),
                                          debugTrace(0, moImplFile, "newMoIterator",
                                                     "txhandle [815], dn [" + std::string(parentDn) +
                                                         "], className [Schema], result " + shownHandle(iterator))})));
    EXPECT_EQ(transactional.finish(txHandle), 0);
}

TEST_F(EntryPointsContractTest, nextMoGivesTheProvidersCodesAndRecordsUnchanged) {
    ASSERT_EQ(start(), 0);
    void* const iterator = newIterator(txHandle);
    char* key = nullptr;
    log.clear();
    EXPECT_EQ(managed.nextMo(iterator, nullptr), -8);
    EXPECT_EQ(managed.nextMo(nullptr, &key), -1);
    EXPECT_EQ(managed.nextMo(iterator, &key), 0);
    EXPECT_STREQ(key, "A");
    EXPECT_EQ(managed.nextMo(iterator, &key), 0);
    EXPECT_EQ(key, nullptr);
    const auto error = [](const std::string& text) { return message(3, moImplFile, "nextMo", text); };
    const auto trace = [](const std::string& text) { return debugTrace(0, moImplFile, "nextMo", text); };
    const std::string handle = "itHandle " + shownHandle(iterator);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({trace(handle), error("Invalid input argument"), trace("itHandle [0]"),
                                          error("Could not get next Mo: [Iterator handle is not valid]"), trace(handle),
                                          trace(handle + " result [A]"), trace(handle),
                                          trace("No more schema instances index [1]")})));
    EXPECT_EQ(transactional.finish(txHandle), 0);
}

// Refused writes.

TEST_F(EntryPointsContractTest, setMoAttributeIsRefusedSilentlyInEveryState) {
    DalMoAttributeValueContainer value{};
    expectSilentInEveryState(-1,
                             [&] { return managed.setMoAttribute(txHandle, dnOf("A").c_str(), "schemaId", &value); });
    EXPECT_EQ(managed.setMoAttribute(txHandle, nullptr, nullptr, nullptr), -1);
}

TEST_F(EntryPointsContractTest, createMoIsRefusedInEveryState) {
    DalMoAttributeValueContainer key{};
    inEveryState([&] {
        EXPECT_EQ(managed.createMo(txHandle, parentDn, "Schema", "schemaId", &key), -1);
        EXPECT_EQ(managed.createMo(txHandle, nullptr, nullptr, nullptr, nullptr), -1);
        const Records refusal = message(5, serviceFile, "_tevSchemaPopulator_createMo_if",
                                        "Create is not supported on Schema since it is read only");
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({refusal, refusal})));
        EXPECT_THAT(host.calls(), IsEmpty());
    });
}

TEST_F(EntryPointsContractTest, deleteMoIsRefusedInEveryState) {
    inEveryState([&] {
        EXPECT_EQ(managed.deleteMo(txHandle, dnOf("A").c_str()), -1);
        EXPECT_EQ(managed.deleteMo(txHandle, nullptr), -1);
        const Records refusal = message(5, serviceFile, "_tevSchemaPopulator_deleteMo_if",
                                        "Delete is not supported on Schema since it is read only");
        EXPECT_THAT(log.records(), ElementsAreArray(inOrder({refusal, refusal})));
        EXPECT_THAT(host.calls(), IsEmpty());
    });
}

TEST_F(EntryPointsContractTest, refusedWritesLeaveTheInstancesAsTheyWere) {
    startWith({{"A", "1", "2", "3", {}, {}, {}}});
    const unsigned long transaction = begin();
    char text[] = "B";
    DalMoAttributeValue cell{};
    cell.theString = text;
    DalMoAttributeValueContainer value{DalMoTypeString, 1, &cell};
    EXPECT_EQ(managed.setMoAttribute(transaction, dnOf("A").c_str(), "version", &value), -1);
    EXPECT_EQ(managed.createMo(transaction, parentDn, "Schema", "schemaId", &value), -1);
    EXPECT_EQ(managed.deleteMo(transaction, dnOf("A").c_str()), -1);
    EXPECT_THAT(list(transaction), ElementsAre("A"));
    EXPECT_EQ(read(transaction, "A", "version"), Values{"1.2.3"});
}

TEST_F(EntryPointsContractTest, refusedWritesAreLoggedFromLevelFive) {
    expectMessageFromLevel(5, "_tevSchemaPopulator_createMo_if",
                           "Create is not supported on Schema since it is read only", -1,
                           [&] { return managed.createMo(txHandle, parentDn, "Schema", "schemaId", nullptr); });
    expectMessageFromLevel(5, "_tevSchemaPopulator_deleteMo_if",
                           "Delete is not supported on Schema since it is read only", -1,
                           [&] { return managed.deleteMo(txHandle, dnOf("A").c_str()); });
}

// The steps of a commit.

TEST_F(EntryPointsContractTest, prepareDoesNothingInEveryState) {
    expectSilentInEveryState(0, [&] { return transactional.prepare(txHandle); });
}

TEST_F(EntryPointsContractTest, commitDoesNothingInEveryState) {
    expectSilentInEveryState(0, [&] { return transactional.commit(txHandle); });
}

TEST_F(EntryPointsContractTest, abortDoesNothingInEveryState) {
    expectSilentInEveryState(0, [&] { return transactional.abort(txHandle); });
}

TEST_F(EntryPointsContractTest, validateFindsEveryTransactionValidInEveryState) {
    for (const bool before : {false, true}) {
        expectSilentInEveryState(0, [&] {
            bool valid = before;
            const TevReturnT code = transactional.validate(txHandle, &valid);
            EXPECT_TRUE(valid);
            return code;
        });
        stop();
    }
}

// Finish.

TEST_F(EntryPointsContractTest, finishWhileNotStartedSaysSoAndForwards) {
    inEveryStateThatIsNotStarted([&] {
        EXPECT_EQ(transactional.finish(txHandle), 0);
        EXPECT_THAT(log.records(),
                    ElementsAreArray(inOrder({message(6, serviceFile, "_tevSchemaPopulator_finish_if", notStarted),
                                              nothingHeld(txHandle)})));
        EXPECT_THAT(host.calls(), IsEmpty());
    });
}

TEST_F(EntryPointsContractTest, finishWhileStartedOnlyForwards) {
    ASSERT_EQ(start(), 0);
    forget();
    EXPECT_EQ(transactional.finish(txHandle), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(nothingHeld(txHandle)));
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(EntryPointsContractTest, finishAfterStopReleasesWhatTheTransactionHolds) {
    startWith({{"A"}});
    const unsigned long transaction = begin();
    EXPECT_EQ(read(transaction, "A", "schemaId"), Values{"A"});
    EXPECT_THAT(list(transaction), ElementsAre("A"));
    stop();
    log.clear();
    finish(transaction);
    // Nothing is said of an unknown transaction: it was there and is gone now.
    EXPECT_THAT(log.records(), ElementsAreArray(message(6, serviceFile, "_tevSchemaPopulator_finish_if", notStarted)));
    log.clear();
    finish(transaction);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder(
                    {message(6, serviceFile, "_tevSchemaPopulator_finish_if", notStarted), nothingHeld(transaction)})));
}

TEST_F(EntryPointsContractTest, valuesStayReadableAfterStopUntilFinish) {
    startWith({{"A"}});
    const unsigned long transaction = begin();
    DalMoAttributeValueContainer* container = nullptr;
    ASSERT_EQ(managed.getMoAttribute(transaction, dnOf("A").c_str(), "schemaId", &container), 0);
    stop();
    ASSERT_EQ(start(), 0);
    stop();
    EXPECT_STREQ(container->values[0].theString, "A");
    finish(transaction);
}

TEST_F(EntryPointsContractTest, finishAfterStopEndsTheIterators) {
    startWith({{"A"}});
    const unsigned long transaction = begin();
    void* iterator = nullptr;
    ASSERT_EQ(managed.newMoIterator(transaction, parentDn, "Schema", &iterator), 0);
    stop();
    finish(transaction);
    ASSERT_EQ(start(), 0);
    char* key = nullptr;
    EXPECT_EQ(managed.nextMo(iterator, &key), -1);
}

TEST_F(EntryPointsContractTest, finishWhileNotStartedIsLoggedFromLevelSix) {
    expectMessageFromLevel(6, "_tevSchemaPopulator_finish_if", notStarted, 0,
                           [&] { return transactional.finish(txHandle); });
}

}  // namespace TevTest

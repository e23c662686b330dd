#include "ComponentCheck.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "Interruption.h"

namespace TevAgent {

namespace {

using Outcome = CheckResult::Outcome;
using testing::ElementsAre;

/// Items of which every second one is a gate: a (gate), b, c (gate), d.
std::vector<CheckItem> items() {
    return {{"g.a", "A", nullptr, true}, {"g.b", "B", nullptr}, {"g.c", "C", nullptr, true}, {"g.d", "D", nullptr}};
}

std::vector<std::string> shown(const std::vector<CheckResult>& results) {
    std::vector<std::string> texts;
    for (const CheckResult& result : results) {
        texts.push_back(result.id + " " + CheckResult::word(result.outcome));
    }
    return texts;
}

CheckResult with(const CheckItem& item, Outcome outcome) {
    return {item.id, item.description, outcome, ""};
}

/// What is told of `items()`.
std::vector<CheckResult> resultsOf(std::size_t jobs, const ComponentCheck::Attempt& attempt) {
    std::vector<CheckResult> results;
    ComponentCheck::run(items(), jobs, attempt, [&](const CheckResult& result) { results.push_back(result); });
    return results;
}

const auto noTelling = [](const CheckResult&) {};

TEST(ComponentCheckTest, tellsTheResultsInTheOrderOfTheItemsHoweverManyAreTriedAtATime) {
    const auto pass = [](const CheckItem& item) { return with(item, Outcome::Passed); };
    for (const std::size_t jobs : {1U, 4U}) {
        EXPECT_THAT(shown(resultsOf(jobs, pass)), ElementsAre("g.a passed", "g.b passed", "g.c passed", "g.d passed"));
    }
}

TEST(ComponentCheckTest, tellsAGateBeforeTheNextItemIsTriedWhereNothingStandsBeforeIt) {
    std::vector<std::string> events;
    const auto attempt = [&](const CheckItem& item) {
        events.push_back(std::string("try ") + item.id);
        return with(item, Outcome::Passed);
    };
    const auto tell = [&](const CheckResult& result) { events.push_back("tell " + result.id); };
    ComponentCheck::run({items()[0], items()[2]}, 1, attempt, tell);
    EXPECT_THAT(events, ElementsAre("try g.a", "tell g.a", "try g.c", "tell g.c"));
}

TEST(ComponentCheckTest, skipsWhatStandsBehindAGateThatFailedOrCrashed) {
    for (const Outcome outcome : {Outcome::Failed, Outcome::Crashed}) {
        std::mutex mutex;
        std::vector<std::string> tried;
        const auto attempt = [&](const CheckItem& item) {
            const std::lock_guard<std::mutex> lock(mutex);
            tried.emplace_back(item.id);
            return with(item, item.id == std::string("g.c") ? outcome : Outcome::Passed);
        };
        const std::vector<CheckResult> results = resultsOf(2, attempt);
        EXPECT_EQ(results.back().outcome, Outcome::Skipped);
        EXPECT_EQ(results.back().remark, "because g.c did not pass");
        EXPECT_THAT(tried, testing::UnorderedElementsAre("g.a", "g.b", "g.c"));
    }
}

TEST(ComponentCheckTest, aGateThatWarnsOrWasSkippedIsOpen) {
    for (const Outcome outcome : {Outcome::Warning, Outcome::Skipped}) {
        const auto attempt = [&](const CheckItem& item) { return with(item, outcome); };
        EXPECT_EQ(resultsOf(2, attempt).back().remark, "");
    }
}

TEST(ComponentCheckTest, whatAnAttemptThrowsEndsTheRunOnceTheOthersAreDone) {
    const auto attempt = [](const CheckItem& item) {
        if (item.id == std::string("g.b")) {
            throw Interrupted();
        }
        return with(item, Outcome::Passed);
    };
    EXPECT_THROW(ComponentCheck::run(items(), 2, attempt, noTelling), Interrupted);
}

TEST(ComponentCheckTest, noItemIsBegunOnceOneHasThrown) {
    const std::vector<CheckItem> many(10000, CheckItem{"g.x", "X", nullptr});
    std::atomic<std::size_t> begun{0};
    const auto attempt = [&](const CheckItem& item) {
        if (++begun == 1) {
            throw Interrupted();
        }
        // The others take their time, so that the end comes before theirs.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return with(item, Outcome::Passed);
    };
    EXPECT_THROW(ComponentCheck::run(many, 1, attempt, noTelling), Interrupted);
    EXPECT_LT(begun, many.size());
}

TEST(ComponentCheckTest, triesSoManyItemsAtATimeAndNoMore) {
    constexpr int jobs = 3;
    const std::vector<CheckItem> many(12, CheckItem{"g.x", "X", nullptr});
    std::atomic<int> underWay{0};
    std::atomic<int> most{0};
    const auto attempt = [&](const CheckItem& item) {
        const int now = ++underWay;
        for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
        }
        // The first ones wait for each other.
        while (most < jobs) {
            std::this_thread::yield();
        }
        --underWay;
        return with(item, Outcome::Passed);
    };
    ComponentCheck::run(many, jobs, attempt, noTelling);
    EXPECT_EQ(most, jobs);
}

TEST(ComponentCheckTest, choosesByIdAndByGroup) {
    EXPECT_TRUE(ComponentCheck::hasItem("load.opens"));
    EXPECT_TRUE(ComponentCheck::hasItem("load"));
    EXPECT_FALSE(ComponentCheck::hasItem("loa"));
    EXPECT_FALSE(ComponentCheck::hasItem("load."));
    EXPECT_FALSE(ComponentCheck::hasItem(""));
    const std::vector<CheckItem> chosen = ComponentCheck::itemsNamed({"unload.threads", "load"});
    ASSERT_EQ(chosen.size(), 4U);
    EXPECT_EQ(chosen.front().id, std::string("load.opens"));
    EXPECT_EQ(chosen.back().id, std::string("unload.threads"));
}

}  // namespace

}  // namespace TevAgent

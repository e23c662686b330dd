#include "ComponentCheck.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <future>
#include <map>
#include <thread>

#include "CheckEnd.h"
#include "CheckHost.h"
#include "Descendants.h"
#include "Interruption.h"
#include "LifeChecks.h"
#include "ObjectChecks.h"
#include "TransactionChecks.h"

namespace TevAgent {

namespace {

const std::vector<CheckItem>& allItems() {
    static const std::vector<CheckItem> items = [] {
        std::vector<CheckItem> all;
        for (const std::vector<CheckItem>& some :
             {LifeChecks::items(), TransactionChecks::items(), ObjectChecks::items(), TransactionChecks::memoryItems(),
              LifeChecks::lastItems()}) {
            all.insert(all.end(), some.begin(), some.end());
        }
        return all;
    }();
    return items;
}

bool isNamed(const CheckItem& item, const std::string& text) {
    const std::string id = item.id;
    return id == text || id.substr(0, id.find('.')) == text;
}

CheckResult resultOf(const CheckItem& item, CheckResult::Outcome outcome, const std::string& remark) {
    return {item.id, item.description, outcome, remark};
}

CheckResult skipped(const CheckItem& item, const CheckItem& gate) {
    return resultOf(item, CheckResult::Outcome::Skipped, std::string("because ") + gate.id + " did not pass");
}

CheckResult tryItem(const CheckItem& item, CheckHost& host) {
    try {
        return resultOf(item, CheckResult::Outcome::Passed, item.attempt(host));
    } catch (const CheckEnd& e) {
        return resultOf(item, e.outcome, e.remark);
    }
}

/// Threads that try the items, and are waited for at the end. What they are given outlives them.
class Workers {
public:
    Workers(const std::vector<CheckItem>& items, std::size_t jobs, const ComponentCheck::Attempt& attempt)
        : promises(items.size()) {
        for (std::size_t i = 0; i < std::min(jobs, items.size()); ++i) {
            threads.emplace_back([this, &items, &attempt] {
                for (std::size_t index = next++; index < items.size(); index = next++) {
                    try {
                        promises[index].set_value(attempt(items[index]));
                    } catch (...) {
                        promises[index].set_exception(std::current_exception());
                    }
                }
            });
        }
    }

    ~Workers() {
        next = promises.size();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    CheckResult result(std::size_t index) { return promises[index].get_future().get(); }

private:
    std::vector<std::promise<CheckResult>> promises;
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> threads;
};

}  // namespace

bool ComponentCheck::hasItem(const std::string& text) {
    return !itemsNamed({text}).empty();
}

std::string ComponentCheck::itemIds() {
    std::string ids;
    for (const CheckItem& item : allItems()) {
        ids += (ids.empty() ? "" : ", ") + std::string(item.id);
    }
    return ids;
}

std::vector<CheckItem> ComponentCheck::itemsNamed(const std::vector<std::string>& only) {
    std::vector<CheckItem> items;
    for (const CheckItem& item : allItems()) {
        if (only.empty() ||
            std::any_of(only.begin(), only.end(), [&item](const std::string& text) { return isNamed(item, text); })) {
            items.push_back(item);
        }
    }
    return items;
}

void ComponentCheck::run(const std::vector<CheckItem>& items, std::size_t jobs, const Attempt& attempt,
                         const Tell& tell) {
    // The gates first, one after the other: what they stop need not be tried.
    std::map<std::size_t, CheckResult> gates;
    std::size_t end = items.size();
    std::size_t told = 0;
    std::vector<CheckItem> others;
    for (std::size_t i = 0; i < end; ++i) {
        if (!items[i].isGate) {
            others.push_back(items[i]);
            continue;
        }
        const CheckResult& result = gates.emplace(i, attempt(items[i])).first->second;
        end = result.isBad() ? i + 1 : end;
        if (others.empty()) {
            tell(result);
            ++told;
        }
    }
    Workers workers(others, jobs, attempt);
    std::size_t nextOther = 0;
    for (std::size_t i = told; i < items.size(); ++i) {
        if (i >= end) {
            tell(skipped(items[i], items[end - 1]));
        } else {
            tell(items[i].isGate ? gates.at(i) : workers.result(nextOther++));
        }
    }
}

void ComponentCheck::runHere(const std::vector<CheckItem>& items, const CheckSubject& subject, const Tell& tell) {
    Descendants::adopt();
    const CheckItem* closed = nullptr;
    for (const CheckItem& item : items) {
        if (closed != nullptr) {
            tell(skipped(item, *closed));
            continue;
        }
        CheckHost host(subject);
        const CheckResult result = tryItem(item, host);
        closed = item.isGate && result.isBad() ? &item : nullptr;
        tell(result);
    }
}

}  // namespace TevAgent

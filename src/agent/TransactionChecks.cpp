#include "TransactionChecks.h"

#include <dlfcn.h>
#include <malloc.h>

#include <thread>

#include "CheckTransaction.h"

namespace TevAgent {

namespace {

/// A handle that no transaction ever has.
constexpr unsigned long unknownHandle = 4000000000UL;

std::string joins(CheckHost& host) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const ScopedTransaction transaction(host.transactions());
    host.demand("join", [&] { return resource.join(transaction.handle()); });
    if (!host.transactions().isParticipant(transaction.handle(), resource)) {
        CheckEnd::fail("join returned 0, but the transaction service has no new participant");
    }
    return "";
}

std::string joinsAgain(CheckHost& host) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const ScopedTransaction transaction(host.transactions());
    host.demand("join", [&] { return resource.join(transaction.handle()); });
    const TevReturnT code = host.call("join", [&] { return resource.join(transaction.handle()); });
    if (code != TevReturnOk) {
        CheckEnd::warn("the second join returned " + ReturnCode::text(code));
    }
    return "";
}

std::string joinsNothingUnknown(CheckHost& host) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    if (host.call("join", [&] { return resource.join(unknownHandle); }) == TevReturnOk) {
        CheckEnd::fail("join returned 0 for a transaction that is not there");
    }
    return "";
}

/// Calls every operation by itself, so that the one at fault is named.
void end(CheckHost& host, bool isCommitted) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    // The service does not end it: the component's part is done here.
    const unsigned long handle = host.transactions().begin();
    host.demand("join", [&] { return resource.join(handle); });
    if (isCommitted) {
        bool isValid = false;
        host.demand("validate", [&] { return resource.validate(handle, &isValid); });
        if (!isValid) {
            CheckEnd::fail("it finds an empty transaction invalid");
        }
        host.demand("prepare", [&] { return resource.prepare(handle); });
        host.demand("commit", [&] { return resource.commit(handle); });
    } else {
        host.demand("abort", [&] { return resource.abort(handle); });
    }
    host.demand("finish", [&] { return resource.finish(handle); });
}

std::string commits(CheckHost& host) {
    end(host, true);
    return "";
}

std::string aborts(CheckHost& host) {
    end(host, false);
    return "";
}

std::string finishesAfterStop(CheckHost& host) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const unsigned long handle = host.transactions().begin();
    host.demand("join", [&] { return resource.join(handle); });
    host.stop();
    host.demand("finish", [&] { return resource.finish(handle); });
    return "";
}

using Texts = std::vector<std::string>;

Texts textsOf(const std::vector<char*>& keys) {
    return Texts(keys.begin(), keys.end());
}

/// Every attribute of every instance, as the component hands the values out.
std::vector<const DalMoAttributeValueContainer*> readAll(CheckHost& host, CheckTransaction& transaction,
                                                         const Texts& keys) {
    std::vector<const DalMoAttributeValueContainer*> containers;
    for (const std::string& key : keys) {
        for (const std::string& attribute : host.attributes()) {
            containers.push_back(&transaction.read(host.dnOf(key), attribute));
        }
    }
    return containers;
}

std::vector<Texts> textsOf(const std::vector<const DalMoAttributeValueContainer*>& containers) {
    std::vector<Texts> texts;
    texts.reserve(containers.size());
    for (const DalMoAttributeValueContainer* const container : containers) {
        texts.push_back(CheckTransaction::texts(container));
    }
    return texts;
}

/// What one transaction sees: the keys, then the values of each instance.
std::vector<Texts> view(CheckHost& host) {
    CheckTransaction transaction(host);
    const Texts keys = textsOf(transaction.someKeys());
    std::vector<Texts> seen = textsOf(readAll(host, transaction, keys));
    seen.push_back(keys);
    transaction.commit();
    return seen;
}

std::string keepsKeys(CheckHost& host) {
    host.start();
    CheckTransaction transaction(host);
    void* const iterator = transaction.list();
    std::vector<char*> keys;
    Texts first;
    while (char* const key = transaction.next(iterator)) {
        keys.push_back(key);
        first.emplace_back(key);
    }
    transaction.rest(transaction.list());
    if (textsOf(keys) != first) {
        CheckEnd::fail("a key changed before its transaction finished");
    }
    return std::to_string(keys.size()) + " keys";
}

std::string keepsValues(CheckHost& host) {
    host.start();
    CheckTransaction transaction(host);
    const Texts keys = textsOf(transaction.someKeys());
    std::vector<const DalMoAttributeValueContainer*> containers;
    std::vector<Texts> first;
    for (const std::string& key : keys) {
        for (const std::string& attribute : host.attributes()) {
            containers.push_back(&transaction.read(host.dnOf(key), attribute));
            first.push_back(CheckTransaction::texts(containers.back()));
        }
    }
    readAll(host, transaction, keys);
    if (textsOf(containers) != first) {
        CheckEnd::fail("a value changed before its transaction finished");
    }
    return std::to_string(containers.size()) + " values";
}

std::size_t heapBytes() {
    // A sanitizer has a heap of its own.
    if (void* const function = dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes")) {
        return reinterpret_cast<std::size_t (*)()>(function)();
    }
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

std::string releasesMemory(CheckHost& host) {
    constexpr std::size_t transactions = 1000;
    constexpr std::size_t bytesEach = 8;
    host.start();
    // What is made once, and what the heap keeps for itself, is there by then.
    for (std::size_t i = 0; i < transactions / 10; ++i) {
        view(host);
    }
    const std::size_t before = heapBytes();
    for (std::size_t i = 0; i < transactions; ++i) {
        view(host);
    }
    const std::size_t after = heapBytes();
    const std::size_t growth = after > before ? after - before : 0;
    if (growth > transactions * bytesEach) {
        CheckEnd::fail("the heap grew by " + std::to_string(growth) + " bytes in " + std::to_string(transactions) +
                       " transactions");
    }
    return "";
}

std::string keepsTransactionsApart(CheckHost& host) {
    host.start();
    CheckTransaction lasting(host);
    const std::vector<char*> keys = lasting.someKeys();
    const Texts first = textsOf(keys);
    const auto values = readAll(host, lasting, first);
    const std::vector<Texts> firstValues = textsOf(values);
    void* const iterator = lasting.list();
    for (int round = 0; round < 10; ++round) {
        view(host);
    }
    if (textsOf(keys) != first || textsOf(values) != firstValues) {
        CheckEnd::fail("what it handed out changed when another transaction finished");
    }
    if (textsOf(lasting.rest(iterator)) != first) {
        CheckEnd::fail("a listing changed when another transaction finished");
    }
    return "";
}

/// Any code will do, and finish must be able to follow.
std::string answersWithoutJoin(CheckHost& host) {
    host.start();
    DalOamSpiManagedObject_1& objects = host.objects();
    const std::string dn = host.dnOf("tev-check");
    const std::string parent = host.parent();
    const std::string className = host.className();
    DalMoAttributeValueContainer* container = nullptr;
    void* iterator = nullptr;
    host.call("getMoAttribute",
              [&] { return objects.getMoAttribute(unknownHandle, dn.c_str(), "tev-check", &container); });
    const TevReturnT code = host.call("newMoIterator", [&] {
        return objects.newMoIterator(unknownHandle, parent.c_str(), className.c_str(), &iterator);
    });
    host.demand("finish", [&] { return host.resource().finish(unknownHandle); });
    return "newMoIterator returned " + ReturnCode::text(code);
}

std::string readsInTwoThreads(CheckHost& host) {
    constexpr int rounds = 20;
    host.start();
    const std::vector<Texts> before = view(host);
    std::vector<Texts> seen[2];
    std::string faults[2];
    const auto work = [&](int which) {
        try {
            for (int round = 0; round < rounds; ++round) {
                seen[which] = view(host);
            }
        } catch (const CheckEnd& e) {
            faults[which] = e.remark;
        } catch (const std::exception& e) {
            faults[which] = e.what();
        }
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    for (const std::string& fault : faults) {
        if (!fault.empty()) {
            CheckEnd::fail(fault);
        }
    }
    // Where values change by themselves, only the keys can be the same.
    const bool isSteady = view(host) == before;
    if (isSteady ? seen[0] != before || seen[1] != before
                 : seen[0].back() != before.back() || seen[1].back() != before.back()) {
        CheckEnd::fail("two transactions at a time do not read what one alone does");
    }
    return "";
}

}  // namespace

std::vector<CheckItem> TransactionChecks::items() {
    return {
        {"transactions.join", "join returns 0 and registers the component with the transaction service", joins, true},
        {"transactions.join-again", "join returns 0 when the component has joined already", joinsAgain},
        {"transactions.unknown", "join fails where the transaction service knows no such transaction",
         joinsNothingUnknown},
        {"transactions.commit", "validate, prepare, commit and finish return 0, and validate finds nothing wrong",
         commits, true},
        {"transactions.abort", "abort and finish return 0", aborts},
        {"transactions.finish-after-stop", "finish returns 0 when the component was stopped meanwhile",
         finishesAfterStop},
    };
}

std::vector<CheckItem> TransactionChecks::memoryItems() {
    return {
        {"transactions.apart", "What one transaction is given stays when another one finishes", keepsTransactionsApart},
        {"transactions.no-join", "Calls in a transaction that was not joined are answered with a code",
         answersWithoutJoin},
        {"memory.keys", "Keys stay as they are until finish", keepsKeys},
        {"memory.values", "Values stay as they are until finish", keepsValues},
        {"memory.released", "finish releases all that was handed out", releasesMemory},
        {"threads.together", "Two transactions in two threads read what one alone does", readsInTwoThreads},
    };
}

}  // namespace TevAgent

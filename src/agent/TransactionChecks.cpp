#include "TransactionChecks.h"

#include <dlfcn.h>
#include <malloc.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include "CheckTransaction.h"
#include "Diagnostics.h"

namespace TevAgent {

namespace {

/// A handle that no transaction ever has.
constexpr unsigned long unknownHandle = 4000000000UL;

std::string joins(CheckHost& host) {
    host.start();
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const ScopedTransaction transaction(host.transactions());
    host.demand("join", [&] { return resource.join(transaction.handle()); });
    if (!host.transactions().hasParticipant(transaction.handle())) {
        CheckEnd::fail("join returned 0, but the transaction service has no participant");
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

/// For how long an item does something over and over, so that a class with many instances can be checked, too.
class Patience {
public:
    bool isOver() const { return std::chrono::steady_clock::now() > end; }

private:
    const std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
};

std::string keepsKeys(CheckHost& host) {
    constexpr int listings = 300;
    host.start();
    CheckTransaction transaction(host);
    transaction.someKeys();
    void* const iterator = transaction.list();
    std::vector<char*> keys;
    Texts first;
    while (char* const key = transaction.next(iterator)) {
        keys.push_back(key);
        first.emplace_back(key);
    }
    const Patience patience;
    for (int count = 0; count < listings && !patience.isOver(); ++count) {
        transaction.rest(transaction.list());
    }
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

/// What a transaction was given.
class Given {
public:
    Given(CheckHost& host, CheckTransaction& transaction)
        : keys(transaction.someKeys()),
          keyTexts(textsOf(keys)),
          values(readAll(host, transaction, keyTexts)),
          valueTexts(textsOf(values)) {}

    const Texts& listed() const { return keyTexts; }

    void verifyUnchanged(const std::string& when) const {
        if (textsOf(keys) != keyTexts || textsOf(values) != valueTexts) {
            CheckEnd::fail("what it handed out changed " + when);
        }
    }

private:
    const std::vector<char*> keys;
    const Texts keyTexts;
    const std::vector<const DalMoAttributeValueContainer*> values;
    const std::vector<Texts> valueTexts;
};

std::string keepsUntilFinish(CheckHost& host) {
    host.start();
    for (const bool isCommitted : {true, false}) {
        CheckTransaction transaction(host);
        const Given given(host, transaction);
        transaction.end(isCommitted, [&given](const std::string& operation) {
            given.verifyUnchanged("with " + operation + ", before finish");
        });
    }
    CheckTransaction transaction(host);
    const Given given(host, transaction);
    host.stop();
    given.verifyUnchanged("with stop, before finish");
    return "";
}

std::size_t heapBytes() {
    // A sanitizer has a heap of its own.
    if (void* const function = dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes")) {
        return reinterpret_cast<std::size_t (*)()>(function)();
    }
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// All that makes a component hand something out, or give up half-way: reads, a listing that nobody reads to its end, a
/// read that is refused, both ends.
void use(CheckHost& host, bool isCommitted) {
    Diagnostics::Capture capture;
    {
        CheckTransaction transaction(host);
        const Texts keys = textsOf(transaction.someKeys());
        readAll(host, transaction, keys);
        transaction.next(transaction.list());
        const std::string dn = host.dnOf(keys.front());
        DalMoAttributeValueContainer* container = nullptr;
        host.call("getMoAttribute", [&] {
            return host.objects().getMoAttribute(transaction.handle(), dn.c_str(), "tev-check", &container);
        });
        if (isCommitted) {
            transaction.commit();
        }
    }
    // What an end returns has items of its own.
    capture.takeOr("");
}

/// How many transactions a while, and a limit, have time for.
std::size_t useOften(CheckHost& host, std::size_t most) {
    const Patience patience;
    std::size_t count = 0;
    while (count < most && !patience.isOver()) {
        use(host, count % 2 == 0);
        ++count;
    }
    return count;
}

/// A cache grows until it is full, a leak as long as there are transactions.
std::string releasesMemory(CheckHost& host) {
    constexpr std::size_t batch = 250;
    constexpr std::size_t bytesEach = 8;
    host.start();
    // What is made once, and what the heap keeps for itself, is there by then.
    useOften(host, batch);
    std::size_t count = 0;
    std::size_t growth = 0;
    for (int round = 0; round < 4; ++round) {
        const std::size_t before = heapBytes();
        const std::size_t used = useOften(host, batch);
        const std::size_t after = heapBytes();
        if (after <= before + used * bytesEach) {
            return "";
        }
        count += used;
        growth += after - before;
    }
    CheckEnd::fail("the heap grew by " + std::to_string(growth) + " bytes in " + std::to_string(count) +
                   " transactions");
}

std::string keepsTransactionsApart(CheckHost& host) {
    host.start();
    CheckTransaction lasting(host);
    const Given given(host, lasting);
    void* const iterator = lasting.list();
    Texts listed = {lasting.next(iterator)};
    for (int round = 0; round < 10; ++round) {
        use(host, round % 2 == 0);
    }
    given.verifyUnchanged("when another transaction finished");
    const Texts rest = textsOf(lasting.rest(iterator));
    listed.insert(listed.end(), rest.begin(), rest.end());
    if (listed != given.listed() && lasting.isSteady()) {
        CheckEnd::fail("a listing changed when another transaction finished");
    }
    return "";
}

/// Any code will do.
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
    host.call("finish", [&] { return host.resource().finish(unknownHandle); });
    return "newMoIterator returned " + ReturnCode::text(code);
}

/// What `function` gives, or throws, in another thread.
template <class Function>
auto inAnotherThread(Function&& function) {
    return std::async(std::launch::async, std::forward<Function>(function));
}

/// Where two threads wait for each other, so that what they do then is done at a time.
class Meeting {
public:
    void wait() {
        ++arrived;
        while (arrived < 2) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<int> arrived{0};
};

/// Whether somebody who looks again and again, for a while, sees always the same.
bool staysAt(CheckHost& host, const std::vector<Texts>& expected) {
    constexpr int rounds = 20;
    const Patience patience;
    bool isSame = true;
    for (int round = 0; round < rounds && !patience.isOver(); ++round) {
        isSame = view(host) == expected && isSame;
    }
    return isSame;
}

/// Values, and instances, may change by themselves.
std::string readsInTwoThreads(CheckHost& host) {
    host.start();
    const std::vector<Texts> before = view(host);
    Meeting meeting;
    const auto look = [&] {
        meeting.wait();
        return staysAt(host, before);
    };
    auto other = inAnotherThread(look);
    const bool isSame = look();
    if (!(other.get() && isSame) && staysAt(host, before)) {
        CheckEnd::warn("two transactions at a time do not read what one alone does");
    }
    return "";
}

std::string readsInOneTransaction(CheckHost& host) {
    host.start();
    CheckTransaction transaction(host);
    const Texts keys = textsOf(transaction.someKeys());
    Meeting meeting;
    const auto read = [&] {
        meeting.wait();
        const Patience patience;
        for (int round = 0; round < 50 && !patience.isOver(); ++round) {
            readAll(host, transaction, keys);
        }
    };
    auto other = inAnotherThread(read);
    read();
    other.get();
    transaction.commit();
    return "";
}

std::string handsTransactionsOn(CheckHost& host) {
    host.start();
    CheckTransaction transaction(host);
    const Texts keys = textsOf(transaction.someKeys());
    inAnotherThread([&] { readAll(host, transaction, keys); }).get();
    inAnotherThread([&] { transaction.commit(); }).get();
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
        {"memory.until-finish", "What was handed out stays until finish, also behind commit, abort and stop",
         keepsUntilFinish},
        {"memory.released", "finish releases all that was handed out", releasesMemory},
        {"threads.together", "Two transactions in two threads read what one alone does", readsInTwoThreads},
        {"threads.shared", "Two threads can read in one transaction", readsInOneTransaction},
        {"threads.handed-on", "Each call of a transaction may come from another thread", handsTransactionsOn},
    };
}

}  // namespace TevAgent

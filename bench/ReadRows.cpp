#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>

#include "Rig.h"
#include "Row.h"
#include "Rows.h"
#include "Stopwatch.h"

namespace TevBench {

namespace {

using Dns = std::vector<std::string>;

constexpr std::size_t readsOfTransaction = 6;

/// Reads one string of one instance after the other, `count` in all, six in a transaction. The handles of different
/// threads differ.
template <class Side>
void readOneEach(Side& side, const Dns& dns, unsigned long txHandle, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i % readsOfTransaction == 0) {
            side.join(txHandle);
        }
        Rig::read(side, txHandle, dns[i % dns.size()], "version");
        if (i % readsOfTransaction == readsOfTransaction - 1) {
            side.finish(txHandle);
        }
    }
}

struct ReadAlone {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        constexpr std::size_t count = 600;  // every instance equally often
        return processorSecondsOf([&] { readOneEach(side, dns, 1, count); }) / count;
    }
};

struct ReadByTwo {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        constexpr std::size_t count = 6000;
        return secondsOfThreads(2, [&](std::size_t thread) { readOneEach(side, dns, thread + 1, count); }) /
               (2 * count);
    }
};

/// What a second thread brings: the cost of a read with both, against that with one.
struct SecondThread {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        constexpr std::size_t count = 6000;
        const double alone = secondsOfThreads(1, [&](std::size_t) { readOneEach(side, dns, 1, count); }) / count;
        return ReadByTwo()(side, dns) / alone;
    }
};

struct List {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        std::size_t listed = 0;
        const double seconds = processorSecondsOf([&] {
            side.join(1);
            void* const iterator = side.newMoIterator(1, Rig::parentDn, "Schema");
            while (side.nextMo(iterator) != nullptr) {
                ++listed;
            }
            side.finish(1);
        });
        if (listed != dns.size()) {
            throw std::runtime_error("not every instance was listed");
        }
        return seconds / static_cast<double>(listed);
    }
};

/// All six attributes of all instances, as a client reads them.
struct ReadAll {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        const double seconds = processorSecondsOf([&] {
            side.join(1);
            for (const std::string& dn : dns) {
                for (const char* const attribute : Rig::attributes) {
                    Rig::read(side, 1, dn, attribute);
                }
            }
            side.finish(1);
        });
        return seconds / static_cast<double>(dns.size() * std::size(Rig::attributes));
    }
};

template <class Side>
double secondsToFind(Side& side, const std::string& dn) {
    constexpr std::size_t count = 50;
    return processorSecondsOf([&] {
               for (std::size_t i = 0; i < count; ++i) {
                   Rig::read(side, 1, dn, "version");
                   side.finish(1);
               }
           }) /
           count;
}

/// The difference between the reads of the last and the first instance, for each record between them.
struct Scan {
    template <class Side>
    double operator()(Side& side, const Dns& dns) const {
        const double first = secondsToFind(side, dns.front());
        const double last = secondsToFind(side, dns.back());
        return (last - first) / static_cast<double>(dns.size() - 1);
    }
};

}  // namespace

void addReadRows() {
    addRow("getMoAttribute, one string of 100 models", atMost(1.25), [] { return Rig::sides(100, ReadAlone()); });
    addRow("getMoAttribute, two threads", atLeast(0.9), [] { return Rig::sides(100, ReadByTwo()); });
    addRow(
        "getMoAttribute, two threads against one", noTarget(), [] { return Rig::sides(100, SecondThread()); }, "");
    addRow("nextMo, per instance", atMost(1.3), [] { return Rig::sides(1000, List()); });
    addRow("scan, per record passed", atMost(1.5), [] { return Rig::sides(1000, Scan()); });
    addRow("reading everything, 100 models", noTarget(), [] { return Rig::sides(100, ReadAll()); });
    addRow("reading everything, 1,000 models", noTarget(), [] { return Rig::sides(1000, ReadAll()); });
    addRow("reading everything, 10,000 models", noTarget(), [] { return Rig::sides(10000, ReadAll()); });
}

}  // namespace TevBench

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Heap.h"
#include "Rig.h"
#include "Row.h"
#include "Rows.h"
#include "SchemaData.h"
#include "Stopwatch.h"

namespace TevBench {

namespace {

/// The end of transactions that hold `blockCount` blocks each, per block. Several where one would be too short to time.
/// Throws std::logic_error when most of the memory is not given back.
struct Finish {
    std::size_t blockCount;

    template <class Side>
    double operator()(Side& side, const std::vector<std::string>& dns) const {
        const std::size_t transactionCount = std::max<std::size_t>(1, 1000 / blockCount);
        malloc_trim(0);  // both sides take their blocks out of large pieces
        const double bytesBefore = heapBytes();
        for (std::size_t tx = 0; tx < transactionCount; ++tx) {
            for (std::size_t i = 0; i < blockCount / 3; ++i) {
                Rig::read(side, tx, dns.front(), "version");  // three blocks
            }
            for (std::size_t i = 0; i < blockCount % 3; ++i) {
                Rig::read(side, tx, dns.front(), "baseModelVersion");  // one, since there is none
            }
        }
        const double bytesHeld = heapBytes() - bytesBefore;
        const double seconds = processorSecondsOf([&] {
            for (std::size_t tx = 0; tx < transactionCount; ++tx) {
                side.finish(tx);
            }
        });
        if (heapBytes() - bytesBefore > bytesHeld / 2) {
            throw std::logic_error("the memory of transactions is not given back");
        }
        return seconds / static_cast<double>(transactionCount * blockCount);
    }
};

/// The last model is there too, or not all the work was done.
template <class Side>
void requireLast(Side& side, const Framework& framework) {
    Rig::read(side, 1, Rig::dnOf(framework.models().back()), "version");
    side.finish(1);
}

/// The seconds of a start, of a side that begins with nothing, for each model.
template <class Side>
double secondsOfStart(Framework& framework) {
    joinFreedPieces();
    Side side(framework);
    requireLast(side, framework);
    return side.startSeconds() / static_cast<double>(framework.models().size());
}

Sides starts(std::size_t modelCount) {
    const auto framework = std::make_shared<Framework>(Framework::models(modelCount));
    return {[=] { return secondsOfStart<StartedComponent>(*framework); },
            [=] { return secondsOfStart<Floor>(*framework); }};
}

/// The median of `times` starts of the component: a single short one is mostly the cold caches that another
/// measurement has left.
double medianOfStarts(std::size_t modelCount, std::size_t times) {
    Framework framework(Framework::models(modelCount));
    std::vector<double> starts(times);
    std::generate(starts.begin(), starts.end(), [&] { return secondsOfStart<StartedComponent>(framework); });
    const auto middle = starts.begin() + static_cast<std::ptrdiff_t>(times / 2);
    std::nth_element(starts.begin(), middle, starts.end());
    return *middle;
}

/// What a text needs beside the string object.
double bytesOutside(const std::string& text) {
    return text.capacity() > std::string().capacity() ? static_cast<double>(text.size() + 1) : 0;
}

static_assert(sizeof(Floor::Record) == sizeof(TevSchemaPopulator::SchemaData), "or they cannot be set side by side");

/// Bytes that the record, its texts and its options need, without what a heap adds.
double bytesOf(const Floor::Record& record) {
    double bytes = sizeof record;
    for (const std::string* text : {&record.schemaId, &record.identifier, &record.baseModelIdentifier, &record.version,
                                    &record.baseModelVersion, &record.completeFileName, &record.fileName}) {
        bytes += bytesOutside(*text);
    }
    const char** entry = record.selectedModelOptions;
    for (; *entry != nullptr; ++entry) {
        bytes += static_cast<double>(std::char_traits<char>::length(*entry) + 1);
    }
    return bytes + static_cast<double>((entry - record.selectedModelOptions + 1)) * sizeof *entry;
}

/// Bytes for one model of a catalogue of `modelCount`; `isSpareCounted` tells whether those count that the vector has
/// set aside for further records. How many these are is seen in the floor's vector, which has grown in the same way.
Sides memory(std::size_t modelCount, bool isSpareCounted) {
    const auto framework = std::make_shared<Framework>(Framework::models(modelCount));
    const auto floor = std::make_shared<Floor>(*framework);
    const auto count = static_cast<double>(modelCount);
    const std::size_t spare = isSpareCounted ? 0 : floor->catalogue().capacity() - modelCount;
    return {[=] {
                StartedComponent component(*framework);
                requireLast(component, *framework);
                return (component.startBytes() - static_cast<double>(spare * sizeof(Floor::Record))) / count;
            },
            [=] {
                double bytes = 0;
                for (const Floor::Record& record : floor->catalogue()) {
                    bytes += bytesOf(record);
                }
                return bytes / count;
            }};
}

}  // namespace

void addLifecycleRows() {
    addRow("finish, 10 blocks", atMost(1.2), [] { return Rig::sides(1, Finish{10}); });
    addRow("finish, 1,000 blocks", atMost(1.2), [] { return Rig::sides(1, Finish{1000}); });
    addRow("finish, 100,000 blocks", atMost(1.2), [] { return Rig::sides(1, Finish{100000}); });
    addRow("start, 100 models", atMost(1.25), [] { return starts(100); });
    addRow("start, 1,000 models", atMost(1.25), [] { return starts(1000); });
    addRow("start, 10,000 models", atMost(1.25), [] { return starts(10000); });
    addLongRow("start, 100,000 models", atMost(1.25), 4, [] { return starts(100000); });
    addLongRow("cost of a model at start, one of 100,000 against one of 100", atMost(2), 4, [] {
        return Sides{[] { return medianOfStarts(100000, 1); }, [] { return medianOfStarts(100, 31); }};
    });
    addRow(
        "memory of a model, 1,000 models", atMost(1.3), [] { return memory(1000, false); }, "B");
    addRow(
        "memory of a model, 1,025 models, room for more included", noTarget(), [] { return memory(1025, true); }, "B");
}

}  // namespace TevBench

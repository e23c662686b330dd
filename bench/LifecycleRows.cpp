#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Rig.h"
#include "Row.h"
#include "Rows.h"
#include "SchemaData.h"
#include "Stopwatch.h"

namespace TevBench {

namespace {

/// Joins what the other side has freed, so that both take their blocks out of large pieces.
void tidyHeap() {
    malloc_trim(0);
}

/// The end of transactions that hold `blockCount` blocks each, per block. Several where one would be too short to time.
struct Finish {
    std::size_t blockCount;

    template <class Side>
    double operator()(Side& side, const std::vector<std::string>& dns) const {
        const std::size_t transactionCount = std::max<std::size_t>(1, 1000 / blockCount);
        tidyHeap();
        for (std::size_t tx = 0; tx < transactionCount; ++tx) {
            for (std::size_t i = 0; i < blockCount / 3; ++i) {
                Rig::read(side, tx, dns.front(), "version");  // three blocks
            }
            for (std::size_t i = 0; i < blockCount % 3; ++i) {
                Rig::read(side, tx, dns.front(), "baseModelVersion");  // one, since there is none
            }
        }
        return processorSecondsOf([&] {
                   for (std::size_t tx = 0; tx < transactionCount; ++tx) {
                       side.finish(tx);
                   }
               }) /
               static_cast<double>(transactionCount * blockCount);
    }
};

/// A start for each measurement, since a catalogue that is filled again has its memory already.
Sides starts(std::size_t modelCount) {
    const auto framework = std::make_shared<Framework>(Framework::models(modelCount));
    const auto count = static_cast<double>(modelCount);
    return {[=] { return StartedComponent(*framework).startSeconds() / count; },
            [=] { return Floor(*framework).startSeconds() / count; }};
}

double componentStart(std::size_t modelCount) {
    Framework framework(Framework::models(modelCount));
    return StartedComponent(framework).startSeconds() / static_cast<double>(modelCount);
}

/// The usual one of many: a single short start is mostly the cold caches that the measurement before it has left.
double usualComponentStart(std::size_t modelCount) {
    std::vector<double> starts(31);
    std::generate(starts.begin(), starts.end(), [=] { return componentStart(modelCount); });
    const auto middle = starts.begin() + 15;
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
                const auto spareBytes = static_cast<double>(spare * sizeof(Floor::Record));
                return (StartedComponent(*framework).startBytes() - spareBytes) / count;
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
        return Sides{[] { return componentStart(100000); }, [] { return usualComponentStart(100); }};
    });
    addRow(
        "memory of a model, 1,000 models", atMost(1.3), [] { return memory(1000, false); }, "B");
    addRow(
        "memory of a model, 1,025 models, room for more included", noTarget(), [] { return memory(1025, true); }, "B");
}

}  // namespace TevBench

#include <regex.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

#include "EmptyCall.h"
#include "Log.h"
#include "RegularExpression.h"
#include "Rig.h"
#include "Row.h"
#include "Rows.h"
#include "Stopwatch.h"

namespace TevBench {

namespace {

constexpr const char* sourceFile = "bench/CommonRows";
constexpr const char* schemaDn = "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=TransportModel";

/// The two patterns of the component, copied from there.
struct Patterns {
    static constexpr int flags = REG_EXTENDED | REG_NOSUB;
    const Tev::RegularExpression parent{"^ManagedElement=.*,SystemFunctions=.*,SysM=.*$", flags};
    const Tev::RegularExpression schema{"^ManagedElement=.*,SystemFunctions=.*,SysM=.*,Schema=.*", flags};

    bool isParentDn(const char* dn) const { return parent.match(dn, 0) != 0; }
    bool isSchemaDn(const char* dn) const { return schema.match(dn, 0) != 0; }
};

struct PatternFloor {
    static bool isParentDn(const char* dn) { return Floor::isParentDn(dn); }
    static bool isSchemaDn(const char* dn) { return Floor::isSchemaDn(dn); }
};

template <class Side>
void check(const Side& side, std::size_t count) {
    for (std::size_t i = 0; i < count / 2; ++i) {
        if (!side.isParentDn(Rig::parentDn) || !side.isSchemaDn(schemaDn)) {
            throw std::logic_error("a DN does not match");
        }
    }
}

template <class Side>
double secondsOfCheck(const Side& side) {
    constexpr std::size_t count = 1000;
    return processorSecondsOf([&] { check(side, count); }) / count;
}

/// What a second thread brings: the cost of a check with both, against that with one.
template <class Side>
double costOfSecondThread(const Side& side) {
    constexpr std::size_t count = 20000;
    const auto work = [&](std::size_t) { check(side, count); };
    return secondsOfThreads(2, work) / 2 / secondsOfThreads(1, work);
}

Sides checks() {
    const auto patterns = std::make_shared<Patterns>();
    return {[=] { return secondsOfCheck(*patterns); }, [] { return secondsOfCheck(PatternFloor()); }};
}

Sides scaling() {
    const auto patterns = std::make_shared<Patterns>();
    return {[=] { return costOfSecondThread(*patterns); }, [] { return costOfSecondThread(PatternFloor()); }};
}

Sides suppressedLog() {
    constexpr int count = 10000;
    return {[] {
                return processorSecondsOf([] {
                           for (int i = 0; i < count; ++i) {
                               SCHEMA_TRACE(TevSchemaPopulator::TraceDebug, "never written: %d", i);
                           }
                       }) /
                       count;
            },
            [] {
                return processorSecondsOf([] {
                           for (int i = 0; i < count; ++i) {
                               emptyCall();
                           }
                       }) /
                       count;
            }};
}

}  // namespace

void addCommonRows() {
    addRow("DN check alone, both patterns", atMost(1.3), checks);
    addRow("DN check, two threads against one", atLeast(0.9), scaling, "");
    addRow("one suppressed log call", atMost(3), suppressedLog);
}

}  // namespace TevBench

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "LoadRun.h"

namespace {

using std::chrono::milliseconds;
using TevAgent::LoadClient;
using TevAgent::LoadRun;

/// Until then memory may grow: caches fill, and each thread gets to its largest transaction.
constexpr milliseconds warmUp(10000);

// What may come later: all clients happen to list at the same moment, each of 5,000 keys with its bookkeeping; and odds
// and ends of the C library, which come to 2 kB.
constexpr std::size_t residentAllowance = 4'000'000;
constexpr std::size_t heapAllowance = 10'000;

#ifdef TEV_MEMORY_IS_JUDGED
constexpr bool isMemoryJudged = true;
#else
constexpr bool isMemoryJudged = false;
#endif

bool report(const LoadClient::Kind& kind) {
    std::printf("%-28s %10lu %10zu\n", kind.name.c_str(), kind.count, kind.errors.size());
    for (std::size_t i = 0; i < std::min<std::size_t>(kind.errors.size(), 3); ++i) {
        std::printf("    %s\n", kind.errors[i].c_str());
    }
    return kind.errors.empty() && kind.count > 0;
}

bool report(const char* what, const LoadRun::Remains& remains) {
    std::printf("%-28s %10lu %10lu\n", what, remains.count, remains.left);
    return remains.left == 0 && remains.count > 0;
}

bool reportMemory(const char* what, std::size_t before, std::size_t after, std::size_t allowance) {
    const bool isFlat = !isMemoryJudged || after <= before + allowance;
    std::printf("%-28s %10zu %10zu  %s\n", what, before / 1000, after / 1000,
                !isMemoryJudged ? "not judged"
                : isFlat        ? "flat"
                                : "not flat");
    return isFlat;
}

bool run(milliseconds time) {
    LoadRun load;
    const milliseconds first = std::min(warmUp, time / 2);
    const LoadRun::Memory before = load.work(first);
    const LoadRun::Memory after = load.work(time - first);
    const std::string log = load.log();

    std::printf("%-28s %10s %10s\n", "", "count", "errors");
    bool isGood = true;
    for (const LoadClient::Kind& kind : load.kinds()) {
        isGood &= report(kind);
    }
    const LoadRun::AllRemains remains = load.remains();
    std::printf("%-28s %10s %10s\n", "", "count", "left");
    isGood &= report("transactions of the agent", remains.agentTransactions);
    isGood &= report("transactions of the component", remains.componentTransactions);
    isGood &= report("iterators of the component", remains.componentIterators);
    std::printf("%-28s %8lld s %8lld s\n", "", static_cast<long long>(first.count() / 1000),
                static_cast<long long>(time.count() / 1000));
    isGood &= reportMemory("resident memory, most, kB", before.resident, after.resident, residentAllowance);
    isGood &= reportMemory("heap at rest, kB", before.heap, after.heap, heapAllowance);
    std::printf("%s", log.c_str());
    return isGood && log.empty();
}

}  // namespace

/// The only argument is for how many seconds to work. The exit status is 1 when anything is not as it should be.
int main(int argumentCount, char** arguments) {
    int seconds = 0;
    if (argumentCount == 2) {
        std::from_chars(arguments[1], arguments[1] + std::strlen(arguments[1]), seconds);
    }
    if (seconds <= 0) {
        std::fprintf(stderr, "usage: tev_load SECONDS\n");
        return 2;
    }
    try {
        return run(std::chrono::seconds(seconds)) ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "tev_load: %s\n", e.what());
        return 1;
    }
}

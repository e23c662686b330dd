#include "Row.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <vector>

namespace TevBench {

namespace {

std::vector<double> sorted(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values;
}

double median(const std::vector<double>& values) {
    const std::vector<double> ranked = sorted(values);
    return (ranked[(ranked.size() - 1) / 2] + ranked[ranked.size() / 2]) / 2;
}

// A quarter of the values is below the one, and a quarter above the other.
double lowerQuartile(const std::vector<double>& values) {
    return sorted(values)[(values.size() - 1) / 4];
}
double upperQuartile(const std::vector<double>& values) {
    return sorted(values)[values.size() - 1 - (values.size() - 1) / 4];
}

void measure(benchmark::State& state, const Sides& sides, Target target, bool& isFloorFirst) {
    std::vector<double> components;
    std::vector<double> floors;
    std::vector<double> ratios;
    for ([[maybe_unused]] auto iteration : state) {
        const double first = isFloorFirst ? sides.floor() : sides.component();
        const double second = isFloorFirst ? sides.component() : sides.floor();
        components.push_back(isFloorFirst ? second : first);
        floors.push_back(isFloorFirst ? first : second);
        const double ratio = components.back() / floors.back();
        ratios.push_back(target.kind == Target::Kind::AtLeast ? 1 / ratio : ratio);
        isFloorFirst = !isFloorFirst;
    }
    state.counters["component"] = median(components);
    state.counters["floor"] = median(floors);
    state.counters["ratio"] = median(ratios);
    if (target.kind != Target::Kind::None) {
        state.counters[target.kind == Target::Kind::AtMost ? "atMost" : "atLeast"] = target.ratio;
    }
}

benchmark::internal::Benchmark* add(const std::string& name, Target target, const std::function<Sides()>& setUp,
                                    const char* unit) {
    // The sides take turns from one measurement to the next, too: some are of a single pair.
    const auto run = [=, isFloorFirst = false](benchmark::State& state) mutable {
        try {
            measure(state, setUp(), target, isFloorFirst);
            state.SetLabel(unit);
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    };
    return benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseRealTime()
        ->ComputeStatistics("lowerQuartile", lowerQuartile)
        ->ComputeStatistics("upperQuartile", upperQuartile);
}

}  // namespace

void addRow(const std::string& name, Target target, const std::function<Sides()>& setUp, const char* unit) {
    add(name, target, setUp, unit);
}

void addLongRow(const std::string& name, Target target, int pairs, const std::function<Sides()>& setUp) {
    add(name, target, setUp, "s")->Iterations(pairs);
}

}  // namespace TevBench

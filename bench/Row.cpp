#include "Row.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <vector>

namespace TevBench {

namespace {

/// The value below which `share` of the others are.
double quantile(std::vector<double> values, double share) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1) + 0.5);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

double quarter(const std::vector<double>& values) {
    return quantile(values, 0.25);
}

double threeQuarters(const std::vector<double>& values) {
    return quantile(values, 0.75);
}

void measure(benchmark::State& state, const Sides& sides, Target target) {
    std::vector<double> components;
    std::vector<double> floors;
    std::vector<double> ratios;
    bool isFloorFirst = false;
    for ([[maybe_unused]] auto iteration : state) {
        const double first = isFloorFirst ? sides.floor() : sides.component();
        const double second = isFloorFirst ? sides.component() : sides.floor();
        components.push_back(isFloorFirst ? second : first);
        floors.push_back(isFloorFirst ? first : second);
        const double ratio = components.back() / floors.back();
        ratios.push_back(target.kind == Target::Kind::AtLeast ? 1 / ratio : ratio);
        isFloorFirst = !isFloorFirst;
    }
    state.counters["component"] = quantile(components, 0.5);
    state.counters["floor"] = quantile(floors, 0.5);
    state.counters["ratio"] = quantile(ratios, 0.5);
    if (target.kind != Target::Kind::None) {
        state.counters[target.kind == Target::Kind::AtMost ? "atMost" : "atLeast"] = target.ratio;
    }
}

benchmark::internal::Benchmark* add(const std::string& name, Target target, const std::function<Sides()>& setUp,
                                    const char* unit) {
    const auto run = [=](benchmark::State& state) {
        try {
            measure(state, setUp(), target);
            state.SetLabel(unit);
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    };
    return benchmark::RegisterBenchmark(name.c_str(), run)
        ->UseRealTime()
        ->ComputeStatistics("quarter", quarter)
        ->ComputeStatistics("threeQuarters", threeQuarters);
}

}  // namespace

void addRow(const std::string& name, Target target, const std::function<Sides()>& setUp, const char* unit) {
    add(name, target, setUp, unit);
}

void addLongRow(const std::string& name, Target target, const std::function<Sides()>& setUp) {
    add(name, target, setUp, "s")->Iterations(1);
}

}  // namespace TevBench

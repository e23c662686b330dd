#ifndef ROW_H
#define ROW_H

#include <functional>
#include <string>

namespace TevBench {

/// What a row compares: each side does its work once and returns what that cost, in seconds or bytes for one operation.
struct Sides {
    std::function<double()> component;
    std::function<double()> floor;
};

/// What the ratio of a row is meant to be.
struct Target {
    enum class Kind { AtMost, AtLeast, None };
    Kind kind;
    double ratio;
};

inline Target atMost(double ratio) {
    return {Target::Kind::AtMost, ratio};
}
/// The row's ratio is then one of throughputs, the floor's cost over the component's.
inline Target atLeast(double ratio) {
    return {Target::Kind::AtLeast, ratio};
}
/// Reported only.
inline Target noTarget() {
    return {Target::Kind::None, 0};
}

/// Adds a row to the table: a benchmark in which both sides take turns, so that what else the machine does meets both.
/// Its counters are the medians of both costs and of the ratios of the pairs. `setUp` makes the sides anew for each
/// measurement, and is not part of it. `unit` is that of the costs: "s", "B" or empty.
void addRow(const std::string& name, Target target, const std::function<Sides()>& setUp, const char* unit = "s");

/// The same with a measurement of so many pairs, however long they take.
void addLongRow(const std::string& name, Target target, int pairs, const std::function<Sides()>& setUp);

}  // namespace TevBench

#endif

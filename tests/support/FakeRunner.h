#ifndef FAKE_RUNNER_H
#define FAKE_RUNNER_H

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "TevReturnT.h"

namespace TevTest {

/// Takes the place of `Tev::SftpWrapper` for the program and its libraries: writes down what it is given and transfers
/// nothing. There is one at a time. Runners may be used in several threads; a test sets and reads what is here while no
/// transfer is under way, or in what an operation does.
class FakeRunner {
public:
    /// The fourteen arguments, in their order.
    using Arguments = std::tuple<std::string, std::string, std::string, std::string, std::string, int, std::string,
                                 std::string, bool, std::string, std::string, std::string, long, unsigned int>;

    FakeRunner();
    ~FakeRunner();
    FakeRunner(const FakeRunner&) = delete;
    FakeRunner& operator=(const FakeRunner&) = delete;

    /// What `execute` returns, and `getErrorMessage` of the same runner after it.
    TevReturnT code = 0;
    std::string errorMessage;

    /// Done, where set, by each operation before anything else; what they throw goes to the caller.
    std::function<void()> atConstruction;
    std::function<void()> atExecution;
    std::function<void()> atErrorMessage;

    /// What each runner was constructed with.
    std::vector<Arguments> constructed;
    std::mutex mutex;  ///< held while `constructed` grows

    /// How often a runner was executed.
    std::atomic<unsigned int> executions = 0;

    /// How many runners there are at the moment.
    std::atomic<unsigned int> alive = 0;

    /// The replacement's way in.
    static FakeRunner& current();
};

}  // namespace TevTest

#endif

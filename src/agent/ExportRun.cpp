#include "ExportRun.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <future>
#include <map>
#include <system_error>
#include <utility>

#include "AnnotatedMutex.h"
#include "Diagnostics.h"
#include "Interruption.h"
#include "LiveLine.h"
#include "Operation.h"

namespace TevAgent {

namespace {

constexpr std::chrono::milliseconds tick(200);

/// What the threads have done, for the one that waits for them.
class Finished {
public:
    using Results = std::map<std::size_t, ExportResult>;  ///< by the place of the export

    void add(std::size_t place, ExportResult result) {
        const Tev::AnnotatedLock lock(mutex);
        results.emplace(place, std::move(result));
        isAdded.notify_one();
    }

    /// What was added since the last time; waits for something a tick long.
    Results take() {
        const Tev::AnnotatedLock lock(mutex);
        if (results.empty()) {
            isAdded.wait_for(mutex, tick);
        }
        return std::exchange(results, {});
    }

private:
    Tev::AnnotatedMutex mutex;
    std::condition_variable_any isAdded;
    Results results TEV_GUARDED_BY(mutex);
};

std::string sizeText(std::uintmax_t bytes) {
    constexpr std::array<const char*, 3> units = {"kB", "MB", "GB"};
    if (bytes < 1000) {
        return std::to_string(bytes) + " B";
    }
    double size = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    for (; size >= 999.95 && unit + 1 < units.size(); ++unit) {
        size /= 1000;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.1f %s", size, units.at(unit));
    return text;
}

/// How far a run is, for the live line.
class Progress {
public:
    explicit Progress(const std::vector<ExportRun::Export>& allExports, std::chrono::milliseconds transferTimeout)
        : exports(allExports), timeout(transferTimeout) {}

    void count(const ExportResult& result) { ++(result.isExported ? exported : failed); }

    std::string text() const { return exports.size() == 1 ? ofOne() : bar(); }

private:
    std::string seconds() const {
        const auto passed = std::chrono::steady_clock::now() - begin;
        return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(passed).count()) + " s";
    }

    std::string ofOne() const {
        const ExportRun::Export& only = exports.front();
        std::string line = only.model + (only.size ? ", " + sizeText(*only.size) : "") + ": " + seconds();
        if (timeout.count() > 0) {
            line += " of " + std::to_string(std::chrono::ceil<std::chrono::seconds>(timeout).count()) + " s";
        }
        return line;
    }

    std::string bar() const {
        constexpr std::size_t width = 20;
        const std::size_t done = (exported + failed) * width / exports.size();
        return "[" + std::string(done, '#') + std::string(width - done, '.') + "] " +
               std::to_string(exported + failed) + " of " + std::to_string(exports.size()) + ", " +
               std::to_string(failed) + " failed, " + seconds();
    }

    const std::vector<ExportRun::Export>& exports;
    const std::chrono::milliseconds timeout;
    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    std::size_t exported = 0;
    std::size_t failed = 0;
};

/// Begins `work` for the export at `place` in a thread of its own; false when the system has none to give just now.
template <class Work>
bool tryToBegin(std::map<std::size_t, std::future<void>>& threads, std::size_t place, const Work& work) {
    try {
        threads.emplace(place, std::async(std::launch::async, work, place));
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

}  // namespace

ExportRun::ExportRun(Agent& hostAgent, std::string destinationUri, const Password& userPassword)
    : agent(hostAgent), uri(std::move(destinationUri)), password(userPassword) {}

std::vector<ExportResult> ExportRun::run(const std::vector<Export>& exports, std::size_t jobs,
                                         const std::function<void(const ExportResult&)>& tell) {
    Finished finished;
    std::vector<ExportResult> results(exports.size());
    Progress progress(exports, agent.transferTimeout());
    LiveLine line;
    std::map<std::size_t, std::future<void>> threads;  // ended by the time they are taken out
    std::size_t next = 0;
    const auto isMore = [&] { return next < exports.size() && !Interruption::isRequested(); };
    const auto work = [&](std::size_t place) { finished.add(place, carryOut(exports[place])); };
    const auto end = [&](std::size_t place, ExportResult result) {
        line.clear();
        tell(result);
        results[place] = std::move(result);
    };
    while (!threads.empty() || isMore()) {
        line.show(progress.text());
        while (threads.size() < jobs && isMore() && tryToBegin(threads, next, work)) {
            ++next;
        }
        if (threads.empty() && isMore()) {
            // There is no thread to be had, and none whose end would change that.
            work(next++);
        }
        for (auto& [place, result] : finished.take()) {
            threads.erase(place);
            progress.count(result);
            end(place, std::move(result));
        }
    }
    for (; next < exports.size(); ++next) {
        end(next, {exports[next].model, false, "not begun"});
    }
    return results;
}

ExportResult ExportRun::carryOut(const Export& wanted) const noexcept {
    Diagnostics::Capture capture;
    ExportResult result{wanted.model, false, ""};
    std::string failure;
    try {
        Operation operation(agent);
        operation.act(wanted.dn, "export", {uri.c_str(), password.text()});
        operation.commit();
        result.isExported = true;
    } catch (const std::exception& e) {
        failure = e.what();
    }
    const std::string said = capture.takeOr("");
    result.message = failure + (failure.empty() || said.empty() ? "" : "; ") + said;
    return result;
}

}  // namespace TevAgent

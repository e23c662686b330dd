#include "LifeChecks.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <thread>

#include "CheckTransaction.h"
#include "Failure.h"
#include "ProcessState.h"
#include "TableCheck.h"
#include "TemporaryFile.h"

namespace TevAgent {

namespace {

constexpr const char* threadFolder = "/proc/self/task";
constexpr const char* descriptorFolder = "/proc/self/fd";

std::size_t entriesOf(const char* folder) {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
}

/// The number of threads, as soon as it is down to `expected`: the system may show one that has ended for a moment
/// more.
std::size_t threadsDownTo(std::size_t expected) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (entriesOf(threadFolder) > expected && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return entriesOf(threadFolder);
}

/// Takes what is written to standard output while it lives.
class OutputWatch {
public:
    OutputWatch() : usual(dup(STDOUT_FILENO)) {
        flush();
        dup2(file.descriptor(), STDOUT_FILENO);
    }

    ~OutputWatch() {
        flush();
        dup2(usual, STDOUT_FILENO);
        close(usual);
    }

    OutputWatch(const OutputWatch&) = delete;
    OutputWatch& operator=(const OutputWatch&) = delete;

    void verify() {
        flush();
        const std::string text = file.text();
        if (!text.empty()) {
            CheckEnd::warn("it wrote on standard output: " + text.substr(0, text.find('\n')));
        }
    }

private:
    static void flush() {
        std::cout.flush();
        std::fflush(stdout);
    }

    TemporaryFile file;
    const int usual;
};

std::string opens(CheckHost& host) {
    host.load();
    return host.file();
}

std::string entryPoints(CheckHost& host) {
    host.findEntryPoints();
    return "";
}

std::string loadsQuietly(CheckHost& host) {
    const std::size_t threads = entriesOf(threadFolder);
    OutputWatch output;
    host.load();
    output.verify();
    if (threadsDownTo(threads) > threads) {
        CheckEnd::warn("it started a thread while it was loaded");
    }
    if (!host.portalRecorder().asked().empty()) {
        CheckEnd::warn("it asked the portal for " + host.portalRecorder().asked().front().text() +
                       " while it was loaded");
    }
    return "";
}

std::string registers(CheckHost& host) {
    host.initialize();
    const char* const name = host.component().base.componentName;
    return name == nullptr ? "" : std::string("component ") + name;
}

std::string withoutPortal(CheckHost& host) {
    static DalPortalAccessor nowhere = {[](const char*) -> void* { return nullptr; }};
    host.findEntryPoints();
    if (host.initializeWith(&nowhere) == TevReturnOk) {
        CheckEnd::fail("dalLCMinit returned 0 without a portal of version 3");
    }
    return "";
}

std::string unregisters(CheckHost& host) {
    host.initialize();
    host.terminate();
    if (!host.portalRecorder().registered().empty()) {
        CheckEnd::fail("dalLCMterminate left a component registered");
    }
    return "";
}

std::string initializesAgain(CheckHost& host) {
    host.initialize();
    host.terminate();
    host.portalRecorder().clear();
    try {
        host.initialize();
    } catch (const CheckEnd& e) {
        CheckEnd::warn(e.remark);
    }
    return "";
}

/// The components' tables, once they are registered.
std::vector<DalMgmtSpiComponent_2*> tablesOf(CheckHost& host) {
    host.initialize();
    return host.portalRecorder().registered();
}

void failWith(const std::string& fault) {
    if (!fault.empty()) {
        CheckEnd::fail(fault);
    }
}

std::string componentTable(CheckHost& host) {
    for (const DalMgmtSpiComponent_2* const table : tablesOf(host)) {
        failWith(TableCheck::faultOfComponent(table));
    }
    return "";
}

std::string offeredTables(CheckHost& host) {
    std::string offered;
    for (const DalMgmtSpiComponent_2* const table : tablesOf(host)) {
        failWith(TableCheck::faultOfOffers(*table));
        for (DalMgmtSpiInterface_1** entry = table->interfaceArray; *entry != nullptr; ++entry) {
            offered += (offered.empty() ? "" : ", ") + std::string((*entry)->interfaceName);
        }
    }
    return offered;
}

std::string dependencyArray(CheckHost& host) {
    for (const DalMgmtSpiComponent_2* const table : tablesOf(host)) {
        failWith(TableCheck::faultOfDependencies(*table));
    }
    return "";
}

std::string extraArray(CheckHost& host) {
    for (const DalMgmtSpiComponent_2* const table : tablesOf(host)) {
        failWith(TableCheck::faultOfExtras(*table));
    }
    return "";
}

std::vector<InterfaceId> dependenciesOf(CheckHost& host) {
    std::vector<InterfaceId> wanted;
    for (DalMgmtSpiComponent_2* const table : tablesOf(host)) {
        const std::vector<InterfaceId> own = Component(*table).dependencies();
        wanted.insert(wanted.end(), own.begin(), own.end());
    }
    return wanted;
}

std::string portalDependency(CheckHost& host) {
    const std::vector<InterfaceId> wanted = dependenciesOf(host);
    if (std::none_of(wanted.begin(), wanted.end(),
                     [](const InterfaceId& id) { return id.component == PortalService::componentName; })) {
        CheckEnd::warn("it does not depend on the portal, as components do");
    }
    return "";
}

std::string offeredDependencies(CheckHost& host) {
    host.initialize();
    try {
        host.portalService().startOrder();
    } catch (const Failure& e) {
        CheckEnd::fail(e.what());
    }
    return "";
}

/// Of a component that one dependency names, other interfaces may be asked for, too; and the transaction service is
/// there for whoever takes part in transactions.
std::string declaredDependencies(CheckHost& host) {
    const std::vector<InterfaceId> wanted = dependenciesOf(host);
    host.start();
    for (const InterfaceId& id : host.portalRecorder().asked()) {
        const bool isDeclared = std::any_of(
            wanted.begin(), wanted.end(), [&id](const InterfaceId& other) { return other.component == id.component; });
        if (!isDeclared && id.component != TransactionService::componentName) {
            CheckEnd::warn("it asked for " + id.text() + ", which is no declared dependency");
        }
    }
    return "";
}

/// `call`, made while the component is not started, was to return 2.
void verifyNotStarted(const std::string& call, TevReturnT code) {
    if (code == TevReturnOk) {
        CheckEnd::fail(call + " returned 0");
    }
    if (code != TevReturnNotStarted) {
        CheckEnd::warn(call + " returned " + ReturnCode::text(code) + ", not 2");
    }
}

std::string verifyNotJoined(CheckHost& host, const std::string& when) {
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const ScopedTransaction transaction(host.transactions());
    verifyNotStarted("join " + when, host.call("join", [&] { return resource.join(transaction.handle()); }));
    return "";
}

std::string joinsNotBeforeStart(CheckHost& host) {
    host.initialize();
    return verifyNotJoined(host, "before start");
}

std::string joinsNotAfterStop(CheckHost& host) {
    host.start();
    host.stop();
    return verifyNotJoined(host, "after stop");
}

std::string answersOnlyStarted(CheckHost& host) {
    host.start();
    CheckTransaction transaction(host);
    DalOamSpiManagedObject_1& objects = host.objects();
    const std::string dn = host.dnOf(transaction.someKeys().front());
    const std::string attribute = host.attributes().front();
    const std::string parent = host.parent();
    const std::string className = host.className();
    void* iterator = transaction.list();
    host.stop();
    DalMoAttributeValueContainer* container = nullptr;
    char* key = nullptr;
    verifyNotStarted("getMoAttribute after stop", host.call("getMoAttribute", [&] {
        return objects.getMoAttribute(transaction.handle(), dn.c_str(), attribute.c_str(), &container);
    }));
    verifyNotStarted("nextMo after stop", host.call("nextMo", [&] { return objects.nextMo(iterator, &key); }));
    verifyNotStarted("newMoIterator after stop", host.call("newMoIterator", [&] {
        return objects.newMoIterator(transaction.handle(), parent.c_str(), className.c_str(), &iterator);
    }));
    return "";
}

std::string listsAfterRestart(CheckHost& host) {
    bool isSteady = true;
    const auto keys = [&] {
        CheckTransaction transaction(host);
        const std::vector<char*> listed = transaction.rest(transaction.list());
        std::vector<std::string> texts(listed.begin(), listed.end());
        isSteady = isSteady && transaction.isSteady();
        return texts;
    };
    host.start();
    const std::vector<std::string> before = keys();
    host.stop();
    host.start();
    if (keys() != before && isSteady) {
        CheckEnd::warn("it lists other keys than before it was stopped and started");
    }
    return "";
}

std::string starts(CheckHost& host) {
    host.start();
    return "";
}

std::string stops(CheckHost& host) {
    host.start();
    host.stop();
    return "";
}

std::string startsAgain(CheckHost& host) {
    for (int round = 0; round < 3; ++round) {
        host.start();
        host.stop();
    }
    return "";
}

std::string stopsAfterFailedStart(CheckHost& host) {
    host.initialize();
    host.portalRecorder().refuse(true);
    std::string remark = "start needs no service";
    try {
        host.start();
    } catch (const CheckEnd& e) {
        remark = "";
    }
    host.stop();
    host.portalRecorder().refuse(false);
    host.start();
    host.stop();
    return remark;
}

std::string stopsTwice(CheckHost& host) {
    host.start();
    host.stop();
    const TevReturnT code = host.call("stop", [&] { return host.component().stop(DalStateChangeReasonUnspecified); });
    if (code != TevReturnOk) {
        CheckEnd::warn("the second stop returned " + ReturnCode::text(code));
    }
    return "";
}

/// A whole life: with a listing where the component has one.
void live(CheckHost& host) {
    host.start();
    try {
        CheckTransaction transaction(host);
        const std::vector<char*> keys = transaction.someKeys();
        for (const std::string& attribute : host.attributes()) {
            transaction.read(host.dnOf(keys.front()), attribute);
        }
        transaction.commit();
    } catch (const CheckEnd& e) {
        if (e.outcome != CheckResult::Outcome::Skipped) {
            throw;
        }
    }
    host.stop();
    host.terminate();
}

std::string keepsOutputClean(CheckHost& host) {
    host.load();
    OutputWatch output;
    live(host);
    host.unload();
    output.verify();
    return "";
}

/// By the file's identity, because the path may lead over links.
bool isMapped(const std::string& file) {
    struct stat wanted {};
    stat(file.c_str(), &wanted);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t slash = line.find('/');
        struct stat mapped {};
        if (slash != std::string::npos && stat(line.substr(slash).c_str(), &mapped) == 0 &&
            mapped.st_ino == wanted.st_ino && mapped.st_dev == wanted.st_dev) {
            return true;
        }
    }
    return false;
}

std::string unmaps(CheckHost& host) {
    live(host);
    host.unload();
    if (isMapped(host.file())) {
        CheckEnd::warn("it stays in the process, so it cannot be replaced without a restart");
    }
    return "";
}

std::string livesAgain(CheckHost& host) {
    live(host);
    host.unload();
    live(host);
    host.unload();
    return "";
}

std::string leavesNoDescriptor(CheckHost& host) {
    live(host);
    host.unload();
    // What libraries keep for good is there by now.
    const std::size_t before = entriesOf(descriptorFolder);
    live(host);
    host.unload();
    const std::size_t after = entriesOf(descriptorFolder);
    if (after > before) {
        CheckEnd::warn("it left " + std::to_string(after - before) + " open descriptors");
    }
    return "";
}

std::string leavesProcessAsItWas(CheckHost& host) {
    const ProcessState before;
    live(host);
    host.unload();
    const std::string change = ProcessState().changeSince(before);
    if (!change.empty()) {
        CheckEnd::warn("it changed " + change);
    }
    return "";
}

std::string leavesNoThread(CheckHost& host) {
    live(host);
    host.unload();
    // A sanitizer keeps a thread of its own from the first one on.
    const std::size_t before = threadsDownTo(1);
    live(host);
    host.unload();
    if (threadsDownTo(before) > before) {
        CheckEnd::warn("it left a thread, whose code is gone");
    }
    return "";
}

}  // namespace

std::vector<CheckItem> LifeChecks::items() {
    return {
        {"load.opens", "The library can be loaded", opens, true},
        {"load.entry-points", "The library has the entry points dalLCMinit and dalLCMterminate", entryPoints, true},
        {"load.quiet", "Loading starts no thread, asks the portal for nothing and writes nothing", loadsQuietly},
        {"init.registers", "dalLCMinit returns 0 and registers a component", registers, true},
        {"init.no-portal", "dalLCMinit fails where there is no portal of its version", withoutPortal},
        {"init.unregisters", "dalLCMterminate unregisters every component", unregisters},
        {"init.again", "dalLCMinit works again after dalLCMterminate", initializesAgain},
        {"tables.component", "The component's table has its names, its version, three arrays, start and stop",
         componentTable, true},
        {"tables.offers",
         "Every offered table bears the component's name and, where its interface is known, its version and functions",
         offeredTables, true},
        {"tables.dependencies", "Every dependency names a component, an interface and a version", dependencyArray,
         true},
        {"tables.extra", "Every entry of the third array names a component, an interface and a version", extraArray},
        {"dependencies.portal", "The component depends on the portal", portalDependency},
        {"dependencies.offered", "Every dependency is met by the framework or a component that is there",
         offeredDependencies, true},
        {"lifecycle.not-started", "join returns 2 before start", joinsNotBeforeStart},
        {"lifecycle.start", "start returns 0", starts, true},
        {"lifecycle.stop", "stop returns 0", stops, true},
        {"lifecycle.stopped", "join returns 2 after stop", joinsNotAfterStop},
        {"lifecycle.restart", "start works again after stop", startsAgain},
        {"lifecycle.failed-start", "stop returns 0 after a start without services, and the next start works",
         stopsAfterFailedStart},
        {"lifecycle.stop-again", "stop returns 0 when the component is stopped already", stopsTwice},
        {"dependencies.declared", "What the component asks the portal for was declared as a dependency",
         declaredDependencies},
    };
}

std::vector<CheckItem> LifeChecks::lastItems() {
    return {
        {"lifecycle.used-again", "A component that was stopped and started lists what it listed before",
         listsAfterRestart},
        {"lifecycle.answers-stopped", "Listings and reads return 2 after stop", answersOnlyStarted},
        {"output.untouched", "Nothing is written on standard output from dalLCMinit to unloading", keepsOutputClean},
        {"unload.unmaps", "An unloaded library leaves the process", unmaps},
        {"unload.again", "A library that was unloaded can be loaded and used again", livesAgain},
        {"unload.descriptors", "An unloaded library leaves no descriptor open", leavesNoDescriptor},
        {"unload.process",
         "An unloaded library leaves signal handlers, working folder, file mode mask, environment and locale alone",
         leavesProcessAsItWas},
        {"unload.threads", "An unloaded library leaves no thread", leavesNoThread},
    };
}

}  // namespace TevAgent

#include "CheckHost.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

#include "Failure.h"
#include "Loader.h"
#include "Portal.h"
#include "SchemaClass.h"
#include "TevException.h"
#include "ThreadContext.h"

namespace TevAgent {

namespace {

/// One with everything, a bare one, and one whose name begins like another.
std::vector<Model> models() {
    Model full;
    full.name = "CheckModel";
    full.version = "2";
    full.release = "1";
    full.correction = "5";
    full.domains["ORVA"] = {
        {"orvaMomName", "OrvaCheck"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}};
    full.features = {"One", "Two", "Three"};
    full.file = "/check/CheckModel.xml";
    Model bare;
    bare.name = "Bare";
    bare.file = "/check/Bare.xml";
    Model similar;
    similar.name = "CheckModelExtension";
    similar.version = "1";
    similar.file = "/check/CheckModelExtension.xml";
    return {full, bare, similar};
}

constexpr const char* objectInterface = "DalOamSpiManagedObject";

constexpr const char* objectTree = R"(
    <managedObjects>
      <mo class="ManagedElement" id="1">
        <mo class="SystemFunctions" id="1">
          <mo class="SysM" id="1"/>
          <mo class="SecM" id="1">
            <mo class="Ssh" id="1">
              <attribute name="selectedCiphers" type="string"><value>aes128-ctr</value></attribute>
              <attribute name="selectedKeyExchanges" type="string"><value>curve25519-sha256</value></attribute>
              <attribute name="selectedMacs" type="string"><value>hmac-sha2-256</value></attribute>
            </mo>
          </mo>
        </mo>
        <mo class="Transport" id="1">
          <mo class="ServiceCategory" id="OamBulk">
            <attribute name="dscp" type="uint8"><value>10</value></attribute>
          </mo>
        </mo>
      </mo>
    </managedObjects>)";

ObjectStore storeOf(const std::string& file) {
    if (file.empty()) {
        return ObjectStore::of(objectTree, {SchemaClass::route()});
    }
    try {
        return ObjectStore::load(file, {SchemaClass::route()});
    } catch (const Tev::TevException& e) {
        throw Failure(ExitStatus::NotStarted, e.what());
    }
}

/// The table that a component offers for an interface; null when it offers none.
DalMgmtSpiInterface_1* tableOf(const DalMgmtSpiComponent_2& component, const char* interfaceName) {
    DalMgmtSpiInterface_1** entry = component.interfaceArray;
    while (*entry != nullptr && std::strcmp((*entry)->interfaceName, interfaceName) != 0) {
        ++entry;
    }
    return *entry;
}

const char* textOrNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

}  // namespace

CheckHost::CheckHost(const CheckSubject& checkSubject)
    : subject(checkSubject),
      path(std::filesystem::absolute(subject.library)),
      name(std::filesystem::path(path).filename()),
      repository(std::make_unique<ModelRepository>(models())),
      store(storeOf(subject.objects)),
      recorder(portal),
      routes(store.routes()) {
    routes.insert(routes.begin(), SchemaClass::route());
    router = std::make_unique<Router>(store, portal, transactionService, routes);
    portal.offer(TransactionService::table()->base);
    portal.offer(ThreadContext::table()->base);
    portal.offer(*repository->repositoryTable());
    portal.offer(*repository->extensionTable());
    portal.offer(Router::table()->base);
    Tev::Portal::setAccessor(RecordingPortal::accessor());
    for (const std::string& library : subject.others) {
        others.push_back(std::make_unique<ComponentLibrary>(library, portal));
        others.back()->initialize(textOrNull(subject.configuration));
    }
}

CheckHost::~CheckHost() {
    endLife();
    while (!others.empty()) {
        others.pop_back();
    }
    Tev::Portal::setAccessor(nullptr);
}

/// Whatever goes wrong here has an item of its own.
void CheckHost::endLife() {
    for (void (CheckHost::*step)() : {&CheckHost::stop, &CheckHost::terminate, &CheckHost::unload}) {
        try {
            (this->*step)();
        } catch (const CheckEnd&) {
            continue;
        }
    }
}

void CheckHost::load() {
    if (handle != nullptr) {
        return;
    }
    demand("dlopen", [this] {
        handle = Loader::load(path);
        return TevReturnOk;
    });
    if (handle == nullptr) {
        CheckEnd::fail(path + ": " + Loader::lastError(path));
    }
}

void CheckHost::findEntryPoints() {
    load();
    const auto find = [this](const char* symbol) {
        void* const address = Loader::find(handle, symbol);
        if (address == nullptr) {
            CheckEnd::fail(Loader::lastError(path));
        }
        return address;
    };
    init = reinterpret_cast<Init>(find("dalLCMinit"));
    terminator = reinterpret_cast<Terminate>(find("dalLCMterminate"));
}

TevReturnT CheckHost::initializeWith(DalPortalAccessor* accessor) {
    return call("dalLCMinit", [&] { return init(accessor, textOrNull(subject.configuration)); });
}

void CheckHost::initialize() {
    if (isInitialized) {
        return;
    }
    findEntryPoints();
    demand("dalLCMinit", [this] { return init(RecordingPortal::accessor(), textOrNull(subject.configuration)); });
    isInitialized = true;
    const auto registered = recorder.registered();
    if (registered.empty() || std::count(registered.begin(), registered.end(), nullptr) != 0) {
        CheckEnd::fail(registered.empty() ? "dalLCMinit registered no component"
                                          : "dalLCMinit registered a null component table");
    }
}

void CheckHost::start() {
    if (isStarted) {
        return;
    }
    initialize();
    isStarted = true;
    Diagnostics::Capture capture;
    try {
        portal.start();
    } catch (const Failure& e) {
        CheckEnd::fail(e.what());
    }
}

void CheckHost::stop() {
    if (!std::exchange(isStarted, false)) {
        return;
    }
    Diagnostics::Capture capture;
    if (portal.stop() != TevReturnOk) {
        CheckEnd::fail(capture.takeOr("stop failed"));
    }
}

void CheckHost::terminate() {
    if (!std::exchange(isInitialized, false)) {
        return;
    }
    demand("dalLCMterminate", [this] {
        terminator();
        return TevReturnOk;
    });
}

void CheckHost::unload() {
    if (handle == nullptr) {
        return;
    }
    // What it left registered would be looked into once it is gone.
    recorder.clear();
    demand("dlclose", [this] { return Loader::unload(std::exchange(handle, nullptr)); });
}

const Route* CheckHost::routeTo(const DalMgmtSpiComponent_2& table) const {
    const auto found = std::find_if(routes.begin(), routes.end(), [&](const Route& route) {
        return route.component == table.base.componentName &&
               (subject.className.empty() || route.className == subject.className);
    });
    return found == routes.end() ? nullptr : &*found;
}

const DalMgmtSpiComponent_2& CheckHost::owner() const {
    const std::vector<DalMgmtSpiComponent_2*> tables = recorder.registered();
    auto found = std::find_if(tables.begin(), tables.end(), [this](const auto* table) { return routeTo(*table); });
    if (found == tables.end()) {
        found = std::find_if(tables.begin(), tables.end(),
                             [](const auto* table) { return tableOf(*table, objectInterface); });
    }
    return found == tables.end() ? component() : **found;
}

template <class Table>
Table& CheckHost::offered(const char* interfaceName) const {
    DalMgmtSpiInterface_1* const table = tableOf(owner(), interfaceName);
    if (table == nullptr) {
        CheckEnd::skip(std::string("it offers no ") + interfaceName);
    }
    return *reinterpret_cast<Table*>(table);
}

DalOamSpiTransactionalResource_2& CheckHost::resource() const {
    return offered<DalOamSpiTransactionalResource_2>("DalOamSpiTransactionalResource");
}

DalOamSpiManagedObject_1& CheckHost::objects() const {
    return offered<DalOamSpiManagedObject_1>(objectInterface);
}

std::string CheckHost::className() const {
    if (!subject.className.empty()) {
        return subject.className;
    }
    const Route* const own = routeTo(owner());
    if (own == nullptr) {
        CheckEnd::skip("no route leads to component " + std::string(objects().base.componentName) +
                       "; name its class with --class, and where it stands with --parent");
    }
    return own->className;
}

std::string CheckHost::parent() const {
    const Route* const own = routeTo(owner());
    if (!subject.parent.empty() || own == nullptr) {
        return subject.parent;
    }
    const auto dn = store.firstInstance(own->parent);
    if (!dn) {
        CheckEnd::skip("there is no object that " + own->className + " could stand under; name one with --parent");
    }
    return *dn;
}

std::string CheckHost::dnOf(const std::string& key) const {
    const std::string parentDn = parent();
    return parentDn + (parentDn.empty() ? "" : ",") + className() + "=" + key;
}

std::vector<std::string> CheckHost::attributes() const {
    if (!subject.attributes.empty()) {
        return subject.attributes;
    }
    if (className() != SchemaClass::name) {
        CheckEnd::skip("the attributes of " + className() + " are not known; name some with --attribute");
    }
    return SchemaClass::attributes();
}

}  // namespace TevAgent

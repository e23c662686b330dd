#include "LoadClient.h"

#include <stdexcept>

#include "Diagnostics.h"
#include "FileText.h"
#include "Operation.h"
#include "Portal.h"
#include "SchemaClass.h"
#include "ScopedTransaction.h"

namespace TevAgent {

namespace {

void demand(bool isTrue, const std::string& what) {
    if (!isTrue) {
        throw std::runtime_error(what);
    }
}

/// A table of the component's.
template <class Table>
Table& tableOf(const char* interfaceName, const char* version) {
    void* table = nullptr;
    demand(Tev::Portal::getInterface(SchemaClass::route().component.c_str(), interfaceName, version, &table) == 0,
           interfaceName);
    return *static_cast<Table*>(table);
}

}  // namespace

LoadClient::LoadClient(Agent& hostAgent, const LoadNode& loadNode, const TevTest::SftpServer& sftpServer,
                       unsigned int number)
    : agent(hostAgent),
      node(loadNode),
      remoteFile(sftpServer.folder() / ("of" + std::to_string(number))),
      uri("sftp://" + sftpServer.user() + "@" + sftpServer.host() + ":" + sftpServer.port() + remoteFile),
      password(sftpServer.password()),
      parentDn(agent.schemaParent()),
      objects(tableOf<DalOamSpiManagedObject_1>("DalOamSpiManagedObject", "1")),
      resource(tableOf<DalOamSpiTransactionalResource_2>("DalOamSpiTransactionalResource", "2")),
      generator(number) {
    // So that it does not grow during the run.
    constexpr std::size_t mostListings = 100'000;
    allIterators.reserve(mostListings);
}

void LoadClient::runUntil(std::chrono::steady_clock::time_point end) {
    // An export waits for the server most of the time, and a listing takes as long as several reads.
    constexpr unsigned int workPerExport = 61;
    constexpr unsigned int workPerListing = 6;
    for (unsigned int i = 0; i < 3 || std::chrono::steady_clock::now() < end; ++i) {
        const unsigned int place = i % workPerExport;
        if (place == 0) {
            attempt(allKinds[2], &LoadClient::exportModel);
        } else if (place % workPerListing == 1) {
            attempt(allKinds[0], &LoadClient::list);
        } else {
            attempt(allKinds[1], &LoadClient::read);
        }
    }
}

void LoadClient::attempt(Kind& kind, Work work) {
    ++kind.count;
    try {
        (this->*work)();
    } catch (const std::exception& e) {
        kind.errors.emplace_back(e.what());
    }
}

/// Calls the component itself, as the router does, to get at its iterators.
void LoadClient::list() {
    ScopedTransaction transaction(agent.transactions());
    demand(agent.transactions().join(transaction.handle(), resource) == 0, "the component does not join");
    void* iterator = nullptr;
    demand(objects.newMoIterator(transaction.handle(), parentDn.c_str(), SchemaClass::name, &iterator) == 0,
           "there is no iterator");
    allIterators.push_back(iterator);
    char* key = nullptr;
    for (const LoadNode::SchemaModel& model : node.models()) {
        demand(objects.nextMo(iterator, &key) == 0 && key != nullptr && key == model.id,
               "the listing is wrong at " + model.id);
    }
    demand(objects.nextMo(iterator, &key) == 0 && key == nullptr, "the listing goes on after its end");
    demand(transaction.commit() == 0, "the end of a listing's transaction fails");
}

void LoadClient::read() {
    constexpr int instances = 100;
    Operation operation(agent);
    for (int i = 0; i < instances; ++i) {
        const LoadNode::SchemaModel& model = anyModel();
        const Instance instance = operation.reader().read(agent.schemaDn(model.id), SchemaClass::attributes());
        demand(instance.attributes.size() == model.values.size(), "an attribute of " + model.id + " is missing");
        for (const Instance::Attribute& attribute : instance.attributes) {
            demand(attribute.values == model.values.at(attribute.name),
                   "the value of " + attribute.name + " of " + model.id + " is wrong");
        }
    }
    operation.commit();
}

void LoadClient::exportModel() {
    const LoadNode::SchemaModel& model = anyModel();
    Diagnostics::Capture said;
    {
        Operation operation(agent);
        operation.act(agent.schemaDn(model.id), "export", {uri.c_str(), password.c_str()});
        operation.commit();
    }
    const std::string message = said.takeOr("nothing");
    demand(message == "File transfer successful", "an export says " + message);
    demand(TevTest::contents(remoteFile) == TevTest::contents(model.file),
           "the exported file of " + model.id + " is wrong");
}

const LoadNode::SchemaModel& LoadClient::anyModel() {
    return node.models()[std::uniform_int_distribution<std::size_t>(0, node.models().size() - 1)(generator)];
}

}  // namespace TevAgent

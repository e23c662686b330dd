#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ExportParameters.h"
#include "FakeResolver.h"
#include "FakeRunner.h"
#include "LoggingWrapper.h"
#include "MemoryFile.h"
#include "RegisteredComponent.h"
#include "Require.h"

// The input is a sequence of the framework's calls, one character each, with a digit behind it where a call has a
// choice; everything else is passed over. The outcome of each is checked against a small model of the component, and
// what was handed out in a transaction has to stay as it was until the transaction's end.
//
//     S start, F start that fails, P stop, T terminate and register again, M the node has other models from now on
//     then, in transaction N: jN join, JN join that fails, fN finish, cN all other steps of a transaction's end
//     iN new iterator, wN write operations, lN export, LN export that fails, gNAK get attribute A of instance K
//     nI next of iterator I, the newest being 0, also when it is of no transaction any more

namespace {

using namespace TevFuzz;

using Values = std::vector<std::string>;

const MemoryFile modelFile;

constexpr const char* parentDn = "ManagedElement=1,SystemFunctions=1,SysM=1";
constexpr const char* attributes[] = {"schemaId", "version", "selectedModelOptions", "fileName"};
constexpr const char* keys[] = {"A", "B", "C", "none"};
constexpr unsigned long transactions[] = {0, 1, 815, std::numeric_limits<unsigned long>::max()};

/// What the node may hold. A model without a list of features shows that of the model before it.
const std::vector<std::vector<TevTest::FakeModel>> nodes = [] {
    std::vector<std::vector<TevTest::FakeModel>> all = {
        {{"A", "1"}, {"B", "2"}, {"C", "3"}}, {}, {{"B", "4"}, {"A", "5"}, {"A", "6"}}, {{"C", "7"}}};
    all[0][0].features = Values{"one", "two"};
    all[0][2].features = Values();
    all[2][1].features = Values{"three"};
    for (auto& models : all) {
        for (TevTest::FakeModel& model : models) {
            model.file = modelFile.path();
        }
    }
    return all;
}();

/// The component's state as the calls so far should have left it.
struct State {
    struct Record {
        std::string key;
        std::string version;
        Values options;
    };
    struct Iterator {
        std::size_t index;
        unsigned long txHandle;
    };

    bool isStarted = false;
    bool hasTransactions = false;  ///< the last start has got the transaction service
    bool holdsLists = false;       ///< of a catalogue that no stop has followed
    std::vector<Record> catalogue;
    std::map<void*, Iterator> iterators;
    std::map<unsigned long, std::vector<std::pair<const char*, std::string>>> texts;  ///< handed out
    std::map<unsigned long, std::vector<const DalMoAttributeValueContainer*>> results;
    std::size_t messages = 0;
};

class Sequence {
public:
    explicit Sequence(std::string_view calls) : rest(calls) { host().models = nodes[0]; }
    ~Sequence() = default;
    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    void run() {
        while (!rest.empty()) {
            call(take());
        }
        for (const unsigned long txHandle : transactions) {
            finish(txHandle);
        }
        requireEqual(runner.alive, 0U, "the number of runners that are left");
        requireEqual(resolver.held(), 0U, "the number of address lists that are left");
    }

private:
    TevTest::FakeHost& host() { return component.host; }

    char take() {
        const char character = rest.empty() ? '0' : rest.front();
        rest.remove_prefix(rest.empty() ? 0 : 1);
        return character;
    }
    std::size_t choice(std::size_t count) { return static_cast<unsigned char>(take() - '0') % count; }
    unsigned long transaction() { return transactions[choice(std::size(transactions))]; }

    void call(char name);
    void start();
    void failStart();
    void stop();
    void registerAgain();
    void join(unsigned long txHandle, TevReturnT failure);
    void finish(unsigned long txHandle);
    void end(unsigned long txHandle);
    void newIterator(unsigned long txHandle);
    void next(std::size_t which);
    void get(unsigned long txHandle, const std::string& attribute, const std::string& key);
    void write(unsigned long txHandle);
    void exportModel(unsigned long txHandle, TevReturnT failure);

    /// The models up to `count` have got into the catalogue, and of the rest at most the first lists.
    void expectCatalogue(std::size_t count);
    void release();
    void checkHandedOut(unsigned long txHandle) const;
    const State::Record* find(const std::string& key) const;
    TevReturnT orNotStarted(TevReturnT code) const { return state.isStarted ? code : TevReturnNotStarted; }

    std::string_view rest;
    RegisteredComponent component;
    TevTest::FakeResolver resolver;
    TevTest::FakeRunner runner;
    State state;
    std::vector<void*> handles;  ///< of all iterators there ever were
};

void Sequence::call(char name) {
    switch (name) {
        case 'S':
            return start();
        case 'F':
            return failStart();
        case 'P':
            return stop();
        case 'T':
            return registerAgain();
        case 'M':
            host().models = nodes[choice(nodes.size())];
            return;
        case 'j':
            return join(transaction(), TevReturnOk);
        case 'J':
            return join(transaction(), 17);
        case 'f':
            return finish(transaction());
        case 'c':
            return end(transaction());
        case 'i':
            return newIterator(transaction());
        case 'n':
            return next(choice(10));
        case 'w':
            return write(transaction());
        case 'l':
            return exportModel(transaction(), TevReturnOk);
        case 'L':
            return exportModel(transaction(), 23);
        case 'g': {
            const unsigned long txHandle = transaction();
            const char* const attribute = attributes[choice(std::size(attributes))];
            return get(txHandle, attribute, keys[choice(std::size(keys))]);
        }
        default:
            return;
    }
}

void Sequence::release() {
    // The lists of a catalogue are the business of the stop before the next start.
    if (state.holdsLists) {
        stop();
    }
}

void Sequence::expectCatalogue(std::size_t count) {
    state.catalogue.clear();
    Values options;
    for (std::size_t i = 0; i < count; ++i) {
        const TevTest::FakeModel& model = host().models[i];
        options = model.features.value_or(options);
        state.holdsLists = state.holdsLists || model.features.has_value();
        state.catalogue.push_back({model.name, *model.version, options});
    }
}

void Sequence::start() {
    release();
    requireEqual(component.start(), TevReturnOk, "the code of start");
    expectCatalogue(host().models.size());
    state.isStarted = true;
    state.hasTransactions = true;
}

void Sequence::failStart() {
    const std::size_t step = choice(8);
    const std::size_t which = choice(3);
    release();
    state.hasTransactions = step > 0;
    const std::size_t count = host().models.size();
    const bool isTold = which < count;
    const auto nth = static_cast<unsigned int>(which + 1);
    TevReturnT code = 5;
    if (step < 4) {
        host().failCall("getInterface", code, static_cast<unsigned int>(step + 1));
    } else if (step == 4) {
        host().failCall("getFirstMom", code);
        expectCatalogue(0);
    } else if (isTold && step == 5) {
        host().failCall("getNextMom", code, nth);
        expectCatalogue(which + 1);
    } else if (isTold) {
        host().failCall(step == 6 ? "getMomFeatureNames" : "getMomFileName", code, nth);
        expectCatalogue(which);
    } else {
        return start();
    }
    requireEqual(component.start(), code, "the code of a start that fails");
}

void Sequence::stop() {
    requireEqual(component.stop(), TevReturnOk, "the code of stop");
    state.isStarted = false;
    state.holdsLists = false;
}

void Sequence::registerAgain() {
    stop();
    dalLCMterminate();
    require(host().component() == nullptr, "the component is taken off the portal");
    requireEqual(dalLCMinit(host().accessor(), nullptr), TevReturnOk, "the code of dalLCMinit");
}

void Sequence::join(unsigned long txHandle, TevReturnT failure) {
    const bool isTold = state.isStarted && state.hasTransactions;
    if (isTold && failure != TevReturnOk) {
        host().failCall("registerParticipant", failure);
    }
    requireEqual(component.resource().join(txHandle), orNotStarted(isTold ? failure : TevReturnFailure),
                 "the code of join");
    const bool isJoined = isTold && failure == TevReturnOk;
    require(!isJoined || host().participants(txHandle).size() == 1, "a transaction has the component once");
}

void Sequence::finish(unsigned long txHandle) {
    checkHandedOut(txHandle);
    requireEqual(component.resource().finish(txHandle), TevReturnOk, "the code of finish");
    state.texts.erase(txHandle);
    state.results.erase(txHandle);
    for (auto iterator = state.iterators.begin(); iterator != state.iterators.end();) {
        iterator = iterator->second.txHandle == txHandle ? state.iterators.erase(iterator) : std::next(iterator);
    }
}

void Sequence::checkHandedOut(unsigned long txHandle) const {
    if (const auto found = state.texts.find(txHandle); found != state.texts.end()) {
        for (const auto& [text, expected] : found->second) {
            requireEqual(std::string(text), expected, "a text at its transaction's end");
        }
    }
    if (const auto found = state.results.find(txHandle); found != state.results.end()) {
        for (const DalMoAttributeValueContainer* const result : found->second) {
            requireEqual(result->type, DalMoTypeVoid, "the type of a result at its transaction's end");
        }
    }
}

void Sequence::end(unsigned long txHandle) {
    DalOamSpiTransactionalResource_2& resource = component.resource();
    bool isValid = false;
    requireEqual(resource.validate(txHandle, &isValid), TevReturnOk, "the code of validate");
    require(isValid, "a transaction is valid");
    requireEqual(resource.prepare(txHandle), TevReturnOk, "the code of prepare");
    requireEqual(resource.commit(txHandle), TevReturnOk, "the code of commit");
    requireEqual(resource.abort(txHandle), TevReturnOk, "the code of abort");
}

void Sequence::newIterator(unsigned long txHandle) {
    void* iterator = nullptr;
    requireEqual(component.objects().newMoIterator(txHandle, parentDn, "Schema", &iterator), orNotStarted(TevReturnOk),
                 "the code of newMoIterator");
    requireEqual(iterator != nullptr, state.isStarted, "whether there is an iterator");
    if (iterator != nullptr) {
        require(state.iterators.emplace(iterator, State::Iterator{0, txHandle}).second, "an iterator is a new one");
        handles.push_back(iterator);
    }
}

void Sequence::next(std::size_t which) {
    void* const handle = which < handles.size() ? handles[handles.size() - 1 - which] : this;
    char untouched = '\0';
    char* key = &untouched;
    const TevReturnT code = component.objects().nextMo(handle, &key);
    const auto iterator = state.iterators.find(handle);
    if (!state.isStarted || iterator == state.iterators.end()) {
        requireEqual(code, orNotStarted(TevReturnFailure), "the code of nextMo without an iterator");
        requireEqual(key == &untouched, !state.isStarted, "whether the output is left alone");
        return;
    }
    requireEqual(code, TevReturnOk, "the code of nextMo");
    const std::size_t index = iterator->second.index++;
    requireEqual(key != nullptr, index < state.catalogue.size(), "whether there is a key");
    if (key != nullptr) {
        requireEqual(std::string(key), state.catalogue[index].key, "the key");
        state.texts[iterator->second.txHandle].emplace_back(key, key);
    }
}

const State::Record* Sequence::find(const std::string& key) const {
    const auto found = std::find_if(state.catalogue.begin(), state.catalogue.end(),
                                    [&key](const State::Record& record) { return record.key == key; });
    return found == state.catalogue.end() ? nullptr : &*found;
}

void Sequence::get(unsigned long txHandle, const std::string& attribute, const std::string& key) {
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* value = &untouched;
    const std::string dn = std::string(parentDn) + ",Schema=" + key;
    const TevReturnT code = component.objects().getMoAttribute(txHandle, dn.c_str(), attribute.c_str(), &value);
    const State::Record* const record = find(key);
    const bool isThere = record != nullptr && attribute != "fileName";
    requireEqual(code, orNotStarted(isThere ? TevReturnOk : TevReturnNotFound), "the code of getMoAttribute");
    if (code != TevReturnOk) {
        require(value == (state.isStarted ? nullptr : &untouched), "a failed read gives no value");
        return;
    }
    const Values expected = attribute == "schemaId"  ? Values{record->key}
                            : attribute == "version" ? Values{record->version}
                                                     : record->options;
    requireEqual(value->type, DalMoTypeString, "the type of a value");
    requireEqual(value->nrOfValues, expected.size(), "the number of values");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        requireEqual(std::string(value->values[i].theString), expected[i], "a value");
        state.texts[txHandle].emplace_back(value->values[i].theString, expected[i]);
    }
}

void Sequence::write(unsigned long txHandle) {
    DalOamSpiManagedObject_1& objects = component.objects();
    const std::string dn = std::string(parentDn) + ",Schema=A";
    requireEqual(objects.setMoAttribute(txHandle, dn.c_str(), "version", nullptr), TevReturnFailure, "the code of set");
    requireEqual(objects.createMo(txHandle, parentDn, "Schema", "D", nullptr), TevReturnFailure, "the code of create");
    requireEqual(objects.deleteMo(txHandle, dn.c_str()), TevReturnFailure, "the code of delete");
}

void Sequence::exportModel(unsigned long txHandle, TevReturnT failure) {
    runner.code = failure;
    TevTest::ExportParameters parameters("sftp://user@127.0.0.1/f", "secret");
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* result = &untouched;
    const std::string dn = std::string(parentDn) + ",Schema=A";
    const unsigned int before = runner.executions;
    const TevReturnT code = component.objects().action(txHandle, dn.c_str(), "export", parameters.array, &result);
    const bool isThere = state.isStarted && find("A") != nullptr;
    requireEqual(code, orNotStarted(isThere ? failure : TevReturnNotFound), "the code of an export");
    requireEqual(runner.executions - before, isThere ? 1U : 0U, "the number of transfers of an export");
    state.messages += state.isStarted ? 1 : 0;
    requireEqual(host().messages().size(), state.messages, "the number of messages");
    requireEqual(result != &untouched, code == TevReturnOk, "whether an export has a result");
    if (result != &untouched) {
        state.results[txHandle].push_back(result);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Tev::LoggingWrapper::instance().set_level(0);
    Sequence(std::string_view(reinterpret_cast<const char*>(data), size)).run();
    return 0;
}

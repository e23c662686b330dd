#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "LogToNowhere.h"
#include "Pattern.h"
#include "Pieces.h"
#include "RegisteredComponent.h"
#include "Require.h"

// The input is a DN and a name, of an attribute or a class: what can be read and listed under them is what the patterns
// of the class say, and the values are those of the model that the DN ends in.

namespace {

using namespace TevFuzz;

using Values = std::vector<std::string>;

/// The attributes of the instances by key and name.
const std::map<std::string, std::map<std::string, Values>> instances = {
    {"Mom",
     {{"schemaId", {"Mom"}},
      {"identifier", {"Mom"}},
      {"baseModelIdentifier", {"Base"}},
      {"version", {"2.1.5"}},
      {"baseModelVersion", {"3.4"}},
      {"selectedModelOptions", {"A", ""}}}},
    {"",
     {{"schemaId", {""}},
      {"identifier", {""}},
      {"baseModelIdentifier", {}},
      {"version", {""}},
      {"baseModelVersion", {}},
      {"selectedModelOptions", {}}}},
    {"%s \xff,",
     {{"schemaId", {"%s \xff,"}},
      {"identifier", {"%s \xff,"}},
      {"baseModelIdentifier", {}},
      {"version", {"25"}},
      {"baseModelVersion", {}},
      {"selectedModelOptions", {}}}},
};

std::vector<TevTest::FakeModel> models() {
    std::vector<TevTest::FakeModel> all = {{"Mom", "2", "1", "5"}, {""}, {"%s \xff,", "2", {}, "5"}, {"Mom", "other"}};
    all[0].orva = {{"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}};
    all[0].features = Values{"A", ""};
    for (std::size_t i = 1; i < all.size(); ++i) {
        all[i].features = Values();
    }
    return all;
}

struct StartedComponent : RegisteredComponent {
    StartedComponent() {
        host.models = models();
        requireEqual(start(), TevReturnOk, "the code of start");
    }
};

void checkListing(const RegisteredComponent& component, const std::string& dn, const std::string& name) {
    static const Pattern parents("^ManagedElement=.*,SystemFunctions=.*,SysM=.*$");
    void* iterator = &iterator;
    const TevReturnT code = component.objects().newMoIterator(1, dn.c_str(), name.c_str(), &iterator);
    const bool isListed = parents.matches(dn) && name == "Schema";
    requireEqual(code, isListed ? TevReturnOk : TevReturnFailure, "the code of newMoIterator");
    requireEqual(iterator != nullptr, isListed, "whether there is an iterator");
    for (const char* const expected : {"Mom", "", "%s \xff,", "Mom"}) {
        char* key = nullptr;
        requireEqual(component.objects().nextMo(iterator, &key), code, "the code of nextMo");
        requireEqual(key != nullptr, isListed, "whether there is a key");
        require(!isListed || std::string(key) == expected, "the keys are those of the models, in their order");
    }
}

void checkValue(const RegisteredComponent& component, const std::string& dn, const std::string& name) {
    static const Pattern schemas("^ManagedElement=.*,SystemFunctions=.*,SysM=.*,Schema=.*");
    DalMoAttributeValueContainer untouched{};
    DalMoAttributeValueContainer* value = &untouched;
    const TevReturnT code = component.objects().getMoAttribute(1, dn.c_str(), name.c_str(), &value);
    if (!schemas.matches(dn)) {
        requireEqual(code, TevReturnFailure, "the code for a DN that is no instance's");
        require(value == nullptr, "there is no value then");
        return;
    }
    const auto instance = instances.find(dn.substr(dn.rfind('=') + 1));
    if (instance == instances.end() || instance->second.count(name) == 0) {
        requireEqual(code, TevReturnNotFound, "the code for what is not there");
        require(value == nullptr, "there is no value then");
        return;
    }
    requireEqual(code, TevReturnOk, "the code for what is there");
    requireEqual(value->type, DalMoTypeString, "the type");
    Values texts;
    for (std::uint32_t i = 0; i < value->nrOfValues; ++i) {
        texts.emplace_back(value->values[i].theString);
    }
    require(texts == instance->second.at(name), "the values are those of the first model of this name");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LogToNowhere log;
    Pieces pieces(data, size);
    // The tables take texts up to a null character.
    const std::string dn = pieces.next().c_str();
    const std::string name = pieces.next().c_str();
    static const StartedComponent component;
    checkListing(component, dn, name);
    checkValue(component, dn, name);
    requireEqual(component.resource().finish(1), TevReturnOk, "the code of finish");
    return 0;
}

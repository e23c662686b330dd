#ifndef FAKE_COMPONENT_H
#define FAKE_COMPONENT_H

#include <deque>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransactionalResource.h"

namespace TevTest {

/// A component that lives in the test program. Every call of one of its functions is written to `calls` as
/// "<component>.<operation> <arguments>" and returns 0, unless the test has it answered otherwise.
///
/// Tables have no room for an object: there is one at a time for each `number`. Used by one thread at a time.
template <int number = 0>
class FakeComponent {
public:
    /// `journal` outlives the component.
    FakeComponent(const std::string& componentName, std::vector<std::string>& journal)
        : name(componentName), calls(journal) {
        if (current != nullptr) {
            throw std::logic_error("there is a fake component of this number already");
        }
        current = this;
        component = {{name.c_str(), "DalMgmtSpiComponent", "2"},
                     offers.data(),
                     dependencies.data(),
                     [](DalStateChangeReason) { return answer("start", ""); },
                     [](DalStateChangeReason) { return answer("stop", ""); },
                     extras.data(),
                     false};
        resource = {{name.c_str(), "DalOamSpiTransactionalResource", "2"},
                    [](unsigned long tx) { return answer("join", text(tx)); },
                    [](unsigned long tx) { return answer("prepare", text(tx)); },
                    [](unsigned long tx) { return answer("commit", text(tx)); },
                    [](unsigned long tx) { return answer("abort", text(tx)); },
                    [](unsigned long tx) { return answer("finish", text(tx)); },
                    validate};
        objects = {{name.c_str(), "DalOamSpiManagedObject", "1"},
                   [](unsigned long tx, const char* dn, const char* attribute, DalMoAttributeValueContainer*) {
                       return answer("setMoAttribute", text(tx) + " " + dn + " " + attribute);
                   },
                   getMoAttribute,
                   newMoIterator,
                   nextMo,
                   [](unsigned long tx, const char* parentDn, const char* className, const char* keyName,
                      DalMoAttributeValueContainer*) {
                       return answer("createMo", text(tx) + " " + parentDn + " " + className + " " + keyName);
                   },
                   [](unsigned long tx, const char* dn) { return answer("deleteMo", text(tx) + " " + dn); },
                   action};
    }

    ~FakeComponent() { current = nullptr; }
    FakeComponent(const FakeComponent&) = delete;
    FakeComponent& operator=(const FakeComponent&) = delete;

    void offer(DalMgmtSpiInterface_1& table) {
        offers.insert(offers.end() - 1, &table);
        component.interfaceArray = offers.data();
    }

    /// Offers an interface whose table the agent does not call.
    void offer(const std::string& interfaceName, const std::string& version) {
        offer(descriptor(name, interfaceName, version));
    }

    void depend(const std::string& componentName, const std::string& interfaceName, const std::string& version) {
        dependencies.insert(dependencies.end() - 1, &descriptor(componentName, interfaceName, version));
        component.dependencyArray = dependencies.data();
    }

    /// Calls of `operation` are answered so from now on.
    void whenCalled(const std::string& operation, std::function<TevReturnT()> answered) {
        answers[operation] = std::move(answered);
    }

    DalMgmtSpiComponent_2 component{};
    DalOamSpiTransactionalResource_2 resource{};
    DalOamSpiManagedObject_1 objects{};

    bool isValid = true;                                ///< what `validate` finds
    DalMoAttributeValueContainer* container = nullptr;  ///< what `getMoAttribute` and `action` give
    std::vector<std::string> keys;                      ///< what an iterator gives, one after the other

private:
    static std::string text(unsigned long handle) { return std::to_string(handle); }

    static TevReturnT answer(const std::string& operation, const std::string& arguments) {
        current->calls.push_back(current->name + "." + operation + (arguments.empty() ? "" : " " + arguments));
        const auto found = current->answers.find(operation);
        return found == current->answers.end() ? TevReturnOk : found->second();
    }

    static TevReturnT validate(unsigned long tx, bool* result) {
        *result = current->isValid;
        return answer("validate", text(tx));
    }

    static TevReturnT getMoAttribute(unsigned long tx, const char* dn, const char* attribute,
                                     DalMoAttributeValueContainer** result) {
        *result = current->container;
        return answer("getMoAttribute", text(tx) + " " + dn + " " + attribute);
    }

    static TevReturnT newMoIterator(unsigned long tx, const char* parentDn, const char* className, void** iterator) {
        current->nextKey = 0;
        *iterator = current;
        return answer("newMoIterator", text(tx) + " " + parentDn + " " + className);
    }

    static TevReturnT nextMo(void* iterator, char** result) {
        if (iterator != current) {
            throw std::logic_error("an iterator of someone else was passed");
        }
        *result = current->nextKey < current->keys.size() ? current->keys[current->nextKey++].data() : nullptr;
        return answer("nextMo", "");
    }

    static TevReturnT action(unsigned long tx, const char* dn, const char* actionName, DalMoAttributeValueContainer**,
                             DalMoAttributeValueContainer** result) {
        *result = current->container;
        return answer("action", text(tx) + " " + dn + " " + actionName);
    }

    DalMgmtSpiInterface_1& descriptor(const std::string& componentName, const std::string& interfaceName,
                                      const std::string& version) {
        const auto keep = [this](const std::string& kept) { return texts.emplace_back(kept).c_str(); };
        return descriptors.emplace_back(DalMgmtSpiInterface_1{keep(componentName), keep(interfaceName), keep(version)});
    }

    inline static FakeComponent* current = nullptr;

    const std::string name;
    std::vector<std::string>& calls;
    std::map<std::string, std::function<TevReturnT()>> answers;
    std::size_t nextKey = 0;
    std::deque<std::string> texts;
    std::deque<DalMgmtSpiInterface_1> descriptors;
    std::vector<DalMgmtSpiInterface_1*> offers{nullptr};
    std::vector<DalMgmtSpiInterface_1*> dependencies{nullptr};
    std::vector<DalMgmtSpiInterface_1*> extras{nullptr};
};

}  // namespace TevTest

#endif

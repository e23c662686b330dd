#include "TableCheck.h"

#include <initializer_list>
#include <string_view>

#include "DalOamSpiManagedObject.h"

namespace TevAgent {

namespace {

constexpr std::string_view componentInterface = "DalMgmtSpiComponent";
constexpr std::string_view resourceInterface = "DalOamSpiTransactionalResource";
constexpr std::string_view objectInterface = "DalOamSpiManagedObject";

/// The versions that the agent knows.
constexpr std::string_view componentVersion = "2";
constexpr std::string_view resourceVersion = "2";
constexpr std::string_view objectVersion = "1";

bool isMissing(const char* text) {
    return text == nullptr || *text == '\0';
}

bool isComplete(const DalMgmtSpiInterface_1& descriptor) {
    return !isMissing(descriptor.componentName) && !isMissing(descriptor.interfaceName) &&
           !isMissing(descriptor.interfaceVersion);
}

/// All entries of an array that ends with null.
bool areComplete(DalMgmtSpiInterface_1** entry) {
    while (*entry != nullptr && isComplete(**entry)) {
        ++entry;
    }
    return *entry == nullptr;
}

struct Slot {
    const char* name;
    bool isThere;
};

std::string missingSlot(const std::string& who, std::string_view table, std::initializer_list<Slot> slots) {
    for (const Slot& slot : slots) {
        if (!slot.isThere) {
            return who + " has no " + slot.name + " in its " + std::string(table) + " table";
        }
    }
    return "";
}

std::string wrongVersion(const std::string& who, const DalMgmtSpiInterface_1& descriptor, std::string_view known) {
    return who + " offers " + descriptor.interfaceName + " version " + descriptor.interfaceVersion +
           ", but this agent knows version " + std::string(known);
}

std::string faultOfDescriptor(const DalMgmtSpiInterface_1& base) {
    if (isMissing(base.componentName)) {
        return "a component without a name was registered";
    }
    const std::string who = std::string("component ") + base.componentName;
    if (isMissing(base.interfaceName) || isMissing(base.interfaceVersion)) {
        return who + " has no interface name or version in its component table";
    }
    if (base.interfaceName != componentInterface) {
        return who + " registers a " + base.interfaceName + " table where a DalMgmtSpiComponent table belongs";
    }
    return base.interfaceVersion == componentVersion ? "" : wrongVersion(who, base, componentVersion);
}

std::string faultOfSlots(const std::string& who, const DalMgmtSpiComponent_2& component) {
    return missingSlot(who, componentInterface,
                       {{"interface array", component.interfaceArray != nullptr},
                        {"dependency array", component.dependencyArray != nullptr},
                        {"extra array", component.extraArray != nullptr},
                        {"start", component.start != nullptr},
                        {"stop", component.stop != nullptr}});
}

std::string faultOfSlots(const std::string& who, const DalOamSpiTransactionalResource_2& resource) {
    return missingSlot(who, resourceInterface,
                       {{"join", resource.join != nullptr},
                        {"prepare", resource.prepare != nullptr},
                        {"commit", resource.commit != nullptr},
                        {"abort", resource.abort != nullptr},
                        {"finish", resource.finish != nullptr},
                        {"validate", resource.validate != nullptr}});
}

std::string faultOfSlots(const std::string& who, const DalOamSpiManagedObject_1& objects) {
    return missingSlot(who, objectInterface,
                       {{"setMoAttribute", objects.setMoAttribute != nullptr},
                        {"getMoAttribute", objects.getMoAttribute != nullptr},
                        {"newMoIterator", objects.newMoIterator != nullptr},
                        {"nextMo", objects.nextMo != nullptr},
                        {"createMo", objects.createMo != nullptr},
                        {"deleteMo", objects.deleteMo != nullptr},
                        {"action", objects.action != nullptr}});
}

std::string faultOfOffer(const std::string& who, std::string_view componentName, const DalMgmtSpiInterface_1& offer) {
    if (!isComplete(offer)) {
        return who + " offers a table without a component name, interface name or version";
    }
    if (offer.componentName != componentName) {
        return who + " offers a table in the name of component " + offer.componentName;
    }
    if (offer.interfaceName == resourceInterface) {
        return offer.interfaceVersion == resourceVersion
                   ? faultOfSlots(who, reinterpret_cast<const DalOamSpiTransactionalResource_2&>(offer))
                   : wrongVersion(who, offer, resourceVersion);
    }
    if (offer.interfaceName == objectInterface) {
        return offer.interfaceVersion == objectVersion
                   ? faultOfSlots(who, reinterpret_cast<const DalOamSpiManagedObject_1&>(offer))
                   : wrongVersion(who, offer, objectVersion);
    }
    return "";
}

std::string nameOf(const DalMgmtSpiComponent_2& component) {
    return std::string("component ") + component.base.componentName;
}

}  // namespace

std::string TableCheck::faultOf(const DalMgmtSpiComponent_2* component) {
    std::string fault = faultOfComponent(component);
    if (fault.empty()) {
        fault = faultOfOffers(*component);
    }
    return fault.empty() ? faultOfDependencies(*component) : fault;
}

std::string TableCheck::faultOfComponent(const DalMgmtSpiComponent_2* component) {
    if (component == nullptr) {
        return "a null component table was registered";
    }
    const std::string fault = faultOfDescriptor(component->base);
    return fault.empty() ? faultOfSlots(nameOf(*component), *component) : fault;
}

std::string TableCheck::faultOfOffers(const DalMgmtSpiComponent_2& component) {
    const std::string who = nameOf(component);
    bool hasObjects = false;
    bool hasResource = false;
    for (DalMgmtSpiInterface_1** entry = component.interfaceArray; *entry != nullptr; ++entry) {
        std::string fault = faultOfOffer(who, component.base.componentName, **entry);
        if (!fault.empty()) {
            return fault;
        }
        hasObjects = hasObjects || (*entry)->interfaceName == objectInterface;
        hasResource = hasResource || (*entry)->interfaceName == resourceInterface;
    }
    return hasObjects && !hasResource ? who + " offers managed objects but no DalOamSpiTransactionalResource" : "";
}

std::string TableCheck::faultOfDependencies(const DalMgmtSpiComponent_2& component) {
    return areComplete(component.dependencyArray)
               ? ""
               : nameOf(component) + " has a dependency without a component name, interface name or version";
}

std::string TableCheck::faultOfExtras(const DalMgmtSpiComponent_2& component) {
    return areComplete(component.extraArray)
               ? ""
               : nameOf(component) + " has an extra entry without a component name, interface name or version";
}

std::string TableCheck::faultOf(const DalOamSpiTransactionalResource_2* participant) {
    if (participant == nullptr) {
        return "a null participant was registered";
    }
    if (!isComplete(participant->base)) {
        return "a participant without a component name, interface name or version was registered";
    }
    const std::string who = std::string("component ") + participant->base.componentName;
    if (participant->base.interfaceName != resourceInterface) {
        return who + " registers a " + participant->base.interfaceName + " table as a participant";
    }
    return participant->base.interfaceVersion == resourceVersion
               ? faultOfSlots(who, *participant)
               : wrongVersion(who, participant->base, resourceVersion);
}

}  // namespace TevAgent

#include "MoAccessor.h"

#include <Poco/StringTokenizer.h>

#include "LoggingWrapper.h"
#include "Portal.h"

namespace Tev {

namespace {

constexpr const char* sourceFile = "src/common/src/MoAccessor";
constexpr const char* getAttrFunction = "getAttr";  // what the parts of it that stand here log under

using ClassName = Poco::StringTokenizer::Iterator;

[[noreturn]] void fail(const char* operation, const std::string& object, TevReturnT code) {
    throw TevException(code, "%s failed for %s: %d", operation, object.c_str(), code);
}

const DalOamSpiManagedObject_1& router() {
    void* table = nullptr;
    const TevReturnT code = Portal::getInterface("DalOamSpiCmRouterService", "DalOamSpiManagedObject", "1", &table);
    if (code != TevReturnOk) {
        fail("getInterface", "DalOamSpiManagedObject", code);
    }
    return *static_cast<const DalOamSpiManagedObject_1*>(table);
}

/// The first instance of the class path from `next` to `end` below `parentDn`; empty when there is none.
std::string firstBelow(const DalOamSpiManagedObject_1& objects, unsigned long txHandle, const std::string& parentDn,
                       ClassName next, ClassName end) {
    if (next == end) {
        return parentDn;
    }
    const std::string classPath = parentDn.empty() ? *next : parentDn + "," + *next;
    void* iterator = nullptr;
    TevReturnT code = objects.newMoIterator(txHandle, parentDn.c_str(), next->c_str(), &iterator);
    const char* operation = "newMoIterator";
    while (code == TevReturnOk) {
        char* key = nullptr;
        operation = "nextMo";
        code = objects.nextMo(iterator, &key);
        if (code == TevReturnOk && key == nullptr) {
            return "";
        }
        if (code == TevReturnOk) {
            std::string found = firstBelow(objects, txHandle, classPath + "=" + key, next + 1, end);
            if (!found.empty()) {
                return found;
            }
        }
    }
    if (code != TevReturnNotFound) {
        fail(operation, classPath, code);
    }
    return "";
}

}  // namespace

void MoAccessor::getFirstMoInstance(const std::string& classPath, std::string& dn) const {
    dn.clear();
    const Poco::StringTokenizer classes(classPath, ",");
    dn = firstBelow(router(), txHandle, "", classes.begin(), classes.end());
}

const DalMoAttributeValueContainer* MoAccessor::getAttrContainer(const std::string& dn,
                                                                 const std::string& attrName) const {
    DalMoAttributeValueContainer* container = nullptr;
    const TevReturnT code = router().getMoAttribute(txHandle, dn.c_str(), attrName.c_str(), &container);
    if (code != TevReturnOk) {
        fail("getMoAttribute", dn + "::" + attrName, code);
    }
    return container;
}

void MoAccessor::validateType(std::int32_t expected, std::int32_t actual, const std::string& dn,
                              const std::string& attrName) {
    const bool isKin = (expected == DalMoTypeString && actual == DalMoTypeReference) ||
                       (expected == DalMoTypeInt64 && actual == DalMoTypeEnum);
    if (actual != expected && !isKin) {
        throw TevException("Attribute has values of type %d, not %d: %s::%s", actual, expected, dn.c_str(),
                           attrName.c_str());
    }
}

const DalMoAttributeValue& MoAccessor::getSingleValue(std::int32_t type, const std::string& dn,
                                                      const std::string& attrName) const {
    LoggingWrapper& log = LoggingWrapper::instance();
    constexpr const char* entry = "MoAccessor::getAttr<> dName :%s attrName :%s";
    if (log.get_level() >= LoggingWrapper::maxLevel) {
        log.trace_printf(sourceFile, getAttrFunction, __LINE__, 0, entry, dn.c_str(), attrName.c_str());
        log.trace_v2_printf(Trace::Common, 14, sourceFile, getAttrFunction, __LINE__, entry, dn.c_str(),
                            attrName.c_str());
    }
    const DalMoAttributeValueContainer* const container = getAttrContainer(dn, attrName);
    if (!hasValues(container)) {
        throw TevException("Attribute has no value set: %s::%s", dn.c_str(), attrName.c_str());
    }
    if (container->nrOfValues > 1) {
        const TevException sequence("Attribute is a sequence: %s::%s", dn.c_str(), attrName.c_str());
        if (log.get_level() >= 3) {
            log.log_printf(getAttrFunction, 3, 1, "%s", sequence.what());
            log.trace_v2_printf(Trace::Schema, 3, sourceFile, getAttrFunction, __LINE__, "%s", sequence.what());
        }
        throw sequence;
    }
    validateType(type, container->type, dn, attrName);
    return container->values[0];
}

bool MoAccessor::hasValues(const DalMoAttributeValueContainer* container) {
    return container != nullptr && container->nrOfValues > 0 && container->values != nullptr;
}

}  // namespace Tev

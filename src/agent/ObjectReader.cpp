#include "ObjectReader.h"

#include <algorithm>
#include <stdexcept>

#include "Diagnostics.h"
#include "Failure.h"
#include "Interruption.h"
#include "ReturnCode.h"
#include "SchemaClass.h"
#include "ValueText.h"

namespace TevAgent {

namespace {

[[noreturn]] void fail(const std::string& sentence) {
    throw Failure(ExitStatus::OperationFailed, sentence);
}

/// The sentence with its reason: what was said meanwhile, or the code that `owner` returned.
[[noreturn]] void fail(const std::string& sentence, Diagnostics::Capture& capture, const std::string& owner,
                       TevReturnT code) {
    fail(sentence + ": " + capture.takeOr(owner + " returned " + ReturnCode::text(code)));
}

}  // namespace

ObjectReader::ObjectReader(Router& objectRouter, unsigned long transactionHandle)
    : router(objectRouter), txHandle(transactionHandle) {}

std::vector<std::string> ObjectReader::keys(const std::string& parentDn, const std::string& className) const {
    const std::string sentence = "cannot list the " + className + " instances under " + parentDn;
    Diagnostics::Capture capture;
    void* iterator = nullptr;
    TevReturnT code = router.newMoIterator(txHandle, parentDn.c_str(), className.c_str(), &iterator);
    std::vector<std::string> found;
    char* key = nullptr;
    while (code == TevReturnOk) {
        Interruption::check();
        code = router.nextMo(iterator, &key);
        if (code == TevReturnOk && key == nullptr) {
            return found;
        }
        if (code == TevReturnOk) {
            found.emplace_back(key);
        }
    }
    fail(sentence, capture, router.ownerOf(parentDn, className), code);
}

Instance ObjectReader::read(const std::string& dn, const std::vector<std::string>& attributeNames) const {
    Instance instance{dn, {}};
    for (const std::string& name : attributeNames) {
        instance.attributes.push_back({name, readAttribute(dn, name)});
    }
    return instance;
}

std::vector<std::string> ObjectReader::readAttribute(const std::string& dn, const std::string& name) const {
    Interruption::check();
    const std::string sentence = "cannot read attribute " + name + " of " + dn;
    Diagnostics::Capture capture;
    DalMoAttributeValueContainer* container = nullptr;
    const TevReturnT code = router.getMoAttribute(txHandle, dn.c_str(), name.c_str(), &container);
    if (code == TevReturnOk) {
        try {
            return ValueText::of(container);
        } catch (const std::invalid_argument& e) {
            fail(sentence + ": " + e.what());
        }
    }
    if (!capture.isEmpty()) {
        fail(sentence, capture, router.ownerOf(dn), code);
    }
    if (!exists(dn)) {
        fail("there is no " + dn + whereToLook(dn));
    }
    if (code == TevReturnNotFound) {
        fail(dn + " has no attribute " + name + knownAttributes(dn));
    }
    fail(sentence, capture, router.ownerOf(dn), code);
}

std::string ObjectReader::whereToLook(const std::string& dn) const {
    if (SchemaClass::isClassOf(dn)) {
        return "; list shows those that there are";
    }
    // Of another component's objects nothing is known here.
    return router.routedClassOf(dn).empty() ? "; the file of managed objects tells which there are" : "";
}

std::string ObjectReader::knownAttributes(const std::string& dn) const {
    std::string names;
    for (const std::string& name : SchemaClass::isClassOf(dn) ? SchemaClass::attributes() : router.attributeNames(dn)) {
        names += (names.empty() ? "; it has " : ", ") + name;
    }
    return names;
}

bool ObjectReader::exists(const std::string& dn) const {
    const std::size_t comma = dn.rfind(',');
    const std::string parentDn = comma == std::string::npos ? "" : dn.substr(0, comma);
    const std::string rdn = comma == std::string::npos ? dn : dn.substr(comma + 1);
    const std::size_t equals = rdn.find('=');
    if (equals == std::string::npos) {
        return false;
    }
    try {
        const std::vector<std::string> siblings = keys(parentDn, rdn.substr(0, equals));
        return std::find(siblings.begin(), siblings.end(), rdn.substr(equals + 1)) != siblings.end();
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace TevAgent

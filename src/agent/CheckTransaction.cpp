#include "CheckTransaction.h"

#include <stdexcept>

#include "Interruption.h"
#include "Utf8.h"
#include "ValueText.h"

namespace TevAgent {

namespace {

/// Where a listing is taken for endless.
constexpr std::size_t mostKeys = 100000;

/// Finds what is wrong with values.
void verify(const std::string& what, const DalMoAttributeValueContainer* container) {
    if (container != nullptr && (container->type < DalMoTypeInt8 || container->type > DalMoTypeDouble)) {
        CheckEnd::fail(what + ": there is no type " + std::to_string(container->type));
    }
    try {
        for (const std::string& text : CheckTransaction::texts(container)) {
            if (Utf8::repaired(text) != text) {
                CheckEnd::fail(what + " is not UTF-8");
            }
        }
    } catch (const std::invalid_argument& e) {
        CheckEnd::fail(what + ": " + e.what());
    }
}

}  // namespace

CheckTransaction::CheckTransaction(CheckHost& checkHost)
    : host(checkHost), objects(host.objects()), transaction(host.transactions()) {
    Diagnostics::Capture capture;
    const TevReturnT code = host.transactions().join(handle(), host.resource());
    if (code != TevReturnOk) {
        CheckEnd::fail(capture.takeOr("join returned " + ReturnCode::text(code)));
    }
}

void* CheckTransaction::list() {
    const std::string parent = host.parent();
    const std::string className = host.className();
    void* iterator = nullptr;
    host.demand("newMoIterator",
                [&] { return objects.newMoIterator(handle(), parent.c_str(), className.c_str(), &iterator); });
    return iterator;
}

char* CheckTransaction::next(void* iterator) {
    Interruption::check();
    char* key = nullptr;
    host.demand("nextMo", [&] { return objects.nextMo(iterator, &key); });
    return key;
}

std::vector<char*> CheckTransaction::rest(void* iterator) {
    std::vector<char*> keys;
    while (char* const key = next(iterator)) {
        if (keys.size() == mostKeys) {
            CheckEnd::fail("the listing has no end within " + std::to_string(mostKeys) + " keys");
        }
        keys.push_back(key);
    }
    return keys;
}

std::vector<char*> CheckTransaction::someKeys() {
    std::vector<char*> keys = rest(list());
    if (keys.empty()) {
        CheckEnd::skip("there is no instance of " + host.className());
    }
    return keys;
}

const DalMoAttributeValueContainer& CheckTransaction::read(const std::string& dn, const std::string& attribute) {
    Interruption::check();
    const std::string what = attribute + " of " + dn;
    Diagnostics::Capture capture;
    DalMoAttributeValueContainer* container = nullptr;
    const TevReturnT code = host.call(
        "getMoAttribute", [&] { return objects.getMoAttribute(handle(), dn.c_str(), attribute.c_str(), &container); });
    if (code != TevReturnOk) {
        CheckEnd::fail(what + ": " + capture.takeOr("getMoAttribute returned " + ReturnCode::text(code)));
    }
    verify(what, container);
    return *container;
}

std::vector<std::string> CheckTransaction::texts(const DalMoAttributeValueContainer* container) {
    const bool isStruct = container != nullptr && container->type == DalMoTypeStruct;
    return isStruct ? std::vector<std::string>() : ValueText::of(container);
}

void CheckTransaction::commit() {
    Diagnostics::Capture capture;
    const TevReturnT code = transaction.commit();
    if (code != TevReturnOk) {
        CheckEnd::fail(capture.takeOr("the transaction ended with " + ReturnCode::text(code)));
    }
}

}  // namespace TevAgent

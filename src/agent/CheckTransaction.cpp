#include "CheckTransaction.h"

#include <algorithm>
#include <stdexcept>

#include "Diagnostics.h"
#include "Interruption.h"
#include "ValueText.h"

namespace TevAgent {

namespace {

/// Where a listing is taken for endless.
constexpr std::size_t mostKeys = 1000000;

/// Finds out whether values can be looked at.
void verify(const std::string& what, const DalMoAttributeValueContainer* container) {
    if (container != nullptr && (container->type < DalMoTypeInt8 || container->type > DalMoTypeDouble)) {
        CheckEnd::fail(what + ": there is no type " + std::to_string(container->type));
    }
    if (container != nullptr && container->nrOfValues != 0 && container->values == nullptr) {
        CheckEnd::fail(what + ": the value container has no cells");
    }
    try {
        CheckTransaction::texts(container);
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

bool CheckTransaction::isSteady() {
    const std::vector<char*> listed = rest(list());
    const std::vector<std::string> first(listed.begin(), listed.end());
    bool isSame = true;
    for (int count = 0; count < 3; ++count) {
        const std::vector<char*> again = rest(list());
        isSame = isSame && std::equal(again.begin(), again.end(), first.begin(), first.end());
    }
    return isSame;
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

void CheckTransaction::end(bool isCommitted, const std::function<void(const char* operation)>& tell) {
    DalOamSpiTransactionalResource_2& resource = host.resource();
    const auto call = [&](const char* operation, auto function) {
        host.call(operation, function);
        tell(operation);
    };
    transaction.release();
    if (isCommitted) {
        bool isValid = false;
        call("validate", [&] { return resource.validate(handle(), &isValid); });
        call("prepare", [&] { return resource.prepare(handle()); });
        call("commit", [&] { return resource.commit(handle()); });
    } else {
        call("abort", [&] { return resource.abort(handle()); });
    }
    host.call("finish", [&] { return resource.finish(handle()); });
}

void CheckTransaction::commit() {
    Diagnostics::Capture capture;
    const TevReturnT code = transaction.commit();
    if (code != TevReturnOk) {
        CheckEnd::fail(capture.takeOr("the transaction ended with " + ReturnCode::text(code)));
    }
}

}  // namespace TevAgent

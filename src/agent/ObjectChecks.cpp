#include "ObjectChecks.h"

#include <array>
#include <set>

#include "CheckTransaction.h"
#include "Diagnostics.h"
#include "Rdn.h"
#include "Text.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

constexpr const char* unknownName = "tev-check";

/// A transaction, and what the calls in it are given.
struct Scene {
    explicit Scene(CheckHost& checkHost)
        : host(started(checkHost)),
          objects(host.objects()),
          parent(host.parent()),
          className(host.className()),
          transaction(host) {}

    TevReturnT list(const char* parentDn, const char* listed, void** iterator) {
        return host.call("newMoIterator",
                         [&] { return objects.newMoIterator(transaction.handle(), parentDn, listed, iterator); });
    }

    TevReturnT next(void* iterator, char** key) {
        return host.call("nextMo", [&] { return objects.nextMo(iterator, key); });
    }

    TevReturnT read(const char* dn, const char* attribute, DalMoAttributeValueContainer** container) {
        return host.call("getMoAttribute",
                         [&] { return objects.getMoAttribute(transaction.handle(), dn, attribute, container); });
    }

    /// The DN of the first instance, or of one that is not there.
    std::string anyDn() {
        const std::vector<char*> keys = transaction.rest(transaction.list());
        return host.dnOf(keys.empty() ? unknownName : keys.front());
    }

    static CheckHost& started(CheckHost& host) {
        host.start();
        return host;
    }

    CheckHost& host;
    DalOamSpiManagedObject_1& objects;
    const std::string parent;
    const std::string className;
    CheckTransaction transaction;
};

/// `what` was to be refused with the code `wanted`, and without a result.
void verifyRefusal(const std::string& what, TevReturnT code, TevReturnT wanted, const void* result) {
    if (code == TevReturnOk) {
        CheckEnd::fail(what + " returned 0");
    }
    if (code != wanted) {
        CheckEnd::warn(what + " returned " + ReturnCode::text(code) + ", not " + ReturnCode::text(wanted));
    }
    if (result != nullptr) {
        CheckEnd::warn(what + " failed, but left a result");
    }
}

std::string lists(CheckHost& host) {
    Scene scene(host);
    const std::size_t count = scene.transaction.rest(scene.transaction.list()).size();
    return std::to_string(count) + (count == 1 ? " instance of " : " instances of ") + scene.className;
}

std::string listsProperKeys(CheckHost& host) {
    Scene scene(host);
    std::set<std::string> seen;
    void* const iterator = scene.transaction.list();
    while (const char* const text = scene.transaction.next(iterator)) {
        const std::string key = text;
        const std::string fault = Text::faultOfRdnPart(key);
        if (!fault.empty() || Utf8::repaired(key) != key) {
            CheckEnd::warn("a key " + (fault.empty() ? "is not UTF-8: " + Text::quoted(key) : fault));
        }
        if (!seen.insert(key).second) {
            CheckEnd::warn("the key " + Text::quoted(key) + " stands there twice");
        }
    }
    return "";
}

std::string staysAtEnd(CheckHost& host) {
    Scene scene(host);
    void* const iterator = scene.transaction.list();
    scene.transaction.rest(iterator);
    for (int round = 0; round < 3; ++round) {
        char* key = nullptr;
        if (scene.next(iterator, &key) != TevReturnOk || key != nullptr) {
            CheckEnd::warn("nextMo behind the end gave another answer than at the end");
        }
    }
    return "";
}

std::string keepsIteratorsApart(CheckHost& host) {
    Scene scene(host);
    const std::vector<char*> keys = scene.transaction.someKeys();
    const std::vector<std::string> expected(keys.begin(), keys.end());
    void* const first = scene.transaction.list();
    scene.transaction.next(first);
    const std::vector<char*> second = scene.transaction.rest(scene.transaction.list());
    const std::vector<char*> rest = scene.transaction.rest(first);
    const bool isAsExpected =
        std::vector<std::string>(second.begin(), second.end()) == expected && rest.size() + 1 == expected.size();
    if (!isAsExpected && scene.transaction.isSteady()) {
        CheckEnd::fail("one listing changed the other");
    }
    return "";
}

std::string refusesUnknownClass(CheckHost& host) {
    Scene scene(host);
    void* iterator = nullptr;
    const TevReturnT code = scene.list(scene.parent.c_str(), unknownName, &iterator);
    verifyRefusal("newMoIterator for an unknown class", code, TevReturnFailure, iterator);
    return "";
}

std::string refusesUnknownParent(CheckHost& host) {
    Scene scene(host);
    void* iterator = nullptr;
    const TevReturnT code = scene.list("Tev-check=1", scene.className.c_str(), &iterator);
    verifyRefusal("newMoIterator under a parent that is not its own", code, TevReturnFailure, iterator);
    return "";
}

std::string refusesUnknownIterator(CheckHost& host) {
    Scene scene(host);
    std::array<void*, 8> nothing{};
    char* key = nullptr;
    const TevReturnT code = scene.next(nothing.data(), &key);
    verifyRefusal("nextMo with an unknown iterator", code, TevReturnFailure, key);
    if (scene.next(nullptr, &key) == TevReturnOk) {
        CheckEnd::fail("nextMo without an iterator returned 0");
    }
    return "";
}

std::string refusesFinishedIterator(CheckHost& host) {
    Scene scene(host);
    void* iterator = nullptr;
    {
        CheckTransaction finished(host);
        iterator = finished.list();
        finished.commit();
    }
    char* key = nullptr;
    const TevReturnT code = scene.next(iterator, &key);
    verifyRefusal("nextMo with the iterator of a finished transaction", code, TevReturnFailure, key);
    return "";
}

std::string refusesNullInListings(CheckHost& host) {
    Scene scene(host);
    void* iterator = nullptr;
    const char* const parent = scene.parent.c_str();
    const char* const className = scene.className.c_str();
    verifyRefusal("newMoIterator without a parent", scene.list(nullptr, className, &iterator), TevReturnInvalidArgument,
                  iterator);
    verifyRefusal("newMoIterator without a class", scene.list(parent, nullptr, &iterator), TevReturnInvalidArgument,
                  iterator);
    verifyRefusal("newMoIterator without a result", scene.list(parent, className, nullptr), TevReturnInvalidArgument,
                  nullptr);
    verifyRefusal("nextMo without a result", scene.next(scene.transaction.list(), nullptr), TevReturnInvalidArgument,
                  nullptr);
    return "";
}

std::string readsEveryInstance(CheckHost& host) {
    Scene scene(host);
    const std::vector<std::string> attributes = host.attributes();
    std::size_t count = 0;
    for (const char* const key : scene.transaction.someKeys()) {
        for (const std::string& attribute : attributes) {
            DalMoAttributeValueContainer* container = nullptr;
            const std::string dn = host.dnOf(key);
            host.demand("getMoAttribute", [&] {
                return scene.objects.getMoAttribute(scene.transaction.handle(), dn.c_str(), attribute.c_str(),
                                                    &container);
            });
            ++count;
        }
    }
    return std::to_string(count) + (count == 1 ? " value" : " values");
}

/// What is wrong with values that can be looked at; an empty text when nothing is.
std::string faultOfValues(const DalMoAttributeValueContainer& container) {
    for (std::uint32_t i = 0; container.type == DalMoTypeBool && i < container.nrOfValues; ++i) {
        if (container.values[i].theUint8 > 1) {
            return "is neither true nor false";
        }
    }
    for (const std::string& text : CheckTransaction::texts(&container)) {
        if (Utf8::repaired(text) != text) {
            return "is not UTF-8";
        }
        if (container.type == DalMoTypeReference && !Rdn::sequence(text)) {
            return "is no DN: " + Text::quoted(text);
        }
    }
    return "";
}

std::string readsWellFormed(CheckHost& host) {
    Scene scene(host);
    for (const char* const key : scene.transaction.someKeys()) {
        for (const std::string& attribute : host.attributes()) {
            const std::string dn = host.dnOf(key);
            const std::string fault = faultOfValues(scene.transaction.read(dn, attribute));
            if (!fault.empty()) {
                CheckEnd::warn(attribute + " of " + dn + " " + fault);
            }
        }
    }
    return "";
}

std::string refusesUnknownAttribute(CheckHost& host) {
    Scene scene(host);
    DalMoAttributeValueContainer* container = nullptr;
    const TevReturnT code =
        scene.read(host.dnOf(scene.transaction.someKeys().front()).c_str(), unknownName, &container);
    verifyRefusal("getMoAttribute for an unknown attribute", code, TevReturnNotFound, container);
    return "";
}

std::string refusesUnknownInstance(CheckHost& host) {
    Scene scene(host);
    DalMoAttributeValueContainer* container = nullptr;
    const std::string attribute = host.attributes().front();
    const TevReturnT code = scene.read(host.dnOf(unknownName).c_str(), attribute.c_str(), &container);
    verifyRefusal("getMoAttribute for an unknown instance", code, TevReturnNotFound, container);
    return "";
}

/// Keys that begin like one that is there, or with one.
std::string refusesSimilarInstances(CheckHost& host) {
    Scene scene(host);
    const std::vector<char*> keys = scene.transaction.someKeys();
    const std::set<std::string> listed(keys.begin(), keys.end());
    const std::string attribute = host.attributes().front();
    for (const std::string& key : listed) {
        for (const std::string& similar : {key.substr(0, key.size() - 1), key + "x"}) {
            DalMoAttributeValueContainer* container = nullptr;
            if (!similar.empty() && listed.count(similar) == 0) {
                const TevReturnT code = scene.read(host.dnOf(similar).c_str(), attribute.c_str(), &container);
                verifyRefusal("getMoAttribute for " + host.dnOf(similar) + ", which is not listed,", code,
                              TevReturnNotFound, container);
            }
        }
    }
    return "";
}

std::string refusesOtherClass(CheckHost& host) {
    Scene scene(host);
    DalMoAttributeValueContainer* container = nullptr;
    const std::string attribute = host.attributes().front();
    const TevReturnT code = scene.read("Tev-check=1", attribute.c_str(), &container);
    verifyRefusal("getMoAttribute for a DN of another class", code, TevReturnFailure, container);
    return "";
}

std::string refusesOtherParent(CheckHost& host) {
    Scene scene(host);
    DalMoAttributeValueContainer* container = nullptr;
    const std::string attribute = host.attributes().front();
    const std::string dn = "Tev-check=1," + scene.className + "=" + scene.transaction.someKeys().front();
    if (scene.read(dn.c_str(), attribute.c_str(), &container) == TevReturnOk) {
        CheckEnd::warn("getMoAttribute returned 0 for " + dn);
    }
    return "";
}

std::string refusesNullInReads(CheckHost& host) {
    Scene scene(host);
    const std::string attribute = host.attributes().front();
    const std::string dn = scene.anyDn();
    DalMoAttributeValueContainer* container = nullptr;
    verifyRefusal("getMoAttribute without a DN", scene.read(nullptr, attribute.c_str(), &container),
                  TevReturnInvalidArgument, container);
    verifyRefusal("getMoAttribute without an attribute", scene.read(dn.c_str(), nullptr, &container),
                  TevReturnInvalidArgument, container);
    verifyRefusal("getMoAttribute without a result", scene.read(dn.c_str(), attribute.c_str(), nullptr),
                  TevReturnInvalidArgument, nullptr);
    return "";
}

/// A write was to be refused: at once, or when the transaction is validated.
std::string verifyRefusedWrite(Scene& scene, TevReturnT code, const std::string& write) {
    bool isValid = true;
    if (code == TevReturnOk) {
        code = scene.host.call("validate",
                               [&] { return scene.host.resource().validate(scene.transaction.handle(), &isValid); });
    }
    if (code == TevReturnOk && isValid) {
        CheckEnd::fail(write + " and validate accept it");
    }
    return isValid ? "it returned " + ReturnCode::text(code) : "validate refuses it";
}

/// A value that no write is meant to succeed with.
struct SomeValue {
    char text[10] = "tev-check";
    DalMoAttributeValue cell = {text};
    DalMoAttributeValueContainer container = {DalMoTypeString, 1, &cell};
};

std::string answersSet(CheckHost& host) {
    Scene scene(host);
    SomeValue value;
    const std::string dn = host.dnOf(unknownName);
    const TevReturnT code = host.call("setMoAttribute", [&] {
        return scene.objects.setMoAttribute(scene.transaction.handle(), dn.c_str(), unknownName, &value.container);
    });
    return verifyRefusedWrite(scene, code, "setMoAttribute");
}

/// The transaction is aborted, so that a class that can be written to is left as it was.
std::string answersCreate(CheckHost& host) {
    Scene scene(host);
    SomeValue value;
    const TevReturnT code = host.call("createMo", [&] {
        return scene.objects.createMo(scene.transaction.handle(), scene.parent.c_str(), unknownName, unknownName,
                                      &value.container);
    });
    return verifyRefusedWrite(scene, code, "createMo");
}

std::string answersDelete(CheckHost& host) {
    Scene scene(host);
    const std::string dn = host.dnOf(unknownName);
    const TevReturnT code =
        host.call("deleteMo", [&] { return scene.objects.deleteMo(scene.transaction.handle(), dn.c_str()); });
    return verifyRefusedWrite(scene, code, "deleteMo");
}

std::string refusesUnknownAction(CheckHost& host) {
    Scene scene(host);
    const std::string dn = scene.anyDn();
    std::array<DalMoAttributeValueContainer*, 1> parameters{};
    DalMoAttributeValueContainer* result = nullptr;
    const TevReturnT code = host.call("action", [&] {
        return scene.objects.action(scene.transaction.handle(), dn.c_str(), unknownName, parameters.data(), &result);
    });
    if (code == TevReturnOk) {
        CheckEnd::fail("action returned 0 for an action that is not there");
    }
    return "it returned " + ReturnCode::text(code);
}

/// The calls that components are most likely to end with an exception, which their contract does not forbid.
std::string throwsNothing(CheckHost& host) {
    bool isTried = false;
    for (std::string (*const attempt)(CheckHost&) :
         {lists, refusesUnknownClass, refusesUnknownParent, refusesUnknownAttribute, refusesUnknownInstance,
          refusesOtherClass, answersSet, answersCreate, answersDelete, refusesUnknownAction}) {
        try {
            Diagnostics::Capture capture;
            attempt(host);
            capture.takeOr("");
            isTried = true;
        } catch (const CheckEnd& e) {
            // It has an item of its own.
            isTried = isTried || e.outcome != CheckResult::Outcome::Skipped;
        }
    }
    if (!isTried) {
        lists(host);
    }
    if (host.lastThrower() != nullptr) {
        CheckEnd::warn(std::string("an exception left ") + host.lastThrower() +
                       ", which a host has to catch at its border");
    }
    return "";
}

}  // namespace

std::vector<CheckItem> ObjectChecks::items() {
    return {
        {"listing.ends", "A listing of the class gives keys, and null at its end", lists, true},
        {"listing.keys", "Every key can stand in a DN and comes once", listsProperKeys},
        {"listing.end-again", "A listing that is at its end stays there", staysAtEnd},
        {"listing.two-iterators", "Two listings go their own ways", keepsIteratorsApart},
        {"listing.unknown-class", "newMoIterator returns -1 for a class that is not the component's",
         refusesUnknownClass},
        {"listing.unknown-parent", "newMoIterator returns -1 for a parent that its class does not stand under",
         refusesUnknownParent},
        {"listing.unknown-iterator", "nextMo returns -1 for an iterator that was never given", refusesUnknownIterator},
        {"listing.finished-iterator", "nextMo returns -1 for the iterator of a finished transaction",
         refusesFinishedIterator},
        {"listing.null-arguments", "newMoIterator and nextMo return -8 for null arguments", refusesNullInListings},
        {"reads.every-instance", "Every listed instance can be read", readsEveryInstance, true},
        {"reads.well-formed", "Every value container is well-formed", readsWellFormed, true},
        {"reads.unknown-attribute", "getMoAttribute returns -2 for an attribute that is not there",
         refusesUnknownAttribute},
        {"reads.unknown-instance", "getMoAttribute returns -2 for an instance that is not there",
         refusesUnknownInstance},
        {"reads.similar-instance", "getMoAttribute knows an instance by its whole key", refusesSimilarInstances},
        {"reads.other-class", "getMoAttribute returns -1 for a DN of another class", refusesOtherClass},
        {"reads.other-parent", "getMoAttribute knows an instance by its whole DN", refusesOtherParent},
        {"reads.null-arguments", "getMoAttribute returns -8 for null arguments", refusesNullInReads},
        {"writes.set", "setMoAttribute, or validate, refuses an instance that is not there", answersSet},
        {"writes.create", "createMo, or validate, refuses a class that is not the component's", answersCreate},
        {"writes.delete", "deleteMo, or validate, refuses an instance that is not there", answersDelete},
        {"actions.unknown", "action refuses an action that is not there", refusesUnknownAction},
        {"exceptions.none", "No exception leaves the component", throwsNothing},
    };
}

}  // namespace TevAgent

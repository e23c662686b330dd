#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "FileError.h"
#include "MemoryFile.h"
#include "ObjectStore.h"
#include "ObjectsFile.h"
#include "Problem.h"
#include "Require.h"
#include "TevException.h"
#include "ValueText.h"
#include "XmlText.h"

// The input is a file of managed objects: it is refused with a reason, or every object can be found by its DN, and the
// objects, written down anew, are read as the same objects. Its first bytes are a
// number as well, of every type.

namespace {

using namespace TevFuzz;
using namespace TevAgent;

const std::vector<Route> knownRoutes = {{"Schema", {"ManagedElement", "SystemFunctions", "SysM"}, "Component"}};

std::string typeName(std::int32_t type) {
    for (const char* const name : {"int8", "int16", "int32", "int64", "uint8", "uint16", "uint32", "uint64", "string",
                                   "bool", "reference", "enum", "double"}) {
        if (ObjectAttribute::typeNamed(name) == type) {
            return name;
        }
    }
    require(false, "an attribute's type has a name");
    return "";
}

std::vector<std::string> texts(const ObjectAttribute& attribute) {
    auto values = attribute.values;
    const DalMoAttributeValueContainer container{attribute.type, static_cast<std::uint32_t>(values.size()),
                                                 values.data()};
    return ValueText::of(&container);
}

std::string written(const ManagedObject& object) {
    std::string xml;
    for (const auto& [name, attribute] : object.attributes) {
        xml += "<attribute name=\"" + xmlText(name) + "\" type=\"" + typeName(attribute.type) + "\">";
        for (const std::string& text : texts(attribute)) {
            xml += "<value>" + xmlText(text) + "</value>";
        }
        xml += "</attribute>";
    }
    for (const auto& [className, instances] : object.children) {
        for (const std::string& key : instances.keys) {
            xml += "<mo class=\"" + xmlText(className) + "\" id=\"" + xmlText(key) + "\">" +
                   written(*instances.byKey.at(key)) + "</mo>";
        }
    }
    return xml;
}

std::string joined(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) {
        all += (all.empty() ? "" : ",") + name;
    }
    return all;
}

std::string written(const ObjectsFile& file) {
    std::string xml = "<managedObjects>";
    for (const Route& route : file.routes) {
        xml += "<route class=\"" + xmlText(route.className) + "\" parent=\"" + xmlText(joined(route.parent)) +
               "\" component=\"" + xmlText(route.component) + "\"/>";
    }
    return xml + written(file.root) + "</managedObjects>";
}

/// The objects as XML, or why there are none.
std::string taken(const std::string& file) {
    try {
        ObjectsFile objects(knownRoutes);
        objects.take(file);
        return written(objects);
    } catch (const FileError& error) {
        return Problem{"file", error.line(), error.what()}.text();
    }
}

/// A number of the type is read as it was written.
template <class Number>
void checkNumber(const char* type, std::uint64_t bits) {
    const std::string xml = std::string("<managedObjects><mo class=\"A\" id=\"1\"><attribute name=\"a\" type=\"") +
                            type + "\"><value>" + std::to_string(static_cast<Number>(bits)) +
                            "</value></attribute></mo></managedObjects>";
    requireEqual(taken(xml), xml, "a number read again");
}

void checkNumbers(const std::string& input) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, input.data(), std::min(input.size(), sizeof bits));
    checkNumber<std::int8_t>("int8", bits);
    checkNumber<std::int16_t>("int16", bits);
    checkNumber<std::int32_t>("int32", bits);
    checkNumber<std::int64_t>("int64", bits);
    checkNumber<std::uint8_t>("uint8", bits);
    checkNumber<std::uint16_t>("uint16", bits);
    checkNumber<std::uint32_t>("uint32", bits);
    checkNumber<std::uint64_t>("uint64", bits);
    checkNumber<std::int64_t>("enum", bits);
}

/// Every object below `object` is found by its DN, with its attributes, and none is a component's.
void checkFound(const ObjectStore& store, const ManagedObject& object, const std::string& dn,
                const std::vector<std::string>& classPath) {
    for (const auto& [className, instances] : object.children) {
        std::vector<std::string> path = classPath;
        path.push_back(className);
        require(className != "Schema", "no object is a component's");
        require(store.hasClass(dn, className), "a class is found below its parent");
        require(store.keys(dn, className) == instances.keys, "the keys are those of the file, in its order");
        require(store.exists(store.firstInstance(path).value_or("")), "a class path leads to an object");
        for (const auto& [key, child] : instances.byKey) {
            std::string childDn = dn;
            childDn.append(dn.empty() ? "" : ",").append(className).append("=").append(key);
            require(store.exists(childDn), "an object is found by its DN");
            for (const auto& [name, attribute] : child->attributes) {
                const ObjectAttribute* const found = store.attribute(childDn, name);
                require(found != nullptr && texts(*found) == texts(attribute), "an attribute is found by its name");
            }
            checkFound(store, *child, childDn, path);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile file;
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkNumbers(text);
    file.write(text);
    ObjectsFile objects(knownRoutes);
    try {
        const ObjectStore store = ObjectStore::load(file.path(), knownRoutes);
        objects.take(text);
        checkFound(store, objects.root, "", {});
        const std::string xml = written(objects);
        requireEqual(taken(xml), xml, "the objects read again");
    } catch (const Tev::TevException& refused) {
        const std::string reason = refused.what();
        requireEqual(refused.getReturnCode(), TevReturnFailure, "the code of a refusal");
        require(!hasControl(reason), "a refusal is one line");
        requireEqual(reason, file.path() + taken(text).substr(std::string("file").size()), "the refusal");
    }
    return 0;
}

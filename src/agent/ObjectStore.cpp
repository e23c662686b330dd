#include "ObjectStore.h"

#include <array>
#include <utility>

#include "FileError.h"
#include "ObjectsFile.h"
#include "Problem.h"
#include "Rdn.h"
#include "RegularFile.h"
#include "TevException.h"

namespace TevAgent {

namespace {

/// All of the file's bytes.
std::string contents(const std::string& path) {
    RegularFile file(path);
    std::string text;
    std::array<char, 65536> block;
    while (const std::size_t size = file.read(block.data(), block.size())) {
        if (size > ObjectsFile::maxBytes - text.size()) {
            throw FileError(0, "the file is larger than " + std::to_string(ObjectsFile::maxBytes) + " bytes");
        }
        text.append(block.data(), size);
    }
    return text;
}

const ManagedObject::Instances* childrenOf(const ManagedObject& object, std::string_view className) {
    const auto found = object.children.find(className);
    return found == object.children.end() ? nullptr : &found->second;
}

using ClassName = std::vector<std::string>::const_iterator;

std::optional<std::string> firstBelow(const ManagedObject& object, const std::string& dn, ClassName next,
                                      ClassName end) {
    if (next == end) {
        return dn;
    }
    const ManagedObject::Instances* instances = childrenOf(object, *next);
    if (instances == nullptr) {
        return std::nullopt;
    }
    for (const std::string& key : instances->keys) {
        const std::string childDn = (dn.empty() ? dn : dn + ",") + *next + "=" + key;
        auto found = firstBelow(*instances->byKey.find(key)->second, childDn, next + 1, end);
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

}  // namespace

ObjectStore ObjectStore::load(const std::string& path, const std::vector<Route>& knownRoutes) {
    try {
        return of(contents(path), knownRoutes);
    } catch (const FileError& error) {
        throw Tev::TevException("%s", Problem{path, error.line(), error.what()}.text().c_str());
    }
}

ObjectStore ObjectStore::of(std::string_view xml, const std::vector<Route>& knownRoutes) {
    ObjectsFile file(knownRoutes);
    file.take(xml);
    ObjectStore store;
    store.root = std::move(file.root);
    store.routeList = std::move(file.routes);
    return store;
}

bool ObjectStore::exists(const std::string& dn) const {
    return !dn.empty() && find(dn) != nullptr;
}

bool ObjectStore::hasClass(const std::string& parentDn, const std::string& className) const {
    return instances(parentDn, className) != nullptr;
}

std::vector<std::string> ObjectStore::keys(const std::string& parentDn, const std::string& className) const {
    const ManagedObject::Instances* found = instances(parentDn, className);
    return found == nullptr ? std::vector<std::string>() : found->keys;
}

std::vector<std::string> ObjectStore::children(const std::string& parentDn) const {
    std::vector<std::string> rdns;
    if (const ManagedObject* const parent = find(parentDn)) {
        for (const auto& [className, instances] : parent->children) {
            for (const std::string& key : instances.keys) {
                rdns.push_back(className);
                rdns.back().append("=").append(key);
            }
        }
    }
    return rdns;
}

std::vector<std::string> ObjectStore::attributeNames(const std::string& dn) const {
    std::vector<std::string> names;
    if (const ManagedObject* const object = find(dn)) {
        for (const auto& [name, attribute] : object->attributes) {
            names.push_back(name);
        }
    }
    return names;
}

const ObjectAttribute* ObjectStore::attribute(const std::string& dn, const std::string& name) const {
    const ManagedObject* object = find(dn);
    if (object == nullptr) {
        return nullptr;
    }
    const auto found = object->attributes.find(name);
    return found == object->attributes.end() ? nullptr : &found->second;
}

const std::vector<Route>& ObjectStore::routes() const {
    return routeList;
}

std::optional<std::string> ObjectStore::firstInstance(const std::vector<std::string>& classPath) const {
    if (classPath.empty()) {
        return std::nullopt;
    }
    return firstBelow(root, "", classPath.begin(), classPath.end());
}

const ManagedObject* ObjectStore::find(std::string_view dn) const {
    if (dn.empty()) {
        return &root;
    }
    const auto steps = Rdn::sequence(dn);
    if (!steps) {
        return nullptr;
    }
    const ManagedObject* object = &root;
    for (const Rdn& step : *steps) {
        const ManagedObject::Instances* children = childrenOf(*object, step.className);
        if (children == nullptr) {
            return nullptr;
        }
        const auto child = children->byKey.find(step.key);
        if (child == children->byKey.end()) {
            return nullptr;
        }
        object = child->second.get();
    }
    return object;
}

const ManagedObject::Instances* ObjectStore::instances(std::string_view parentDn, std::string_view className) const {
    const ManagedObject* parent = find(parentDn);
    return parent == nullptr ? nullptr : childrenOf(*parent, className);
}

}  // namespace TevAgent

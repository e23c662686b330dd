#include "ObjectsFile.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>

#include "FileError.h"
#include "Text.h"

namespace TevAgent {

void ObjectsFile::take(std::string_view xml) {
    if (xml.empty()) {
        throw FileError(0, "the file is empty");
    }
    // In one piece: of a long token in many pieces the parser would look at all the earlier ones again each time.
    parse(xml, true);
}

void ObjectsFile::startElement(const std::string& name, const XmlAttributes& attributes) {
    const Element element = elementNamed(name);
    elements.push_back(element);
    switch (element) {
        case Element::Root:
            requireOnly(name, attributes, {});
            objects.push_back(&root);
            break;
        case Element::Route:
            requireOnly(name, attributes, {"class", "parent", "component"});
            addRoute(attributes);
            break;
        case Element::Object:
            requireOnly(name, attributes, {"class", "id"});
            startObject(attributes);
            break;
        case Element::Attribute:
            requireOnly(name, attributes, {"name", "type"});
            startAttribute(attributes);
            break;
        case Element::Value:
            requireOnly(name, attributes, {});
            valueText.clear();
            valueLine = line();
            break;
    }
}

void ObjectsFile::endElement() {
    if (elements.back() == Element::Object) {
        objects.pop_back();
    } else if (elements.back() == Element::Value) {
        endValue();
    } else if (elements.back() == Element::Root) {
        requireNoRoutedObject();
    }
    elements.pop_back();
}

void ObjectsFile::text(std::string_view piece) {
    if (elements.back() == Element::Value) {
        valueText += piece;
    } else if (!Text::isBlank(piece)) {
        fail("there is text where none belongs");
    }
}

ObjectsFile::Element ObjectsFile::elementNamed(const std::string& name) const {
    if (elements.empty()) {
        if (name != "managedObjects") {
            fail("the root element is <" + Text::shortened(name) + ">, not <managedObjects>");
        }
        return Element::Root;
    }
    const Element parent = elements.back();
    if (name == "mo" && (parent == Element::Root || parent == Element::Object)) {
        return Element::Object;
    }
    if (name == "route" && parent == Element::Root) {
        return Element::Route;
    }
    if (name == "attribute" && parent == Element::Object) {
        return Element::Attribute;
    }
    if (name == "value" && parent == Element::Attribute) {
        return Element::Value;
    }
    fail("<" + Text::shortened(name) + "> does not belong here");
}

void ObjectsFile::addRoute(const XmlAttributes& attributes) {
    Route route;
    route.className = dnPart("route", attributes, "class");
    route.component = attributes.at("component");
    if (route.component.empty()) {
        fail("the component of <route> is empty");
    }
    if (const std::string& parent = attributes.at("parent"); !parent.empty()) {
        for (const std::string_view className : Text::split(parent, ',')) {
            if (const std::string fault = Text::faultOfRdnPart(className); !fault.empty()) {
                fail("a class in the parent of <route> " + fault);
            }
            route.parent.emplace_back(className);
        }
    }
    if (!routed.emplace(route.className, attributes.at("parent")).second) {
        fail("there is a <route> for class " + Text::quoted(route.className) + " and this parent already");
    }
    routes.push_back(std::move(route));
}

void ObjectsFile::startObject(const XmlAttributes& attributes) {
    const std::string className = dnPart("mo", attributes, "class");
    const std::string key = dnPart("mo", attributes, "id");
    ManagedObject::Instances& instances = objects.back()->children[className];
    const auto [place, isNew] = instances.byKey.emplace(key, nullptr);
    if (!isNew) {
        fail("there is an object of class " + Text::quoted(className) + " and id " + Text::quoted(key) +
             " with this parent already");
    }
    place->second = std::make_unique<ManagedObject>();
    instances.keys.push_back(key);
    firstLines.emplace(className, line());
    objects.push_back(place->second.get());
}

void ObjectsFile::startAttribute(const XmlAttributes& attributes) {
    attributeName = attributes.at("name");
    if (attributeName.empty()) {
        fail("the name of <attribute> is empty");
    }
    const std::int32_t type = ObjectAttribute::typeNamed(attributes.at("type"));
    if (type == 0) {
        fail("the attribute " + Text::quoted(attributeName) + " has an unknown type " +
             Text::quoted(attributes.at("type")));
    }
    const auto [place, isNew] = objects.back()->attributes.emplace(attributeName, ObjectAttribute());
    if (!isNew) {
        fail("the object has the attribute " + Text::quoted(attributeName) + " twice");
    }
    attribute = &place->second;
    attribute->type = type;
}

void ObjectsFile::endValue() {
    try {
        attribute->append(valueText);
    } catch (const std::invalid_argument& error) {
        throw FileError(valueLine, "the attribute " + Text::quoted(attributeName) + ": " + error.what());
    }
}

void ObjectsFile::requireNoRoutedObject() const {
    std::vector<Route> all = otherRoutes;
    all.insert(all.end(), routes.begin(), routes.end());
    for (const Route& route : all) {
        const auto object = firstLines.find(route.className);
        if (object != firstLines.end()) {
            throw FileError(object->second, "objects of class " + Text::quoted(route.className) +
                                                " belong to component " + Text::quoted(route.component) +
                                                ", and could not be read from here");
        }
    }
}

void ObjectsFile::requireOnly(const std::string& element, const XmlAttributes& given,
                              const std::vector<std::string>& known) const {
    for (const std::string& name : known) {
        if (given.count(name) == 0) {
            fail("<" + element + "> has no " + name);
        }
    }
    for (const auto& [name, value] : given) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            fail("<" + element + "> has an unknown attribute " + Text::quoted(name));
        }
    }
}

std::string ObjectsFile::dnPart(const std::string& element, const XmlAttributes& given, const std::string& name) const {
    const std::string& part = given.at(name);
    if (const std::string fault = Text::faultOfRdnPart(part); !fault.empty()) {
        fail("the " + name + " of <" + element + "> " + fault);
    }
    return part;
}

}  // namespace TevAgent

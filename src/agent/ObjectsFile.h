#ifndef TEV_AGENT_OBJECTS_FILE_H
#define TEV_AGENT_OBJECTS_FILE_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ManagedObject.h"
#include "Route.h"
#include "XmlParser.h"

namespace TevAgent {

/// Takes the text of a file of managed objects and builds the objects.
///
///     <managedObjects>
///       <route class="Alarm" parent="ManagedElement,SystemFunctions" component="AlarmService"/>
///       <mo class="ManagedElement" id="1">
///         <attribute name="userLabel" type="string"><value>north</value></attribute>
///         <mo class="Transport" id="1"/>
///       </mo>
///     </managedObjects>
///
/// An attribute has any number of values; `ObjectAttribute` tells the types and how values are written. A route's
/// `parent` is empty for a class at the root. Everything that is not as shown is refused: other elements and
/// attributes, missing ones, text where none belongs, a class or id that cannot stand in a DN, two objects of one
/// class and id with the same parent, an attribute twice in one object, two routes for one class and parent, an object
/// of a class that is routed to a component, which nobody could read. Used by one thread.
class ObjectsFile : private XmlParser {
public:
    static constexpr std::size_t maxBytes = 67108864;

    /// `knownRoutes` are those that hold beside the file's own.
    explicit ObjectsFile(std::vector<Route> knownRoutes = {}) : otherRoutes(std::move(knownRoutes)) {}

    /// Takes the whole text. Throws `FileError` when it is refused. To be called once.
    void take(std::string_view xml);

    ManagedObject root;         ///< the objects, as children of an object without class and attributes
    std::vector<Route> routes;  ///< in the file's order

private:
    enum class Element { Root, Route, Object, Attribute, Value };

    void startElement(const std::string& name, const XmlAttributes& attributes) override;
    void endElement() override;
    void text(std::string_view piece) override;

    Element elementNamed(const std::string& name) const;
    void addRoute(const XmlAttributes& attributes);
    void startObject(const XmlAttributes& attributes);
    void startAttribute(const XmlAttributes& attributes);
    void endValue();
    void requireNoRoutedObject() const;
    void requireOnly(const std::string& element, const XmlAttributes& given,
                     const std::vector<std::string>& known) const;
    std::string dnPart(const std::string& element, const XmlAttributes& given, const std::string& name) const;

    const std::vector<Route> otherRoutes;
    std::set<std::pair<std::string, std::string>> routed;  ///< class and parent of each of the file's routes
    std::map<std::string, unsigned long> firstLines;       ///< of the first object of each class
    std::vector<Element> elements;                         ///< those that are open
    std::vector<ManagedObject*> objects;                   ///< those that are open, `root` first
    ObjectAttribute* attribute = nullptr;                  ///< the one that is open
    std::string attributeName;
    std::string valueText;        ///< of the value that is open
    unsigned long valueLine = 0;  ///< where that value begins
};

}  // namespace TevAgent

#endif

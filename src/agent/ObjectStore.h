#ifndef TEV_AGENT_OBJECT_STORE_H
#define TEV_AGENT_OBJECT_STORE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ManagedObject.h"
#include "ObjectAttribute.h"
#include "Route.h"

namespace TevAgent {

/// The managed objects of the node that no component owns, and the routes to those that one does.
///
/// DNs and names are compared bytewise. May be moved, not copied. Immutable once made, so several threads may use one
/// object.
class ObjectStore {
public:
    /// A store without objects and routes.
    ObjectStore() = default;

    /// Reads the file of managed objects `path`; `ObjectsFile` tells what it holds. Throws `Tev::TevException`
    /// (code -1) with the text "file:line: reason", or "file: reason" without a line, when the file cannot be read, is
    /// larger than 64 MB, or holds anything that does not belong there, objects of the classes of `knownRoutes`
    /// included.
    static ObjectStore load(const std::string& path, const std::vector<Route>& knownRoutes = {});

    /// The same for the text of such a file. Throws `FileError`.
    static ObjectStore of(std::string_view xml, const std::vector<Route>& knownRoutes = {});

    /// Whether there is an object `dn`. The empty DN of the root names no object.
    bool exists(const std::string& dn) const;

    /// Whether an object of `className` is directly under `parentDn`, which is empty for the root.
    bool hasClass(const std::string& parentDn, const std::string& className) const;

    /// The keys of the objects of `className` directly under `parentDn`, which is empty for the root, in the file's
    /// order; none when there is no such parent or class.
    std::vector<std::string> keys(const std::string& parentDn, const std::string& className) const;

    /// The RDNs of the objects of all classes directly under `parentDn`, which is empty for the root; none when there
    /// is no such parent.
    std::vector<std::string> children(const std::string& parentDn) const;

    /// The names of the attributes of the object `dn`; none when there is no such object.
    std::vector<std::string> attributeNames(const std::string& dn) const;

    /// The attribute `name` of the object `dn`, owned by the store, or null when there is no such object or attribute.
    /// An attribute without values is there all the same.
    const ObjectAttribute* attribute(const std::string& dn, const std::string& name) const;

    /// The file's own routes, in its order.
    const std::vector<Route>& routes() const;

    /// The DN of the first object, depth first and in the file's order, that stands under objects of the classes of
    /// `classPath`, from the root on, and is of its last class itself; nothing when there is none.
    std::optional<std::string> firstInstance(const std::vector<std::string>& classPath) const;

private:
    /// The object `dn`, the root for an empty one, or null.
    const ManagedObject* find(std::string_view dn) const;

    const ManagedObject::Instances* instances(std::string_view parentDn, std::string_view className) const;

    ManagedObject root;
    std::vector<Route> routeList;
};

}  // namespace TevAgent

#endif

#include "SchemaClass.h"

namespace TevAgent {

const std::vector<std::string>& SchemaClass::attributes() {
    static const std::vector<std::string> names = {"schemaId", "identifier",       "baseModelIdentifier",
                                                   "version",  "baseModelVersion", listAttribute};
    return names;
}

bool SchemaClass::isClassOf(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    const std::string rdn = comma == std::string::npos ? dn : dn.substr(comma + 1);
    return rdn.substr(0, rdn.find('=')) == name;
}

const Route& SchemaClass::route() {
    static const Route schemaRoute = {name, {"ManagedElement", "SystemFunctions", "SysM"}, "TevSchemaMoService"};
    return schemaRoute;
}

}  // namespace TevAgent

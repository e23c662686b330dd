#include "SchemaClass.h"

namespace TevAgent {

const std::vector<std::string>& SchemaClass::attributes() {
    static const std::vector<std::string> names = {"schemaId", "identifier",       "baseModelIdentifier",
                                                   "version",  "baseModelVersion", listAttribute};
    return names;
}

const Route& SchemaClass::route() {
    static const Route schemaRoute = {name, {"ManagedElement", "SystemFunctions", "SysM"}, "TevSchemaMoService"};
    return schemaRoute;
}

}  // namespace TevAgent

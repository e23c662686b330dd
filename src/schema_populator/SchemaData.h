#ifndef SCHEMA_DATA_H
#define SCHEMA_DATA_H

#include <string>

#include "DalOamSpiManagedObject.h"

namespace TevSchemaPopulator {

class TransactionContextManager;

/// What the component knows of one managed-object model (MOM): one record of the catalogue, one `Schema` instance.
///
/// A plain value. Copies share the list of `selectedModelOptions`, and no record releases it when it is destroyed.
class SchemaData {
public:
    std::string schemaId = "Dummy should not be used";  ///< the MOM's name, the key of the instance
    std::string identifier;                             ///< the MOM's name again
    std::string baseModelIdentifier;                    ///< the ORVA model name; may be empty
    std::string version;                                ///< the MOM's version, release and correction; may be empty
    std::string baseModelVersion;  ///< the ORVA version, release and correction; empty without version or release
    std::string completeFileName;  ///< the absolute path of the model file
    std::string fileName;          ///< the last component of `completeFileName`

    /// The MOM's feature names as the repository gave them: a null-terminated array made with `new[]`, of texts made
    /// with `strdup`. Null when the repository gave none. The catalogue owns it;
    /// `SchemaMoImpl::cleanup` releases it at stop.
    const char** selectedModelOptions = nullptr;

    /// One line that shows the record in a trace: all but `fileName` and the options.
    std::string getDebugString() const;

    /// The value of one attribute, in a container that belongs to the transaction: all its memory is registered with
    /// `transactions` under `txHandle` and freed when the transaction finishes.
    ///
    /// Throws `Tev::TevException` with code -2 when there is no such attribute (names are compared byte by byte), with
    /// code -10 when the container of a single value cannot be allocated.
    DalMoAttributeValueContainer* getValue(const char* attributeName, unsigned long txHandle,
                                           TransactionContextManager& transactions) const;

    /// Releases a list of options, its texts included. Null is accepted.
    static void releaseOptions(const char** options) noexcept;
};

}  // namespace TevSchemaPopulator

#endif

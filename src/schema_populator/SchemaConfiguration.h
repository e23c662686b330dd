#ifndef SCHEMA_CONFIGURATION_H
#define SCHEMA_CONFIGURATION_H

#include <string>

#include "TevConfiguration.h"

namespace TevSchemaPopulator {

/// The settings of the component's configuration file, with their defaults. Used by one thread at a time.
class SchemaConfiguration : public Tev::TevConfiguration {
public:
    SchemaConfiguration();
    ~SchemaConfiguration() override;

    /// Reads the settings from the file `path`. What the file does not tell, or tells ambiguously, has its default
    /// afterwards, whatever an earlier file said. Throws `Tev::TevException` (code -1) when the file cannot be read.
    void load(const std::string& path);

    /// The folder of the sftp program, with its trailing "/".
    const std::string& getSftpProgramDir() const;

    /// The time-out of a transfer as the SFTP runner takes it, in milliseconds; 0 or less for none.
    long getSftpTimeout() const;

private:
    std::string sftpProgramDir;
    long sftpTimeout;
};

}  // namespace TevSchemaPopulator

#endif

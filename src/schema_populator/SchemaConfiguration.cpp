#include "SchemaConfiguration.h"

#include <cstdlib>
#include <exception>
#include <iostream>

#include "Log.h"
#include "TevException.h"

namespace TevSchemaPopulator {

namespace {

constexpr const char* sourceFile = "src/schema_populator/SchemaConfiguration";
constexpr const char* defaultSftpProgramDir = "/usr/bin/";
constexpr long defaultSftpTimeout = 180000;

/// `text` as a format text that comes out as it was: the file name in it may hold conversion characters.
std::string asFormat(const std::string& text) {
    std::string format;
    for (const char c : text) {
        format.append(c == '%' ? 2 : 1, c);
    }
    return format;
}

// The format is made at run time; asFormat leaves no conversion in it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
[[noreturn]] void throwTevException(const std::string& text) {
    throw Tev::TevException(asFormat(text).c_str());
}
#pragma GCC diagnostic pop

}  // namespace

SchemaConfiguration::SchemaConfiguration() : sftpProgramDir(defaultSftpProgramDir), sftpTimeout(defaultSftpTimeout) {}

SchemaConfiguration::~SchemaConfiguration() = default;

void SchemaConfiguration::load(const std::string& path) {
    SCHEMA_TRACE(TraceEntry, " >> \n%s", path.c_str());
    sftpProgramDir = defaultSftpProgramDir;
    sftpTimeout = defaultSftpTimeout;
    Poco::AutoPtr<Poco::XML::NodeList> components;
    try {
        unload();
        TevConfiguration::load(path);
        components = getElementsByTagName("TevSchemaMoService");
        if (components->length() == 0) {
            SCHEMA_LOG(LogNotice, "Could not find any configuration for TevSchemaMoService");
            return;
        }
        if (components->length() > 1) {
            SCHEMA_LOG(LogWarning, "More than one TevSchemaMoService configuration found");
            return;
        }
        const auto* component = dynamic_cast<const Poco::XML::Element*>(components->item(0));
        const std::string timeout = getElementValue(*this, component, "sftpTimeout");
        if (timeout.empty()) {
            SCHEMA_LOG(LogNotice, "sftpTimeout not found in configuration, using default '%ld'.", sftpTimeout);
        } else {
            sftpTimeout = std::atol(timeout.c_str());
            // The element is TevSchemaMoService; operators search their traces for this text all the same.
            SCHEMA_TRACE(TraceDebug, "TevSchemaPopulatorService/sftpTimeout tag found: %ld.", sftpTimeout);
        }
    } catch (const std::exception& e) {
        if (!components.isNull()) {
            std::cout << "Relase 2" << std::endl;
        }
        throwTevException(e.what());
    }
    SCHEMA_TRACE(TraceExit, " << ");
}

const std::string& SchemaConfiguration::getSftpProgramDir() const {
    return sftpProgramDir;
}

long SchemaConfiguration::getSftpTimeout() const {
    return sftpTimeout;
}

}  // namespace TevSchemaPopulator

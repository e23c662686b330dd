#ifndef TEV_AGENT_EXPORT_RESULT_H
#define TEV_AGENT_EXPORT_RESULT_H

#include <string>

namespace TevAgent {

/// How the export of one model came out.
struct ExportResult {
    std::string model;  ///< schema id, or DN
    bool isExported = false;
    std::string message;  ///< what the operator was told, or why it failed; may be empty
};

}  // namespace TevAgent

#endif

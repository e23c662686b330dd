#include <Poco/DOM/Node.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "LogToNowhere.h"
#include "MemoryFile.h"
#include "Require.h"
#include "SchemaConfiguration.h"
#include "TevConfiguration.h"
#include "TevException.h"

// The input is a configuration file: it is held within its limits, or refused with a reason and nothing is held.

namespace {

using namespace TevFuzz;
using Poco::XML::Element;
using Poco::XML::Node;
using Tev::TevConfiguration;

constexpr long defaultTimeout = 180000;

/// A file that an input can name, as an external entity, and must not get at.
const std::string secret = "no document shows this";
constexpr int secretDescriptor = 99;

void offerSecret() {
    static const MemoryFile file(secret);
    static const int offered = dup2(file.descriptor, secretDescriptor);
    requireEqual(offered, secretDescriptor, "the descriptor of the secret");
}

int depthOf(const Node* node) {
    int deepest = 0;
    for (const Node* child = node->firstChild(); child != nullptr; child = child->nextSibling()) {
        deepest = std::max(deepest, depthOf(child));
    }
    return deepest + (node->nodeType() == Node::ELEMENT_NODE ? 1 : 0);
}

/// What the component has to make of the document.
long timeoutIn(const TevConfiguration& configuration) {
    const auto components = configuration.getElementsByTagName("TevSchemaMoService");
    if (components->length() != 1) {
        return defaultTimeout;
    }
    for (const Node* child = components->item(0)->firstChild(); child != nullptr; child = child->nextSibling()) {
        if (child->nodeName() == "sftpTimeout") {
            const std::string text = child->innerText();
            return text.empty() ? defaultTimeout : std::strtol(text.c_str(), nullptr, 10);
        }
    }
    return defaultTimeout;
}

void checkHeld(const TevConfiguration& configuration) {
    const auto elements = configuration.getElementsByTagName("*");
    require(elements->length() > 0, "a document has a root");
    const Node* const root = elements->item(0);
    require(depthOf(root) <= TevConfiguration::maxDepth, "the depth is limited");
    const std::string text = root->innerText();
    require(text.size() <= TevConfiguration::maxBytes, "the size is limited");
    require(text.find(secret) == std::string::npos, "nothing outside the document is read");
}

void checkNothingHeld(const TevConfiguration& configuration) {
    try {
        configuration.getElementsByTagName("*");
    } catch (const Tev::TevException&) {
        return;
    }
    require(false, "nothing is held of a file that was refused");
}

/// Loads the file; returns why it was refused, empty when it was not.
template <class Configuration>
std::string refusal(Configuration& configuration, const std::string& path) {
    try {
        configuration.load(path);
        return "";
    } catch (const Tev::TevException& refused) {
        requireEqual(refused.getReturnCode(), TevReturnFailure, "the code of a refusal");
        return refused.what();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LogToNowhere log;
    offerSecret();
    static const MemoryFile file;
    static const MemoryFile good("<a><TevSchemaMoService><sftpTimeout>7</sftpTimeout></TevSchemaMoService></a>");
    file.write(std::string(reinterpret_cast<const char*>(data), size));

    TevConfiguration configuration;
    configuration.load(good.path());
    const std::string reason = refusal(configuration, file.path());
    TevSchemaPopulator::SchemaConfiguration settings;
    requireEqual(refusal(settings, file.path()), reason, "the component's refusal");
    requireEqual(settings.getSftpProgramDir(), "/usr/bin/", "the program's folder");
    if (reason.empty()) {
        checkHeld(configuration);
        requireEqual(settings.getSftpTimeout(), timeoutIn(configuration), "the time-out");
    } else {
        require(reason.rfind(file.path() + ":", 0) == 0, "a refusal begins with the file's name");
        checkNothingHeld(configuration);
        requireEqual(settings.getSftpTimeout(), defaultTimeout, "the time-out after a refusal");
    }
    requireEqual(refusal(settings, good.path()), "", "the refusal of a good file after this one");
    requireEqual(settings.getSftpTimeout(), 7, "the time-out of the good file");
    return 0;
}

#include "TevConfiguration.h"

#include <Poco/DOM/DOMParser.h>
#include <Poco/Exception.h>
#include <Poco/SAX/SAXException.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "FileDescriptor.h"
#include "TevException.h"
#include "XmlLimits.h"

namespace Tev {

using Poco::XML::Document;
using Poco::XML::Element;
using Poco::XML::NodeList;
using Poco::XML::XMLReader;

namespace {

// A prime, as the pool wants it. The pool throws when it is full; no exception may pass the parser's C code, which
// would not be freed then.
constexpr unsigned long namePoolSize = 4093;
static_assert(namePoolSize > TevConfiguration::maxNames);

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw TevException("%s: %s", path.c_str(), reason.c_str());
}

[[noreturn]] void fail(const std::string& path, int line, const std::string& reason) {
    throw TevException("%s:%d: %s", path.c_str(), line, reason.c_str());
}

[[noreturn]] void failWithError(const std::string& path, int error) {
    fail(path, std::generic_category().message(error));
}

FileDescriptor openFile(const std::string& path) {
    try {
        // A pipe is not waited for; it is refused later.
        return {open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY), "open"};
    } catch (const std::system_error& error) {
        failWithError(path, error.code().value());
    }
}

/// Reads until the file ends or there are more than `maximum` bytes.
std::string readBytes(std::size_t maximum, int descriptor, const std::string& path) {
    std::string bytes;
    char piece[16384];
    while (bytes.size() <= maximum) {
        const ssize_t length = read(descriptor, piece, sizeof piece);
        if (length == 0) {
            break;
        }
        if (length > 0) {
            bytes.append(piece, static_cast<std::size_t>(length));
        } else if (errno != EINTR) {
            failWithError(path, errno);
        }
    }
    return bytes;
}

std::string readFile(const std::string& path) {
    if (path.find('\0') != std::string::npos) {
        fail(path, "the name goes on after a NUL byte");
    }
    const FileDescriptor file = openFile(path);
    struct stat status {};
    if (fstat(file.get(), &status) != 0) {
        failWithError(path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        fail(path, "not a regular file");
    }
    // The size that fstat gives is no more than a guess: the file may be growing.
    std::string bytes = readBytes(TevConfiguration::maxBytes, file.get(), path);
    if (bytes.size() > TevConfiguration::maxBytes) {
        fail(path, "more than " + std::to_string(TevConfiguration::maxBytes) + " bytes");
    }
    return bytes;
}

void checkLimits(const std::string& path, const std::string& bytes) {
    constexpr auto maxDepth = static_cast<std::size_t>(TevConfiguration::maxDepth);
    XmlLimits limits(TevConfiguration::maxBytes, maxDepth, TevConfiguration::maxEntities, TevConfiguration::maxNames);
    if (const auto offence = limits.check(bytes)) {
        fail(path, offence->line, "more than " + std::to_string(offence->limit) + ' ' + offence->what);
    }
}

Document* buildDocument(const std::string& bytes) {
    Poco::XML::DOMParser parser(namePoolSize);
    parser.setFeature(XMLReader::FEATURE_NAMESPACES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
    return parser.parseMemory(bytes.data(), bytes.size());
}

}  // namespace

TevConfiguration::TevConfiguration() = default;

TevConfiguration::~TevConfiguration() = default;

void TevConfiguration::load(const std::string& path) {
    unload();
    const std::string bytes = readFile(path);
    try {
        checkLimits(path, bytes);
        document = buildDocument(bytes);
    } catch (const Poco::XML::SAXParseException& exception) {
        fail(path, exception.getLineNumber(), exception.message());
    } catch (const Poco::Exception& exception) {
        fail(path, exception.displayText());
    }
}

void TevConfiguration::unload() {
    document = nullptr;
}

Poco::AutoPtr<NodeList> TevConfiguration::getElementsByTagName(const std::string& name) const {
    if (!document) {
        throw TevException("No configuration is loaded");
    }
    return document->getElementsByTagName(name);
}

std::string TevConfiguration::getElementValue(const TevConfiguration& /*configuration*/, const Element* element,
                                              const std::string& name) {
    const Element* const child = element == nullptr ? nullptr : element->getChildElement(name);
    return child == nullptr ? std::string() : child->innerText();
}

}  // namespace Tev

#include "XmlLimits.h"

#include <Poco/SAX/Attributes.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/SAX/Locator.h>
#include <Poco/SAX/SAXException.h>
#include <Poco/SAX/SAXParser.h>

#include <algorithm>
#include <istream>
#include <streambuf>

namespace Tev {

using Poco::XML::SAXParser;
using Poco::XML::XMLReader;
using Poco::XML::XMLString;

/// The document in pieces, which ends early once there is an offence. An exception is no way out of the parser: it
/// would have to pass C code.
class XmlLimits::Source : public std::streambuf {
public:
    Source(const std::string& document, const std::optional<Offence>& offence)
        : rest(document), pendingOffence(offence) {}

protected:
    int_type underflow() override {
        if (pendingOffence || rest.empty()) {
            return traits_type::eof();
        }
        const std::size_t length = rest.copy(piece, sizeof piece);
        rest.remove_prefix(length);
        setg(piece, piece, piece + length);
        return traits_type::to_int_type(*piece);
    }

private:
    std::string_view rest;
    const std::optional<Offence>& pendingOffence;
    char piece[4096];
};

XmlLimits::XmlLimits(std::size_t maxText, std::size_t maxDepth, std::size_t maxEntities)
    : textLimit(maxText), depthLimit(maxDepth), entityLimit(maxEntities) {}

XmlLimits::~XmlLimits() = default;

std::optional<XmlLimits::Offence> XmlLimits::check(const std::string& document) {
    SAXParser parser;
    parser.setFeature(XMLReader::FEATURE_NAMESPACES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
    // Elements and comments are not counted here, so the parser bounds what entities make of them.
    parser.setProperty(SAXParser::PROPERTY_BLA_MAXIMUM_AMPLIFICATION, "1.0");
    parser.setProperty(SAXParser::PROPERTY_BLA_ACTIVATION_THRESHOLD, std::to_string(2 * textLimit));
    parser.setContentHandler(this);
    parser.setProperty(XMLReader::PROPERTY_DECLARATION_HANDLER, static_cast<Poco::XML::DeclHandler*>(this));
    Source source(document, offence);
    std::istream stream(&source);
    Poco::XML::InputSource input(stream);
    try {
        parser.parse(&input);
    } catch (const Poco::XML::SAXException&) {
        // A document that ends early is not well-formed, but that is not what is wrong with it.
        if (!offence) {
            throw;
        }
    }
    return offence;
}

void XmlLimits::countText(std::size_t bytes) {
    text += bytes;
    if (text > textLimit) {
        note(textLimit, "bytes of text and attributes with entities put in");
    }
}

void XmlLimits::countEntity() {
    if (++entities > entityLimit) {
        note(entityLimit, "entities declared");
    }
}

void XmlLimits::note(std::size_t limit, const char* what) {
    if (!offence) {
        offence = Offence{locator->getLineNumber(), limit, what};
    }
}

void XmlLimits::setDocumentLocator(const Poco::XML::Locator* documentLocator) {
    locator = documentLocator;
}

void XmlLimits::startElement(const XMLString& /*uri*/, const XMLString& /*localName*/,
                             const XMLString& /*qualifiedName*/, const Poco::XML::Attributes& attributes) {
    if (++depth > depthLimit) {
        note(depthLimit, "levels of elements");
    }
    for (int i = 0; i < attributes.getLength(); ++i) {
        countText(attributes.getQName(i).size() + attributes.getValue(i).size());
    }
}

void XmlLimits::endElement(const XMLString& /*uri*/, const XMLString& /*localName*/,
                           const XMLString& /*qualifiedName*/) {
    --depth;
}

void XmlLimits::characters(const Poco::XML::XMLChar* /*text*/, int /*start*/, int length) {
    countText(static_cast<std::size_t>(length));
}

void XmlLimits::internalEntityDecl(const XMLString& /*name*/, const XMLString& /*value*/) {
    countEntity();
}

void XmlLimits::externalEntityDecl(const XMLString& /*name*/, const XMLString* /*publicId*/,
                                   const XMLString& /*systemId*/) {
    countEntity();
}

void XmlLimits::attributeDecl(const XMLString& /*elementName*/, const XMLString& /*attributeName*/,
                              const XMLString* /*valueDefault*/, const XMLString* /*value*/) {}

void XmlLimits::elementDecl(const XMLString& /*name*/, const XMLString& /*model*/) {}

}  // namespace Tev

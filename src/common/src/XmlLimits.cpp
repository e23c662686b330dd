#include "XmlLimits.h"

#include <Poco/SAX/Attributes.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/SAX/Locator.h>
#include <Poco/SAX/SAXException.h>
#include <Poco/SAX/SAXParser.h>

#include <istream>
#include <streambuf>
#include <string_view>

namespace Tev {

using Poco::XML::SAXParser;
using Poco::XML::XMLReader;
using Poco::XML::XMLString;

namespace {

constexpr std::size_t sizeOf(std::string_view markup) {
    return markup.size();
}

}  // namespace

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

XmlLimits::XmlLimits(std::size_t maxSize, std::size_t maxDepth, std::size_t maxEntities, std::size_t maxNames)
    : sizeLimit(maxSize), depthLimit(maxDepth), entityLimit(maxEntities), nameLimit(maxNames) {}

XmlLimits::~XmlLimits() = default;

std::optional<XmlLimits::Offence> XmlLimits::check(const std::string& document) {
    SAXParser parser;
    parser.setFeature(XMLReader::FEATURE_NAMESPACES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
    parser.setContentHandler(this);
    parser.setProperty(XMLReader::PROPERTY_LEXICAL_HANDLER, static_cast<Poco::XML::LexicalHandler*>(this));
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

void XmlLimits::countContent(std::size_t bytes) {
    size += bytes;
    if (size > sizeLimit) {
        note(sizeLimit, "bytes with entities put in");
    }
}

void XmlLimits::countEntity() {
    if (++entities > entityLimit) {
        note(entityLimit, "entities declared");
    }
}

void XmlLimits::countName(const XMLString& name) {
    names.insert(name);
    if (names.size() > nameLimit) {
        note(nameLimit, "different names");
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

void XmlLimits::startElement(const XMLString& /*uri*/, const XMLString& /*localName*/, const XMLString& qualifiedName,
                             const Poco::XML::Attributes& attributes) {
    if (++depth > depthLimit) {
        note(depthLimit, "levels of elements");
    }
    countName(qualifiedName);
    countContent(sizeOf("</>") + qualifiedName.size());
    for (int i = 0; i < attributes.getLength(); ++i) {
        countName(attributes.getQName(i));
        countContent(sizeOf(" =''") + attributes.getQName(i).size() + attributes.getValue(i).size());
    }
}

void XmlLimits::endElement(const XMLString& /*uri*/, const XMLString& /*localName*/,
                           const XMLString& /*qualifiedName*/) {
    --depth;
}

void XmlLimits::characters(const Poco::XML::XMLChar* /*text*/, int /*start*/, int length) {
    countContent(static_cast<std::size_t>(length));
}

void XmlLimits::processingInstruction(const XMLString& target, const XMLString& data) {
    countContent(sizeOf("<?") + sizeOf("?>") + target.size() + data.size());
}

void XmlLimits::comment(const Poco::XML::XMLChar* /*text*/, int /*start*/, int length) {
    countContent(sizeOf("<!---->") + static_cast<std::size_t>(length));
}

void XmlLimits::startCDATA() {
    countContent(sizeOf("<![CDATA[]]>"));
}

void XmlLimits::endCDATA() {}

void XmlLimits::startDTD(const XMLString& /*name*/, const XMLString& /*publicId*/, const XMLString& /*systemId*/) {}

void XmlLimits::endDTD() {}

void XmlLimits::startEntity(const XMLString& /*name*/) {}

void XmlLimits::endEntity(const XMLString& /*name*/) {}

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

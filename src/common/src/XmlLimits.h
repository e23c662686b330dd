#ifndef TEV_XML_LIMITS_H
#define TEV_XML_LIMITS_H

#include <Poco/SAX/DeclHandler.h>
#include <Poco/SAX/DefaultHandler.h>
#include <Poco/SAX/LexicalHandler.h>

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>

namespace Tev {

/// Goes through an XML document without building anything of it, to find what a DOM parser should not be given.
class XmlLimits : private Poco::XML::DefaultHandler, private Poco::XML::LexicalHandler, private Poco::XML::DeclHandler {
public:
    /// Where a document has more of something than it may.
    struct Offence {
        int line;
        std::size_t limit;
        const char* what;  ///< what there is too much of, as in "more than 64 levels"; lives for ever
    };

    /// The largest size in bytes (as UTF-8, written as short as can be, with entities and default attributes put in),
    /// the deepest nesting of elements (the root is the first level) and the highest number of entity declarations: the
    /// parser calls itself for every entity inside another. And the highest number of different names of elements and
    /// attributes: a DOM has room for so many, and finds out where an exception is no way out.
    XmlLimits(std::size_t maxSize, std::size_t maxDepth, std::size_t maxEntities, std::size_t maxNames);
    ~XmlLimits() override;

    /// Returns the first offence in `document`, if there is one. Reading stops there, so the cost is bounded whatever
    /// the rest holds. Throws what the parser throws when the document is not well-formed up to there. External
    /// entities are not followed. To be called once.
    std::optional<Offence> check(const std::string& document);

private:
    class Source;

    void countContent(std::size_t bytes);
    void countEntity();
    void countName(const Poco::XML::XMLString& name);
    void note(std::size_t limit, const char* what);

    void setDocumentLocator(const Poco::XML::Locator* documentLocator) override;
    void startElement(const Poco::XML::XMLString& uri, const Poco::XML::XMLString& localName,
                      const Poco::XML::XMLString& qualifiedName, const Poco::XML::Attributes& attributes) override;
    void endElement(const Poco::XML::XMLString& uri, const Poco::XML::XMLString& localName,
                    const Poco::XML::XMLString& qualifiedName) override;
    void characters(const Poco::XML::XMLChar* text, int start, int length) override;
    void processingInstruction(const Poco::XML::XMLString& target, const Poco::XML::XMLString& data) override;
    void comment(const Poco::XML::XMLChar* text, int start, int length) override;
    void startCDATA() override;
    void endCDATA() override;
    void startDTD(const Poco::XML::XMLString& name, const Poco::XML::XMLString& publicId,
                  const Poco::XML::XMLString& systemId) override;
    void endDTD() override;
    void startEntity(const Poco::XML::XMLString& name) override;
    void endEntity(const Poco::XML::XMLString& name) override;
    void internalEntityDecl(const Poco::XML::XMLString& name, const Poco::XML::XMLString& value) override;
    void externalEntityDecl(const Poco::XML::XMLString& name, const Poco::XML::XMLString* publicId,
                            const Poco::XML::XMLString& systemId) override;
    void attributeDecl(const Poco::XML::XMLString& elementName, const Poco::XML::XMLString& attributeName,
                       const Poco::XML::XMLString* valueDefault, const Poco::XML::XMLString* value) override;
    void elementDecl(const Poco::XML::XMLString& name, const Poco::XML::XMLString& model) override;

    const std::size_t sizeLimit;
    const std::size_t depthLimit;
    const std::size_t entityLimit;
    const std::size_t nameLimit;
    const Poco::XML::Locator* locator = nullptr;
    std::size_t size = 0;
    std::size_t depth = 0;
    std::size_t entities = 0;
    std::unordered_set<std::string> names;
    std::optional<Offence> offence;
};

}  // namespace Tev

#endif

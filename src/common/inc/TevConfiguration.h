#ifndef TEV_CONFIGURATION_H
#define TEV_CONFIGURATION_H

#include <Poco/AutoPtr.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/DOM/NodeList.h>

#include <cstddef>
#include <string>

#include "TevCommonApi.h"

namespace Tev {

/// An XML configuration file, held as a DOM.
///
/// External entities are never followed. A document of more than `maxBytes`, with elements nested deeper than
/// `maxDepth`, with more than `maxNames` different names of elements and attributes, that declares more than
/// `maxEntities` entities, or that grows beyond `maxBytes` when they are put in, is refused before a DOM is built.
///
/// Namespaces are not looked at: a prefix is part of the name.
///
/// Not thread-safe: one object is used by one thread at a time.
class TEV_COMMON_API TevConfiguration {
public:
    static constexpr std::size_t maxBytes = 1048576;
    static constexpr int maxDepth = 64;
    static constexpr std::size_t maxEntities = 256;
    static constexpr std::size_t maxNames = 4000;

    TevConfiguration();
    virtual ~TevConfiguration();
    TevConfiguration(const TevConfiguration&) = delete;
    TevConfiguration& operator=(const TevConfiguration&) = delete;

    /// Reads the regular file `path` in place of any document held before. Throws `TevException` (code -1), whose text
    /// names the file, the line where there is one, and the reason; or std::bad_alloc. Nothing is held then.
    void load(const std::string& path);

    /// Releases the document; nothing happens when there is none.
    void unload();

    /// The elements named `name`, wherever they stand in the document, in document order. The list refers to this
    /// document and must not outlive it. Throws `TevException` (code -1) when no document is loaded.
    Poco::AutoPtr<Poco::XML::NodeList> getElementsByTagName(const std::string& name) const;

    /// The text of the first element named `name` directly under `element`, an element of `configuration`; empty when
    /// there is no such child, it is empty, or `element` is null.
    static std::string getElementValue(const TevConfiguration& configuration, const Poco::XML::Element* element,
                                       const std::string& name);

private:
    Poco::AutoPtr<Poco::XML::Document> document;
};

}  // namespace Tev

#endif

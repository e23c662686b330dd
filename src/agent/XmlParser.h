#ifndef TEV_AGENT_XML_PARSER_H
#define TEV_AGENT_XML_PARSER_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace TevAgent {

/// The attributes of an XML element by name.
using XmlAttributes = std::map<std::string, std::string>;

/// Takes an XML document piece by piece and tells what it holds through its virtual functions; derive from it. Texts
/// are told in UTF-8, whatever the document's encoding.
///
/// A document type declaration is refused, so there are no entities but XML's own five, and nothing outside the
/// document is ever read. Elements nested deeper than `maxDepth` are refused.
///
/// The virtual functions may throw: the exception leaves `parse`. Used by one thread at a time.
class XmlParser {
public:
    static constexpr std::size_t maxDepth = 64;

    virtual ~XmlParser();
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    /// Takes the next piece of the document; `last` says that nothing follows it. Throws `FileError` when the
    /// document is not well-formed or refused; the parser is of no use then. Nothing happens once it was stopped.
    void parse(std::string_view piece, bool last);

    /// The line of what was told last, counted from 1; the line that was reached once `parse` has returned.
    unsigned long line() const;

protected:
    XmlParser();

    virtual void startElement(const std::string& name, const XmlAttributes& attributes) = 0;
    virtual void endElement() = 0;

    /// Character data; one stretch of it may arrive in several pieces.
    virtual void text(std::string_view piece) = 0;

    /// Nothing is told any more. For use from the virtual functions.
    void stop();

    /// Throws `FileError` with the present line.
    [[noreturn]] void fail(const std::string& reason) const;

    /// How many elements are open, one that is just starting or ending included.
    std::size_t depth() const;

    /// Where in the document, in bytes, the tag begins that is being told.
    std::uint64_t tagBegin() const;

    /// Where the tag ends that is being told.
    std::uint64_t tagEnd() const;

private:
    struct Callbacks;
    struct ParserDeleter {
        void operator()(XML_ParserStruct* expat) const;
    };

    void enter(const char* name, const char** attributes);
    [[noreturn]] void failAsParserSays(bool last) const;

    const std::unique_ptr<XML_ParserStruct, ParserDeleter> parser;
    std::exception_ptr thrown;  ///< by a virtual function: it must not pass through the parser's C code
    bool stopped = false;
    std::size_t openElements = 0;
};

}  // namespace TevAgent

#endif

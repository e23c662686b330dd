#include "XmlParser.h"

#include <expat.h>

#include <climits>
#include <new>
#include <stdexcept>

#include "FileError.h"

namespace TevAgent {

/// What expat calls.
struct XmlParser::Callbacks {
    /// Calls `tell` on the parser behind `userData`, unless it was stopped: expat may have more to tell even then.
    template <class Tell>
    static void guarded(void* userData, const Tell& tell) noexcept {
        auto& self = *static_cast<XmlParser*>(userData);
        if (self.stopped) {
            return;
        }
        try {
            tell(self);
        } catch (...) {
            self.thrown = std::current_exception();
            self.stop();
        }
    }

    static void XMLCALL startElement(void* userData, const XML_Char* name, const XML_Char** attributes) {
        guarded(userData, [=](XmlParser& self) { self.enter(name, attributes); });
    }

    static void XMLCALL endElement(void* userData, const XML_Char*) {
        guarded(userData, [](XmlParser& self) {
            self.endElement();
            --self.openElements;
        });
    }

    static void XMLCALL characterData(void* userData, const XML_Char* characters, int length) {
        guarded(userData,
                [=](XmlParser& self) { self.text(std::string_view(characters, static_cast<std::size_t>(length))); });
    }

    static void XMLCALL startDoctype(void* userData, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        guarded(userData,
                [](const XmlParser& self) { self.fail("a document type declaration (DOCTYPE) is not accepted"); });
    }
};

void XmlParser::ParserDeleter::operator()(XML_ParserStruct* expat) const {
    XML_ParserFree(expat);
}

XmlParser::XmlParser() : parser(XML_ParserCreate(nullptr)) {
    if (parser == nullptr) {
        throw std::bad_alloc();
    }
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), Callbacks::startElement, Callbacks::endElement);
    XML_SetCharacterDataHandler(parser.get(), Callbacks::characterData);
    XML_SetStartDoctypeDeclHandler(parser.get(), Callbacks::startDoctype);
}

XmlParser::~XmlParser() = default;

void XmlParser::parse(std::string_view piece, bool last) {
    if (stopped) {
        return;
    }
    if (piece.size() > INT_MAX) {
        throw std::length_error("a piece of XML is too large");
    }
    const XML_Status status = XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), last);
    if (thrown) {
        std::rethrow_exception(thrown);
    }
    if (status != XML_STATUS_OK && !stopped) {
        failAsParserSays(last);
    }
}

unsigned long XmlParser::line() const {
    return static_cast<unsigned long>(XML_GetCurrentLineNumber(parser.get()));
}

void XmlParser::stop() {
    stopped = true;
    XML_StopParser(parser.get(), XML_FALSE);
}

void XmlParser::fail(const std::string& reason) const {
    throw FileError(line(), reason);
}

std::size_t XmlParser::depth() const {
    return openElements;
}

std::uint64_t XmlParser::tagBegin() const {
    return static_cast<std::uint64_t>(XML_GetCurrentByteIndex(parser.get()));
}

std::uint64_t XmlParser::tagEnd() const {
    return tagBegin() + static_cast<std::uint64_t>(XML_GetCurrentByteCount(parser.get()));
}

void XmlParser::enter(const char* name, const char** attributes) {
    if (++openElements > maxDepth) {
        fail("elements are nested deeper than " + std::to_string(maxDepth) + " levels");
    }
    XmlAttributes byName;
    for (const char** attribute = attributes; *attribute != nullptr; attribute += 2) {
        byName.emplace(attribute[0], attribute[1]);
    }
    startElement(name, byName);
}

void XmlParser::failAsParserSays(bool last) const {
    const XML_Error error = XML_GetErrorCode(parser.get());
    if (error == XML_ERROR_NO_MEMORY) {
        throw std::bad_alloc();
    }
    const bool cutOff = error == XML_ERROR_UNCLOSED_TOKEN || error == XML_ERROR_PARTIAL_CHAR ||
                        error == XML_ERROR_UNCLOSED_CDATA_SECTION ||
                        (error == XML_ERROR_NO_ELEMENTS && openElements > 0);
    if (last && cutOff) {
        fail("the file ends too early, inside an element");
    }
    fail(std::string("not well-formed XML: ") + XML_ErrorString(error));
}

}  // namespace TevAgent

#include "JsonText.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <sstream>
#include <stdexcept>

#include "SchemaClass.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

/// Characters beyond ASCII are escaped, so that none of them can change how a terminal shows the others.
constexpr int options = Poco::JSON_PRESERVE_KEY_ORDER | Poco::JSON_ESCAPE_UNICODE;

/// Whether an attribute is a list is a matter of its class, not of how many values it holds today.
bool isList(const Instance& instance, const std::string& attribute) {
    return attribute == SchemaClass::listAttribute || !SchemaClass::isClassOf(instance.dn);
}

Poco::Dynamic::Var valueOf(const Instance& instance, const Instance::Attribute& attribute) {
    if (isList(instance, attribute.name) || attribute.values.size() > 1) {
        Poco::JSON::Array array;
        for (const std::string& value : attribute.values) {
            array.add(Utf8::repaired(value));
        }
        return array;
    }
    if (attribute.values.empty()) {
        return {};
    }
    return Utf8::repaired(attribute.values.front());
}

/// A document with one member, an array of objects: a line for each, for tools that go by lines.
class Document {
public:
    explicit Document(const std::string& name) {
        // Else the stream would keep to itself that memory ran out, and end the text there.
        text.exceptions(std::ios::badbit);
        text << "{\"" << name << "\":[";
    }

    void add(const Poco::JSON::Object& object) {
        text << (isEmpty ? "\n" : ",\n");
        object.stringify(text);
        isEmpty = false;
    }

    std::string end() {
        text << (isEmpty ? "]}\n" : "\n]}\n");
        return text.str();
    }

private:
    std::ostringstream text;
    bool isEmpty = true;
};

}  // namespace

std::string JsonText::of(const std::vector<Instance>& instances) {
    Document document("schemas");
    for (const Instance& instance : instances) {
        Poco::JSON::Object schema(options);
        for (const Instance::Attribute& attribute : instance.attributes) {
            schema.set(Utf8::repaired(attribute.name), valueOf(instance, attribute));
        }
        document.add(schema);
    }
    return document.end();
}

std::string JsonText::of(const std::vector<CheckResult>& results) {
    Document document("checks");
    for (const CheckResult& result : results) {
        Poco::JSON::Object check(options);
        check.set("id", result.id);
        check.set("description", result.description);
        check.set("result", CheckResult::word(result.outcome));
        check.set("remark", Utf8::repaired(result.remark));
        document.add(check);
    }
    return document.end();
}

std::vector<CheckResult> JsonText::checkResults(const std::string& text) {
    const auto document = Poco::JSON::Parser().parse(text).extract<Poco::JSON::Object::Ptr>();
    std::vector<CheckResult> results;
    for (const Poco::Dynamic::Var& entry : *document->getArray("checks")) {
        const auto& check = entry.extract<Poco::JSON::Object::Ptr>();
        const auto outcome = CheckResult::outcomeOf(check->getValue<std::string>("result"));
        if (!outcome) {
            throw std::out_of_range("result");
        }
        results.push_back({check->getValue<std::string>("id"), check->getValue<std::string>("description"), *outcome,
                           check->getValue<std::string>("remark")});
    }
    return results;
}

std::string JsonText::of(const std::vector<ExportResult>& results) {
    Document document("exports");
    for (const ExportResult& result : results) {
        Poco::JSON::Object exported(options);
        exported.set("model", Utf8::repaired(result.model));
        exported.set("exported", result.isExported);
        exported.set("message", Utf8::repaired(result.message));
        document.add(exported);
    }
    return document.end();
}

}  // namespace TevAgent

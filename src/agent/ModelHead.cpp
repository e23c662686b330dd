#include "ModelHead.h"

#include "FileError.h"
#include "Text.h"

namespace TevAgent {

namespace {

std::string tooLarge() {
    return "the model's head, before its first class, is larger than " + std::to_string(ModelHead::maxBytes) + " bytes";
}

}  // namespace

void ModelHead::take(std::string_view block, bool last) {
    if (complete) {
        return;
    }
    taken += block.size();
    if (last && taken == 0) {
        throw FileError(0, "the file is empty");
    }
    parse(block, last);
    if (!complete && taken > maxBytes) {
        fail(tooLarge());
    }
}

bool ModelHead::isComplete() const {
    return complete;
}

const Model& ModelHead::model() const {
    return head;
}

void ModelHead::startElement(const std::string& name, const XmlAttributes& attributes) {
    if (depth() == 1) {
        startRoot(name, attributes);
    } else if (depth() == 2) {
        startChild(name, attributes);
    } else if (depth() == 3 && !domain.empty() && name == "property") {
        addProperty(attributes);
    } else {
        fail("<" + Text::shortened(name) + "> does not belong here");
    }
}

void ModelHead::endElement() {
    if (depth() == 1) {
        completeAt(tagEnd());
    }
}

void ModelHead::text(std::string_view piece) {
    if (!Text::isBlank(piece)) {
        fail("there is text where none belongs");
    }
}

void ModelHead::startRoot(const std::string& name, const XmlAttributes& attributes) {
    if (name != "mom") {
        fail("the root element is <" + Text::shortened(name) + ">, not <mom>");
    }
    head.name = required(attributes, name, "name");
    if (const std::string fault = Text::faultOfRdnPart(head.name); !fault.empty()) {
        fail("the name of <mom> " + fault);
    }
    head.version = optional(attributes, "version");
    head.release = optional(attributes, "release");
    head.correction = optional(attributes, "correction");
}

void ModelHead::startChild(const std::string& name, const XmlAttributes& attributes) {
    domain.clear();
    if (name == "domain") {
        domain = required(attributes, name, "name");
        head.domains[domain];
    } else if (name == "feature") {
        addFeature(attributes);
    } else {
        completeAt(tagBegin());
    }
}

void ModelHead::addProperty(const XmlAttributes& attributes) {
    const std::string key = required(attributes, "property", "key");
    if (attributes.count("value") == 0) {
        fail("<property> has no value");
    }
    const std::optional<std::string> value = optional(attributes, "value");
    if (value && !head.domains[domain].emplace(key, *value).second) {
        fail("the domain " + Text::quoted(domain) + " has the property " + Text::quoted(key) + " twice");
    }
}

void ModelHead::addFeature(const XmlAttributes& attributes) {
    head.features.push_back(required(attributes, "feature", "name"));
}

void ModelHead::completeAt(std::uint64_t end) {
    if (end > maxBytes) {
        fail(tooLarge());
    }
    complete = true;
    stop();
}

std::string ModelHead::required(const XmlAttributes& attributes, const std::string& element,
                                const std::string& name) const {
    const auto found = attributes.find(name);
    if (found == attributes.end()) {
        fail("<" + element + "> has no " + name);
    }
    if (found->second.empty()) {
        fail("the " + name + " of <" + element + "> is empty");
    }
    requireNoControl(name, found->second);
    return found->second;
}

std::optional<std::string> ModelHead::optional(const XmlAttributes& attributes, const std::string& name) const {
    const auto found = attributes.find(name);
    if (found == attributes.end() || found->second.empty()) {
        return std::nullopt;
    }
    requireNoControl(name, found->second);
    return found->second;
}

void ModelHead::requireNoControl(const std::string& name, const std::string& value) const {
    if (Text::hasControl(value)) {
        fail("the " + name + " holds a control character: " + Text::quoted(value));
    }
}

}  // namespace TevAgent

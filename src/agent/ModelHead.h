#ifndef TEV_AGENT_MODEL_HEAD_H
#define TEV_AGENT_MODEL_HEAD_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Model.h"
#include "XmlParser.h"

namespace TevAgent {

/// Takes a model file block by block until its head is complete: at the first child of the root that is neither
/// `domain` nor `feature`, or at the root's end. What comes after that tag is not even looked at.
///
///     <mom name="TransportModel" version="2" release="1" correction="5">
///       <domain name="ORVA"><property key="orvaMomName" value="OrvaTransport"/></domain>
///       <feature name="IpSec"/>
///       ...
///
/// Only the model's `name` must be there; an empty `version`, `release`, `correction` or property value counts as
/// absent. Further attributes are passed over; a feature named twice is listed twice. Refused are: texts with control
/// characters, a name that cannot stand in a DN, names and keys that are missing or empty, a property without a value,
/// a key to which one domain gives two values, and elements or text where none belong. Used by one thread at a time.
class ModelHead : private XmlParser {
public:
    /// The largest head, counted from the file's first byte.
    static constexpr std::size_t maxBytes = 262144;

    ModelHead() = default;

    /// Takes the next block; `last` says that the file ends with it. Throws `FileError` when the head is refused.
    void take(std::string_view block, bool last);

    /// Whether nothing more is needed.
    bool isComplete() const;

    /// What was read, all but the file's path, once the head is complete.
    const Model& model() const;

private:
    void startElement(const std::string& name, const XmlAttributes& attributes) override;
    void endElement() override;
    void text(std::string_view piece) override;

    void startRoot(const std::string& name, const XmlAttributes& attributes);
    void startChild(const std::string& name, const XmlAttributes& attributes);
    void addProperty(const XmlAttributes& attributes);
    void addFeature(const XmlAttributes& attributes);
    void completeAt(std::uint64_t end);
    std::string required(const XmlAttributes& attributes, const std::string& element, const std::string& name) const;
    std::optional<std::string> optional(const XmlAttributes& attributes, const std::string& name) const;
    void requireNoControl(const std::string& name, const std::string& value) const;

    Model head;
    std::string domain;     ///< the one that is open; empty inside a feature
    std::size_t taken = 0;  ///< bytes
    bool complete = false;
};

}  // namespace TevAgent

#endif

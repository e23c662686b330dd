#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "FileError.h"
#include "ModelHead.h"
#include "ModelReader.h"
#include "Pattern.h"
#include "Problem.h"
#include "Require.h"
#include "Text.h"
#include "XmlText.h"

// The input is a model file: its head gives a model that keeps the rules, or a problem that a person can act on, and
// the same one however the file comes in blocks. A model, written down anew, is read as the same model,
// and so is one that was made of the input's texts.

namespace {

using namespace TevFuzz;
using namespace TevAgent;

/// Takes the file in blocks of `blockSize` bytes, but for a first one that is large enough to show the encoding.
std::variant<Model, Problem> readModel(const std::string& file, std::size_t blockSize) {
    constexpr std::size_t smallestStart = 4;
    try {
        ModelHead head;
        std::size_t end = 0;
        for (std::size_t begin = 0; !head.isComplete(); begin = end) {
            end = std::min(begin + (begin == 0 ? std::max(blockSize, smallestStart) : blockSize), file.size());
            head.take(std::string_view(file).substr(begin, end - begin), begin == file.size());
        }
        return head.model();
    } catch (const FileError& error) {
        return Problem{"model.xml", error.line(), error.what()};
    }
}

std::string attribute(const char* name, const std::optional<std::string>& value) {
    return value ? std::string(" ") + name + "=\"" + xmlText(*value) + '"' : "";
}

std::string written(const Model& model) {
    std::string xml = "<mom" + attribute("name", model.name) + attribute("version", model.version) +
                      attribute("release", model.release) + attribute("correction", model.correction) + '>';
    for (const auto& [domain, properties] : model.domains) {
        xml += "<domain" + attribute("name", domain) + '>';
        for (const auto& [key, value] : properties) {
            xml += "<property" + attribute("key", key) + attribute("value", value) + "/>";
        }
        xml += "</domain>";
    }
    for (const std::string& feature : model.features) {
        xml += "<feature" + attribute("name", feature) + "/>";
    }
    return xml + "</mom>";
}

/// The model as XML, or the problem as its text.
std::string shown(const std::variant<Model, Problem>& outcome) {
    const auto* const model = std::get_if<Model>(&outcome);
    return model != nullptr ? written(*model) : std::get<Problem>(outcome).text();
}

/// What has to be the same in all blocks: of bad XML the parser may complain sooner or later, and so of another token.
std::string comparable(const std::variant<Model, Problem>& outcome) {
    const std::string text = shown(outcome);
    const bool isBadXml = text.find(": not well-formed XML: ") != std::string::npos ||
                          text.find(": the file ends too early") != std::string::npos;
    return std::holds_alternative<Problem>(outcome) && isBadXml ? "bad XML" : text;
}

void checkProblem(const Problem& problem, const std::string& file) {
    require(!problem.reason.empty(), "a problem has a reason");
    require(problem.reason.size() < 300, "a reason is short");
    require(!hasControl(problem.text()), "a problem's text is one line");
    const auto isLineEnd = [](char byte) { return byte == '\n' || byte == '\r'; };
    require(problem.line <= 1 + static_cast<unsigned long>(std::count_if(file.begin(), file.end(), isLineEnd)),
            "a problem's line is in the file");
}

void checkModel(const Model& model) {
    requireEqual(Text::faultOfRdnPart(model.name), "", "the fault of a model's name");
    const std::string xml = written(model);
    require(!hasControl(xml), "a model holds no control character");
    requireEqual(shown(readModel(xml, ModelReader::blockSize)), xml, "the model read again");
}

/// The texts between quotation marks that any part of a model may have.
std::vector<std::string> textsIn(const std::string& file) {
    static const Pattern plain("^[ -+.-<>-~-]+$");
    std::vector<std::string> texts;
    for (const std::string_view part : Text::split(file, '"')) {
        if (plain.matches(std::string(part))) {
            texts.emplace_back(part);
        }
    }
    return texts;
}

/// A model made of the input's texts is read as it was written.
void checkMadeModel(const std::string& file) {
    Model model;
    std::size_t count = 0;
    for (const std::string& text : textsIn(file)) {
        switch (count++) {
            case 0:
                model.name = text;
                break;
            case 1:
                model.version = text;
                break;
            case 2:
                model.release = text;
                break;
            case 3:
                model.correction = text;
                break;
            default:
                model.features.push_back(text);
                model.domains["D" + text.substr(0, 2)][text] = text + text;
                break;
        }
    }
    if (count > 0) {
        requireEqual(shown(readModel(written(model), ModelReader::blockSize)), written(model), "a model made anew");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    checkMadeModel(file);
    const auto outcome = readModel(file, ModelReader::blockSize);
    if (const auto* const model = std::get_if<Model>(&outcome)) {
        checkModel(*model);
    } else {
        checkProblem(std::get<Problem>(outcome), file);
    }
    for (const std::size_t blockSize : {std::size_t{1}, std::size_t{7}, size / 2 + 1}) {
        requireEqual(comparable(readModel(file, blockSize)), comparable(outcome), "the outcome in other blocks");
    }
    return 0;
}

#include "ModelSummary.h"

namespace TevTest {

std::string summary(const TevAgent::Model& model) {
    std::string text = model.name + " " + model.version.value_or("-") + "/" + model.release.value_or("-") + "/" +
                       model.correction.value_or("-");
    for (const auto& [domain, properties] : model.domains) {
        text += " " + domain + ":";
        for (const auto& [key, value] : properties) {
            text += key + "=" + value + ";";
        }
    }
    for (const std::string& feature : model.features) {
        text += " +" + feature;
    }
    return text;
}

}  // namespace TevTest

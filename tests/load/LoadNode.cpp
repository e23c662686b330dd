#include "LoadNode.h"

#include <filesystem>

namespace TevAgent {

LoadNode::LoadNode(std::size_t modelCount) {
    std::filesystem::create_directory(tempFolder.path() / "models");
    for (std::size_t number = 0; number < modelCount; ++number) {
        writeModel(number);
    }
    tempFolder.write("managed-objects.xml", R"(<managedObjects>
        <mo class="ManagedElement" id="1">
          <mo class="Transport" id="1">
            <mo class="ServiceCategory" id="OamBulk">
              <attribute name="dscp" type="uint8"><value>10</value></attribute>
            </mo>
          </mo>
          <mo class="SystemFunctions" id="1">
            <mo class="SysM" id="1"/>
            <mo class="SecM" id="1">
              <mo class="Ssh" id="1">
                <attribute name="selectedCiphers" type="string">
                  <value>aes128-gcm@openssh.com</value><value>aes128-ctr</value>
                </attribute>
                <attribute name="selectedKeyExchanges" type="string"><value>curve25519-sha256</value></attribute>
                <attribute name="selectedMacs" type="string"><value>hmac-sha2-256</value></attribute>
              </mo>
            </mo>
          </mo>
        </mo>
      </managedObjects>)");
    tempFolder.write("libtev_schema_populator.cfg",
                     "<configuration><TevSchemaMoService><sftpTimeout>120000</sftpTimeout></TevSchemaMoService>"
                     "</configuration>");
}

Agent::Inputs LoadNode::inputs() const {
    return {folder() + "/models", folder() + "/managed-objects.xml", folder() + "/libtev_schema_populator.cfg"};
}

void LoadNode::writeModel(std::size_t number) {
    const std::string text = std::to_string(number);
    const std::string id = "Model" + std::string(6 - text.size(), '0') + text;
    const bool isCorrected = number % 2 == 1;
    const bool hasBase = number % 3 != 0;
    std::string head = "<mom name=\"" + id + "\" version=\"" + text + "\" release=\"7\"" +
                       (isCorrected ? " correction=\"8\"" : "") + ">\n";
    SchemaModel model{id,
                      {},
                      {{"schemaId", {id}},
                       {"identifier", {id}},
                       {"baseModelIdentifier", {}},
                       {"version", {text + ".7" + (isCorrected ? ".8" : "")}},
                       {"baseModelVersion", {}},
                       {"selectedModelOptions", {}}}};
    if (hasBase) {
        head += "<domain name=\"ORVA\"><property key=\"orvaMomName\" value=\"Base" + text +
                "\"/><property key=\"orvaMomVersion\" value=\"" + text +
                "\"/><property key=\"orvaMomRelease\" value=\"9\"/></domain>\n";
        model.values["baseModelIdentifier"] = {"Base" + text};
        model.values["baseModelVersion"] = {text + ".9"};
    }
    for (std::size_t i = 0; i < number % 4; ++i) {
        const std::string option = "Option" + text + "-" + std::to_string(i);
        head += "<feature name=\"" + option + "\"/>\n";
        model.values["selectedModelOptions"].push_back(option);
    }
    model.file = tempFolder.write("models/" + id + ".xml", head + "<class name=\"Of" + text + "\"/>\n</mom>\n");
    schemaModels.push_back(model);
}

}  // namespace TevAgent

#include "TestNode.h"

#include <filesystem>

namespace TevTest {

TestNode::TestNode() {
    std::filesystem::create_directory(folder.path() / "models");
    // Neither the order of writing nor that of the file names is the order of the models' names.
    writeModel("1.xml", R"(<mom name="Transport" version="2" release="1" correction="5">
        <domain name="ORVA">
          <property key="orvaMomName" value="OrvaTransport"/>
          <property key="orvaMomVersion" value="3"/>
          <property key="orvaMomRelease" value="4"/>
        </domain>
        <feature name="IpSec"/><feature name="Sync"/>
        <class name="Transport"/></mom>)");
    writeModel("2.xml", R"(<mom name="Equipment" version="1" release="2"><feature name="Hot Swap"/></mom>)");
    writeModel("3.xml", R"(<mom name="Plain"/>)");
    writeObjects(R"(<managedObjects>
        <mo class="ManagedElement" id="1">
          <mo class="Transport" id="1">
            <mo class="ServiceCategory" id="OamBulk">
              <attribute name="dscp" type="uint8"><value>10</value></attribute>
            </mo>
          </mo>
          <mo class="SystemFunctions" id="1"><mo class="SysM" id="7"/><mo class="SysM" id="1"/></mo>
        </mo>
      </managedObjects>)");
    folder.write("libtev_schema_populator.cfg",
                 "<configuration><TevSchemaMoService><sftpTimeout>60000</sftpTimeout></TevSchemaMoService>"
                 "</configuration>");
}

void TestNode::writeModel(const std::string& fileName, const std::string& text) const {
    folder.write("models/" + fileName, text);
}

void TestNode::writeObjects(const std::string& text) const {
    folder.write("managed-objects.xml", text);
}

std::string TestNode::schemaDn(const std::string& schemaId) {
    return "ManagedElement=1,SystemFunctions=1,SysM=7,Schema=" + schemaId;
}

}  // namespace TevTest

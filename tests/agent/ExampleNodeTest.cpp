#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "ModelFolder.h"
#include "ObjectStore.h"
#include "TevConfiguration.h"

namespace TevAgent {
namespace {

using testing::Contains;
using testing::IsEmpty;

const std::filesystem::path node = TEV_EXAMPLE_NODE;

std::vector<std::string> textsOf(const ObjectStore& store, const std::string& dn, const std::string& name) {
    std::vector<std::string> texts;
    if (const ObjectAttribute* attribute = store.attribute(dn, name)) {
        for (const DalMoAttributeValue& value : attribute->values) {
            texts.emplace_back(value.theString);
        }
    }
    return texts;
}

TEST(ExampleNodeTest, hasAtLeastTwelveModelsAndNoProblem) {
    const ModelFolder models = ModelFolder::read(node / "models");
    EXPECT_GE(models.models().size(), 12U);
    EXPECT_THAT(models.problems(), IsEmpty());
}

TEST(ExampleNodeTest, showsModelsWithAndWithoutEverything) {
    const std::vector<Model> models = ModelFolder::read(node / "models").models();
    const auto both = [&models](auto has) {
        return std::any_of(models.begin(), models.end(), has) && !std::all_of(models.begin(), models.end(), has);
    };
    EXPECT_TRUE(both([](const Model& model) { return model.version.has_value(); }));
    EXPECT_TRUE(both([](const Model& model) { return model.release.has_value(); }));
    EXPECT_TRUE(both([](const Model& model) { return model.correction.has_value(); }));
    EXPECT_TRUE(both([](const Model& model) { return !model.features.empty(); }));
    EXPECT_TRUE(both([](const Model& model) { return model.domains.count("ORVA") == 1; }));
}

TEST(ExampleNodeTest, hasALargeModelOfWhichLittleIsRead) {
    const ModelFolder models = ModelFolder::read(node / "models");
    std::uintmax_t largest = 0;
    for (const Model& model : models.models()) {
        largest = std::max(largest, std::filesystem::file_size(model.file));
    }
    EXPECT_GT(largest, 3000000U);
    EXPECT_LT(models.bytesRead(), 100000U);
}

TEST(ExampleNodeTest, hasTheObjectsThatAnExportNeeds) {
    const ObjectStore store = ObjectStore::load((node / "managed-objects.xml").string());
    const auto transport = store.firstInstance({"ManagedElement", "Transport"});
    ASSERT_TRUE(transport);
    const ObjectAttribute* dscp = store.attribute(*transport + ",ServiceCategory=OamBulk", "dscp");
    ASSERT_NE(dscp, nullptr);
    EXPECT_EQ(dscp->type, DalMoTypeUint8);
    EXPECT_EQ(dscp->values.at(0).theUint8, 10);
    const auto ssh = store.firstInstance({"ManagedElement", "SystemFunctions", "SecM", "Ssh"});
    ASSERT_TRUE(ssh);
    EXPECT_THAT(textsOf(store, *ssh, "selectedCiphers"), Contains("aes256-gcm@openssh.com"));
    EXPECT_THAT(textsOf(store, *ssh, "selectedKeyExchanges"), Contains("curve25519-sha256"));
    EXPECT_THAT(textsOf(store, *ssh, "selectedMacs"), Contains("hmac-sha2-256-etm@openssh.com"));
    EXPECT_TRUE(store.firstInstance({"ManagedElement", "SystemFunctions", "SysM"}));
}

TEST(ExampleNodeTest, hasAConfigurationWithATimeOut) {
    Tev::TevConfiguration configuration;
    configuration.load((node / "libtev_schema_populator.cfg").string());
    const auto elements = configuration.getElementsByTagName("TevSchemaMoService");
    ASSERT_EQ(elements->length(), 1U);
    const auto* element = dynamic_cast<const Poco::XML::Element*>(elements->item(0));
    EXPECT_EQ(Tev::TevConfiguration::getElementValue(configuration, element, "sftpTimeout"), "120000");
}

}  // namespace
}  // namespace TevAgent

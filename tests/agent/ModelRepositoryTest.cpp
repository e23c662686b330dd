#include "ModelRepository.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace TevAgent {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

Model model(const std::string& name, const std::optional<std::string>& version = std::nullopt) {
    Model made;
    made.name = name;
    made.version = version;
    made.file = "/models/" + name + version.value_or("") + ".xml";
    return made;
}

Model transportModel() {
    Model made = model("TransportModel", "2");
    made.release = "1";
    made.correction = "5";
    made.domains["ORVA"] = {{"orvaMomName", "OrvaTransport"}, {"orvaMomVersion", "3"}};
    made.domains["OTHER"] = {{"key", "value"}};
    made.features = {"IpSec", "Ipv6"};
    return made;
}

/// A repository, seen as a component sees it: through its tables alone.
class Client {
public:
    explicit Client(std::vector<Model> models)
        : repository(std::make_unique<ModelRepository>(std::move(models))),
          table(*reinterpret_cast<DalOamSpiModelRepository_4*>(repository->repositoryTable())),
          extension(*reinterpret_cast<DalOamSpiModelRepositoryExtension_1*>(repository->extensionTable())) {}

    /// The handles in the order of the walk.
    std::vector<DalOamSpiMrMomHandle_4T> walk() const {
        std::vector<DalOamSpiMrMomHandle_4T> handles;
        DalOamSpiMrMomHandle_4T mom = 0;
        TevReturnT result = table.root->getFirstMom(&mom);
        while (result == TevReturnOk) {
            handles.push_back(mom);
            result = table.mom->getNextMom(mom, &mom);
        }
        EXPECT_EQ(result, TevReturnNotFound);
        return handles;
    }

    DalOamSpiMrMomHandle_4T first() const { return walk().at(0); }

    DalOamSpiMrGeneralPropertiesHandle_4T properties(DalOamSpiMrMomHandle_4T mom) const {
        DalOamSpiMrGeneralPropertiesHandle_4T handle = 0;
        EXPECT_EQ(table.mom->getMomGeneralProperties(mom, &handle), TevReturnOk);
        return handle;
    }

    std::string name(DalOamSpiMrMomHandle_4T mom) const {
        const char* text = nullptr;
        EXPECT_EQ(table.generalProperties->getGeneralStringProperty(properties(mom), DalOamSpiMrGeneralName, &text),
                  TevReturnOk);
        return text;
    }

    std::optional<std::string> text(DalOamSpiMrMomHandle_4T mom, std::int32_t selector) const {
        const char* result = "not set";
        EXPECT_EQ(table.mom->getMomStringProperty(mom, selector, &result), TevReturnOk);
        return result == nullptr ? std::nullopt : std::optional<std::string>(result);
    }

    std::vector<std::string> features(DalOamSpiMrMomHandle_4T mom) const {
        const char** names = nullptr;
        EXPECT_EQ(table.mom->getMomFeatureNames(mom, &names), TevReturnOk);
        std::vector<std::string> copy;
        for (const char** entry = names; *entry != nullptr; ++entry) {
            copy.emplace_back(*entry);
            std::free(const_cast<char*>(*entry));
        }
        delete[] names;
        return copy;
    }

    std::unique_ptr<ModelRepository> repository;
    const DalOamSpiModelRepository_4& table;
    const DalOamSpiModelRepositoryExtension_1& extension;
};

TEST(ModelRepositoryTest, tablesNameTheirInterfaces) {
    const Client client({});
    EXPECT_STREQ(client.table.base.componentName, "DalOamSpiModelRepositoryService");
    EXPECT_STREQ(client.table.base.interfaceName, "DalOamSpiModelRepository");
    EXPECT_STREQ(client.table.base.interfaceVersion, "4");
    EXPECT_STREQ(client.extension.base.componentName, "DalOamSpiModelRepositoryService");
    EXPECT_STREQ(client.extension.base.interfaceName, "DalOamSpiModelRepositoryExtension");
    EXPECT_STREQ(client.extension.base.interfaceVersion, "1");
}

TEST(ModelRepositoryTest, tablesHaveNoEmptySlot) {
    const Client client({});
    client.table.generalProperties->reserved1();
    client.table.generalProperties->reserved2();
    client.table.mom->reserved2();
    client.table.mom->reserved3();
    EXPECT_NE(client.table.root->getFirstMom, nullptr);
}

TEST(ModelRepositoryTest, walkOverAnEmptyRepositoryEndsAtOnce) {
    const Client client({});
    DalOamSpiMrMomHandle_4T mom = 7;
    EXPECT_EQ(client.table.root->getFirstMom(&mom), TevReturnNotFound);
    EXPECT_EQ(mom, 7U);
}

TEST(ModelRepositoryTest, walkGivesEveryModelInTheGivenOrder) {
    const Client client({model("B"), model("A"), model("C", "1"), model("C", "2")});
    std::vector<std::string> names;
    for (const DalOamSpiMrMomHandle_4T mom : client.walk()) {
        names.push_back(client.name(mom));
    }
    EXPECT_THAT(names, ElementsAre("B", "A", "C", "C"));
}

TEST(ModelRepositoryTest, givesVersionReleaseAndCorrection) {
    const Client client({transportModel()});
    EXPECT_THAT(client.text(client.first(), DalOamSpiMrMomVersion), Optional(std::string("2")));
    EXPECT_THAT(client.text(client.first(), DalOamSpiMrMomRelease), Optional(std::string("1")));
    EXPECT_THAT(client.text(client.first(), DalOamSpiMrMomCorrection), Optional(std::string("5")));
}

TEST(ModelRepositoryTest, givesANullTextForAnAbsentVersionReleaseOrCorrection) {
    const Client client({model("A")});
    EXPECT_EQ(client.text(client.first(), DalOamSpiMrMomVersion), std::nullopt);
    EXPECT_EQ(client.text(client.first(), DalOamSpiMrMomRelease), std::nullopt);
    EXPECT_EQ(client.text(client.first(), DalOamSpiMrMomCorrection), std::nullopt);
}

TEST(ModelRepositoryTest, givesDomainValues) {
    const Client client({transportModel()});
    const auto properties = client.properties(client.first());
    const char* value = nullptr;
    EXPECT_EQ(client.table.generalProperties->getGeneralDomainValue(properties, "ORVA", "orvaMomName", &value),
              TevReturnOk);
    EXPECT_STREQ(value, "OrvaTransport");
    EXPECT_EQ(client.table.generalProperties->getGeneralDomainValue(properties, "OTHER", "key", &value), TevReturnOk);
    EXPECT_STREQ(value, "value");
}

TEST(ModelRepositoryTest, reportsAnAbsentDomainValueAsNotFound) {
    const Client client({transportModel()});
    const auto properties = client.properties(client.first());
    for (const auto& [domain, key] : {std::pair("ORVA", "orvaMomRelease"), std::pair("orva", "orvaMomName"),
                                      std::pair("ORVA", "key"), std::pair("", "")}) {
        const char* value = "not set";
        EXPECT_EQ(client.table.generalProperties->getGeneralDomainValue(properties, domain, key, &value),
                  TevReturnNotFound);
        EXPECT_EQ(value, nullptr);
    }
}

TEST(ModelRepositoryTest, givesTheFeaturesOfEachModelAway) {
    const Client client({transportModel(), model("Plain")});
    const auto moms = client.walk();
    EXPECT_THAT(client.features(moms[0]), ElementsAre("IpSec", "Ipv6"));
    EXPECT_THAT(client.features(moms[0]), ElementsAre("IpSec", "Ipv6"));
    EXPECT_THAT(client.features(moms[1]), IsEmpty());
}

TEST(ModelRepositoryTest, givesAnEmptyListNotANullOneForNoFeatures) {
    const Client client({model("Plain")});
    const char** names = nullptr;
    ASSERT_EQ(client.table.mom->getMomFeatureNames(client.first(), &names), TevReturnOk);
    ASSERT_NE(names, nullptr);
    EXPECT_EQ(*names, nullptr);
    delete[] names;
}

TEST(ModelRepositoryTest, findsAFileByNameAndVersion) {
    const Client client({model("A"), model("A", "1"), model("A", "2"), model("B", "1")});
    const auto fileOf = [&client](const char* name, const char* version) {
        const char* file = nullptr;
        EXPECT_EQ(client.extension.getMomFileName(name, version, &file), TevReturnOk);
        return std::string(file);
    };
    EXPECT_EQ(fileOf("A", nullptr), "/models/A.xml");
    EXPECT_EQ(fileOf("A", "2"), "/models/A2.xml");
    EXPECT_EQ(fileOf("B", "1"), "/models/B1.xml");
}

TEST(ModelRepositoryTest, findsNoFileForAnotherVersion) {
    const Client client({model("A"), model("B", "1")});
    for (const auto& [name, version] : {std::pair("A", "1"), std::pair("A", ""), std::pair("B", "2"),
                                        std::pair<const char*, const char*>("B", nullptr), std::pair("C", "1")}) {
        const char* file = "not set";
        EXPECT_EQ(client.extension.getMomFileName(name, version, &file), TevReturnNotFound);
        EXPECT_EQ(file, nullptr);
    }
}

TEST(ModelRepositoryTest, refusesNullArguments) {
    const Client client({transportModel()});
    const auto mom = client.first();
    const auto properties = client.properties(mom);
    const char* text = nullptr;
    EXPECT_EQ(client.table.root->getFirstMom(nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(client.table.mom->getNextMom(mom, nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(client.table.mom->getMomGeneralProperties(mom, nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(client.table.mom->getMomStringProperty(mom, DalOamSpiMrMomVersion, nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(client.table.mom->getMomFeatureNames(mom, nullptr), TevReturnInvalidArgument);
    const DalOamSpiMrGeneralProperties_4& general = *client.table.generalProperties;
    EXPECT_EQ(general.getGeneralStringProperty(properties, DalOamSpiMrGeneralName, nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(general.getGeneralDomainValue(properties, "ORVA", "orvaMomName", nullptr), TevReturnInvalidArgument);
    EXPECT_EQ(general.getGeneralDomainValue(properties, nullptr, "orvaMomName", &text), TevReturnInvalidArgument);
    EXPECT_EQ(general.getGeneralDomainValue(properties, "ORVA", nullptr, &text), TevReturnInvalidArgument);
    EXPECT_EQ(client.extension.getMomFileName(nullptr, "2", &text), TevReturnInvalidArgument);
    EXPECT_EQ(client.extension.getMomFileName("TransportModel", "2", nullptr), TevReturnInvalidArgument);
}

/// Expects that no operation on a MOM takes `mom` for one.
void expectNoMom(const Client& client, DalOamSpiMrMomHandle_4T mom) {
    DalOamSpiMrMomHandle_4T next = 7;
    EXPECT_EQ(client.table.mom->getNextMom(mom, &next), TevReturnNotFound);
    EXPECT_EQ(next, 7U);
    DalOamSpiMrGeneralPropertiesHandle_4T properties = 7;
    EXPECT_EQ(client.table.mom->getMomGeneralProperties(mom, &properties), TevReturnNotFound);
    EXPECT_EQ(properties, 7U);
    const char* text = "not set";
    EXPECT_EQ(client.table.mom->getMomStringProperty(mom, DalOamSpiMrMomVersion, &text), TevReturnNotFound);
    EXPECT_EQ(text, nullptr);
    const char** names = &text;
    EXPECT_EQ(client.table.mom->getMomFeatureNames(mom, &names), TevReturnNotFound);
    EXPECT_EQ(names, nullptr);
}

/// Expects that no operation on general properties takes `properties` for such.
void expectNoProperties(const Client& client, DalOamSpiMrGeneralPropertiesHandle_4T properties) {
    const DalOamSpiMrGeneralProperties_4& general = *client.table.generalProperties;
    const char* text = "not set";
    EXPECT_EQ(general.getGeneralStringProperty(properties, DalOamSpiMrGeneralName, &text), TevReturnNotFound);
    EXPECT_EQ(text, nullptr);
    text = "not set";
    EXPECT_EQ(general.getGeneralDomainValue(properties, "ORVA", "orvaMomName", &text), TevReturnNotFound);
    EXPECT_EQ(text, nullptr);
}

TEST(ModelRepositoryTest, knowsOnlyTheHandlesThatItGave) {
    const Client client({transportModel(), transportModel()});
    const auto moms = client.walk();
    for (const std::uint64_t handle : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX, moms[0] - 1, moms[1] + 1}) {
        expectNoMom(client, handle);
        expectNoProperties(client, handle);
    }
    expectNoProperties(client, client.properties(moms[0]) - 1);
    expectNoProperties(client, client.properties(moms[1]) + 1);
}

TEST(ModelRepositoryTest, takesNoHandleOfOneKindForTheOther) {
    const Client client({transportModel(), transportModel()});
    for (const DalOamSpiMrMomHandle_4T mom : client.walk()) {
        expectNoProperties(client, mom);
        expectNoMom(client, client.properties(mom));
    }
}

TEST(ModelRepositoryTest, knowsOnlyTheSelectorsOfTheInterface) {
    const Client client({transportModel()});
    const auto mom = client.first();
    for (const std::int32_t selector : {-1, 2, 7, 9, INT32_MAX}) {
        const char* text = "not set";
        EXPECT_EQ(client.table.mom->getMomStringProperty(mom, selector, &text), TevReturnNotFound);
        EXPECT_EQ(text, nullptr);
    }
    const char* text = "not set";
    EXPECT_EQ(client.table.generalProperties->getGeneralStringProperty(client.properties(mom), 1, &text),
              TevReturnNotFound);
    EXPECT_EQ(text, nullptr);
}

TEST(ModelRepositoryTest, isTheOnlyOneOfTheProcess) {
    const Client client({model("A")});
    EXPECT_THROW(ModelRepository second({}), std::logic_error);
    EXPECT_EQ(client.name(client.first()), "A");
}

TEST(ModelRepositoryTest, makesRoomForAnotherWhenItGoes) {
    { const Client first({model("A")}); }
    const Client second({model("B")});
    EXPECT_EQ(second.name(second.first()), "B");
}

TEST(ModelRepositoryTest, leavesTablesThatKnowNoModelWhenItGoes) {
    Client client({transportModel()});
    const auto mom = client.first();
    const auto properties = client.properties(mom);
    client.repository.reset();
    EXPECT_THAT(client.walk(), IsEmpty());
    expectNoMom(client, mom);
    expectNoProperties(client, properties);
    const char* file = "not set";
    EXPECT_EQ(client.extension.getMomFileName("TransportModel", "2", &file), TevReturnNotFound);
    EXPECT_EQ(file, nullptr);
}

TEST(ModelRepositoryTest, servesManyThreadsAtOnce) {
    const Client client({transportModel(), model("Plain"), model("Other", "4")});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&client] {
            for (int round = 0; round < 200; ++round) {
                const auto moms = client.walk();
                ASSERT_EQ(moms.size(), 3U);
                EXPECT_THAT(client.features(moms[0]), ElementsAre("IpSec", "Ipv6"));
                EXPECT_EQ(client.name(moms[2]), "Other");
                const char* file = nullptr;
                EXPECT_EQ(client.extension.getMomFileName("Plain", nullptr, &file), TevReturnOk);
                EXPECT_STREQ(file, "/models/Plain.xml");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace TevAgent

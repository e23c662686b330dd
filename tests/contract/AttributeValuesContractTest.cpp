#include "ContractTest.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

/// The containers that reads of attributes hand out.
class AttributeValuesContractTest : public ContractTest {
protected:
    static constexpr const char* attributeNames[] = {"schemaId", "identifier",       "baseModelIdentifier",
                                                     "version",  "baseModelVersion", "selectedModelOptions"};

    /// A model with a value for every attribute.
    static FakeModel full(const std::string& name) {
        return {name,
                "2",
                "1",
                "5",
                {{"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}},
                Values{"Alpha", "Beta", "Gamma"}};
    }

    /// The container of an attribute, or null when it cannot be read.
    const DalMoAttributeValueContainer* get(unsigned long txHandle, const std::string& schemaId,
                                            const char* attributeName) {
        DalMoAttributeValueContainer* container = nullptr;
        EXPECT_EQ(objects().getMoAttribute(txHandle, dnOf(schemaId).c_str(), attributeName, &container), 0);
        EXPECT_NE(container, nullptr);
        return container;
    }

    static void expectOne(const DalMoAttributeValueContainer* container, const std::string& text) {
        ASSERT_NE(container, nullptr);
        EXPECT_EQ(container->type, 9);
        ASSERT_EQ(container->nrOfValues, 1U);
        ASSERT_NE(container->values, nullptr);
        EXPECT_EQ(container->values[0].theString, text);
    }

    static void expectNone(const DalMoAttributeValueContainer* container) {
        ASSERT_NE(container, nullptr);
        EXPECT_EQ(container->type, 9);
        EXPECT_EQ(container->nrOfValues, 0U);
        EXPECT_EQ(container->values, nullptr);
    }

    /// Checks that a read of an attribute that the class does not have fails as it should, and allocates nothing.
    void expectUnknown(const std::string& attributeName) {
        expectNoValue(
            dnOf("Mom"), attributeName, -2,
            "Could not get Mo attribute: [Attribute does not exist in the schema, attribute: " + attributeName + "]");
    }
};

TEST_F(AttributeValuesContractTest, attributeWithATextHasOneStringValue) {
    startWith({full("Mom")});
    const unsigned long txHandle = begin();
    expectOne(get(txHandle, "Mom", "schemaId"), "Mom");
    expectOne(get(txHandle, "Mom", "identifier"), "Mom");
    expectOne(get(txHandle, "Mom", "baseModelIdentifier"), "Base");
    expectOne(get(txHandle, "Mom", "version"), "2.1.5");
    expectOne(get(txHandle, "Mom", "baseModelVersion"), "3.4");
}

TEST_F(AttributeValuesContractTest, successfulReadLogsItsArgumentsOnly) {
    startWith({full("Mom")});
    for (const char* attributeName : attributeNames) {
        SCOPED_TRACE(attributeName);
        const unsigned long txHandle = begin();
        log.clear();
        get(txHandle, "Mom", attributeName);
        EXPECT_THAT(log.records(), ElementsAreArray(readTrace(txHandle, dnOf("Mom"), attributeName)));
    }
}

TEST_F(AttributeValuesContractTest, emptyVersionIsOneEmptyString) {
    startWith({FakeModel{"Mom"}});
    expectOne(get(begin(), "Mom", "version"), "");
}

TEST_F(AttributeValuesContractTest, emptyNameIsOneEmptyString) {
    startWith({FakeModel{""}});
    const unsigned long txHandle = begin();
    expectOne(get(txHandle, "", "schemaId"), "");
    expectOne(get(txHandle, "", "identifier"), "");
}

TEST_F(AttributeValuesContractTest, emptyBaseModelIdentifierHasNoValueAndNoArray) {
    startWith({FakeModel{"Mom"}});
    expectNone(get(begin(), "Mom", "baseModelIdentifier"));
}

TEST_F(AttributeValuesContractTest, emptyBaseModelVersionHasNoValueAndNoArray) {
    startWith({FakeModel{"Mom"}});
    expectNone(get(begin(), "Mom", "baseModelVersion"));
}

TEST_F(AttributeValuesContractTest, missingOptionListHasNoValueAndNoArray) {
    startWith({FakeModel{"Mom"}});
    expectNone(get(begin(), "Mom", "selectedModelOptions"));
}

TEST_F(AttributeValuesContractTest, emptyOptionListHasNoValueButAnArray) {
    FakeModel model{"Mom"};
    model.features = Values{};
    startWith({model});
    const DalMoAttributeValueContainer* const container = get(begin(), "Mom", "selectedModelOptions");
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container->type, 9);
    EXPECT_EQ(container->nrOfValues, 0U);
    EXPECT_NE(container->values, nullptr);
}

TEST_F(AttributeValuesContractTest, optionListHasAValueForEachEntryInOrder) {
    startWith({full("Mom")});
    const DalMoAttributeValueContainer* const container = get(begin(), "Mom", "selectedModelOptions");
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container->type, 9);
    ASSERT_EQ(container->nrOfValues, 3U);
    EXPECT_STREQ(container->values[0].theString, "Alpha");
    EXPECT_STREQ(container->values[1].theString, "Beta");
    EXPECT_STREQ(container->values[2].theString, "Gamma");
}

TEST_F(AttributeValuesContractTest, longOptionListIsGivenWhole) {
    Values features;
    for (int i = 0; i < 5000; ++i) {
        features.push_back("Feature" + std::to_string(i));
    }
    FakeModel model{"Mom"};
    model.features = features;
    startWith({model});
    EXPECT_EQ(read(begin(), "Mom", "selectedModelOptions"), features);
}

TEST_F(AttributeValuesContractTest, textsAreGivenByteForByte) {
    const std::string name = "a,b\n%s%n \t\x01\xc3\xa9\xff\x80";
    const std::string text = "=" + name;
    const std::string longText(100000, 'x');
    startWith({{name,
                longText,
                text,
                {},
                {{"orvaMomName", text}, {"orvaMomVersion", longText}, {"orvaMomRelease", text}},
                Values{text, longText},
                "/models/any.xml"}});
    const unsigned long txHandle = begin();
    EXPECT_THAT(read(txHandle, name, "schemaId"), ElementsAre(name));
    EXPECT_THAT(read(txHandle, name, "identifier"), ElementsAre(name));
    EXPECT_THAT(read(txHandle, name, "version"), ElementsAre(longText + "." + text));
    EXPECT_THAT(read(txHandle, name, "baseModelIdentifier"), ElementsAre(text));
    EXPECT_THAT(read(txHandle, name, "baseModelVersion"), ElementsAre(longText + "." + text));
    EXPECT_THAT(read(txHandle, name, "selectedModelOptions"), ElementsAre(text, longText));
}

TEST_F(AttributeValuesContractTest, everyReadGivesAContainerOfItsOwn) {
    startWith({full("Mom")});
    const unsigned long txHandle = begin();
    for (const char* attributeName : attributeNames) {
        SCOPED_TRACE(attributeName);
        const DalMoAttributeValueContainer* const first = get(txHandle, "Mom", attributeName);
        const DalMoAttributeValueContainer* const second = get(txHandle, "Mom", attributeName);
        ASSERT_TRUE(first != nullptr && second != nullptr);
        EXPECT_NE(first, second);
        EXPECT_NE(first->values, second->values);
        EXPECT_NE(first->values[0].theString, second->values[0].theString);
    }
}

TEST_F(AttributeValuesContractTest, valuesAreCopies) {
    startWith({full("Mom")});
    const unsigned long txHandle = begin();
    for (const char* attributeName : attributeNames) {
        SCOPED_TRACE(attributeName);
        const Values before = read(txHandle, "Mom", attributeName);
        const DalMoAttributeValueContainer* const container = get(txHandle, "Mom", attributeName);
        ASSERT_NE(container, nullptr);
        for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
            container->values[i].theString[0] = '\0';
        }
        EXPECT_EQ(read(txHandle, "Mom", attributeName), before);
    }
}

TEST_F(AttributeValuesContractTest, valuesStayUntilTheTransactionFinishes) {
    startWith({full("Mom"), FakeModel{"Other"}});
    const unsigned long txHandle = begin();
    const DalMoAttributeValueContainer* const version = get(txHandle, "Mom", "version");
    const DalMoAttributeValueContainer* const options = get(txHandle, "Mom", "selectedModelOptions");
    const DalMoAttributeValueContainer* const none = get(txHandle, "Other", "baseModelVersion");
    for (int i = 0; i < 100; ++i) {
        read(txHandle, "Other", "schemaId");
    }
    bool valid = false;
    EXPECT_EQ(resource().validate(txHandle, &valid), 0);
    EXPECT_EQ(resource().prepare(txHandle), 0);
    EXPECT_EQ(resource().abort(txHandle), 0);
    EXPECT_EQ(resource().commit(txHandle), 0);
    expectOne(version, "2.1.5");
    expectNone(none);
    ASSERT_EQ(options->nrOfValues, 3U);
    EXPECT_STREQ(options->values[2].theString, "Gamma");
}

TEST_F(AttributeValuesContractTest, attributeNamesAreComparedWholeAndWithTheirCase) {
    startWith({full("Mom")});
    for (const char* attributeName :
         {"SchemaId", "SCHEMAID", "schemaid", "schemaI", "schemaId ", " schemaId", "schemaIdX", "Version",
          "baseModelIdentifierX", "baseModel", "selectedModelOption", "selectedmodeloptions", "export", ""}) {
        expectUnknown(attributeName);
    }
}

TEST_F(AttributeValuesContractTest, fileNamesAreNoAttributes) {
    startWith({full("Mom")});
    expectUnknown("fileName");
    expectUnknown("completeFileName");
}

TEST_F(AttributeValuesContractTest, unknownNameIsShownAsItIs) {
    startWith({full("Mom")});
    expectUnknown("%s%n%d");
    expectUnknown("100%");
    expectUnknown("caf\xc3\xa9\xff");
    expectUnknown(std::string(100000, 'a'));
}

}  // namespace

}  // namespace TevTest

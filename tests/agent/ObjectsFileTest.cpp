#include "ObjectsFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "FileError.h"

namespace TevAgent {
namespace {

using testing::StartsWith;

/// Why the text is refused, with the line: "2: <mo> has no id".
std::string refusalOf(const std::string& xml) {
    ObjectsFile file;
    try {
        file.take(xml);
    } catch (const FileError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "accepted";
}

/// `elements` as children of the root, on lines of their own from line 2 on.
std::string inRoot(const std::string& elements) {
    return "<managedObjects>\n" + elements + "\n</managedObjects>";
}

/// `elements` as children of an object, on lines of their own from line 2 on.
std::string inObject(const std::string& elements) {
    return "<managedObjects><mo class=\"A\" id=\"1\">\n" + elements + "\n</mo></managedObjects>";
}

/// An attribute `a` of `type` with one value, on line 2.
std::string withValue(const std::string& type, const std::string& value) {
    return inObject("<attribute name=\"a\" type=\"" + type + "\"><value>" + value + "</value></attribute>");
}

/// `depth` elements inside each other.
std::string nested(std::size_t depth) {
    std::string text = "<managedObjects>";
    for (std::size_t i = 1; i < depth; ++i) {
        text += "<mo class=\"A\" id=\"1\">";
    }
    for (std::size_t i = 1; i < depth; ++i) {
        text += "</mo>";
    }
    return text + "</managedObjects>";
}

TEST(ObjectsFileTest, acceptsAFileWithoutObjects) {
    EXPECT_EQ(refusalOf("<managedObjects/>"), "accepted");
    EXPECT_EQ(refusalOf("<?xml version=\"1.0\"?>\n<!-- none -->\n<managedObjects>\n</managedObjects>\n"), "accepted");
}

TEST(ObjectsFileTest, joinsAValueThatCommentsAndReferencesCut) {
    ObjectsFile file;
    file.take(withValue("string", "a<!-- x -->b&amp;c<![CDATA[<d>]]>"));
    const ManagedObject& object = *file.root.children.find("A")->second.byKey.find("1")->second;
    EXPECT_STREQ(object.attributes.find("a")->second.values.at(0).theString, "ab&c<d>");
}

TEST(ObjectsFileTest, refusesAnotherRoot) {
    EXPECT_EQ(refusalOf("\n<objects/>"), "2: the root element is <objects>, not <managedObjects>");
    EXPECT_EQ(refusalOf("<mo class=\"A\" id=\"1\"/>"), "1: the root element is <mo>, not <managedObjects>");
}

TEST(ObjectsFileTest, refusesWhatIsNotWellFormed) {
    EXPECT_EQ(refusalOf("objects"), "1: not well-formed XML: syntax error");
    EXPECT_EQ(refusalOf("<managedObjects>\n</mo>"), "2: not well-formed XML: mismatched tag");
    EXPECT_EQ(refusalOf("<managedObjects>\n<mo class=\"A\" id=\"1\">\n"),
              "3: the file ends too early, inside an element");
    EXPECT_EQ(refusalOf("<managedObjects/>\n<managedObjects/>"), "2: not well-formed XML: junk after document element");
}

TEST(ObjectsFileTest, refusesADocumentTypeSoNoEntityCanGrow) {
    EXPECT_EQ(refusalOf("<!DOCTYPE managedObjects [<!ENTITY a \"b\">]>\n<managedObjects/>"),
              "1: a document type declaration (DOCTYPE) is not accepted");
}

TEST(ObjectsFileTest, refusesUnknownElements) {
    EXPECT_EQ(refusalOf(inRoot("<object/>")), "2: <object> does not belong here");
    EXPECT_EQ(refusalOf(inRoot("<MO class=\"A\" id=\"1\"/>")), "2: <MO> does not belong here");
    EXPECT_EQ(refusalOf(inObject("<note/>")), "2: <note> does not belong here");
}

TEST(ObjectsFileTest, refusesElementsInTheWrongPlace) {
    EXPECT_EQ(refusalOf(inRoot("<attribute name=\"a\" type=\"bool\"/>")), "2: <attribute> does not belong here");
    EXPECT_EQ(refusalOf(inObject("<value>1</value>")), "2: <value> does not belong here");
    EXPECT_EQ(refusalOf(inObject("<route class=\"A\" parent=\"\" component=\"C\"/>")),
              "2: <route> does not belong here");
    EXPECT_EQ(refusalOf(inObject("<managedObjects/>")), "2: <managedObjects> does not belong here");
    EXPECT_EQ(refusalOf(withValue("string", "<value>1</value>")), "2: <value> does not belong here");
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\" type=\"bool\">\n<mo class=\"B\" id=\"1\"/></attribute>")),
              "3: <mo> does not belong here");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"\" component=\"C\">\n<mo class=\"B\" id=\"1\"/></route>")),
              "3: <mo> does not belong here");
}

TEST(ObjectsFileTest, refusesUnknownAttributes) {
    EXPECT_EQ(refusalOf("<managedObjects version=\"1\"/>"), "1: <managedObjects> has an unknown attribute \"version\"");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"1\" key=\"1\"/>")), "2: <mo> has an unknown attribute \"key\"");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"\" component=\"C\" x=\"\"/>")),
              "2: <route> has an unknown attribute \"x\"");
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\" type=\"bool\" value=\"true\"/>")),
              "2: <attribute> has an unknown attribute \"value\"");
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\" type=\"bool\"><value type=\"bool\">true</value></attribute>")),
              "2: <value> has an unknown attribute \"type\"");
}

TEST(ObjectsFileTest, refusesAnObjectWithoutClassOrId) {
    EXPECT_EQ(refusalOf(inRoot("<mo id=\"1\"/>")), "2: <mo> has no class");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\"/>")), "2: <mo> has no id");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"\" id=\"1\"/>")), "2: the class of <mo> is empty");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"\"/>")), "2: the id of <mo> is empty");
}

TEST(ObjectsFileTest, refusesAClassOrIdThatCannotStandInADn) {
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A=B\" id=\"1\"/>")), "2: the class of <mo> holds '=': \"A=B\"");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A,B\" id=\"1\"/>")), "2: the class of <mo> holds ',': \"A,B\"");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"1,B=2\"/>")), "2: the id of <mo> holds '=': \"1,B=2\"");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"1,2\"/>")), "2: the id of <mo> holds ',': \"1,2\"");
    EXPECT_THAT(refusalOf(inRoot("<mo class=\"A\" id=\"1&#10;\"/>")),
                StartsWith("2: the id of <mo> holds a control character"));
    EXPECT_THAT(refusalOf(inRoot("<mo class=\"&#x85;\" id=\"1\"/>")),
                StartsWith("2: the class of <mo> holds a control character"));
}

TEST(ObjectsFileTest, refusesTwoSiblingsOfOneClassAndId) {
    EXPECT_EQ(refusalOf(inObject("<mo class=\"B\" id=\"1\"/>\n<mo class=\"B\" id=\"1\"/>")),
              "3: there is an object of class \"B\" and id \"1\" with this parent already");
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"1\"/>\n<mo class=\"A\" id=\"1\"/>")),
              "3: there is an object of class \"A\" and id \"1\" with this parent already");
}

TEST(ObjectsFileTest, acceptsOneIdInTwoClassesAndUnderTwoParents) {
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"A\" id=\"1\"><mo class=\"C\" id=\"1\"/></mo>"
                               "<mo class=\"B\" id=\"1\"><mo class=\"C\" id=\"1\"/></mo>")),
              "accepted");
}

TEST(ObjectsFileTest, refusesAnAttributeGivenTwice) {
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\" type=\"bool\"/>\n<attribute name=\"a\" type=\"int8\"/>")),
              "3: the object has the attribute \"a\" twice");
}

TEST(ObjectsFileTest, refusesAnAttributeWithoutNameOrType) {
    EXPECT_EQ(refusalOf(inObject("<attribute type=\"bool\"/>")), "2: <attribute> has no name");
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"\" type=\"bool\"/>")), "2: the name of <attribute> is empty");
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\"/>")), "2: <attribute> has no type");
}

TEST(ObjectsFileTest, refusesAnUnknownType) {
    EXPECT_EQ(refusalOf(withValue("uint7", "1")), "2: the attribute \"a\" has an unknown type \"uint7\"");
    EXPECT_EQ(refusalOf(withValue("struct", "1")), "2: the attribute \"a\" has an unknown type \"struct\"");
}

TEST(ObjectsFileTest, refusesAValueThatIsNotOfTheType) {
    EXPECT_EQ(refusalOf(withValue("uint8", "256")),
              "2: the attribute \"a\": \"256\" is out of the range of type uint8");
    EXPECT_EQ(refusalOf(withValue("int32", "ten")), "2: the attribute \"a\": \"ten\" is no value of type int32");
    EXPECT_EQ(refusalOf(withValue("bool", "")),
              "2: the attribute \"a\": \"\" is neither \"true\" nor \"false\", the values of type bool");
    EXPECT_EQ(refusalOf(withValue("reference", "here")),
              "2: the attribute \"a\": \"here\" is not a DN, and so no value of type reference");
}

TEST(ObjectsFileTest, namesTheLineWhereABadValueBegins) {
    EXPECT_THAT(refusalOf(inObject("<attribute name=\"a\" type=\"int8\">\n<value>1</value>\n<value>\n\nx\n</value>"
                                   "</attribute>")),
                StartsWith("4: "));
}

TEST(ObjectsFileTest, refusesTextWhereNoneBelongs) {
    const std::string reason = "2: there is text where none belongs";
    EXPECT_EQ(refusalOf(inRoot("x")), reason);
    EXPECT_EQ(refusalOf(inObject("x")), reason);
    EXPECT_EQ(refusalOf(inObject("<attribute name=\"a\" type=\"int8\">10</attribute>")), reason);
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"\" component=\"C\">x</route>")), reason);
}

TEST(ObjectsFileTest, refusesARouteThatIsIncomplete) {
    EXPECT_EQ(refusalOf(inRoot("<route parent=\"\" component=\"C\"/>")), "2: <route> has no class");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" component=\"C\"/>")), "2: <route> has no parent");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"\"/>")), "2: <route> has no component");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"\" component=\"\"/>")),
              "2: the component of <route> is empty");
}

TEST(ObjectsFileTest, refusesARouteWhoseClassesCannotStandInADn) {
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A=1\" parent=\"\" component=\"C\"/>")),
              "2: the class of <route> holds '=': \"A=1\"");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"B=1\" component=\"C\"/>")),
              "2: a class in the parent of <route> holds '=': \"B=1\"");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"B,\" component=\"C\"/>")),
              "2: a class in the parent of <route> is empty");
}

TEST(ObjectsFileTest, refusesTwoRoutesForOneClassAndParent) {
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"B\" component=\"C\"/>\n"
                               "<route class=\"A\" parent=\"B\" component=\"D\"/>")),
              "3: there is a <route> for class \"A\" and this parent already");
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"B\" component=\"C\"/>"
                               "<route class=\"A\" parent=\"\" component=\"C\"/>")),
              "accepted");
}

TEST(ObjectsFileTest, refusesAnObjectThatIsRoutedToAComponent) {
    const std::string reason = "objects of class \"A\" belong to component \"C\", and could not be read from here";
    EXPECT_EQ(refusalOf(inRoot("<route class=\"A\" parent=\"B\" component=\"C\"/>\n<mo class=\"A\" id=\"1\"/>")),
              "3: " + reason);
    EXPECT_EQ(refusalOf(inRoot("<mo class=\"B\" id=\"1\">\n<mo class=\"A\" id=\"1\"/>\n<mo class=\"A\" id=\"2\"/></mo>"
                               "<route class=\"A\" parent=\"B\" component=\"C\"/>")),
              "3: " + reason);
    ObjectsFile file({{"A", {}, "C"}});
    try {
        file.take(inRoot("<mo class=\"A\" id=\"1\"/>"));
        FAIL() << "the object was taken";
    } catch (const FileError& error) {
        EXPECT_EQ(error.line(), 2U);
        EXPECT_EQ(error.what(), reason);
    }
}

TEST(ObjectsFileTest, acceptsSixtyFourLevelsAndNoMore) {
    EXPECT_EQ(refusalOf(nested(64)), "accepted");
    EXPECT_EQ(refusalOf(nested(65)), "1: elements are nested deeper than 64 levels");
    EXPECT_EQ(refusalOf(nested(100000)), "1: elements are nested deeper than 64 levels");
}

TEST(ObjectsFileTest, shortensWhatItQuotes) {
    const std::string longText(100000, '9');
    EXPECT_LE(refusalOf(withValue("int8", longText)).size(), 250U);
    EXPECT_LE(refusalOf(inRoot("<mo class=\"A\" id=\"=" + longText + "\"/>")).size(), 250U);
    EXPECT_LE(refusalOf(inRoot("<m" + longText + "/>")).size(), 250U);
}

}  // namespace
}  // namespace TevAgent

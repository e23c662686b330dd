#include "Portal.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string portalVersion;  // what the accessor was last asked for
std::string lookup;         // what the portal was last asked for
TevReturnT lookupResult = 0;
int service = 0;

TevReturnT findInterface(const char* componentName, const char* interfaceName, const char* version, void** result) {
    lookup = std::string(componentName) + '/' + interfaceName + '/' + version;
    *result = lookupResult == 0 ? &service : nullptr;
    return lookupResult;
}

DalPortal_3 portal{{"DalPortalService", "DalPortal", "3"}, findInterface, nullptr, nullptr, nullptr};

void* portalOfVersion3(const char* version) {
    portalVersion = version;
    return portalVersion == "3" ? &portal : nullptr;
}

void* noPortal(const char* /*version*/) {
    return nullptr;
}

DalPortalAccessor accessor{portalOfVersion3};
DalPortalAccessor emptyAccessor{noPortal};

/// Leaves the library without an accessor, as a host does at its end.
class PortalTest : public testing::Test {
protected:
    PortalTest() { lookupResult = 0; }
    ~PortalTest() override { Tev::Portal::setAccessor(nullptr); }

    void* result = &portal;  // something, to see that it is set
};

TEST_F(PortalTest, descriptorNamesThePortal) {
    EXPECT_STREQ(Tev::Portal::COMP_ID.componentName, "DalPortalService");
    EXPECT_STREQ(Tev::Portal::COMP_ID.interfaceName, "DalPortal");
    EXPECT_STREQ(Tev::Portal::COMP_ID.interfaceVersion, "3");
}

TEST_F(PortalTest, withoutAccessorThereIsNoInterface) {
    EXPECT_EQ(Tev::Portal::getInterface("Component", "Interface", "1", &result), -1);
    EXPECT_EQ(result, nullptr);
}

TEST_F(PortalTest, withoutPortalThereIsNoInterface) {
    Tev::Portal::setAccessor(&emptyAccessor);
    EXPECT_EQ(Tev::Portal::getInterface("Component", "Interface", "1", &result), -1);
    EXPECT_EQ(result, nullptr);
}

TEST_F(PortalTest, asksThePortalOfVersion3) {
    Tev::Portal::setAccessor(&accessor);
    EXPECT_EQ(Tev::Portal::getInterface("Component", "Interface", "2", &result), 0);
    EXPECT_EQ(result, &service);
    EXPECT_EQ(portalVersion, "3");
    EXPECT_EQ(lookup, "Component/Interface/2");
}

TEST_F(PortalTest, handsOnThePortalsRefusal) {
    Tev::Portal::setAccessor(&accessor);
    lookupResult = -2;
    EXPECT_EQ(Tev::Portal::getInterface("Component", "Interface", "2", &result), -2);
    EXPECT_EQ(result, nullptr);
}

TEST_F(PortalTest, accessorCanBeTakenBack) {
    Tev::Portal::setAccessor(&accessor);
    Tev::Portal::setAccessor(nullptr);
    EXPECT_EQ(Tev::Portal::getInterface("Component", "Interface", "2", &result), -1);
    EXPECT_EQ(result, nullptr);
}

}  // namespace

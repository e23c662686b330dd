#include "RecordingPortal.h"

#include <gmock/gmock.h>

#include "FakeComponent.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingPortalTest : public testing::Test {
protected:
    static DalPortal_3& table() { return *static_cast<DalPortal_3*>(RecordingPortal::accessor()->getPortal("3")); }

    static TevReturnT ask(const char* interfaceName, void** result) {
        return table().getInterface("Host", interfaceName, "4", result);
    }

    std::vector<std::string> asked() const {
        std::vector<std::string> texts;
        for (const InterfaceId& id : recorder.asked()) {
            texts.push_back(id.text());
        }
        return texts;
    }

    std::vector<std::string> calls;
    TevTest::FakeComponent<1> a{"A", calls};
    DalMgmtSpiInterface_1 clock = {"Host", "Clock", "4"};
    PortalService portal;
    RecordingPortal recorder{portal};
};

TEST_F(RecordingPortalTest, isThereInVersion3Only) {
    EXPECT_NE(RecordingPortal::accessor()->getPortal("3"), nullptr);
    EXPECT_EQ(RecordingPortal::accessor()->getPortal("1"), nullptr);
    EXPECT_EQ(RecordingPortal::accessor()->getPortal(nullptr), nullptr);
}

TEST_F(RecordingPortalTest, findsWhatThePortalBehindItDoesAndKeepsEachQuestionOnce) {
    portal.offer(clock);
    void* found = nullptr;
    EXPECT_EQ(ask("Clock", &found), 0);
    EXPECT_EQ(found, &clock);
    EXPECT_EQ(ask("Bell", &found), -2);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(ask("Clock", &found), 0);
    EXPECT_THAT(asked(), ElementsAre("Host/Clock version 4", "Host/Bell version 4"));
}

TEST_F(RecordingPortalTest, findsNothingWhileItRefuses) {
    portal.offer(clock);
    recorder.refuse(true);
    void* found = &found;
    EXPECT_EQ(ask("Clock", &found), -2);
    EXPECT_EQ(found, nullptr);
    recorder.refuse(false);
    EXPECT_EQ(ask("Clock", &found), 0);
}

TEST_F(RecordingPortalTest, keepsWhoIsRegistered) {
    EXPECT_EQ(table().registerComponent(&a.component), 0);
    EXPECT_THAT(recorder.registered(), ElementsAre(&a.component));
    EXPECT_EQ(portal.registered().size(), 1U);
    EXPECT_EQ(table().unregisterComponent(&a.component), 0);
    EXPECT_THAT(recorder.registered(), IsEmpty());
    EXPECT_THAT(portal.registered(), IsEmpty());
}

TEST_F(RecordingPortalTest, keepsAFaultyTableFromThePortalBehindIt) {
    a.component.start = nullptr;
    EXPECT_EQ(table().registerComponent(&a.component), 0);
    EXPECT_THAT(recorder.registered(), ElementsAre(&a.component));
    EXPECT_THAT(portal.registered(), IsEmpty());
}

TEST_F(RecordingPortalTest, forgetsWhatIsGone) {
    EXPECT_EQ(table().registerComponent(&a.component), 0);
    recorder.clear();
    EXPECT_THAT(recorder.registered(), IsEmpty());
    EXPECT_THAT(portal.registered(), IsEmpty());
}

}  // namespace

}  // namespace TevAgent

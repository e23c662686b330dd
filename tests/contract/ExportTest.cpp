#include "ExportTest.h"

#include "Portal.h"

namespace TevTest {

using testing::ElementsAreArray;
using testing::IsEmpty;

ExportTest::ExportTest() {
    Tev::Portal::setAccessor(host.accessor());
    host.models = {FakeModel{"Mom"}};
    host.models[0].file = file;
    restart();
}

ExportTest::~ExportTest() {
    EXPECT_EQ(runner.alive, 0U);
    EXPECT_EQ(resource().finish(txHandle), 0);
    Tev::Portal::setAccessor(nullptr);
}

void ExportTest::restart(const std::string& path) {
    EXPECT_EQ(stop(), 0);
    component->terminate();
    EXPECT_EQ(init(path.c_str()), 0);
    EXPECT_EQ(start(), 0);
    forget();
}

TevReturnT ExportTest::exportTo(const std::string& destination, const std::string& password) {
    ExportParameters parameters(destination, password);
    return act(dnOf("Mom"), "export", parameters.array);
}

FakeRunner::Arguments ExportTest::argumentsOf(const std::string& destination, const std::string& password) {
    runner.constructed.clear();
    EXPECT_EQ(exportTo(destination, password), 0);
    EXPECT_EQ(runner.constructed.size(), 1U);
    return runner.constructed.empty() ? FakeRunner::Arguments() : runner.constructed[0];
}

FakeRunner::Arguments ExportTest::plainArguments() const {
    return {"/usr/bin/sftp", "admin", "secret", "10.0.0.1", "2222", 1, file, "/tmp/f", false, "", "", "", 180000, 0};
}

void ExportTest::expectRecordsFromLevel(int level, const std::string& destination, const Records& records) {
    {
        const LogCapture capture(level);
        exportTo(destination);
        EXPECT_THAT(capture.records(), ElementsAreArray(records));
    }
    const LogCapture below(level - 1);
    exportTo(destination);
    EXPECT_THAT(below.records(), IsEmpty());
}

}  // namespace TevTest

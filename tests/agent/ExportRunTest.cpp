#include "ExportRun.h"

#include <gmock/gmock.h>

#include <future>

#include "EnvironmentVariable.h"
#include "FileText.h"
#include "LogCapture.h"
#include "ObjectReader.h"
#include "Operation.h"
#include "SftpServer.h"
#include "TcpProxy.h"
#include "TestNode.h"

namespace TevAgent {

namespace {

TEST(ExportRunTest, otherTransactionsReadOnWhileAnExportIsSlow) {
    const TevTest::LogCapture quiet{0};
    const TevTest::SftpServer server;
    TevTest::TcpProxy proxy("127.0.0.1", server.port());
    const TevTest::TempFolder folder;
    const TevTest::EnvironmentVariable state("TEV_STATE_DIR", folder.path());
    const TevTest::TestNode node;
    node.writeModel("large.xml", "<mom name=\"Large\"><class/>" + std::string(1000000, ' ') + "</mom>");
    Agent agent({node.path() + "/models", node.path() + "/managed-objects.xml", ""});
    agent.initialize(agent.open(TEV_COMPONENT_LIBRARY));
    agent.start();
    proxy.holdAfter(500000);
    const Password password = Password::fromFile(folder.write("password", server.password()));
    ExportRun run(agent, "sftp://" + server.user() + "@127.0.0.1:" + proxy.port() + server.folder().string() + "/",
                  password);
    auto results = std::async(std::launch::async, [&] {
        return run.run({{"Large", agent.schemaDn("Large"), {}}}, 1, [](const ExportResult&) {});
    });
    while (proxy.bytes() < 500000 && results.wait_for(std::chrono::milliseconds(5)) == std::future_status::timeout) {
    }
    for (int i = 0; i < 100; ++i) {
        Operation operation(agent);
        EXPECT_EQ(operation.reader().keys(agent.schemaParent(), "Schema").size(), 4U);
        EXPECT_EQ(operation.reader().read(agent.schemaDn("Transport"), {"version"}).attributes[0].values[0], "2.1.5");
        operation.commit();
    }
    EXPECT_EQ(results.wait_for(std::chrono::seconds(0)), std::future_status::timeout) << "it is still under way";
    proxy.resume();
    const std::vector<ExportResult> ended = results.get();
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_TRUE(ended[0].isExported) << ended[0].message;
    EXPECT_TRUE(TevTest::contents(server.folder() / "large.xml") ==
                TevTest::contents(node.path() + "/models/large.xml"));
}

}  // namespace

}  // namespace TevAgent

#include "SftpServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using TevTest::SftpServer;

bool isListening(const std::string& port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isConnected = connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(descriptor);
    return isConnected;
}

TEST(SftpServerTest, listensUntilItIsStopped) {
    SftpServer server;
    EXPECT_TRUE(isListening(server.port()));
    server.stop();
    EXPECT_FALSE(isListening(server.port()));
}

TEST(SftpServerTest, portThatIsTakenIsToldWithTheLog) {
    const SftpServer server;
    SftpServer::Setting setting;
    setting.port = server.port();
    try {
        const SftpServer second(setting);
        FAIL() << "two servers share a port";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("Address already in use"), std::string::npos) << error.what();
    }
    siginfo_t ended{};
    ASSERT_EQ(waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT), 0);
    EXPECT_EQ(ended.si_pid, 0) << "nobody has waited for its script";
}

}  // namespace

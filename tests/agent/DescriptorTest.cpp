#include "Descriptor.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>

#include "Pipe.h"

namespace TevAgent {

namespace {

TEST(DescriptorTest, waitsForRoomInAFullDescriptorThatIsNonBlocking) {
    TevTest::Pipe pipe(O_NONBLOCK);
    // More than a pipe holds.
    const std::string text = std::string(300000, 'x') + "end";
    int error = -1;
    std::thread writer([&] {
        error = Descriptor::write(pipe.writing(), text);
        pipe.closeWriting();
    });
    pipe.waitUntilFull();
    EXPECT_EQ(pipe.readAll(), text);
    writer.join();
    EXPECT_EQ(error, 0);
}

TEST(DescriptorTest, tellsWhyNothingMoreCanBeWritten) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(Descriptor::write(full, "x"), ENOSPC);
    EXPECT_EQ(Descriptor::write(full, ""), 0);
    close(full);
    EXPECT_EQ(Descriptor::write(-1, "x"), EBADF);
}

}  // namespace

}  // namespace TevAgent

#include "TemporaryFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "Descriptor.h"

namespace TevAgent {

namespace {

TEST(TemporaryFileTest, holdsWhatWasWritten) {
    const TemporaryFile file;
    EXPECT_EQ(file.text(), "");
    EXPECT_EQ(Descriptor::write(file.descriptor(), "one"), 0);
    EXPECT_EQ(Descriptor::write(file.descriptor(), std::string("\0two", 4)), 0);
    EXPECT_EQ(file.text(), std::string("one\0two", 7));
    EXPECT_FALSE(file.isFull());
}

// A component that wrote for ever filled the memory of the machine.
TEST(TemporaryFileTest, takesAMegabyteAndNoMore) {
    const TemporaryFile file;
    const std::string text(100, '-');
    int error = 0;
    for (int i = 0; i < 20000 && error == 0; ++i) {
        error = Descriptor::write(file.descriptor(), text);
    }
    EXPECT_EQ(error, EPERM);
    EXPECT_TRUE(file.isFull());
    EXPECT_GT(file.text().size(), 1048576U - 4096U);
    EXPECT_LE(file.text().size(), 1048576U);
}

}  // namespace

}  // namespace TevAgent

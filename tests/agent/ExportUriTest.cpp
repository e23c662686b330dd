#include "ExportUri.h"

#include <gtest/gtest.h>

namespace TevAgent {

namespace {

TEST(ExportUriTest, isSftpInAnyCase) {
    for (const char* const text : {"sftp://u@h/p", "SFTP://u@h/p", "sftp:///p", "sftp:p"}) {
        EXPECT_TRUE(ExportUri(text).isSftp()) << text;
    }
    for (const char* const text : {"ftp://u@h/p", "h:p", "/p", "", "sftps://h/p", "sftp://h:port/p", "sftp://[h/p"}) {
        EXPECT_FALSE(ExportUri(text).isSftp()) << text;
    }
}

TEST(ExportUriTest, tellsTheAccountOnTheHost) {
    EXPECT_EQ(ExportUri("sftp://tester@backup.example:22/p").account(), "tester@backup.example");
    EXPECT_EQ(ExportUri("sftp://t%20r@[::1]/p").account(), "t%20r@::1");
    for (const char* const text : {"sftp://h/p", "sftp://@h/p", "sftp:///p", "sftp://u@h:port/p", "u@h"}) {
        EXPECT_EQ(ExportUri(text).account(), "") << text;
    }
}

TEST(ExportUriTest, tellsNoPasswordAndNothingThatATerminalObeys) {
    EXPECT_EQ(ExportUri("sftp://tester:secret@h/p").account(), "tester@h");
    EXPECT_EQ(ExportUri("sftp://a\x1b[2Jb\xc2\x9b%1b@h\n/p").account(), "a\\x1b[2Jb\\x9b%1b@h\\n");
    EXPECT_EQ(ExportUri("sftp://a\xff@h/p").account(), "a\xef\xbf\xbd@h");
}

}  // namespace

}  // namespace TevAgent

#include "Password.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <new>

#include "Failure.h"
#include "SftpWrapper.h"
#include "TempFolder.h"

namespace TevAgent {

namespace {

using testing::HasSubstr;
using testing::Not;

class PasswordTest : public testing::Test {
protected:
    std::string read(const std::string& content) const {
        return Password::fromFile(folder.write("password", content)).text();
    }

    /// The sentence with which a file of that content is refused.
    std::string refusal(const std::string& content) const {
        try {
            return "read: " + read(content);
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::WrongUsage);
            return e.what();
        }
    }

    const TevTest::TempFolder folder;
    const std::string file = folder.path() / "password";
};

TEST_F(PasswordTest, isTheFirstLineWithoutItsNewline) {
    EXPECT_EQ(read("secret\n"), "secret");
    EXPECT_EQ(read("secret"), "secret");
    EXPECT_EQ(read(" two words \nmore\n"), " two words ");
    EXPECT_EQ(read("\n"), "");
    EXPECT_EQ(read("p\xc3\xa4ss\r\n"), "p\xc3\xa4ss\r");
}

TEST_F(PasswordTest, mayBeAsLongAsAnSshClientTakes) {
    const std::string longest(1023, 'x');
    EXPECT_EQ(read(longest + "\n"), longest);
    EXPECT_EQ(read(longest), longest);
    EXPECT_EQ(refusal(longest + "x\n"), "the password from " + file + " is longer than 1023 bytes");
}

TEST_F(PasswordTest, mayBeAsLongAsATransferTakes) {
    const auto refusalOfTransfer = [](std::size_t size) {
        Tev::SftpWrapper transfer("/nowhere", "u", std::string(size, 'x'), "127.0.0.1", "1", Tev::SftpWrapper::Upload,
                                  "/nowhere", "/p", false, "", "", "", 0, 0);
        transfer.execute();
        return transfer.getErrorMessage();
    };
    EXPECT_THAT(refusalOfTransfer(Password::maxBytes), Not(HasSubstr("password")));
    EXPECT_THAT(refusalOfTransfer(Password::maxBytes + 1), HasSubstr("password"));
}

TEST_F(PasswordTest, isRefusedWhenItCouldNotBePassedOn) {
    EXPECT_EQ(refusal(std::string("a\0b\n", 4)), "the password from " + file + " holds a null byte");
    EXPECT_EQ(refusal(""), file + " gives no password; it is the first line");
}

TEST_F(PasswordTest, fromAFileThatCannotBeReadIsAFailureToStart) {
    for (const auto& [path, reason] : {std::pair<std::string, const char*>("/nowhere", "No such file or directory"),
                                       {folder.path().string(), "Is a directory"}}) {
        try {
            Password::fromFile(path);
            FAIL() << path << " was read";
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::NotStarted);
            EXPECT_THAT(e.what(), testing::AllOf(testing::HasSubstr(path), testing::HasSubstr(reason)));
        }
    }
}

TEST_F(PasswordTest, isWipedWhenItGoes) {
    alignas(Password) unsigned char place[sizeof(Password)];
    folder.write("password", "secret\n");
    const auto* const password = new (place) Password(Password::fromFile(file));
    EXPECT_STREQ(password->text(), "secret");
    password->~Password();
    EXPECT_TRUE(std::all_of(std::begin(place), std::end(place), [](unsigned char byte) { return byte == 0; }));
}

}  // namespace

}  // namespace TevAgent

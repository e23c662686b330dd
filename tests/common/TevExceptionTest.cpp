#include "TevException.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <string>
#include <type_traits>

namespace {

using Tev::TevException;

/// A library that is loaded as a component is: none of its symbols are shared with others.
class Library {
public:
    explicit Library(const char* path) : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr) {
            ADD_FAILURE() << dlerror();
        }
    }
    ~Library() { dlclose(handle); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Function>
    Function* get(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle, name));
    }

private:
    void* const handle;
};

TEST(TevExceptionTest, holdsCodeAndFormattedText) {
    const TevException exception(-2, "%s %d", "no object", 7);
    EXPECT_EQ(exception.getReturnCode(), -2);
    EXPECT_STREQ(exception.what(), "no object 7");
}

TEST(TevExceptionTest, codeIsMinusOneWhenNoneIsGiven) {
    const TevException exception("no portal in %s", "the host");
    EXPECT_EQ(exception.getReturnCode(), -1);
    EXPECT_STREQ(exception.what(), "no portal in the host");
}

TEST(TevExceptionTest, textOfAnyLengthIsKept) {
    for (const std::size_t length : {0U, 1U, 255U, 256U, 4095U, 4096U, 1000000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(TevException("%s!", text.c_str()).what(), text + '!');
        EXPECT_EQ(TevException(3, "%s!", text.c_str()).what(), text + '!');
    }
}

TEST(TevExceptionTest, formatIsTheTextWhenAnArgumentCannotBeConverted) {
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    const wchar_t unconvertible[] = {0x4e2d, 0};
    EXPECT_STREQ(TevException("cannot read %ls", unconvertible).what(), "cannot read %ls");
}

TEST(TevExceptionTest, copySharesTheTextAndOutlivesTheOriginal) {
    static_assert(std::is_nothrow_copy_constructible_v<TevException>);
    static_assert(std::is_nothrow_copy_assignable_v<TevException>);
    auto original = std::make_unique<TevException>(5, "%s", std::string(1000, 'y').c_str());
    const TevException copy = *original;
    EXPECT_EQ(copy.what(), original->what());
    original.reset();
    EXPECT_EQ(copy.what(), std::string(1000, 'y'));
    EXPECT_EQ(copy.getReturnCode(), 5);
}

TEST(TevExceptionTest, isAStandardException) {
    try {
        throw TevException("refused");
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "refused");
    }
}

TEST(TevExceptionTest, thrownInOneLibraryIsCaughtByTypeInAnother) {
    const Library throwing(THROWING_LIBRARY);
    const Library catching(CATCHING_LIBRARY);
    auto* const throwException = throwing.get<void()>("throwTevException");
    auto* const catchException = catching.get<int(void (*)(), char*, std::size_t)>("catchTevException");
    ASSERT_NE(throwException, nullptr);
    ASSERT_NE(catchException, nullptr);
    char text[100] = "";
    EXPECT_EQ(catchException(throwException, text, sizeof text), -8);
    EXPECT_STREQ(text, "thrown in another library");
}

}  // namespace

#include "RegularExpression.h"

#include <gmock/gmock.h>
#include <locale.h>
#include <regex.h>

#include <atomic>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "RegexecCounter.h"
#include "TevException.h"

namespace {

using testing::HasSubstr;
using Tev::RegularExpression;
using Tev::TevException;
namespace RegexecCounter = TevTest::RegexecCounter;

constexpr int plainFlags = REG_EXTENDED | REG_NOSUB;

/// Gives the calling thread a locale while it lives.
class ThreadLocale {
public:
    explicit ThreadLocale(const char* name) : locale(newlocale(LC_ALL_MASK, name, nullptr)), before(uselocale(locale)) {
        if (locale == nullptr) {
            ADD_FAILURE() << "no locale " << name;
        }
    }
    ~ThreadLocale() {
        uselocale(before);
        freelocale(locale);
    }
    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;

private:
    locale_t locale;
    locale_t before;
};

/// What the system's functions say in the C locale: 1 or 0, or nothing when the pattern is refused.
std::optional<int> reference(const std::string& pattern, int compileFlags, const std::string& text, int flags) {
    const ThreadLocale locale("C");
    regex_t expression{};
    if (regcomp(&expression, pattern.c_str(), compileFlags) != 0) {
        return std::nullopt;
    }
    const int code = RegexecCounter::uncounted(&expression, text.c_str(), flags);
    regfree(&expression);
    return code == 0 ? 1 : 0;
}

std::optional<int> ours(const std::string& pattern, int compileFlags, const std::string& text, int flags) {
    try {
        return RegularExpression(pattern, compileFlags).match(text, flags);
    } catch (const TevException&) {
        return std::nullopt;
    }
}

int match(const std::string& pattern, const std::string& text) {
    return RegularExpression(pattern, plainFlags).match(text, 0);
}

/// Whether a match of `pattern` leaves `regexec` alone.
bool isPlain(const std::string& pattern, int compileFlags = plainFlags, int flags = 0) {
    const RegularExpression expression(pattern, compileFlags);
    const long before = RegexecCounter::calls();
    expression.match("text", flags);
    return RegexecCounter::calls() == before;
}

/// Makes patterns, and texts that are likely to be near them.
class Generator {
public:
    explicit Generator(unsigned seed) : random(seed) {}

    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    bool oneIn(int count) { return below(count) == 0; }

    std::string literal() {
        static const std::string characters = "aaabbb,=\n\xc3\xa4\xff\x80 A";
        std::string text;
        for (int length = below(4); length > 0; --length) {
            text += characters[static_cast<std::size_t>(below(static_cast<int>(characters.size())))];
        }
        return text;
    }

    std::string plainPattern() {
        std::string pattern = oneIn(2) ? "^" : "";
        for (int pieces = below(7); pieces > 0; --pieces) {
            pattern += oneIn(2) ? literal() : ".*";
        }
        return pattern + (oneIn(2) ? "$" : "");
    }

    /// A pattern that may hold anything.
    std::string anyPattern() {
        static const std::vector<std::string> pieces = {
            ".",   "*",  "+",  "?",  "[ab]", "[^a]",        "(a|b)", "\\.", "\\(a\\)", "^", "$", "|",
            "{2}", "a*", "b+", ".*", "\\",   "[[:alpha:]]", "**",    ".+",  "]",       "}", ")", "("};
        std::string pattern = plainPattern();
        for (int count = 1 + below(2); count > 0; --count) {
            const auto at = static_cast<std::size_t>(below(static_cast<int>(pattern.size()) + 1));
            pattern.insert(at, pieces[static_cast<std::size_t>(below(static_cast<int>(pieces.size())))]);
        }
        return pattern;
    }

    /// The pattern with something in place of its wildcards and anchors, perhaps changed a little.
    std::string textNear(std::string pattern) {
        std::string text = oneIn(4) ? literal() : "";
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern.compare(i, 2, ".*") == 0) {
                text += literal();
                ++i;
            } else if (pattern[i] != '^' && pattern[i] != '$') {
                text += pattern[i];
            }
        }
        text += oneIn(4) ? literal() : "";
        for (int errors = below(3); errors > 0 && !text.empty(); --errors) {
            text.erase(static_cast<std::size_t>(below(static_cast<int>(text.size()))), 1);
        }
        return text;
    }

private:
    std::mt19937 random;
};

/// Compares many patterns and texts with the reference. Plain patterns must not reach `regexec`.
void comparePlainPatterns(unsigned seed) {
    constexpr int rounds = 20000;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Generator generator(seed);
    int matches = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string pattern = generator.plainPattern();
        const std::string text = generator.textNear(pattern);
        const int compileFlags = generator.below(2) * REG_EXTENDED | generator.below(2) * REG_NOSUB;
        const long before = RegexecCounter::calls();
        const std::optional<int> result = ours(pattern, compileFlags, text, 0);
        ASSERT_EQ(RegexecCounter::calls(), before) << testing::PrintToString(pattern);
        ASSERT_EQ(result, reference(pattern, compileFlags, text, 0))
            << testing::PrintToString(pattern) << " on " << testing::PrintToString(text) << ", flags " << compileFlags;
        matches += *result;
    }
    EXPECT_GT(matches, rounds / 4);
    EXPECT_LT(matches, rounds * 3 / 4);
}

TEST(RegularExpressionTest, plainPatternsMatchAsRegexecDoes) {
    comparePlainPatterns(1);
}

TEST(RegularExpressionTest, plainPatternsMatchAsRegexecDoesInTheCLocaleWhateverTheThreadsLocale) {
    const ThreadLocale locale("C.UTF-8");
    comparePlainPatterns(2);
}

/// Compares patterns that may hold anything with the reference, under every kind of flag.
void compareAnyPatterns(unsigned seed) {
    constexpr int rounds = 20000;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Generator generator(seed);
    int matches = 0;
    int refused = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string pattern = generator.anyPattern();
        const std::string text = generator.textNear(pattern);
        const int compileFlags = generator.below(16);
        const int flags = generator.below(4);
        const std::optional<int> result = ours(pattern, compileFlags, text, flags);
        ASSERT_EQ(result, reference(pattern, compileFlags, text, flags))
            << testing::PrintToString(pattern) << " on " << testing::PrintToString(text) << ", flags " << compileFlags
            << " and " << flags;
        refused += result ? 0 : 1;
        matches += result.value_or(0);
    }
    EXPECT_GT(matches, rounds / 8);
    EXPECT_GT(refused, rounds / 50);
    EXPECT_GT(rounds - refused - matches, rounds / 5);
}

TEST(RegularExpressionTest, anyPatternMatchesAsRegexecDoes) {
    static_assert((REG_EXTENDED | REG_ICASE | REG_NEWLINE | REG_NOSUB) == 15 && (REG_NOTBOL | REG_NOTEOL) == 3,
                  "the generated numbers are all the flags");
    compareAnyPatterns(3);
}

TEST(RegularExpressionTest, anyPatternMatchesAsRegexecDoesInTheCLocaleWhateverTheThreadsLocale) {
    const ThreadLocale locale("C.UTF-8");
    compareAnyPatterns(4);
}

TEST(RegularExpressionTest, distinguishedNamesMatchWithoutRegexec) {
    const std::string parent = "^ManagedElement=.*,SystemFunctions=.*,SysM=.*$";
    const std::string instance = "^ManagedElement=.*,SystemFunctions=.*,SysM=.*,Schema=.*";
    EXPECT_TRUE(isPlain(parent));
    EXPECT_TRUE(isPlain(instance));
    EXPECT_EQ(match(parent, "ManagedElement=1,SystemFunctions=1,SysM=1"), 1);
    EXPECT_EQ(match(parent, "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=x"), 1);
    EXPECT_EQ(match(parent, "ManagedElement=1,SystemFunctions=1"), 0);
    EXPECT_EQ(match(parent, "XManagedElement=1,SystemFunctions=1,SysM=1"), 0);
    EXPECT_EQ(match(instance, "ManagedElement=1,SystemFunctions=1,SysM=1,Schema="), 1);
    EXPECT_EQ(match(instance, "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=a,Extra=b"), 1);
    EXPECT_EQ(match(instance, "ManagedElement=1,SystemFunctions=1,SysM=1"), 0);
    EXPECT_EQ(match(instance, "ManagedElement=1,SysM=1,SystemFunctions=1,Schema=a"), 0);
}

TEST(RegularExpressionTest, piecesOfThePatternDoNotOverlapInTheText) {
    EXPECT_EQ(match("^ab.*ba$", "aba"), 0);
    EXPECT_EQ(match("^ab.*ba$", "abba"), 1);
    EXPECT_EQ(match("ab.*ba", "aba"), 0);
    EXPECT_EQ(match("^a.*a$", "a"), 0);
    EXPECT_EQ(match("^aa.*a.*aa$", "aaaa"), 0);
    EXPECT_EQ(match("^aa.*a.*aa$", "aaaaa"), 1);
}

TEST(RegularExpressionTest, emptyPatternAndLoneAnchorsMatch) {
    for (const char* const pattern : {"", "^", "$", ".*", "^.*", ".*$", "^.*$", "^.*.*$"}) {
        EXPECT_TRUE(isPlain(pattern)) << pattern;
        EXPECT_EQ(match(pattern, ""), 1) << pattern;
        EXPECT_EQ(match(pattern, "a\nb"), 1) << pattern;
    }
    EXPECT_EQ(match("^$", ""), 1);
    EXPECT_EQ(match("^$", "a"), 0);
    EXPECT_EQ(match("^$", "\n"), 0);
}

TEST(RegularExpressionTest, textsAreBytes) {
    EXPECT_EQ(match("^\xc3.*$", "\xc3\xa4"), 1);
    EXPECT_EQ(match("^a.*b$", "a\xff\x80\nb"), 1);
    EXPECT_EQ(match("^a.b$",
                    "a\xff"
                    "b"),
              1);
    const ThreadLocale locale("C.UTF-8");
    EXPECT_EQ(match("^a.b$",
                    "a\xff"
                    "b"),
              1);
    EXPECT_EQ(match("^..$", "\xc3\xa4"), 1);
    EXPECT_EQ(match("^.$", "\xc3\xa4"), 0);
}

TEST(RegularExpressionTest, threadsLocaleIsItsOwnAgainAfterwards) {
    const ThreadLocale locale("C.UTF-8");
    const locale_t before = uselocale(nullptr);
    EXPECT_EQ(match("[a-c]+", "b"), 1);
    EXPECT_THROW(RegularExpression("[", plainFlags), TevException);
    EXPECT_EQ(uselocale(nullptr), before);
}

TEST(RegularExpressionTest, patternAndTextEndAtTheirFirstNul) {
    using std::string_literals::operator""s;
    EXPECT_EQ(match("^abc$\0["s, "abc"), 1);
    EXPECT_EQ(match("^abc$", "abc\0def"s), 1);
    EXPECT_EQ(match("def", "abc\0def"s), 0);
    EXPECT_EQ(match("d[e]f", "abc\0def"s), 0);
    EXPECT_EQ(match("^ab[c]$", "abc\0def"s), 1);
}

TEST(RegularExpressionTest, longTextsMatch) {
    const std::string text = "begin" + std::string(1000000, 'a') + "end";
    EXPECT_EQ(match("^begin.*end$", text), 1);
    EXPECT_EQ(match("^begin.*aab.*end$", text), 0);
    EXPECT_EQ(match("^begin.*aaend$", text), 1);
    EXPECT_EQ(match("^begin[a]*end$", text), 1);
    EXPECT_EQ(match("^begin.*aab.*end$", "begin" + std::string(1000000, 'a') + "b--end"), 1);
}

TEST(RegularExpressionTest, onlyLiteralsWildcardsAndAnchorsAreSpareOfRegexec) {
    for (const char* const pattern :
         {"a.b", "[ab]", "a*", "a+", "a?", "a|b", "(a)", "a{2}", "\\.", "a^b", "a$b", "..*", ".**", "^^a", "a$$"}) {
        EXPECT_FALSE(isPlain(pattern)) << pattern;
    }
}

TEST(RegularExpressionTest, otherFlagsTakeRegexec) {
    EXPECT_TRUE(isPlain("^a.*", 0));
    EXPECT_TRUE(isPlain("^a.*", REG_EXTENDED));
    EXPECT_TRUE(isPlain("^a.*", REG_NOSUB));
    EXPECT_FALSE(isPlain("^a.*", plainFlags | REG_ICASE));
    EXPECT_FALSE(isPlain("^a.*", plainFlags | REG_NEWLINE));
    EXPECT_FALSE(isPlain("^a.*", plainFlags, REG_NOTBOL));
    EXPECT_FALSE(isPlain("^a.*", plainFlags, REG_NOTEOL));
}

TEST(RegularExpressionTest, flagsHaveTheirMeaning) {
    EXPECT_EQ(RegularExpression("^ABC$", plainFlags | REG_ICASE).match("abc", 0), 1);
    EXPECT_EQ(RegularExpression("^b$", plainFlags | REG_NEWLINE).match("a\nb\nc", 0), 1);
    EXPECT_EQ(RegularExpression("^b", plainFlags).match("b", REG_NOTBOL), 0);
    EXPECT_EQ(RegularExpression("b$", plainFlags).match("b", REG_NOTEOL), 0);
    EXPECT_EQ(RegularExpression("^b$", plainFlags).match("b", REG_STARTEND), 1);
    EXPECT_EQ(RegularExpression("a+", 0).match("a+", 0), 1);
    EXPECT_EQ(RegularExpression("a+", 0).match("aa", 0), 0);
}

TEST(RegularExpressionTest, unknownMatchFlagsAreRefused) {
    const RegularExpression expression("^a.*", plainFlags);
    try {
        expression.match("a", 1 << 20);
        FAIL() << "nothing thrown";
    } catch (const TevException& exception) {
        EXPECT_EQ(exception.getReturnCode(), -1);
    }
}

TEST(RegularExpressionTest, badPatternIsRefusedWithPatternAndReason) {
    for (const char* const pattern : {"[a", "a(", "%s%n(", "a{2,1}", "x\\"}) {
        try {
            const RegularExpression expression(pattern, plainFlags);
            ADD_FAILURE() << "accepted " << pattern;
        } catch (const TevException& exception) {
            EXPECT_EQ(exception.getReturnCode(), -1);
            regex_t expression{};
            char reason[100];
            regerror(regcomp(&expression, pattern, plainFlags), &expression, reason, sizeof reason);
            EXPECT_THAT(exception.what(), HasSubstr(std::string("\"") + pattern + "\": " + reason));
        }
    }
}

TEST(RegularExpressionTest, oneObjectServesManyThreads) {
    const RegularExpression plain("^a.*b.*c$", plainFlags);
    const RegularExpression other("^a[0-9]*b.*c$", plainFlags);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            const std::string middle = std::to_string(thread);
            for (int i = 0; i < 2000; ++i) {
                const std::string number = middle + std::to_string(i);
                for (const RegularExpression* const expression : {&plain, &other}) {
                    wrong += expression->match("a" + number + "b-c", 0) != 1 ? 1 : 0;
                    wrong += expression->match("a" + number + "-c", 0) != 0 ? 1 : 0;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace

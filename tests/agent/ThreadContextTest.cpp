#include "ThreadContext.h"

#include <gmock/gmock.h>

#include <thread>

namespace TevAgent {

namespace {

using testing::ElementsAre;

TevReturnT add(const char* text, std::int32_t category = 1) {
    return ThreadContext::table()->addMessage(category, text);
}

std::vector<std::string> textsOf(ThreadContext::Operation& operation) {
    std::vector<std::string> texts;
    for (const ThreadContext::Message& message : operation.takeMessages()) {
        texts.push_back(message.text);
    }
    return texts;
}

TEST(ThreadContextTest, keepsMessagesInTheirOrderWithTheirCategory) {
    ThreadContext::Operation operation;
    EXPECT_EQ(add("one", 3), 0);
    EXPECT_EQ(add("two", -4), 0);
    const std::vector<ThreadContext::Message> messages = operation.takeMessages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].category, 3);
    EXPECT_EQ(messages[0].text, "one");
    EXPECT_EQ(messages[1].category, -4);
    EXPECT_EQ(messages[1].text, "two");
}

TEST(ThreadContextTest, copiesTheText) {
    ThreadContext::Operation operation;
    char text[] = "before";
    EXPECT_EQ(add(text), 0);
    text[0] = 'X';
    EXPECT_THAT(textsOf(operation), ElementsAre("before"));
}

TEST(ThreadContextTest, takingTheMessagesClearsThem) {
    ThreadContext::Operation operation;
    add("one");
    EXPECT_THAT(textsOf(operation), ElementsAre("one"));
    EXPECT_THAT(textsOf(operation), ElementsAre());
}

TEST(ThreadContextTest, refusesMessagesOutsideAnOperation) {
    EXPECT_EQ(add("before"), -1);
    {
        const ThreadContext::Operation operation;
        EXPECT_EQ(add("within"), 0);
    }
    EXPECT_EQ(add("after"), -1);
}

TEST(ThreadContextTest, anOperationEndsItsMessages) {
    {
        const ThreadContext::Operation operation;
        add("of the first");
    }
    ThreadContext::Operation next;
    EXPECT_THAT(textsOf(next), ElementsAre());
}

TEST(ThreadContextTest, refusesANullText) {
    ThreadContext::Operation operation;
    EXPECT_EQ(add(nullptr), -8);
    EXPECT_THAT(textsOf(operation), ElementsAre());
}

TEST(ThreadContextTest, keepsTheMessagesOfThreadsApart) {
    ThreadContext::Operation operation;
    std::thread([] {
        EXPECT_EQ(add("no operation here"), -1);
        ThreadContext::Operation other;
        EXPECT_EQ(add("theirs"), 0);
        EXPECT_THAT(textsOf(other), ElementsAre("theirs"));
    }).join();
    add("ours");
    EXPECT_THAT(textsOf(operation), ElementsAre("ours"));
}

TEST(ThreadContextTest, anOperationWithinAnotherCollectsItsOwn) {
    ThreadContext::Operation outer;
    {
        ThreadContext::Operation inner;
        add("inner");
        EXPECT_THAT(textsOf(inner), ElementsAre("inner"));
    }
    add("outer");
    EXPECT_THAT(textsOf(outer), ElementsAre("outer"));
}

TEST(ThreadContextTest, isOfferedAsVersion2) {
    EXPECT_STREQ(ThreadContext::table()->base.componentName, "DalMgmtSpiThreadContextService");
    EXPECT_STREQ(ThreadContext::table()->base.interfaceName, "DalMgmtSpiThreadContext");
    EXPECT_STREQ(ThreadContext::table()->base.interfaceVersion, "2");
}

}  // namespace

}  // namespace TevAgent

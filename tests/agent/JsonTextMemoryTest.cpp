#include <gtest/gtest.h>

#include <new>

#include "JsonText.h"
#include "MemoryWatch.h"

namespace TevAgent {

namespace {

// A stream that got no memory ended the text there, and the agent printed a part of a document and ended with status 0.
TEST(JsonTextMemoryTest, isWholeOrThrownAwayWhereMemoryRunsOut) {
    const std::vector<Instance> instances(100, {"ManagedElement=1,Schema=Transport", {{"schemaId", {"Transport"}}}});
    const std::string whole = JsonText::of(instances);
    unsigned int nth = 0;
    for (bool hasFailed = true; hasFailed;) {
        TevTest::MemoryWatch watch;
        watch.failNew(++nth);
        try {
            EXPECT_TRUE(JsonText::of(instances) == whole) << "allocation " << nth;
            hasFailed = watch.failed();
        } catch (const std::bad_alloc&) {
            // Then there is no text at all.
        }
    }
    EXPECT_GT(nth, instances.size());
}

}  // namespace

}  // namespace TevAgent

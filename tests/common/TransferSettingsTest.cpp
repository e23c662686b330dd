#include "TransferSettings.h"

#include <gmock/gmock.h>

#include <new>
#include <string_view>

namespace {

using testing::HasSubstr;
using testing::Not;
using Tev::TransferSettings;

TEST(TransferSettingsTest, passwordIsOverwrittenAtTheEnd) {
    // Short enough to lie in the object itself.
    constexpr std::string_view password = "swordfish";
    alignas(TransferSettings) char memory[sizeof(TransferSettings)] = {};
    const std::string_view bytes(memory, sizeof memory);
    auto* const settings = new (memory) TransferSettings{};
    settings->password = password;
    EXPECT_THAT(bytes, HasSubstr(password));
    std::destroy_at(settings);
    EXPECT_THAT(bytes, Not(HasSubstr(password)));
}

}  // namespace

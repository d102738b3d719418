// Every option has its words, in one order.
#include "launcher/vocabulary/configuration_words.h"

#include "launcher/vocabulary/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace rcp {
namespace {

std::vector<std::wstring> namesOf(const auto& rows, auto name) {
    std::vector<std::wstring> names;
    for (const auto& row : rows) {
        names.emplace_back(row.*name);
    }
    return names;
}

TEST(ConfigurationWords, TellEveryOptionInItsOrder) {
    EXPECT_EQ(namesOf(optionWords(), &OptionWords::name), namesOf(kOptions, &Option::name));
}

TEST(ConfigurationWords, NameAValueWhereThereIsOne) {
    for (const OptionWords& words : optionWords()) {
        const bool isNamed = *words.value != '\0' && words.name != options::kVmargs;
        EXPECT_EQ(isNamed, findOptionRow(words.name)->value != OptionValue::kNone) << words.meaning;
    }
}

TEST(ConfigurationWords, SayOfNoDroppedOptionThatItIsPassedOn) {
    for (const OptionWords& words : optionWords()) {
        const CopyRule rule = copyRuleFor(words.name);
        if (rule == CopyRule::kDrop || rule == CopyRule::kDropWithValue) {
            EXPECT_THAT(words.isPassedOn, testing::Not(testing::StartsWith("yes")))
                << words.meaning;
        }
    }
}

}  // namespace
}  // namespace rcp

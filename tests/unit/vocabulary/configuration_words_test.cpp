// Every row of the vocabulary has its words, in one order.
#include "launcher/vocabulary/configuration_words.h"

#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/property_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
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

TEST(ConfigurationWords, TellEveryKeyInItsOrder) {
    EXPECT_EQ(namesOf(keyWords(), &KeyWords::key), namesOf(propertyKeys(), &PropertyKey::key));
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

TEST(ConfigurationWords, NameTheDefaultWhereThereIsOne) {
    for (const KeyWords& words : keyWords()) {
        const bool isNamed = std::string_view(words.meaning).find("%s") != std::string_view::npos;
        EXPECT_EQ(isNamed, words.otherwise != nullptr) << words.meaning;
    }
}

}  // namespace
}  // namespace rcp

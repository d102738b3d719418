#include "inspect/handoff/jre.h"

#include "inspect/handoff/own_code.h"
#include "tests/unit/fixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace rcp::inspect {
namespace {

class JreTest : public ::testing::Test {
  protected:
    JreTest() {
        folder_.write(kModules, "\xDA\xDA\xFE\xCA and the classes");
        for (const std::string& library : libraries()) {
            folder_.write(library, "code");
        }
        folder_.write(kSettings, "#");
    }
    static std::vector<std::string> libraries() {
        std::vector<std::string> all;
        for (const char* name :
             {"server/libjvm", "libjava", "libjimage", "libzip", "libnet", "libnio"}) {
            all.push_back(std::string("jre/lib/") + name + kLibraryEnding);
        }
        return all;
    }
    [[nodiscard]] std::string missing() const {
        const auto file = missingOfJre(folder_.path() / "jre");
        return file ? std::filesystem::relative(*file, folder_.path()).string() : "";
    }
    static constexpr const char* kModules = "jre/lib/modules";
    static constexpr const char* kSettings = "jre/conf/security/java.security";
    rcp::test::TestFolder folder_;
};

TEST_F(JreTest, LacksNothingWhenItIsWhole) {
    EXPECT_EQ(missing(), "");
}

TEST_F(JreTest, LacksWhatIsMissingOrEmpty) {
    std::vector<std::string> all = libraries();
    all.emplace_back(kModules);
    for (const std::string& file : all) {
        const std::string content = folder_.read(file);
        folder_.write(file, "");
        EXPECT_EQ(missing(), file);
        folder_.write(file, content);
    }
    std::filesystem::remove(folder_.path() / kSettings);
    EXPECT_EQ(missing(), kSettings);
}

TEST_F(JreTest, ItsSettingsMayBeAnotherPackages) {
    std::filesystem::remove(folder_.path() / kSettings);
    std::filesystem::create_symlink("/no/such/java.security", folder_.path() / kSettings);
    EXPECT_EQ(missing(), "");
}

TEST_F(JreTest, AnyKindOfJvmIsOne) {
    std::filesystem::rename(folder_.path() / "jre/lib/server", folder_.path() / "jre/lib/client");
    EXPECT_EQ(missing(), "");
}

TEST_F(JreTest, OfOneWithoutAnImageNothingElseIsKnown) {
    std::filesystem::remove_all(folder_.path() / "jre");
    folder_.write("jre/jre/lib/rt.jar", "classes");
    EXPECT_EQ(missing(), "");
}

}  // namespace
}  // namespace rcp::inspect

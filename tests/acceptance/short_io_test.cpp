// Reads and writes that move less than was asked for, in whole launches: nothing may come out
// otherwise than without.
#include "checks.h"
#include "snapshot.h"
#include "tests/acceptance/paths.h"

#include <stdlib.h>
#include <unistd.h>

namespace acceptance {

namespace {

class ShortTransfers : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        NEEDS_PRIVATE_TMP();
        if (!wrapped_.empty()) {
            GTEST_SKIP() << "launches run under another checker: " << wrapped_;
        }
        Installation probe;
        probe.wrapper = {rcp::test::seen(ACCEPTANCE_SHORT_IO), "1"};
        if (probe.launch().status == kNoTracing) {
            GTEST_SKIP() << "the system does not let processes be traced";
        }
    }

    static void furnish(Installation& velmo) {
        velmo.set("config.x.1", "-Dgröße=${rcp.home}").set("vmarg.a", "-Dlong=" + long_);
        velmo.set("install.configuration", "user").set("library.path.append", "/lib/ä");
        velmo.addInstallLine("product=some.product").addInstallLine("vmarg.b=-Dfrom.user=yes");
        velmo.write("Velmo/rcp/deploy/jvm.properties", "vmarg.c=-Dfrom.jvm=yes\n");
    }

    // The files of a launch less the log, which a tracer's slowness may change by its times.
    static Snapshot filesOf(const Installation& velmo) {
        return without(portable(takeSnapshot(velmo.root), velmo), [](const std::string& path) {
            return path.find(".rcp.") != std::string::npos || path.ends_with(".log");
        });
    }

    static Texts portableTexts(Texts texts, const Installation& velmo) {
        for (std::string& text : texts) {
            for (std::size_t at = text.find(velmo.root); at != std::string::npos;
                 at = text.find(velmo.root)) {
                text.replace(at, velmo.root.size(), "ROOT");
            }
        }
        return texts;
    }

    static constexpr int kNoTracing = 125;
    static inline const std::string wrapped_ =
        getenv("RCP_TEST_WRAPPER") == nullptr ? "" : getenv("RCP_TEST_WRAPPER");
    static inline const std::string long_ = std::string(3000, 'x');
};

TEST_P(ShortTransfers, LeaveTheSameFilesAndTheSameCommandLine) {
    Installation whole;
    Installation shortened;
    shortened.wrapper = {rcp::test::seen(ACCEPTANCE_SHORT_IO), GetParam()};
    for (Installation* velmo : {&whole, &shortened}) {
        furnish(*velmo);
    }
    // A first launch, a later one, and one that renews the area.
    for (const Texts& arguments : {Texts{"-config", "x"}, Texts{}, Texts{"-resetconfig"}}) {
        const Report expected = whole.start(arguments);
        const Report actual = shortened.start(arguments);
        expectList(portableTexts(expected.arguments, whole),
                   portableTexts(actual.arguments, shortened));
        EXPECT_EQ(differences(filesOf(whole), filesOf(shortened)), "");
    }
}

TEST_P(ShortTransfers, LeaveTheRunningPlatformKnown) {
    Installation velmo;
    velmo.wrapper = {rcp::test::seen(ACCEPTANCE_SHORT_IO), GetParam()};
    StayingLaunch staying = velmo.startStaying();
    const Report platform = staying.platform();
    const std::string id = std::to_string(platform.pid);
    for (int tries = 0; tries < 2000 && !readFile(velmo.workspace + "/.rcp.lock").starts_with(id);
         ++tries) {
        usleep(5000);
    }
    velmo.wrapper.clear();
    EXPECT_EQ(velmo.start().after("-useDaemon"), id);
    staying.finish();
}

INSTANTIATE_TEST_SUITE_P(Bytes, ShortTransfers, testing::Values("1", "7", "1000"));

}  // namespace

}  // namespace acceptance

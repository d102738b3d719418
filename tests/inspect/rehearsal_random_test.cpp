// Random calls, made and rehearsed: what they come back with and what they leave is the same.
#include "tests/inspect/rehearsal_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>

namespace rcp::inspect::test {
namespace {

constexpr unsigned kSeed = 20240611;
constexpr unsigned kSequences = 200;
constexpr std::size_t kLength = 40;

class Choice {
  public:
    explicit Choice(unsigned seed) : engine_(seed) {}
    std::size_t below(std::size_t limit) { return engine_() % limit; }
    template <typename Value>
    const Value& of(const std::vector<Value>& values) {
        return values[below(values.size())];
    }

  private:
    std::mt19937 engine_;
};

std::string randomPath(Choice& choice) {
    static const std::vector<std::string> names{"a", "b", "c", "f", "g",     "l",
                                                "m", "n", "o", "x", "empty", "loop"};
    static const std::vector<std::string> joints{"/", "/", "/", "/", "//", "/./", "/../"};
    std::string path = choice.of(names);
    for (std::size_t more = choice.below(3); more > 0; --more) {
        const std::string& joint = choice.of(joints);
        // The roots' own neighbours are nobody's.
        path += joint == "/../" ? "/b/.." + ("/" + choice.of(names)) : joint + choice.of(names);
    }
    return path;
}

Call randomCall(Choice& choice) {
    static const std::vector<std::string> calls{
        "open",     "open",   "open",   "open",   "mkdir",   "mkdir",    "rename",  "rename",
        "rename",   "rename", "unlink", "unlink", "rmdir",   "rmdir",    "symlink", "readlink",
        "realpath", "stat",   "lstat",  "openat", "fstatat", "unlinkat", "rmdirat"};
    static const std::vector<int> accesses{O_RDONLY, O_WRONLY, O_RDWR};
    static const std::vector<int> flags{0,
                                        0,
                                        O_CREAT,
                                        O_CREAT,
                                        O_TRUNC,
                                        O_CREAT | O_TRUNC,
                                        O_APPEND,
                                        O_NOFOLLOW,
                                        O_CREAT | O_EXCL,
                                        O_CREAT | O_NOFOLLOW};
    static const std::vector<mode_t> modes{0755, 0700, 0555};
    // None of them leads out of the tree, wherever it is moved.
    static const std::vector<std::string> targets{"a", "ROOT/c", "ROOT/a/b", "x", "b/../f", "b"};
    Call call{choice.of(calls), randomPath(choice), {}, 0, choice.of(modes), {}};
    if (call.name.starts_with("open")) {
        call.flags = choice.of(accesses) | choice.of(flags);
        call.written = choice.below(2) == 0 ? "written " + std::to_string(choice.below(9)) : "";
    } else if (call.name == "rename") {
        call.other = randomPath(choice);
    } else if (call.name == "symlink") {
        call.other = choice.of(targets);
    }
    return call;
}

class RandomRehearsal : public RehearsalTest {
  protected:
    void rehearseRandomly(unsigned seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Choice choice(seed);
        std::vector<Call> calls;
        while (calls.size() < kLength) {
            calls.push_back(randomCall(choice));
        }
        expectTheSame(calls);
    }

    // Directories of another's, some of them not to be written to, one with the sticky bit.
    void giveAway(const std::string& root) {
        namespace files = std::filesystem;
        std::vector<std::string> all{root};
        for (const auto& entry : files::recursive_directory_iterator(root)) {
            all.push_back(entry.path());
        }
        for (const std::string& path : all) {
            ASSERT_EQ(lchown(path.c_str(), AsAnotherUser::kUser, AsAnotherUser::kUser), 0);
        }
        ASSERT_EQ(chmod((root + "/a/b").c_str(), 0555), 0);
        ASSERT_EQ(chmod((root + "/a/f").c_str(), 0444), 0);
        ASSERT_EQ(chown((root + "/c").c_str(), 0, 0), 0);
        ASSERT_EQ(chmod((root + "/c").c_str(), 01777), 0);
        ASSERT_EQ(lchown((root + "/c/g").c_str(), 0, 0), 0);
        ASSERT_EQ(chmod((root + "/empty").c_str(), 0), 0);
    }
};

TEST_F(RandomRehearsal, IsWhatHappens) {
    std::cout << "seeds from " << kSeed << '\n';
    for (unsigned i = 0; i < kSequences && !HasFailure(); ++i) {
        makeTrees();
        rehearseRandomly(kSeed + i);
    }
}

TEST_F(RandomRehearsal, IsWhatHappensToAUserWithoutAllRights) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    std::cout << "seeds from " << kSeed << '\n';
    for (unsigned i = 0; i < kSequences && !HasFailure(); ++i) {
        makeTrees();
        giveAway(real());
        giveAway(rehearsed());
        ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
        ASSERT_EQ(chown(folder_.narrow("copies").c_str(), AsAnotherUser::kUser, 0), 0);
        isForAnotherUser_ = true;
        rehearseRandomly(kSeed + i);
    }
}

}  // namespace
}  // namespace rcp::inspect::test

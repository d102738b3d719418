// A tree of files, the calls that a launch makes in it, and what they leave behind. The calls are
// real until there is a Rehearsal.
#pragma once

#include "inspect/rehearsal/rehearsal.h"
#include "tests/unit/fixture.h"

#include <sys/types.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace rcp::inspect::test {

/// Kind, permissions and content of everything below a folder, by path; the folder's own name in a
/// link's target is "ROOT".
using Tree = std::map<std::string, std::string>;
Tree treeOf(const std::string& root);
/// The text for one file, directory or link.
std::string entryAt(const std::string& place, const std::string& root);

/// One call and what it came back with, errno in words: "mkdir a/b = error: File exists". Paths are those below
/// `root`; a file that is opened is read to its end, or `written` to when it is not empty.
struct Call {
    std::string name;
    std::string path;   // symlink(2): of the link
    std::string other;  // rename(2): the target; symlink(2): what the link says
    int flags = 0;
    mode_t mode = 0;
    std::string written;
};
std::string carryOut(const Call& call, const std::string& root);

/// `before` after the changes of a rehearsal below `root`; every change that is none or that cannot
/// be made fails the test.
Tree changed(Tree before, const Rehearsal& rehearsal, const std::string& root);

/// The changes, one a line: "made file a/b", "moved directory a -> b".
std::string listOf(const std::vector<FileChange>& changes, const std::string& root);

/// Other rights than root's while it lives, where the process has root's to give up.
class AsAnotherUser {
  public:
    static constexpr unsigned kUser = 65534;
    AsAnotherUser();
    AsAnotherUser(const AsAnotherUser&) = delete;
    AsAnotherUser& operator=(const AsAnotherUser&) = delete;
    AsAnotherUser(AsAnotherUser&&) = delete;
    AsAnotherUser& operator=(AsAnotherUser&&) = delete;
    ~AsAnotherUser();
};

/// A small tree twice: in "real" the calls are made, in "rehearsed" they are rehearsed.
class RehearsalTest : public ::testing::Test {
  protected:
    RehearsalTest();
    /// Directories a, a/b, c and empty, with files and links of every kind.
    static void makeTree(const std::string& root);
    /// Both trees as at the beginning.
    void makeTrees() const;
    [[nodiscard]] std::string real() const { return folder_.narrow("real"); }
    [[nodiscard]] std::string rehearsed() const { return folder_.narrow("play"); }

    void startRehearsal();
    /// Makes the calls in both folders, compares what they come back with, and then what really
    /// happened with the changes that the rehearsal tells; nothing may have happened to its folder.
    void expectTheSame(const std::vector<Call>& calls);
    /// A rehearsal of these calls alone: its changes.
    std::string changesOf(const std::vector<Call>& calls);

    rcp::test::TestFolder folder_;
    bool isForAnotherUser_ = false;  // who makes the calls
    std::unique_ptr<Rehearsal> rehearsal_;

  private:
    [[nodiscard]] std::vector<std::string> carryOutAll(const std::vector<Call>& calls,
                                                       const std::string& root) const;
};

}  // namespace rcp::inspect::test

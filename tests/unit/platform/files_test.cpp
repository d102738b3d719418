// Single files and directories.
#include "platform/files.h"

#include "base/system_calls.h"
#include "tests/unit/fixture.h"
#include "tests/unit/probe.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

namespace rcp {
namespace {

namespace fs = std::filesystem;

constexpr Message<Text> kNotMade{"no %ls.", "", ""};

class Files : public test::LauncherTest {
  protected:
    void link(const std::string& target, const std::string& name) const {
        fs::create_symlink(target, folder_.path() / name);
    }
    void makeDirectory(const std::string& name) const {
        fs::create_directories(folder_.path() / name);
    }
    void setMode(const std::string& name, mode_t mode) const {
        ASSERT_EQ(chmod(folder_.narrow(name).c_str(), mode), 0);
    }
    [[nodiscard]] mode_t modeOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(folder_.narrow(name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
};

// --- Predicates ---------------------------------------------------------------------------------

TEST_F(Files, ExistsIsWhatCanBeOpenedForReading) {
    folder_.write("\u00FC", "");
    EXPECT_TRUE(exists(folder_.wide("\u00FC")));
    EXPECT_TRUE(existsA(folder_.narrow("\u00FC")));
    EXPECT_FALSE(exists(folder_.wide("missing")));
    EXPECT_FALSE(existsA(folder_.narrow("missing")));
    EXPECT_FALSE(exists(L""));
}

TEST_F(Files, DirectoryExists) {
    EXPECT_TRUE(exists(folder_.wide()));
}

TEST_F(Files, DanglingLinkDoesNotExist) {
    link("missing", "link");
    EXPECT_FALSE(exists(folder_.wide("link")));
}

TEST_F(Files, UnreadableFileDoesNotExist) {
    folder_.write("secret", "x");
    setMode("secret", 0);
    setMode("", 0755);
    const std::string path = folder_.narrow("secret");
    // Root reads everything, so the question is asked as somebody else.
    EXPECT_EXIT(
        {
            if (geteuid() == 0) {
                std::ignore = seteuid(12345);
            }
            _exit(existsA(path) ? 4 : 3);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(Files, PipeExistsWithoutAWait) {
    ASSERT_EQ(mkfifo(folder_.narrow("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(exists(folder_.wide("pipe")));
}

TEST_F(Files, DirectoryIsTheEntryItself) {
    folder_.write("file", "");
    makeDirectory("directory");
    link("directory", "link");
    EXPECT_TRUE(isDirectory(folder_.wide("directory")));
    EXPECT_FALSE(isDirectory(folder_.wide("link"))) << "a link to a directory is none";
    EXPECT_FALSE(isDirectory(folder_.wide("file")));
    EXPECT_FALSE(isDirectory(folder_.wide("missing")));
    EXPECT_FALSE(isDirectory(L""));
}

TEST_F(Files, ExecutableIsTheOwnersBitAlone) {
    folder_.write("file", "");
    for (const auto& [mode, expected] : {std::pair<mode_t, bool>{0100, true},
                                         {0755, true},
                                         {0655, false},
                                         {0011, false},
                                         {0644, false}}) {
        setMode("file", mode);
        EXPECT_EQ(isExecutable(folder_.wide("file")), expected) << mode;
        EXPECT_EQ(isExecutable(folder_.narrow("file")), expected) << mode;
    }
    EXPECT_FALSE(isExecutable(folder_.wide("missing")));
    EXPECT_FALSE(isExecutable(L""));
}

TEST_F(Files, AnswerThatIsNoErrorLeavesNoReason) {
    folder_.write("file", "");
    setMode("file", 0600);
    errno = EACCES;
    EXPECT_FALSE(isDirectory(folder_.wide("file")));
    EXPECT_EQ(errno, 0);
    errno = EACCES;
    EXPECT_FALSE(isExecutable(folder_.wide("file")));
    EXPECT_EQ(errno, 0);
}

TEST_F(Files, LinkToAnExecutableIsExecutable) {
    folder_.write("file", "");
    setMode("file", 0700);
    link("file", "link");
    EXPECT_TRUE(isExecutable(folder_.wide("link")));
}

TEST_F(Files, ResolvedPathHasNoLinksAndNoDots) {
    makeDirectory("directory");
    folder_.write("directory/file", "");
    link("directory", "link");
    const std::string real = fs::canonical(folder_.path()).string() + "/directory/file";
    EXPECT_EQ(resolvedPath(folder_.narrow("link/../link/./file")), real);
    EXPECT_EQ(resolvedPath(folder_.narrow("missing")), std::nullopt);
}

// --- Streams ------------------------------------------------------------------------------------

TEST_F(Files, LexicalPathIsTheTextAlone) {
    const std::pair<const char*, const char*> paths[] = {
        {"/a/b", "/a/b"},     {"/", "/"},
        {"//", "/"},          {"/.", "/"},
        {"/..", "/"},         {"/a/..", "/"},
        {"/../../a", "/a"},   {"/a//b/", "/a/b"},
        {"/a/./b/.", "/a/b"}, {"/a/../b", "/b"},
        {"/a/b/..", "/a"},    {"/a/b/../../c", "/c"},
        {"/...", "/..."},     {"/a/.b..", "/a/.b.."},
        {"a/../b", "a/../b"}, {"", ""},
    };
    for (const auto& [path, expected] : paths) {
        EXPECT_EQ(lexicalPath(path), expected) << path;
    }
}

TEST_F(Files, OpenedStreamIsForWhatItsModeSays) {
    folder_.write("file", "old content");
    Stream stream = open_file(folder_.wide("file"), L"w+");
    ASSERT_NE(stream, nullptr);
    EXPECT_GE(fputs("new", stream.get()), 0);
    stream.reset();
    EXPECT_EQ(folder_.read("file"), "new");
    stream = open_file(folder_.wide("file"), L"r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(fgetc(stream.get()), 'n');
    EXPECT_EQ(fputc('x', stream.get()), EOF) << "only for reading";
}

TEST_F(Files, EveryModeIsThatOfTheStandardLibrary) {
    for (const wchar_t* mode : {L"r", L"rb", L"r+"}) {
        Stream stream = open_file(folder_.wide("missing"), mode);
        EXPECT_EQ(stream, nullptr) << mode;
    }
    for (const auto& [mode, expected] : {std::pair<const wchar_t*, const char*>{L"w", "new"},
                                         {L"w+", "new"},
                                         {L"a+", "old contentnew"},
                                         {L"r+", "new content"}}) {
        folder_.write("file", "old content");
        Stream stream = open_file(folder_.wide("file"), mode);
        ASSERT_NE(stream, nullptr) << mode;
        EXPECT_GE(fputs("new", stream.get()), 0);
        stream.reset();
        EXPECT_EQ(folder_.read("file"), expected) << mode;
    }
}

TEST_F(Files, FailedOpenGivesNullAndTheReason) {
    folder_.write("file", "");
    ASSERT_NE(open_file(folder_.wide("file"), L"r"), nullptr);
    errno = 0;
    EXPECT_EQ(open_file(folder_.wide("missing"), L"r"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(open_file(folder_.wide("file"), L"x"), nullptr);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(Files, DirectoryOrPipeInAFilesPlaceIsAFailureNeverAWait) {
    ASSERT_EQ(mkfifo(folder_.narrow("pipe").c_str(), 0600), 0);
    EXPECT_EQ(open_file(folder_.wide(), L"r"), nullptr);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(open_file(folder_.wide("pipe"), L"r"), nullptr);
    EXPECT_EQ(open_file(folder_.wide("pipe"), L"w"), nullptr);
}

TEST_F(Files, StreamIsNotInheritedByAnExecutedProgram) {
    folder_.write("file", "");
    Stream stream = open_file(folder_.wide("file"), L"r");
    ASSERT_NE(stream, nullptr);
    EXPECT_NE(fcntl(fileno(stream.get()), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(Files, TextIsAllOfAFile) {
    for (const std::string& content :
         {std::string(), std::string("one\n"), std::string(10000, 'x') + '\0' + "\n",
          std::string(3 << 20, 'x')}) {
        folder_.write("file", content);
        const std::optional<FileText> text = readText(folder_.wide("file"));
        ASSERT_TRUE(text);
        EXPECT_EQ(text->bytes, content);
        EXPECT_EQ(text->error, 0);
    }
}

using Read = decltype(SystemCalls::read);

int readsMade = 0;

class FilesWithReads : public Files {
  protected:
    /// What is told of a file with "text" where the system reads it in this way.
    [[nodiscard]] std::optional<FileText> textReadBy(Read read) const {
        folder_.write("file", "text");
        SystemCalls calls = systemCalls;
        calls.read = read;
        const InstalledCalls installed(calls);
        readsMade = 0;
        return readText(folder_.wide("file"));
    }
};

TEST_F(FilesWithReads, NoneOnlyFindsTheEnd) {
    const std::optional<FileText> text =
        textReadBy([](int descriptor, void* buffer, std::size_t size) {
            ++readsMade;
            return kSystemsOwnCalls.read(descriptor, buffer, size);
        });
    EXPECT_EQ(text->bytes, "text");
    EXPECT_EQ(readsMade, 1);
}

TEST_F(FilesWithReads, ShortAndInterruptedOnesAreGoneOnWith) {
    const std::optional<FileText> text =
        textReadBy([](int descriptor, void* buffer, std::size_t size) {
            if (readsMade++ == 1) {
                errno = EINTR;
                return ssize_t{-1};
            }
            return kSystemsOwnCalls.read(descriptor, buffer, size == 0 ? 0 : 1);
        });
    EXPECT_EQ(text->bytes, "text");
    EXPECT_EQ(text->error, 0);
}

TEST_F(FilesWithReads, FileThatShrinksEndsThere) {
    const std::optional<FileText> text =
        textReadBy([](int descriptor, void* buffer, std::size_t /*size*/) {
            return readsMade++ == 0 ? kSystemsOwnCalls.read(descriptor, buffer, 2) : ssize_t{0};
        });
    EXPECT_EQ(text->bytes, "te");
    EXPECT_EQ(text->error, 0);
}

TEST_F(FilesWithReads, FailedOneIsToldBesideWhatCameBeforeIt) {
    const std::optional<FileText> text =
        textReadBy([](int descriptor, void* buffer, std::size_t /*size*/) {
            errno = EIO;
            return readsMade++ == 0 ? kSystemsOwnCalls.read(descriptor, buffer, 2) : ssize_t{-1};
        });
    EXPECT_EQ(text->bytes, "te");
    EXPECT_EQ(text->error, EIO);
}

TEST_F(FilesWithReads, BoundIsNeverPassed) {
    folder_.write("file", std::string(3 << 20, 'x'));
    SystemCalls calls = systemCalls;
    calls.read = [](int descriptor, void* buffer, std::size_t size) {
        EXPECT_LE(size, 100U);
        return kSystemsOwnCalls.read(descriptor, buffer, size);
    };
    const InstalledCalls installed(calls);
    const std::optional<FileText> text = readText(folder_.wide("file"), 100);
    EXPECT_EQ(text->bytes, std::string(100, 'x'));
    EXPECT_EQ(text->error, 0);
}

#ifdef __linux__
TEST_F(Files, TextOfAFileThatTellsNoSizeHasTheBound) {
    EXPECT_EQ(readText(L"/proc/self/maps", 100)->bytes.size(), 100U);
}

TEST_F(Files, TextOfAFileThatTellsNoSizeIsReadToItsEnd) {
    const std::optional<FileText> text = readText(L"/proc/self/maps");
    ASSERT_TRUE(text);
    EXPECT_GT(text->bytes.size(), 4096U);
    EXPECT_TRUE(text->bytes.ends_with('\n'));
}
#endif

TEST_F(Files, TextIsOnlyThatOfAFile) {
    ASSERT_EQ(mkfifo(folder_.narrow("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(readText(folder_.wide("missing")));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(readText(folder_.wide()));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(readText(folder_.wide("pipe")));
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(Files, OpenedOneIsThatWhichExists) {
    folder_.write("file", "");
    ASSERT_EQ(mkfifo(folder_.narrow("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(openExisting(folder_.wide("file")));
    EXPECT_TRUE(openExisting(folder_.wide()));
    EXPECT_TRUE(openExisting(folder_.wide("pipe"))) << "without a wait";
    EXPECT_FALSE(openExisting(folder_.wide("missing")));
    EXPECT_EQ(errno, ENOENT);
}

// --- Directories --------------------------------------------------------------------------------

TEST_F(Files, DirectoryIsMadeOnlyOnce) {
    EXPECT_TRUE(createDirectory(folder_.wide("new")));
    EXPECT_TRUE(isDirectory(folder_.wide("new")));
    EXPECT_FALSE(createDirectory(folder_.wide("new")));
    EXPECT_FALSE(createDirectory(folder_.wide("missing/new")));
}

TEST_F(Files, DirectoryHasMode0775LessTheMask) {
    const mode_t before = umask(0);
    EXPECT_TRUE(createDirectory(folder_.wide("open")));
    umask(022);
    EXPECT_TRUE(createDirectory(folder_.wide("masked")));
    umask(before);
    EXPECT_EQ(modeOf("open"), 0775U);
    EXPECT_EQ(modeOf("masked"), 0755U);
}

TEST_F(Files, EveryDirectoryOfAPathIsMade) {
    EXPECT_TRUE(mkdirs(folder_.wide() + L"//a\\b/\\c/"));
    EXPECT_TRUE(isDirectory(folder_.wide("a/b/c")));
}

TEST_F(Files, ExistingPathIsNotMadeAndNotChanged) {
    folder_.write("a/b/file", "x");
    EXPECT_FALSE(mkdirs(folder_.wide("a/b")));
    EXPECT_EQ(folder_.read("a/b/file"), "x");
    EXPECT_TRUE(mkdirs(folder_.wide("a/b/c"))) << "only the last one counts";
    EXPECT_TRUE(mkdirs(folder_.wide("a/b/d//"))) << "an empty element is none";
}

TEST_F(Files, PathWithoutComponentsIsMade) {
    for (const wchar_t* path : {L"", L"/", L"//\\"}) {
        EXPECT_TRUE(mkdirs(path)) << path;
    }
}

const test::Probe kRelative("relative mkdirs", [](const std::vector<std::string>& arguments) {
    // A root of the test's own, so that the system's stays clean.
    if (chroot(arguments.at(0).c_str()) != 0 || chdir("/inside") != 0) {
        return 77;
    }
    _exit(mkdirs(L"a/b") ? 3 : 4);  // a leak check at exit would miss /proc in this root
});

TEST_F(Files, RelativePathIsMadeFromTheRootOfTheFileSystem) {
    makeDirectory("inside");
    const test::ProbeResult result = test::runProbe("relative mkdirs", {folder_.narrow()});
    if (result.status == 77) {
        GTEST_SKIP() << "only root can have a root of its own";
    }
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(isDirectory(folder_.wide("a/b")));
    EXPECT_FALSE(exists(folder_.wide("inside/a")));
}

TEST_F(Files, FileInThePathIsAFailure) {
    folder_.write("file", "x");
    EXPECT_FALSE(mkdirs(folder_.wide("file/a")));
    EXPECT_FATAL(ensureDirectory(folder_.wide("file/a"), kNotMade),
                 "no .*/file/a\\. : Not a directory\n");
    EXPECT_FATAL(ensureDirectory(folder_.wide("file"), kNotMade), "/file\\. : File exists\n");
    EXPECT_EQ(folder_.read("file"), "x");
}

TEST_F(Files, DirectoryThatAnotherLauncherMadeMeanwhileIsEnough) {
    ensureDirectory(folder_.wide("a/b"), kNotMade);
    ensureDirectory(folder_.wide("a/b"), kNotMade);
    EXPECT_TRUE(isDirectory(folder_.wide("a/b")));
}

TEST_F(Files, LinkToADirectoryIsNotEnough) {
    makeDirectory("directory");
    link("directory", "link");
    EXPECT_FATAL(ensureDirectory(folder_.wide("link"), kNotMade),
                 "no .*/link\\. : it is a symbolic link\n");
}

TEST_F(Files, FirstDirectoryThatCannotBeMadeIsTheReason) {
    folder_.write("file", "x");
    const PathMade made = mkdirs(folder_.wide("file/a") + L"/" + std::wstring(300, L'n'));
    EXPECT_EQ(made.error, ENOTDIR);
    EXPECT_EQ(made.failed, folder_.wide("file/a"));
    EXPECT_FATAL(ensureDirectory(folder_.wide("file/a/b/c"), kNotMade),
                 "no .*/file/a/b/c\\. \\(.*/file/a\\) : Not a directory\n");
    EXPECT_EQ(mkdirs(folder_.wide("a/b")).error, 0) << "what is there is no failure";
    EXPECT_EQ(mkdirs(folder_.wide("a/b")).error, 0);
}

// --- Moving and deleting ------------------------------------------------------------------------

TEST_F(Files, MoveRenames) {
    folder_.write("a", "content");
    folder_.write("b", "old");
    EXPECT_TRUE(moveFile(folder_.wide("a"), folder_.wide("b")));
    EXPECT_EQ(folder_.read("b"), "content");
    EXPECT_FALSE(folder_.has("a"));
    EXPECT_FALSE(moveFile(folder_.wide("a"), folder_.wide("b")));
    EXPECT_EQ(folder_.read("b"), "content");
}

TEST_F(Files, DirectoryIsMovedWhole) {
    folder_.write("a/b/c", "content");
    EXPECT_TRUE(moveFile(folder_.wide("a"), folder_.wide("d")));
    EXPECT_EQ(folder_.read("d/b/c"), "content");
}

TEST_F(Files, DeleteUnlinksFilesAndLinksOnly) {
    folder_.write("file", "");
    makeDirectory("directory");
    link("directory", "link");
    EXPECT_TRUE(deleteFile(folder_.wide("file")));
    EXPECT_FALSE(folder_.has("file"));
    EXPECT_FALSE(deleteFile(folder_.wide("file")));
    EXPECT_TRUE(deleteFile(folder_.wide("link")));
    EXPECT_FALSE(deleteFile(folder_.wide("directory")));
    EXPECT_TRUE(folder_.has("directory"));
}

}  // namespace
}  // namespace rcp

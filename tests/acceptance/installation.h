// A complete installation in a folder of its own, the user who works with it, and the launches of
// the real launcher in it.
#pragma once

#include "process.h"
#include "report.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace acceptance {

/// What came of one launch.
struct Launch {
    int status = -1;  ///< exit status; -1 when a signal ended it
    int signal = 0;
    pid_t pid = -1;
    std::optional<Report> platform;  ///< none when no platform was started
    std::string log;                 ///< the workspace's log of a launch without tracing
    std::string temporaryLog;        ///< the same in /tmp
    std::string output;              ///< what was written to the terminal
};

/// A new folder of its own, removed with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

class Installation;

/// A launch whose platform stays up until it is told to end.
class StayingLaunch {
  public:
    StayingLaunch(StayingLaunch&&) = default;
    ~StayingLaunch();
    /// Waits until the platform is up; fails the test when it does not come.
    Report platform();
    /// The platform's report if there is one by now.
    [[nodiscard]] std::optional<Report> reported() const;
    /// The file of the report; written when the platform comes up.
    [[nodiscard]] const std::string& reportFile() const { return report_; }
    /// Waits until the platform is up and its process id stands in the workspace: a platform that
    /// ends at once may be gone before it is recorded.
    void waitUntilRecorded();
    /// Lets the platform end and waits for everything.
    Launch finish();
    /// Kills the process that was started.
    void kill();
    [[nodiscard]] pid_t pid() const { return process_->pid(); }
    bool running() { return process_->running(); }

  private:
    friend class Installation;
    StayingLaunch(const Installation& installation, std::unique_ptr<Process> process,
                  std::string report, std::string marker, std::string output)
        : installation_(&installation),
          process_(std::move(process)),
          report_(std::move(report)),
          marker_(std::move(marker)),
          output_(std::move(output)) {}

    const Installation* installation_;
    std::unique_ptr<Process> process_;
    std::string report_;
    std::string marker_;
    std::string output_;
};

/// Makes the tree when it is created; it goes with all that the launches left in it. As created it
/// holds exactly what a launch needs to succeed: the launcher's property file has three entries
/// (rcp.install.id, rcp.base.location, plugincustomization).
///
///     root/Velmo/rcp/rcplauncher, rcplauncher.properties
///     root/Velmo/rcp/eclipse/plugins/com.ovr.rcp.base/   launcher.jar, plugin_customization.ini,
///         macosx/x86/{eclipse,eclipse_1615.so}, config/user/{config.ini,...}, config.ini, ...
///     root/home   the user's home         root/tmp   what the launcher sees as /tmp
///     root/folder the working directory
class Installation {
  public:
    Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

  private:
    const TemporaryFolder tree_;

  public:
    const std::string& root;
    const std::string home;       ///< root/Velmo: the installation directory, "${rcp.home}"
    const std::string rcp;        ///< root/Velmo/rcp
    const std::string base;       ///< "rcp.base.location"
    const std::string userHome;   ///< root/home
    const std::string tmp;        ///< root/tmp
    const std::string installId;  ///< "abc123"
    const std::string userName;   ///< "ann"

    /// Where the launches are expected to put their workspace: where logs are read from. The
    /// default place to begin with.
    std::string workspace;
    [[nodiscard]] std::string configuration() const { return workspace + "/.config"; }

    /// How the launcher is started; argument 0 is the program's path unless it is set.
    std::string program;
    std::optional<std::string> programName;
    std::string folder;
    std::map<std::string, std::string> environment;
    /// A program that runs the launcher (a tracer, a limit) with its own arguments; the launcher's
    /// follow. The words of RCP_TEST_WRAPPER, if it is set, to run every launch under a checker.
    Texts wrapper;

    /// One line `key=value` of rcplauncher.properties: replaces the first with that key, or is
    /// added at the end.
    Installation& set(const std::string& key, const std::string& value);
    Installation& unset(const std::string& key);
    /// One more line as it stands, repeated keys included.
    Installation& addLine(const std::string& line);
    /// One more line of the installation's own rcpinstall.properties.
    Installation& addInstallLine(const std::string& line);
    /// "jvm.location" and "jvm.libpath" name a JVM that is the stand-in program; returns its path.
    std::string useOwnJvm();
    /// The service configuration (its JVM is the stand-in program); returns the JVM's path.
    std::string useServiceConfiguration();

    /// Writes a file (relative paths: below root), with its folders; never through a link.
    std::string write(const std::string& path, const std::string& text, int mode = 0644) const;
    /// Puts a copy of a program or library at `path`.
    std::string place(const std::string& source, const std::string& path) const;
    [[nodiscard]] std::string path(const std::string& below) const { return root + "/" + below; }

    /// Runs the launcher to its end, with a hard limit.
    Launch launch(const Texts& arguments = {}) const;
    /// The same where a platform must come up and all must end with status 0: its report.
    Report start(const Texts& arguments = {}) const;
    /// Starts the launcher with a platform that stays.
    StayingLaunch startStaying(const Texts& arguments = {}) const;
    /// Launches from now on stop where they sleep, and right before the platform runs (in the library's
    /// first call, or in front of the system call that replaces the program), while the file that is
    /// returned is there. Waits of a second are over at once then. Empty where the system's own calls
    /// cannot be replaced.
    std::string hold();
    /// The names in the workspace's log folder.
    [[nodiscard]] Texts logNames() const;

    /// Gives the whole tree to another user, as whom the launches run from now on (root only).
    void giveTo(uid_t user);

    static constexpr std::chrono::seconds kLimit{400};

  private:
    friend class StayingLaunch;
    [[nodiscard]] Command command(const Texts& arguments, const std::string& report,
                                  const std::string& output) const;
    [[nodiscard]] Launch collect(Process& process, const std::string& report,
                                 const std::string& output) const;
    void writePropertyFiles() const;

    std::optional<uid_t> user_;
    std::vector<std::string> lines_;
    std::vector<std::string> installLines_;
    mutable std::string writtenProperties_;
    mutable std::string writtenInstall_;
    mutable int launches_ = 0;
};

/// Waits until a launch stops for the file of `Installation::hold`.
bool isReached(const std::string& marker);

/// The text of a file; empty when it cannot be read.
std::string readFile(const std::string& path);
bool fileExists(const std::string& path);

}  // namespace acceptance

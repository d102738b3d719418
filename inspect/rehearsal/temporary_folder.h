// The folder in which a rehearsal keeps what it changes. An interrupted run leaves it behind; the next
// one of the same user removes it when a day has passed.
#pragma once

#include <string>

namespace rcp::inspect {

class TemporaryFolder {
  public:
    /// A new one in TMPDIR, or /tmp. Throws std::runtime_error when none can be made.
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace rcp::inspect

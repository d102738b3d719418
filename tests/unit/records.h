// The log records that a piece of a test writes, wherever they go at the moment.
#pragma once

#include "diagnostics/log_file.h"
#include "diagnostics/svc_debug.h"
#include "tests/unit/fixture.h"

#include <string>

namespace rcp::test {

/// Collects from its creation on. A log that another test has opened is replaced by one in
/// `folder`.
class Records {
  public:
    explicit Records(const TestFolder& folder) : folder_(&folder) {
        if (logIsOpen()) {
            enableLogging(folder.wide());
            begin_ = folder.read("rcplauncher.log").size();
        } else {
            begin_ = logQueue().size();
        }
    }
    [[nodiscard]] std::string text() const {
        return (logIsOpen() ? folder_->read("rcplauncher.log") : logQueue()).substr(begin_);
    }
    [[nodiscard]] bool has(const std::string& record) const {
        return text().find(record) != std::string::npos;
    }

  private:
    const TestFolder* folder_;
    std::size_t begin_ = 0;
};

}  // namespace rcp::test

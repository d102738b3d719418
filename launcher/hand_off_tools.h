// What both hand-offs, to the platform and to the provisioning application, need.
#pragma once

#include "base/pipe.h"
#include "diagnostics/argument.h"
#include "diagnostics/message.h"

#include <span>
#include <string>
#include <vector>

namespace rcp {

/// The launch arguments in narrow form, as execv(3) and the launcher library take them. Owns the
/// texts; data() is a null-terminated array of pointers to them.
class NarrowArguments {
  public:
    explicit NarrowArguments(std::span<const Argument> arguments);
    NarrowArguments(const NarrowArguments&) = delete;
    NarrowArguments& operator=(const NarrowArguments&) = delete;
    NarrowArguments(NarrowArguments&&) = delete;
    NarrowArguments& operator=(NarrowArguments&&) = delete;
    ~NarrowArguments() = default;

    [[nodiscard]] int count() const { return static_cast<int>(texts_.size()); }
    [[nodiscard]] char** data() { return pointers_.data(); }
    [[nodiscard]] const std::vector<std::string>& texts() const { return texts_; }

  private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

/// Logs `begin`, one argument a line, and `end`, whether tracing is on or not.
void logLaunchArguments(Message<> begin, const NarrowArguments& arguments, Message<> end);

/// Replaces this process by the program that `command` begins with. Returns only when that failed,
/// with an E record, which a log that is full leaves to the temporary one.
void becomeProgram(NarrowArguments& command);

/// A gate between parent and child: a close-on-exec pipe that nothing is ever written to. The child
/// waits at it until the parent has opened it, replaced its image or ended, each of which closes
/// the parent's end. Without descriptors for a pipe the gate is open from the start.
class Gate {
  public:
    Gate() = default;
    /// One that was not opened opens when this process is gone, not with its object: a parent that fails is
    /// still alive while it tells why, and nobody may find it recorded as the platform.
    ~Gate() {
        (void)pipe_.readEnd.release();
        (void)pipe_.writeEnd.release();
    }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    Gate(Gate&&) = delete;
    Gate& operator=(Gate&&) = delete;

    /// In the parent.
    void open();
    /// In the child.
    void wait();

  private:
    Pipe pipe_;
};

}  // namespace rcp

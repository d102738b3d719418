// Listens to launchers that stop at every step (tests/standin/standin_steps.cpp) and tells them when
// to go on.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>

namespace acceptance {

class StepListener {
  public:
    StepListener();
    ~StepListener();
    StepListener(const StepListener&) = delete;
    StepListener& operator=(const StepListener&) = delete;

    /// What RCP_STANDIN_STEPS has to be.
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Waits until the process ("1", "1 child") stands; fails the test when it does not come.
    void await(const std::string& process);
    /// The step at which a process stands, waiting for a launcher that is to come; empty when it
    /// does not stand.
    std::string stopOf(const std::string& process);
    void release(const std::string& process, char answer);
    /// Kills the process and waits for its end.
    void kill(const std::string& process);
    void awaitEnd(const std::string& process);

  private:
    struct Stop {
        std::string step;
        int connection = -1;
    };
    /// Takes in one process that has stopped; false when none does in time.
    bool accept();

    std::string name_;
    int socket_ = -1;
    std::map<std::string, Stop> stops_;
    std::map<std::string, int> processes_;  // descriptors that become readable at the end
};

}  // namespace acceptance

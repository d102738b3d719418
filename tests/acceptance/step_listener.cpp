#include "step_listener.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace acceptance {

namespace {

constexpr int kLimit = 40'000;  // milliseconds

bool becomesReadable(int descriptor) {
    pollfd wanted{descriptor, POLLIN, 0};
    return poll(&wanted, 1, kLimit) == 1;
}

}  // namespace

StepListener::StepListener() : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    static int count = 0;
    name_ = "rcp-steps-" + std::to_string(getpid()) + "-" + std::to_string(++count);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, name_.data(), name_.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name_.size());
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), length), 0);
    EXPECT_EQ(listen(socket_, SOMAXCONN), 0);
}

StepListener::~StepListener() {
    for (const auto& [process, stop] : stops_) {
        close(stop.connection);
    }
    for (const auto& [process, descriptor] : processes_) {
        close(descriptor);
    }
    close(socket_);
}

bool StepListener::accept() {
    if (!becomesReadable(socket_)) {
        return false;
    }
    const int connection = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    std::array<char, 100> text{};
    const ssize_t size = recv(connection, text.data(), text.size(), 0);
    ucred sender{};
    socklen_t length = sizeof sender;
    if (size <= 0 || getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &sender, &length) != 0) {
        close(connection);  // killed while it came
        return true;
    }
    const std::string told(text.data(), static_cast<std::size_t>(size));
    const bool isChild = told.find(" child: ") == 1;
    const std::string process = isChild ? told.substr(0, 7) : told.substr(0, 1);
    if (!processes_.contains(process)) {
        processes_[process] = static_cast<int>(syscall(SYS_pidfd_open, sender.pid, 0));
    }
    stops_[process] = {told.substr(isChild ? 9 : 2), connection};
    return true;
}

void StepListener::await(const std::string& process) {
    while (!stops_.contains(process)) {
        if (!accept()) {
            ADD_FAILURE() << process << " does not come to a step";
            return;
        }
    }
}

std::string StepListener::stopOf(const std::string& process) {
    const bool isLauncher = process.size() == 1;
    if (isLauncher) {
        await(process);
    }
    const auto found = stops_.find(process);
    return found == stops_.end() ? "" : found->second.step;
}

void StepListener::release(const std::string& process, char answer) {
    const auto found = stops_.find(process);
    ASSERT_NE(found, stops_.end()) << process;
    EXPECT_EQ(send(found->second.connection, &answer, 1, MSG_NOSIGNAL), 1);
    close(found->second.connection);
    stops_.erase(found);
}

void StepListener::kill(const std::string& process) {
    ASSERT_TRUE(processes_.contains(process)) << process;
    EXPECT_EQ(syscall(SYS_pidfd_send_signal, processes_[process], SIGKILL, nullptr, 0), 0);
    awaitEnd(process);
}

void StepListener::awaitEnd(const std::string& process) {
    ASSERT_TRUE(processes_.contains(process)) << process;
    EXPECT_TRUE(becomesReadable(processes_[process])) << process << " does not end";
    const auto found = stops_.find(process);
    if (found != stops_.end()) {
        close(found->second.connection);
        stops_.erase(found);
    }
}

}  // namespace acceptance

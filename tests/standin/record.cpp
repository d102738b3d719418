#include "record.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#ifdef __APPLE__
#include <crt_externs.h>
#else
extern char** environ;
#endif

namespace standin {

namespace {

char** environmentOfProcess() {
#ifdef __APPLE__
    return *_NSGetEnviron();
#else
    return environ;
#endif
}

// What a descriptor refers to; empty when the system does not say.
void describeDescriptor(int descriptor, char* target, size_t size) {
    target[0] = '\0';
#ifdef __APPLE__
    if (size < PATH_MAX || fcntl(descriptor, F_GETPATH, target) == -1) {
        target[0] = '\0';
    }
#else
    char link[64];
    (void)snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(link, target, size - 1);
    target[length < 0 ? 0 : length] = '\0';
#endif
}

void addDescriptors(Text& report) {
    report.add("[");
    DIR* folder = opendir("/dev/fd");
    if (folder != nullptr) {
        const char* separator = "";
        while (const dirent* entry = readdir(folder)) {
            char* end = nullptr;
            const long descriptor = strtol(entry->d_name, &end, 10);
            if (end == entry->d_name || *end != '\0' || descriptor == dirfd(folder)) {
                continue;
            }
            char target[PATH_MAX + 1];
            describeDescriptor(static_cast<int>(descriptor), target, sizeof target);
            report.add(separator);
            report.add("{\"fd\": ");
            report.addNumber(descriptor);
            report.add(", \"target\": ");
            report.addQuoted(target);
            report.add("}");
            separator = ", ";
        }
        (void)closedir(folder);
    }
    report.add("]");
}

bool writeAll(int file, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t written = write(file, bytes, size);
        if (written < 0) {
            return false;
        }
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

// 60 seconds at the longest.
void waitWhileThere(const char* marker) {
    if (marker == nullptr || *marker == '\0') {
        return;
    }
    const timespec pause = {0, 10L * 1000 * 1000};
    for (int round = 0; round < 6000 && access(marker, F_OK) == 0; ++round) {
        (void)nanosleep(&pause, nullptr);
    }
}

}  // namespace

Text::~Text() {
    free(data_);
}

void Text::add(const char* text, size_t length) {
    if (size_ + length + 1 > capacity_) {
        const size_t wanted = 2 * (size_ + length) + 4096;
        char* larger = static_cast<char*>(realloc(data_, wanted));
        if (larger == nullptr) {
            abort();
        }
        data_ = larger;
        capacity_ = wanted;
    }
    memcpy(data_ + size_, text, length);
    size_ += length;
    data_[size_] = '\0';
}

void Text::add(const char* text) {
    add(text, strlen(text));
}

void Text::addNumber(long number) {
    char digits[32];
    (void)snprintf(digits, sizeof digits, "%ld", number);
    add(digits);
}

void Text::addQuoted(const char* text) {
    add("\"");
    for (const char* at = text; *at != '\0'; ++at) {
        const unsigned char byte = static_cast<unsigned char>(*at);
        if (byte == '"' || byte == '\\') {
            add("\\");
            add(at, 1);
        } else if (byte < 0x20) {
            char escape[8];
            (void)snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
            add(escape);
        } else {
            add(at, 1);
        }
    }
    add("\"");
}

void Text::addList(char* const* texts) {
    if (texts == nullptr) {
        add("null");
        return;
    }
    add("[");
    const char* separator = "\n    ";
    for (; *texts != nullptr; ++texts) {
        add(separator);
        addQuoted(*texts);
        separator = ",\n    ";
    }
    add("]");
}

void addProcess(Text& report) {
    report.add(",\n  \"pid\": ");
    report.addNumber(getpid());
    char folder[PATH_MAX + 1];
    report.add(",\n  \"cwd\": ");
    report.addQuoted(getcwd(folder, sizeof folder) == nullptr ? "" : folder);
    report.add(",\n  \"environment\": ");
    report.addList(environmentOfProcess());
    report.add(",\n  \"descriptors\": ");
    addDescriptors(report);
}

void deliver(const Text& report) {
    const char* name = getenv("RCP_STANDIN_REPORT");
    if (name == nullptr || *name == '\0') {
        (void)writeAll(STDOUT_FILENO, report.data(), report.size());
        return;
    }
    Text target;
    target.add(name);
    if (name[strlen(name) - 1] == '/') {
        target.addNumber(getpid());
        target.add(".json");
    }
    Text temporary;
    temporary.add(target.data());
    temporary.add(".");
    temporary.addNumber(getpid());
    const int file = open(temporary.data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file == -1) {
        perror(temporary.data());
        return;
    }
    const bool written = writeAll(file, report.data(), report.size());
    if (close(file) != 0 || !written || rename(temporary.data(), target.data()) != 0) {
        perror(target.data());
    }
}

void stay() {
    waitWhileThere(getenv("RCP_STANDIN_STAY"));
}

void hold() {
    const char* marker = getenv("RCP_STANDIN_HOLD");
    if (marker == nullptr || *marker == '\0' || access(marker, F_OK) != 0) {
        return;
    }
    Text reached;
    reached.add(marker);
    reached.add(".reached");
    (void)close(open(reached.data(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    waitWhileThere(marker);
}

}  // namespace standin

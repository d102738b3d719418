// What a stand-in platform writes down about how it was started, as one JSON object. Shared by the
// stand-in program and the stand-in library. It uses the C library only, so that a stand-in adds
// as little as possible to what a benchmark of the launcher measures.
#pragma once

#include <cstddef>

namespace standin {

/// A text that grows; ends the process when memory runs out.
class Text {
  public:
    Text() = default;
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text();

    void add(const char* text);
    void add(const char* text, size_t length);
    void addNumber(long number);
    /// `text` in double quotes, escaped for JSON; bytes above 126 pass through as they are.
    void addQuoted(const char* text);
    /// A JSON list of the texts up to the null entry; "null" for a null vector.
    void addList(char* const* texts);

    [[nodiscard]] const char* data() const { return data_ == nullptr ? "" : data_; }
    [[nodiscard]] size_t size() const { return size_; }

  private:
    char* data_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

/// The members that describe the process itself: "pid", "cwd", "environment" and "descriptors"
/// (every open file descriptor with what it refers to), each with a comma before it.
void addProcess(Text& report);

/// Puts the report into the file that RCP_STANDIN_REPORT names (whole: a temporary name beside it
/// is renamed; a name that ends in "/" is a folder in which the file is called after the process
/// id), or prints it when the variable is not set.
void deliver(const Text& report);

/// Returns when the file that RCP_STANDIN_STAY names is gone, after 60 seconds at the latest.
void stay();

/// The same for RCP_STANDIN_HOLD, which stops a launch on its way: makes a file of that name and
/// ".reached" first, so that whoever waits for it knows that the way has come this far.
void hold();

}  // namespace standin

// What a launch looks at, told to a program that explains launches. A launch itself has no observer.
#pragma once

#include <string>
#include <string_view>

namespace rcp {

struct Property;

class Observer {
  public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    Observer(Observer&&) = delete;
    Observer& operator=(Observer&&) = delete;
    virtual ~Observer() = default;

    virtual void propertyFileRead(const std::wstring& path) = 0;
    /// A look-up, by key or by prefix, has found the entry.
    virtual void propertyFound(const Property& entry) = 0;
    virtual void placeholderReplaced(const std::wstring& before, std::wstring_view placeholder,
                                     const std::wstring& value, const std::wstring& after) = 0;
};

/// Null in a launch.
extern Observer* observer;

}  // namespace rcp

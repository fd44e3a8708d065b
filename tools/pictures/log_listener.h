// Collects the lines that the library logs.
#ifndef IMAGEBLEND_TOOLS_PICTURES_LOG_LISTENER_H
#define IMAGEBLEND_TOOLS_PICTURES_LOG_LISTENER_H

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct LogLine {
    int priority;
    std::string tag;
    std::string message;
};

// Collects while it exists. At most one exists at a time.
class LogListener {
  public:
    LogListener();
    ~LogListener();
    LogListener(const LogListener&) = delete;
    LogListener& operator=(const LogListener&) = delete;

    // Stops collecting and logs the lines again, so that IMAGEBLEND_LOG still shows them.
    void replay();
    bool heard(std::string_view part) const;
};

}  // namespace tool

#endif

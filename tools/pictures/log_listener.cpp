#include "pictures/log_listener.h"

#include <android/log.h>

#include <algorithm>
#include <mutex>

namespace tool {
namespace {

std::mutex lines_lock;  // the library may log on its worker threads
std::vector<LogLine> lines;

void collect(const __android_log_message* line) {
    const std::lock_guard<std::mutex> held(lines_lock);
    lines.push_back({line->priority, line->tag ? line->tag : "", line->message});
}

}  // namespace

LogListener::LogListener() {
    lines.clear();
    __android_log_set_logger(collect);
}

LogListener::~LogListener() {
    __android_log_set_logger(nullptr);
}

void LogListener::replay() {
    __android_log_set_logger(nullptr);
    for (const LogLine& line : lines) {
        __android_log_print(line.priority, line.tag.c_str(), "%s", line.message.c_str());
    }
}

bool LogListener::heard(std::string_view part) const {
    const std::lock_guard<std::mutex> held(lines_lock);
    return std::any_of(lines.begin(), lines.end(), [&](const LogLine& line) {
        return line.message.find(part) != std::string::npos;
    });
}

}  // namespace tool

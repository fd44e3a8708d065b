// SPDX-License-Identifier: Apache-2.0
#include "log_capture.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <mutex>
#include <regex>
#include <string>
#include <utility>

namespace {

std::mutex lines_lock;
model::log_lines lines;

}  // namespace

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    char text[2048];
    va_list arguments;
    va_start(arguments, fmt);
    vsnprintf(text, sizeof text, fmt, arguments);
    va_end(arguments);
    std::string line = text;
    if (tag == nullptr || strcmp(tag, "IMAGE_BLENDING") != 0) {
        line = std::string("tag ") + (tag == nullptr ? "(null)" : tag) + ": " + line;
    }
    const std::lock_guard<std::mutex> guard(lines_lock);
    lines.push_back({prio, std::move(line)});
    return 1;
}

namespace support {

void clear_log() {
    take_log();
}

model::log_lines take_log() {
    const std::lock_guard<std::mutex> guard(lines_lock);
    return std::exchange(lines, {});
}

model::log_lines normalised(model::log_lines caught) {
    static const std::regex version("^(ImageBlending version .*build time:).*,time:.*\n$");
    static const std::regex pointer("(src_imageptr:|src_patchimage:)(0x[0-9a-f]+|\\(nil\\))");
    for (model::log_line& line : caught) {
        line.text = std::regex_replace(line.text, version, "$1");
        line.text = std::regex_replace(line.text, pointer, "$1<ptr>");
    }
    return caught;
}

}  // namespace support

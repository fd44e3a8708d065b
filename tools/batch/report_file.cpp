// SPDX-License-Identifier: Apache-2.0
#include "batch/report_file.h"

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "commands/guard.h"

namespace tool {

ReportFile::ReportFile(const std::string& path) : path_(path) {
    if (path.empty()) return;
    file_.reset(path == "-" ? stdout : std::fopen(path.c_str(), "ae"));
    if (!file_) {
        throw Error(Exit::no_output, path + ": cannot be written: " + std::strerror(errno));
    }
}

void ReportFile::add(const nlohmann::ordered_json& job) {
    if (!file_ || failed_) return;
    // Messages of the system need not be UTF-8.
    const std::string line =
        job.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
    if (std::fwrite(line.data(), 1, line.size(), file_.get()) == line.size() &&
        std::fflush(file_.get()) == 0) {
        return;
    }
    failed_ = true;
    complain(Exit::no_output, path_ + ": cannot be written: " + std::strerror(errno));
}

}  // namespace tool

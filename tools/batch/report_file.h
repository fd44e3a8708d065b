// SPDX-License-Identifier: Apache-2.0
// The file of --report: what became of each job, as one JSON object a line.
#ifndef IMAGEBLEND_TOOLS_BATCH_REPORT_FILE_H
#define IMAGEBLEND_TOOLS_BATCH_REPORT_FILE_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tool {

class ReportFile {
  public:
    // Nothing is written for an empty path; "-" is standard output. Lines are added to a file that
    // exists.
    explicit ReportFile(const std::string& path);

    // Writes the line at once.
    void add(const nlohmann::ordered_json& job);
    // Whether a line could not be written.
    bool failed() const { return failed_; }

  private:
    struct Close {
        void operator()(FILE* file) const {
            if (file != stdout) std::fclose(file);
        }
    };
    std::string path_;
    std::unique_ptr<FILE, Close> file_;
    bool failed_ = false;
};

}  // namespace tool

#endif

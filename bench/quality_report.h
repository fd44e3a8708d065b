// SPDX-License-Identifier: Apache-2.0
// The table of the quality benchmark and its bars.
#ifndef IMAGEBLEND_BENCH_QUALITY_REPORT_H
#define IMAGEBLEND_BENCH_QUALITY_REPORT_H

#include <iosfwd>

#include "quality_measure.h"

struct quality_row {
    std::string method, case_name, scene;
    bool made;    // whether there is a result
    bool turned;  // zoomed or turned
    quality_figures figures;
};

class quality_report {
  public:
    void add(const quality_row& row) { rows_.push_back(row); }
    bool has_rows() const { return !rows_.empty(); }
    void write_csv(std::ostream& to) const;
    // For each method a table of the cases, in the order in which they came.
    void print_cases(std::ostream& to, bool every_row) const;
    // One line a method, over all cases.
    void print_summary(std::ostream& to) const;
    // What is asked of the first method.
    void print_bars(std::ostream& to) const;

  private:
    std::string command() const;

    std::vector<quality_row> rows_;
};

#endif

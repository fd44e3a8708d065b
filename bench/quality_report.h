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
    void write_csv(std::ostream& to) const;
    // A table of each method, cases in the order in which they came, and the bars of the first
    // method.
    void print(std::ostream& to, bool every_row) const;

  private:
    std::vector<quality_row> rows_;
};

#endif

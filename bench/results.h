// SPDX-License-Identifier: Apache-2.0
// The medians that the benchmark programs measured.
#ifndef IMAGEBLEND_BENCH_RESULTS_H
#define IMAGEBLEND_BENCH_RESULTS_H

#include <map>
#include <string>
#include <tuple>
#include <vector>

// A value that was not measured, because a peer or a program was not there, is not a number; so is
// every ratio made of it.
class results {
  public:
    // Reads files of Google Benchmark's JSON format. Throws with the file's name.
    explicit results(const std::vector<std::string>& paths);

    // Wall-clock time of one iteration in nanoseconds.
    double time_ns(const std::string& name) const { return value(name, "time_ns"); }
    double value(const std::string& name, const std::string& field) const;

    // Names that start with `prefix`, in the order in which they were registered.
    std::vector<std::string> names(const std::string& prefix) const;

    // The machine and the number of rounds, as the first file gives them.
    std::string machine;
    int rounds = 0;

  private:
    void add_file(const std::string& path);

    int paths_read_ = 0;
    std::map<std::tuple<int, int, size_t>, std::string> order_;  // by file, family and entry
    std::map<std::string, std::map<std::string, double>> values_;
};

// The smaller of those that were measured.
double fastest(double a, double b);

// Sizes of the pyramid that is measured alone.
const std::vector<int>& pyramid_sides();

// Time of one blend of the given kind; without a thread count in the name, that of the fastest
// variant of the peer.
double by_hand_ns(const results& from, int side);
double multiband_ns(const results& from, int side);
double pyramid_ns(const results& from, const std::string& kind, int side);

// "12.3", or "-" for a value that was not measured.
std::string number(double value, int digits);

// Prints the bars that the library is held to, each met or missed. Returns how many are missed.
int print_bars(const results& from);

#endif

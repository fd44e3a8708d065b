// SPDX-License-Identifier: Apache-2.0
#include "quality_report.h"

#include <stdio.h>

#include <algorithm>
#include <ostream>

namespace {

using row_list = std::vector<const quality_row*>;

struct range {
    double mean = 0, worst = 0;
    std::string where;
};

template <typename Figure>
range over_rows(const row_list& rows, const Figure& figure) {
    range found;
    for (const quality_row* row : rows) {
        const double value = figure(*row);
        found.mean += value / static_cast<double>(rows.size());
        if (value < found.worst) continue;
        found.worst = value;
        found.where = row->scene + " " + row->case_name;
    }
    return found;
}

double halo(const quality_row& row) {
    return row.figures.halo;
}
double inside(const quality_row& row) {
    return row.figures.inside;
}
double edge(const quality_row& row) {
    return row.figures.edge;
}
double changed(const quality_row& row) {
    return row.figures.changed_outside;
}
double misplaced(const quality_row& row) {
    return static_cast<double>(
        std::max(std::abs(row.figures.off_place.x), std::abs(row.figures.off_place.y)));
}

template <typename Chosen>
row_list choose(const std::vector<quality_row>& rows, const Chosen& chosen) {
    row_list found;
    for (const quality_row& row : rows) {
        if (row.made && chosen(row)) found.push_back(&row);
    }
    return found;
}

// The distinct values of a field in the order in which they come.
std::vector<std::string> values(const std::vector<quality_row>& rows,
                                std::string quality_row::*field) {
    std::vector<std::string> found;
    for (const quality_row& row : rows) {
        if (std::find(found.begin(), found.end(), row.*field) == found.end()) {
            found.push_back(row.*field);
        }
    }
    return found;
}

void print_line(std::ostream& to, const std::string& name, const row_list& rows, size_t failed) {
    const range h = over_rows(rows, halo), i = over_rows(rows, inside), e = over_rows(rows, edge);
    const double lost =
        over_rows(rows, [](const quality_row& row) { return row.figures.lost; }).mean;
    char line[200];
    snprintf(line, sizeof line,
             "  %-22s %6.2f %6.2f  %6.2f %6.2f  %6.2f %6.2f  %7.0f %6.2f %5.1f%%", name.c_str(),
             h.mean, h.worst, i.mean, i.worst, e.mean, e.worst, over_rows(rows, changed).worst,
             over_rows(rows, misplaced).worst, 100 * lost);
    to << line;
    if (failed > 0) to << "  " << failed << " failed";
    to << "\n";
}

// A bar, and whether there is anything to hold to it.
void print_bar(std::ostream& to, const char* name, bool measured, double value, double bar,
               const std::string& where) {
    const char* verdict = !measured ? "not measured" : value <= bar ? "met" : "MISSED";
    char line[200];
    snprintf(line, sizeof line, "  %-12s  %-44s %8.2f  <= %g", verdict, name, value, bar);
    to << line << (where.empty() ? "" : "  (" + where + ")") << "\n";
}

void print_head(std::ostream& to, const std::string& title) {
    to << "\n"
       << title << "\n"
       << "                           halo          inside          edge        changed  place"
          "   lost\n"
       << "                          mean  worst    mean  worst    mean  worst  outside    off\n";
}

size_t count_failed(const std::vector<quality_row>& rows, const std::string& method,
                    const std::string& case_name) {
    return static_cast<size_t>(std::count_if(rows.begin(), rows.end(), [&](const quality_row& row) {
        return !row.made && row.method == method &&
               (case_name.empty() || row.case_name == case_name);
    }));
}

}  // namespace

void quality_report::write_csv(std::ostream& to) const {
    to << "method,scene,case,made,halo,inside,edge,changed_outside,lost,off_x,off_y\n";
    for (const quality_row& row : rows_) {
        const quality_figures& f = row.figures;
        to << row.method << "," << row.scene << "," << row.case_name << "," << row.made << ","
           << f.halo << "," << f.inside << "," << f.edge << "," << f.changed_outside << ","
           << f.lost << "," << f.off_place.x << "," << f.off_place.y << "\n";
    }
}

std::string quality_report::command() const {
    return rows_.empty() ? std::string() : rows_.front().method;
}

void quality_report::print_cases(std::ostream& to, bool every_row) const {
    for (const std::string& method : values(rows_, &quality_row::method)) {
        print_head(to, method);
        for (const std::string& name : values(rows_, &quality_row::case_name)) {
            const row_list rows = choose(rows_, [&](const quality_row& row) {
                return row.method == method && row.case_name == name;
            });
            print_line(to, name, rows, count_failed(rows_, method, name));
            if (!every_row) continue;
            for (const quality_row* row : rows)
                print_line(to, "  " + row->scene, {row}, 0);
        }
    }
}

void quality_report::print_summary(std::ostream& to) const {
    print_head(to, "All cases");
    for (const std::string& method : values(rows_, &quality_row::method)) {
        const row_list rows =
            choose(rows_, [&](const quality_row& row) { return row.method == method; });
        print_line(to, method, rows, count_failed(rows_, method, ""));
    }
}

void quality_report::print_bars(std::ostream& to) const {
    const std::string method = command();
    const row_list all =
        choose(rows_, [&](const quality_row& row) { return row.method == method; });
    const row_list turned =
        choose(rows_, [&](const quality_row& row) { return row.method == method && row.turned; });
    const range worst_halo = over_rows(all, halo), most_changed = over_rows(all, changed);
    const range worst_place = over_rows(all, misplaced);
    to << "\nBars for " << method << "\n";
    const bool any = !all.empty();
    print_bar(to, "halo, mean", any, worst_halo.mean, 1.0, "");
    print_bar(to, "halo, worst", any, worst_halo.worst, 2.0, worst_halo.where);
    print_bar(to, "inside, mean", any, over_rows(all, inside).mean, 1.2, "");
    print_bar(to, "edge where zoomed or turned, mean", !turned.empty(),
              over_rows(turned, edge).mean, 4.0, "");
    print_bar(to, "pixels changed beyond 16 from the object", any, most_changed.worst, 0,
              most_changed.where);
    print_bar(to, "place, worst", any, worst_place.worst, 0.5, worst_place.where);
    print_bar(to, "blends that failed", true, static_cast<double>(count_failed(rows_, method, "")),
              0, "");
}

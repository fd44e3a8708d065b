// SPDX-License-Identifier: Apache-2.0
#include "results.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

const double NOT_MEASURED = std::numeric_limits<double>::quiet_NaN();

double unit_ns(const std::string& unit) {
    if (unit == "us") return 1e3;
    if (unit == "ms") return 1e6;
    if (unit == "s") return 1e9;
    return 1;
}

std::string machine_of(const nlohmann::json& context) {
    std::string text = std::to_string(context.value("num_cpus", 0)) + " cores";
    const nlohmann::json caches = context.value("caches", nlohmann::json::array());
    for (const nlohmann::json& cache : caches) {
        if (cache.value("type", "") == "Instruction") continue;
        text += ", L" + std::to_string(cache.value("level", 0)) + " " +
                std::to_string(cache.value("size", 0LL) / 1024) + " KiB";
    }
    return text;
}

}  // namespace

results::results(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        add_file(path);
}

void results::add_file(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path + ": cannot be read");
    nlohmann::json root;
    try {
        file >> root;
    } catch (const nlohmann::json::exception& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
    paths_read_++;
    if (machine.empty() && root.contains("context")) machine = machine_of(root["context"]);
    for (const nlohmann::json& entry : root.value("benchmarks", nlohmann::json::array())) {
        if (entry.value("error_occurred", false)) {
            throw std::runtime_error(path + ": " + entry.value("name", "") + ": " +
                                     entry.value("error_message", ""));
        }
        // Of repeated benchmarks only the median counts; the others have a single entry.
        const int repetitions = entry.value("repetitions", 1);
        if (repetitions > 1 && entry.value("aggregate_name", "") != "median") continue;
        rounds = std::max(rounds, repetitions);
        std::string name = entry.value("run_name", entry.value("name", ""));
        for (const std::string suffix : {"/real_time", "/iterations:1/repeats:1"}) {
            const size_t at = name.rfind(suffix);
            if (at != std::string::npos) name.resize(at);
        }
        // Mixed rounds end in any order; the family counts the registrations.
        order_[{paths_read_, entry.value("family_index", 0), order_.size()}] = name;
        for (const auto& [field, value] : entry.items()) {
            if (value.is_number()) values_[name][field] = value.get<double>();
        }
        if (entry.contains("real_time")) {
            values_[name]["time_ns"] =
                entry["real_time"].get<double>() * unit_ns(entry.value("time_unit", "ns"));
        }
    }
}

double results::value(const std::string& name, const std::string& field) const {
    const auto entry = values_.find(name);
    if (entry == values_.end()) return NOT_MEASURED;
    const auto found = entry->second.find(field);
    return found != entry->second.end() ? found->second : NOT_MEASURED;
}

std::vector<std::string> results::names(const std::string& prefix) const {
    std::vector<std::string> found;
    for (const auto& [place, name] : order_) {
        if (name.rfind(prefix, 0) == 0) found.push_back(name);
    }
    return found;
}

double fastest(double a, double b) {
    return std::fmin(a, b);
}

const std::vector<int>& pyramid_sides() {
    static const std::vector<int> sides = {256, 512, 1024, 2048};
    return sides;
}

double pyramid_ns(const results& from, const std::string& kind, int side) {
    return from.time_ns("pyramid/" + kind + "/" + std::to_string(side));
}

double by_hand_ns(const results& from, int side) {
    return fastest(pyramid_ns(from, "by_hand_1", side), pyramid_ns(from, "by_hand", side));
}

double multiband_ns(const results& from, int side) {
    return fastest(
        fastest(pyramid_ns(from, "multiband_1", side), pyramid_ns(from, "multiband", side)),
        pyramid_ns(from, "multiband_16s", side));
}

std::string number(double value, int digits) {
    if (std::isnan(value)) return "-";
    char text[64];
    snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

// SPDX-License-Identifier: Apache-2.0
// Runs a command line on pictures whose exact result is known and prints how far it is from that.
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

#include "quality_cases.h"
#include "quality_peers.h"
#include "quality_report.h"
#include "quality_truth.h"

namespace {

struct options {
    std::vector<std::string> command, scenes, cases;
    std::string folder = "quality";
    int set = 1;
    bool peers = false, rows = false, with_lost = false, discard = false;
};

std::string quoted(const std::string& text) {
    std::string made = "'";
    for (const char c : text)
        made += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return made + "'";
}

void save(const std::string& path, const cv::Mat& picture) {
    if (!cv::imwrite(path, picture)) throw std::runtime_error("cannot write " + path);
}

// The blend by the command line; an empty picture where it fails. `start` begins all file names.
cv::Mat run_command(const options& chosen, const quality_case& which, const case_pictures& pictures,
                    const std::string& start) {
    const std::string source = start + "source.png", destination = start + "../destination.png";
    const std::string mask = start + "mask.png", result = start + "result.png";
    std::filesystem::remove(result);
    save(source, pictures.source);
    std::string line = quoted(chosen.command.front()) + " blend " + quoted(source) + " " +
                       quoted(destination) + " " + quoted(result);
    if (!pictures.mask.empty()) {
        save(mask, pictures.mask);
        line += " --mask " + quoted(mask);
    }
    line += " --at " + std::to_string(pictures.at.x) + "," + std::to_string(pictures.at.y);
    if (!which.placed.is_plain()) {
        // With an equals sign, since a number may be negative.
        line += " --zoom=" + std::to_string(which.placed.zoom) +
                " --angle=" + std::to_string(which.placed.angle);
    }
    for (size_t i = 1; i < chosen.command.size(); i++)
        line += " " + quoted(chosen.command[i]);
    std::ofstream(start + "command") << line << "\n";
    const int status = system((line + " > " + quoted(start + "log") + " 2>&1").c_str());
    if (status == 0) return cv::imread(result, cv::IMREAD_COLOR);
    std::cerr << "status " << status << ": " << line << "\n"
              << std::ifstream(start + "log").rdbuf() << "\n";
    return {};
}

void run_case(const options& chosen, const quality_scene& scene, const scene_pictures& painted,
              const quality_case& which, const std::vector<peer>& peers, quality_report* report) {
    const std::string folder = chosen.folder + "/" + scene.name() + "/" + which.name + "/";
    std::filesystem::create_directories(folder);
    const case_pictures pictures = make_case(painted, which);
    const true_results truths(painted, which, pictures, !chosen.with_lost);
    const auto note = [&](const std::string& method, const cv::Mat& result, bool find_place) {
        report->add({method, which.name, scene.name(), !result.empty(), !which.placed.is_plain(),
                     result.empty() ? quality_figures() : truths.judge(result, find_place)});
    };
    save(folder + "exact.png", truths.at_shift({0, 0}).composite);
    if (!chosen.command.empty()) {
        const cv::Mat result = run_command(chosen, which, pictures, folder);
        const bool usable = result.size() == painted.destination.size();
        const std::string name = std::filesystem::path(chosen.command.front()).filename();
        note(name, usable ? result : cv::Mat(), true);
    }
    if (peers.empty()) return;
    const peer_input input = truths.make_peer_input(folder);
    for (const peer& other : peers) {
        const cv::Mat result = other.blend(input);
        if (!result.empty()) save(folder + other.name + ".png", result);
        note(other.name, result, false);
    }
}

// Without parts, any name.
bool is_chosen(const std::string& name, const std::vector<std::string>& parts) {
    return parts.empty() || std::any_of(parts.begin(), parts.end(), [&](const std::string& part) {
               return name.find(part) != std::string::npos;
           });
}

void run_scene(const options& chosen, const quality_scene& scene, scene_object* object,
               const std::vector<peer>& peers, quality_report* report) {
    const scene_pictures painted = paint_scene(scene, object);
    const std::string folder = chosen.folder + "/" + scene.name();
    std::filesystem::create_directories(folder);
    save(folder + "/destination.png", painted.destination);
    for (const quality_case& which : quality_cases()) {
        if (is_chosen(which.name, chosen.cases)) {
            run_case(chosen, scene, painted, which, peers, report);
        }
    }
    if (chosen.discard) std::filesystem::remove_all(folder);
}

void run(const options& chosen) {
    std::vector<std::string> missing;
    const std::vector<peer> peers = chosen.peers ? find_peers(&missing) : std::vector<peer>();
    for (const std::string& line : missing)
        std::cout << line << "\n";
    quality_report report;
    std::unique_ptr<scene_object> object;
    for (const quality_scene& scene : scenes_of_set(chosen.set)) {
        if (!is_chosen(scene.name(), chosen.scenes)) continue;
        if (!object || object->name() != scene.object) {
            object = std::make_unique<scene_object>(scene.object);
        }
        run_scene(chosen, scene, object.get(), peers, &report);
    }
    std::ofstream csv(chosen.folder + "/results.csv");
    report.write_csv(csv);
    if (!report.has_rows()) throw std::runtime_error("no scene or no case has such a name");
    report.print_cases(std::cout, chosen.rows);
    report.print_summary(std::cout);
    if (!chosen.command.empty()) report.print_bars(std::cout);
}

}  // namespace

int main(int argc, char** argv) {
    options chosen;
    CLI::App app("How close a command line's blends are to exact composites", "bench_quality");
    app.add_option("command", chosen.command,
                   "program with the subcommand blend, and options for it after --");
    app.add_option("--out", chosen.folder,
                   "folder for all pictures, commands, logs and results.csv");
    app.add_option("--set", chosen.set, "1, or 2 for the scenes that are not for tuning")
        ->check(CLI::Range(1, 2));
    app.add_option("--scenes", chosen.scenes,
                   "only those whose name contains one of these, with commas between")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--cases", chosen.cases, "the same for cases")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_flag("--peers", chosen.peers, "other blends on the same pictures");
    app.add_flag("--rows", chosen.rows, "also print every scene's figures");
    app.add_flag("--discard", chosen.discard, "keep no pictures");
    app.add_flag("--with-lost", chosen.with_lost,
                 "also count thin parts that a mask has lost and gaps that it has closed");
    CLI11_PARSE(app, argc, argv);
    try {
        run(chosen);
    } catch (const std::exception& error) {
        std::cerr << "bench_quality: " << error.what() << "\n";
        return 1;
    }
    return 0;
}

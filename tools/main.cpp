// SPDX-License-Identifier: Apache-2.0
// The command line: arguments, dispatch and exit statuses.
#include <fcntl.h>
#include <imageblend.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vips/vips8>

#include "commands/commands.h"
#include "commands/guard.h"
#include "pictures/errors.h"
#include "pictures/picture_file.h"

namespace {

#define TEXT_OF_NUMBER(number) #number
#define TEXT_OF(macro) TEXT_OF_NUMBER(macro)
constexpr const char* version = "imageblend " TEXT_OF(IMAGEBLEND_VERSION_MAJOR) "." TEXT_OF(
    IMAGEBLEND_VERSION_MINOR) "." TEXT_OF(IMAGEBLEND_VERSION_PATCH);

constexpr const char* statuses =
    "Exit status:\n"
    "  0   success; verify: fits with full margins\n"
    "  1   verify: fits, but is cut off at the border; with --as-is a seam may show\n"
    "  2   the object cannot be placed: outside, smaller than a pixel, or with --as-is too large\n"
    "  3   batch: some jobs failed, the others are done\n"
    "  4   a warning under --strict; nothing is written\n"
    "  64  wrong arguments\n"
    "  65  unusable picture or mask (sizes differ, no object, no alpha channel)\n"
    "  66  an input file cannot be read\n"
    "  70  memory runs out, or another failure\n"
    "  73  the output file cannot be written\n";

struct Arguments {
    tool::BlendJob job;
    std::string at;  // empty or "X,Y"
    std::string anchor = "centre";
    std::string surroundings = "0";
    bool no_fit = false;
    std::string dump_folder;
    tool::BatchArguments batch;
    tool::WarningRules warnings;
    tool::ReadingRules reading;
};

// What every command takes.
void add_rules(CLI::App& command, Arguments& arguments) {
    command.add_flag("--strict", arguments.warnings.strict,
                     "take a warning for a failure, and write nothing then");
    command.add_flag("--quiet", arguments.warnings.quiet, "print no warnings");
    command.add_flag("--any-format", arguments.reading.any_format,
                     "read every kind of file that libvips can, such as SVG, PDF and those of "
                     "ImageMagick; only for files that you trust");
    const std::map<std::string, uint64_t> units{{"k", 1'000}, {"M", 1'000'000}};
    command
        .add_option("--max-pixels", arguments.reading.max_pixels,
                    "refuse pictures with more pixels (default: 200M)")
        ->transform(CLI::AsNumberWithUnit(units, CLI::AsNumberWithUnit::CASE_INSENSITIVE))
        ->check(CLI::Range(uint64_t{1}, uint64_t{1'000'000'000'000'000}))
        ->type_name("N");
}

void add_object(CLI::App& command, tool::ObjectArguments& object) {
    command.add_option("SOURCE", object.source, "picture with the object")->required();
    command.add_option("--mask", object.mask,
                       "grey picture of the source's size, light inside the object "
                       "(default: the source's alpha channel)");
    command.add_flag("--soft", object.soft,
                     "use the mask's values as they are; without it, 128 and more is inside");
}

void add_placement(CLI::App& command, Arguments& arguments) {
    command.add_option("DESTINATION", arguments.job.destination, "picture that it is put into")
        ->required();
    command
        .add_option("--at", arguments.at,
                    "where the object stands in the destination, in pixels or percent (default: in "
                    "its middle)")
        ->type_name("X,Y");
    command
        .add_option("--anchor", arguments.anchor,
                    "point of the object that stands there: centre, left, right, top or bottom "
                    "(default: centre)")
        ->type_name("SIDE");
    tool::PlacementArguments& placement = arguments.job.placement;
    command.add_option("--zoom", placement.zoom, "scale factor (default: 1)")->type_name("Z");
    command.add_option("--angle", placement.angle, "degrees, counter-clockwise (default: 0)")
        ->type_name("DEG");
    command
        .add_option("--surroundings", arguments.surroundings,
                    "pixels of the source that come along around the object, or auto: as many as "
                    "match (default: 0)")
        ->type_name("N");
    command
        .add_option("--grow", arguments.job.clean.grow,
                    "move the outline outwards by so many pixels, inwards below 0 (default: 0)")
        ->type_name("PIXELS");
    command.add_flag("--no-fit", arguments.no_fit,
                     "leave the outline where the mask has it, beside the edge or not");
    command.add_flag("--as-is", arguments.job.as_is,
                     "hand mask, zoom and angle to the library untouched, as an app may");
}

struct Commands {
    CLI::App* blend;
    CLI::App* verify;
    CLI::App* size;
    CLI::App* cutout;
    CLI::App* explain;
    CLI::App* batch;
};

void define_explain(CLI::App& explain, Arguments& arguments) {
    add_object(explain, arguments.job.object);
    add_placement(explain, arguments);
    explain.add_option("PICTURE", arguments.job.output, "where to draw it, such as a .png file")
        ->required();
    explain
        .add_option("--dump", arguments.dump_folder,
                    "write every plane as a bitmap and as raw bytes into this folder")
        ->type_name("DIR");
    explain.footer(
        "Example:\n"
        "  imageblend explain dog.jpg beach.jpg stages.png --mask dog-mask.png --at 900,640\n");
}

void define_batch(CLI::App& batch, tool::BatchArguments& arguments) {
    batch
        .add_option("JOBS", arguments.jobs_file,
                    "file with one JSON object a line; - reads standard input")
        ->required();
    batch.add_option("--jobs", arguments.processes, "processes that blend (default: 1)")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    batch.add_flag("--overwrite", arguments.overwrite, "blend jobs whose output exists, too");
    batch
        .add_option("--first-line", arguments.first_line,
                    "number of the first line in messages, when JOBS is a part (default: 1)")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    batch
        .add_option("--report", arguments.report_file,
                    "add a JSON line for each job to this file: what became of it, its placement, "
                    "warnings and milliseconds")
        ->type_name("FILE");
    batch.footer(
        "Fields of a job: source, destination, output, and if wanted mask, at ([X, Y],\n"
        "numbers or strings such as \"50%\"), anchor, zoom, angle, surroundings, grow, fit, as_is\n"
        "and soft (true or false), as for blend. Each output is written whole or not at all.\n"
        "After an interrupt the jobs at hand are finished; the same command then does the rest.\n\n"
        "Example:\n"
        "  echo '{\"source\": \"dog.png\", \"destination\": \"beach.jpg\", \"output\": "
        "\"out.jpg\", \"at\": [900, 640]}' >jobs.jsonl\n"
        "  imageblend batch jobs.jsonl --jobs 4\n"
        "On many machines that share a folder, with GNU parallel:\n"
        "  parallel --pipe -N 100 --retries 3 --joblog parts.log --sshlogin one,two --wd \"$PWD\" "
        "\\\n"
        "    imageblend batch - --first-line '{= $_=100*(seq()-1)+1 =}' <jobs.jsonl\n");
}

Commands define(CLI::App& app, Arguments& arguments) {
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.footer("Help on a command: imageblend COMMAND --help\n\n" + std::string(statuses));
    Commands commands{};

    commands.blend = app.add_subcommand("blend", "Blend the object of a picture into another");
    add_object(*commands.blend, arguments.job.object);
    add_placement(*commands.blend, arguments);
    commands.blend->add_option("OUTPUT", arguments.job.output, "result; the suffix gives its kind")
        ->required();
    commands.blend->footer(
        "Example:\n"
        "  imageblend blend dog.jpg beach.jpg out.jpg --mask dog-mask.png --at 900,640 --zoom "
        "0.5\n");

    commands.verify = app.add_subcommand("verify", "Tell whether the object fits at a place");
    add_object(*commands.verify, arguments.job.object);
    add_placement(*commands.verify, arguments);
    commands.verify->footer(
        "Exit status: 0 fits, 1 is cut off at the border, or with --as-is a seam may show, 2 "
        "cannot "
        "be placed\n\n"
        "Example:\n"
        "  imageblend verify dog.jpg beach.jpg --mask dog-mask.png --at 900,640 --angle 15\n");

    commands.size = app.add_subcommand("size", "Print the object's width and height");
    add_object(*commands.size, arguments.job.object);
    commands.size->footer(
        "A SOURCE that has no alpha channel may be a mask itself.\n\n"
        "Example:\n"
        "  imageblend size dog-mask.png\n");

    commands.cutout = app.add_subcommand("cutout", "Cut the object out as a picture with alpha");
    add_object(*commands.cutout, arguments.job.object);
    commands.cutout->add_option("OUTPUT", arguments.job.output, "result, such as a .png file")
        ->required();
    commands.cutout->footer(
        "Example:\n"
        "  imageblend cutout dog.jpg dog.png --mask dog-mask.png\n");

    commands.explain = app.add_subcommand("explain", "Show the stages of a blend in one picture");
    define_explain(*commands.explain, arguments);
    commands.batch = app.add_subcommand("batch", "Blend every job of a file");
    define_batch(*commands.batch, arguments.batch);
    for (CLI::App* const command : app.get_subcommands(nullptr))
        add_rules(*command, arguments);
    return commands;
}

void check_standard_input(const tool::BlendJob& job) {
    int uses = 0;
    for (const std::string& path : {job.object.source, job.object.mask, job.destination})
        uses += path == tool::standard_stream ? 1 : 0;
    if (uses > 1) {
        throw tool::Error(tool::Exit::usage, "-: standard input holds one picture only");
    }
}

tool::Exit dispatch(const Commands& commands, Arguments& arguments) {
    tool::BlendJob& job = arguments.job;
    if (!arguments.at.empty()) job.placement.at = tool::parse_position(arguments.at);
    job.placement.anchor = tool::parse_anchor(arguments.anchor);
    job.surroundings = tool::parse_surroundings(arguments.surroundings);
    job.clean.fit = !arguments.no_fit;
    tool::check_preparation(job);
    check_standard_input(job);
    if (commands.blend->parsed()) return tool::run_blend(job);
    if (commands.verify->parsed()) return tool::run_verify(job);
    if (commands.size->parsed()) return tool::run_size(job.object);
    if (commands.explain->parsed()) return tool::run_explain(job, arguments.dump_folder);
    return tool::run_cutout(job.object, job.output);
}

// Files that are opened later must not take the numbers of standard streams that are closed.
void open_standard_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        if (open("/dev/null", O_RDWR) < 0) _exit(static_cast<int>(tool::Exit::internal));
    }
}

// CLI11 would only say that a command is missing.
std::string unknown_command(const CLI::App& app, const std::string& word) {
    std::string names;
    for (const CLI::App* const command : app.get_subcommands(nullptr)) {
        if (command->get_name() == word) return "";
        names += " " + command->get_name();
    }
    return word + ": no such command; there are" + names;
}

tool::Exit complain_of_arguments(const CLI::App& app, const std::string& first,
                                 const std::string& reason) {
    const bool is_word = !first.empty() && first[0] != '-';
    const std::string unknown = is_word ? unknown_command(app, first) : "";
    return tool::complain(tool::Exit::usage,
                          (unknown.empty() ? reason : unknown) + " (see --help)");
}

int run(int argc, char** argv) {
    CLI::App app{"Pastes an object of one picture into another and hides the join.", "imageblend"};
    Arguments arguments;
    const Commands commands = define(app, arguments);
    if (argc < 2) {
        std::fputs(app.help().c_str(), stderr);
        return static_cast<int>(tool::Exit::usage);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {  // --help, --version
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        return static_cast<int>(complain_of_arguments(app, argv[1], error.what()));
    }

    tool::set_warning_rules(arguments.warnings);
    tool::set_reading_rules(arguments.reading);
    if (commands.batch->parsed()) {
        return static_cast<int>(
            tool::run_guarded([&] { return tool::run_batch(arguments.batch); }));
    }
    if (!tool::start_vips()) return static_cast<int>(tool::Exit::internal);
    const tool::Exit status = tool::run_guarded([&] { return dispatch(commands, arguments); });
    vips_shutdown();
    return static_cast<int>(status);
}

}  // namespace

int main(int argc, char** argv) {
    open_standard_streams();
    try {
        return run(argc, argv);
    } catch (...) {
        std::fputs("imageblend: not enough memory\n", stderr);
        return static_cast<int>(tool::Exit::internal);
    }
}

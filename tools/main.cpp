// The command line: arguments, dispatch and exit statuses.
#include <imageblend.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>
#include <string>
#include <vips/vips8>

#include "commands.h"
#include "errors.h"
#include "output_file.h"

namespace {

#define TEXT_OF_NUMBER(number) #number
#define TEXT_OF(macro) TEXT_OF_NUMBER(macro)
constexpr const char* version = "imageblend " TEXT_OF(IMAGEBLEND_VERSION_MAJOR) "." TEXT_OF(
    IMAGEBLEND_VERSION_MINOR) "." TEXT_OF(IMAGEBLEND_VERSION_PATCH);

constexpr const char* statuses =
    "Exit status:\n"
    "  0   success; verify: fits with full margins\n"
    "  1   verify: fits, but a seam may show\n"
    "  2   the object cannot be placed; the message gives the zoom that fits\n"
    "  64  wrong arguments\n"
    "  65  unusable picture or mask (sizes differ, no object, no alpha channel)\n"
    "  66  an input file cannot be read\n"
    "  70  memory runs out, or another failure\n"
    "  73  the output file cannot be written\n";

struct Arguments {
    tool::BlendJob job;
    std::string at;  // empty or "X,Y"
};

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
                    "pixel of the destination for the object's middle (default: its middle)")
        ->type_name("X,Y");
    tool::PlacementArguments& placement = arguments.job.placement;
    command.add_option("--zoom", placement.zoom, "scale factor (default: 1)")->type_name("Z");
    command.add_option("--angle", placement.angle, "degrees, counter-clockwise (default: 0)")
        ->type_name("DEG");
}

struct Commands {
    CLI::App* blend;
    CLI::App* verify;
    CLI::App* size;
    CLI::App* cutout;
};

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
        "Exit status: 0 fits, 1 a seam may show, 2 cannot be placed\n\n"
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
    return commands;
}

tool::Exit dispatch(const Commands& commands, Arguments& arguments) {
    if (!arguments.at.empty()) arguments.job.placement.at = tool::parse_pixel(arguments.at);
    const tool::BlendJob& job = arguments.job;
    if (commands.blend->parsed()) return tool::run_blend(job);
    if (commands.verify->parsed()) return tool::run_verify(job);
    if (commands.size->parsed()) return tool::run_size(job.object);
    return tool::run_cutout(job.object, job.output);
}

tool::Exit complain(tool::Exit status, const std::string& message) {
    std::fprintf(stderr, "imageblend: %s\n", message.c_str());
    return status;
}

tool::Exit run(const Commands& commands, Arguments& arguments) {
    try {
        const tool::Exit status = dispatch(commands, arguments);
        if (std::fflush(stdout) == 0) return status;
        return complain(tool::Exit::no_output, "standard output: cannot be written");
    } catch (const tool::Error& error) {
        return complain(error.status(), error.what());
    } catch (const vips::VError& error) {
        return complain(tool::Exit::internal, tool::vips_message(error));
    } catch (const std::bad_alloc&) {
        return complain(tool::Exit::internal, "not enough memory");
    } catch (const std::exception& error) {
        return complain(tool::Exit::internal, error.what());
    }
}

void ignore_message(const char*, GLogLevelFlags, const char*, void*) {}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Pastes an object of one picture into another and hides the join.", "imageblend"};
    Arguments arguments;
    const Commands commands = define(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {  // --help, --version
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        return static_cast<int>(
            complain(tool::Exit::usage, std::string(error.what()) + " (see --help)"));
    }

    tool::remove_output_on_signals();
    if (VIPS_INIT(argv[0]) != 0) {
        return static_cast<int>(complain(tool::Exit::internal, "libvips cannot be started"));
    }
    g_log_set_handler("VIPS",
                      static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE |
                                                  G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG),
                      ignore_message, nullptr);
    vips_cache_set_max(0);  // a file that changes is read anew, and pictures are freed early
    const tool::Exit status = run(commands, arguments);
    vips_shutdown();
    return static_cast<int>(status);
}

#include "batch/job.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "pictures/output_file.h"
#include "pictures/picture_file.h"

namespace tool {
namespace {

using nlohmann::json;

[[noreturn]] void fail(const std::string& message) {
    throw Error(Exit::usage, message);
}

[[noreturn]] void fail_type(const std::string& field, const char* wanted, const json& value) {
    const std::string found = value.is_number() || value.is_boolean()
                                  ? value.dump()
                                  : std::string("a value of type ") + value.type_name();
    fail(field + ": must be " + wanted + ", not " + found);
}

std::string read_path(const std::string& field, const json& value) {
    if (!value.is_string()) fail_type(field, "a string", value);
    std::string path = value.get<std::string>();
    if (path.empty()) fail(field + ": must not be empty");
    if (path == standard_stream || (field == "output" && is_standard_output(path))) {
        fail(field + ": standard streams hold no pictures of a batch");
    }
    if (path.find('\0') != std::string::npos) fail(field + ": holds a zero character");
    return path;
}

bool read_flag(const std::string& field, const json& value) {
    if (!value.is_boolean()) fail_type(field, "true or false", value);
    return value.get<bool>();
}

double read_number(const std::string& field, const json& value) {
    if (!value.is_number()) fail_type(field, "a number", value);
    return value.get<double>();
}

constexpr const char* position_form =
    "two whole numbers or percentages, [X, Y] or [\"X%\", \"Y%\"]";

Coordinate read_coordinate(const std::string& field, const json& value) {
    if (!value.is_number_integer() && !value.is_string()) fail_type(field, position_form, value);
    try {
        return parse_coordinate(value.is_string() ? value.get<std::string>() : value.dump());
    } catch (const Error& error) {
        fail(field + ": " + error.what());
    }
}

Position read_position(const std::string& field, const json& value) {
    if (!value.is_array() || value.size() != 2) fail_type(field, position_form, value);
    return {read_coordinate(field, value[0]), read_coordinate(field, value[1])};
}

std::string read_word(const std::string& field, const json& value) {
    if (!value.is_string()) fail_type(field, "a string", value);
    return value.get<std::string>();
}

int read_surroundings(const std::string& field, const json& value) {
    if (!value.is_string() && !value.is_number_integer()) {
        fail_type(field, "a whole number or \"auto\"", value);
    }
    return parse_surroundings(value.is_string() ? value.get<std::string>() : value.dump());
}

void read_field(BlendJob& job, const std::string& field, const json& value) {
    if (field == "source") {
        job.object.source = read_path(field, value);
    } else if (field == "mask") {
        job.object.mask = read_path(field, value);
    } else if (field == "soft") {
        job.object.soft = read_flag(field, value);
    } else if (field == "destination") {
        job.destination = read_path(field, value);
    } else if (field == "output") {
        job.output = read_path(field, value);
    } else if (field == "at") {
        job.placement.at = read_position(field, value);
    } else if (field == "zoom") {
        job.placement.zoom = read_number(field, value);
    } else if (field == "angle") {
        job.placement.angle = read_number(field, value);
    } else if (field == "anchor") {
        job.placement.anchor = parse_anchor(read_word(field, value));
    } else if (field == "surroundings") {
        job.surroundings = read_surroundings(field, value);
    } else if (field == "grow") {
        job.clean.grow = read_number(field, value);
    } else if (field == "fit") {
        job.clean.fit = read_flag(field, value);
    } else if (field == "as_is") {
        job.as_is = read_flag(field, value);
    } else {
        fail(field +
             ": no such field; known are source, destination, output, mask, soft, at, "
             "anchor, zoom, angle, surroundings, grow, fit and as_is");
    }
}

// Refuses a second field of the same name, which the parser would let win.
json parse_object(const std::string& line) {
    std::vector<std::string> fields;
    const auto check = [&](int depth, json::parse_event_t event, json& parsed) {
        if (event != json::parse_event_t::key || depth != 1) return true;
        const std::string field = parsed.get<std::string>();
        if (std::find(fields.begin(), fields.end(), field) != fields.end()) {
            fail(field + ": is given twice");
        }
        fields.push_back(field);
        return true;
    };
    try {
        json object = json::parse(line, check);
        if (!object.is_object()) fail_type("job", "a JSON object, {...}", object);
        return object;
    } catch (const json::exception& error) {
        const std::string what =
            error.what();  // "[json.exception.parse_error.101] parse error ..."
        const size_t reason = what.find("] ");
        fail("not JSON: " + (reason == std::string::npos ? what : what.substr(reason + 2)));
    }
}

}  // namespace

BlendJob parse_job(const std::string& line) {
    BlendJob job;
    const json object = parse_object(line);
    try {
        for (const auto& [field, value] : object.items())
            read_field(job, field, value);
        place(job.placement, {1, 1});
        check_preparation(job);
    } catch (const Error& error) {
        const std::string message = error.what();  // may name an option, "--zoom"
        fail(message.substr(message.find_first_not_of('-')));
    }
    if (job.object.source.empty()) fail("source: is missing");
    if (job.destination.empty()) fail("destination: is missing");
    if (job.output.empty()) fail("output: is missing");
    return job;
}

}  // namespace tool

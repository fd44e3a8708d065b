// SPDX-License-Identifier: Apache-2.0
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

// A field of the object, or an element of one.
struct Value {
    const std::string& field;
    const json& found;
};

[[noreturn]] void fail_type(const Value& value, const char* wanted) {
    const json& found = value.found;
    fail(value.field + ": must be " + wanted + ", not " +
         (found.is_number() || found.is_boolean()
              ? found.dump()
              : std::string("a value of type ") + found.type_name()));
}

std::string read_word(const Value& value) {
    if (!value.found.is_string()) fail_type(value, "a string");
    return value.found.get<std::string>();
}

std::string read_path(const Value& value) {
    std::string path = read_word(value);
    if (path.empty()) fail(value.field + ": must not be empty");
    if (path == standard_stream || (value.field == "output" && is_standard_output(path))) {
        fail(value.field + ": standard streams hold no pictures of a batch");
    }
    if (path.find('\0') != std::string::npos) fail(value.field + ": holds a zero character");
    return path;
}

bool read_flag(const Value& value) {
    if (!value.found.is_boolean()) fail_type(value, "true or false");
    return value.found.get<bool>();
}

double read_number(const Value& value) {
    if (!value.found.is_number()) fail_type(value, "a number");
    return value.found.get<double>();
}

// A whole number, or a word for the option's own parser.
std::string read_number_or_word(const Value& value, const char* wanted) {
    if (value.found.is_string()) return value.found.get<std::string>();
    if (!value.found.is_number_integer()) fail_type(value, wanted);
    return value.found.dump();
}

constexpr const char* position_form =
    "two whole numbers or percentages, [X, Y] or [\"X%\", \"Y%\"]";

Coordinate read_coordinate(const Value& value) {
    try {
        return parse_coordinate(read_number_or_word(value, position_form));
    } catch (const Error& error) {
        const std::string message = error.what();
        const bool named = message.compare(0, value.field.size(), value.field) == 0;
        fail(named ? message : value.field + ": " + message);
    }
}

Position read_position(const Value& value) {
    if (!value.found.is_array() || value.found.size() != 2) fail_type(value, position_form);
    return {read_coordinate({value.field, value.found[0]}),
            read_coordinate({value.field, value.found[1]})};
}

int read_surroundings(const Value& value) {
    return parse_surroundings(read_number_or_word(value, "a whole number or \"auto\""));
}

struct Field {
    const char* name;
    void (*read)(BlendJob& job, const Value& value);
};

constexpr Field fields[] = {
    {"source", [](BlendJob& job, const Value& value) { job.object.source = read_path(value); }},
    {"destination", [](BlendJob& job, const Value& value) { job.destination = read_path(value); }},
    {"output", [](BlendJob& job, const Value& value) { job.output = read_path(value); }},
    {"mask", [](BlendJob& job, const Value& value) { job.object.mask = read_path(value); }},
    {"soft", [](BlendJob& job, const Value& value) { job.object.soft = read_flag(value); }},
    {"at", [](BlendJob& job, const Value& value) { job.placement.at = read_position(value); }},
    {"anchor", [](BlendJob& job,
                  const Value& value) { job.placement.anchor = parse_anchor(read_word(value)); }},
    {"zoom", [](BlendJob& job, const Value& value) { job.placement.zoom = read_number(value); }},
    {"angle", [](BlendJob& job, const Value& value) { job.placement.angle = read_number(value); }},
    {"surroundings",
     [](BlendJob& job, const Value& value) { job.surroundings = read_surroundings(value); }},
    {"grow", [](BlendJob& job, const Value& value) { job.clean.grow = read_number(value); }},
    {"fit", [](BlendJob& job, const Value& value) { job.clean.fit = read_flag(value); }},
    {"as_is", [](BlendJob& job, const Value& value) { job.as_is = read_flag(value); }},
};

void read_field(BlendJob& job, const Value& value) {
    std::vector<std::string> known;
    for (const Field& field : fields) {
        if (value.field == field.name) return field.read(job, value);
        known.emplace_back(field.name);
    }
    fail(value.field + ": no such field; known are " + list(known));
}

// Refuses a second field of the same name, which the parser would let win.
json parse_object(const std::string& line) {
    std::vector<std::string> given;
    const auto check = [&](int depth, json::parse_event_t event, json& parsed) {
        if (event != json::parse_event_t::key || depth != 1) return true;
        const std::string field = parsed.get<std::string>();
        if (std::find(given.begin(), given.end(), field) != given.end()) {
            fail(field + ": is given twice");
        }
        given.push_back(field);
        return true;
    };
    try {
        json object = json::parse(line, check);
        if (!object.is_object()) fail_type({"job", object}, "a JSON object, {...}");
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
            read_field(job, {field, value});
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

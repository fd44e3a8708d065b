// SPDX-License-Identifier: Apache-2.0
// Makes the calls of tests/hashes in a module that lies outside this one: the driver hands on what
// is imported here. The module logs nothing, so the lines of the log are the model's.
#include <imageblend.h>

#include <string>

#include "hashes/whole_calls.h"

#define FROM_DRIVER(name) __attribute__((import_module("library"), import_name(#name)))

extern "C" {

FROM_DRIVER(get_icon_size)
int32_t call_size(const blend_image* mask, int32_t* width, int32_t* height);
FROM_DRIVER(create_rgb_icon)
int32_t call_cutout(const blend_image* source, const blend_image* mask, blend_image* icon,
                    size_t icon_bytes, float zoom);
FROM_DRIVER(verify_icon_pos)
int32_t call_verify(const blend_image* mask, int32_t center_x, int32_t center_y, float zoom,
                    float angle);
FROM_DRIVER(image_blending)
int32_t call_blend(const blend_image* icon, const blend_image* destination, const blend_image* mask,
                   blend_image* output, int32_t center_x, int32_t center_y, float zoom,
                   float angle);

// The line of call `seed`; valid until the next.
const char* call_line(int32_t seed);

}  // extern "C"

namespace support {
namespace {

blend_image record_of(const model::frame& frame) {
    return {frame.width, frame.height, const_cast<uint8_t*>(frame.data.data())};
}

}  // namespace

model::outcome run_size(const model::frame& mask) {
    model::outcome made;
    const blend_image record = record_of(mask);
    made.log = model::get_icon_size(mask).log;
    made.status = call_size(&record, &made.width, &made.height);
    return made;
}

model::outcome run_cutout(const scene& s) {
    const model::outcome expected = model::create_rgb_icon(s.icon, s.mask);
    const blend_image source = record_of(s.icon), mask = record_of(s.mask);
    model::outcome made;
    made.pixels.resize(expected.pixels.size());
    blend_image icon{0, 0, made.pixels.data()};
    made.log = expected.log;
    made.status = call_cutout(&source, &mask, &icon, made.pixels.size(), s.place.zoom);
    made.width = icon.width;
    made.height = icon.height;
    if (made.status != 0) made.pixels.clear();
    return made;
}

model::outcome run_verify(const scene& s) {
    const blend_image mask = record_of(s.mask);
    model::outcome made;
    made.log = model::verify_icon_pos(s.mask, s.place).log;
    made.status =
        call_verify(&mask, s.place.center_x, s.place.center_y, s.place.zoom, s.place.angle);
    return made;
}

model::outcome run_blend(const scene& s, aliasing alias) {
    scene inputs = s;
    const blend_image icon = record_of(inputs.icon), mask = record_of(inputs.mask);
    const blend_image destination = record_of(inputs.destination);
    model::outcome made;
    made.pixels.resize(s.destination.data.size());
    blend_image output{0, 0, made.pixels.data()};
    if (alias == aliasing::icon) output.data = inputs.icon.data.data();
    if (alias == aliasing::destination) output.data = inputs.destination.data.data();
    made.log = model::image_blending(s.icon, s.destination, s.mask, s.place).log;
    made.status = call_blend(&icon, &destination, &mask, &output, s.place.center_x,
                             s.place.center_y, s.place.zoom, s.place.angle);
    if (alias == aliasing::icon) made.pixels = inputs.icon.data;
    if (alias == aliasing::destination) made.pixels = inputs.destination.data;
    made.pixels.resize(made.status == 0 ? s.destination.data.size() : 0);
    return made;
}

}  // namespace support

const char* call_line(int32_t seed) {
    static std::string line;
    line = hashes::call_line(hashes::make_call(static_cast<uint64_t>(seed)));
    return line.c_str();
}

// SPDX-License-Identifier: Apache-2.0
// Takes small pictures, masks and places through the whole preparation: clean, place, lay, blend,
// finish, and the same in one call. Buffers have no byte to spare.
#include <fuzzer/FuzzedDataProvider.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "imageblend_prepare.h"

namespace {

void check(bool holds) {
    if (!holds) abort();
}

struct pixels {
    pixels(int32_t width, int32_t height, int32_t pixel_bytes)
        : data(static_cast<size_t>(width) * static_cast<size_t>(height) *
               static_cast<size_t>(pixel_bytes)),
          record{width, height, data.data()} {}
    pixels(const pixels& other)
        : data(other.data), record{other.record.width, other.record.height, data.data()} {}

    std::vector<uint8_t> data;
    blend_image record;
};

// Rectangles over each other: of one value, of noise, or a slope of alpha, in some of the bytes.
void draw(FuzzedDataProvider& input, int32_t pixel_bytes, pixels* to) {
    const int32_t width = to->record.width, height = to->record.height;
    uint32_t noise = input.ConsumeIntegral<uint16_t>();
    for (int shapes = input.ConsumeIntegralInRange(0, 6); shapes > 0; shapes--) {
        const int32_t left = input.ConsumeIntegralInRange(0, width - 1);
        const int32_t top = input.ConsumeIntegralInRange(0, height - 1);
        const int32_t right = input.ConsumeIntegralInRange(left, width);
        const int32_t bottom = input.ConsumeIntegralInRange(top, height);
        const uint8_t kind = input.ConsumeIntegral<uint8_t>(),
                      value = input.ConsumeIntegral<uint8_t>();
        for (int32_t y = top; y < bottom; y++) {
            for (int32_t i = left * pixel_bytes; i < right * pixel_bytes; i++) {
                noise = noise * 1664525 + 1013904223;
                if ((kind >> (4 + i % pixel_bytes) & 1) != 0) continue;
                const int32_t slope = value + (i / pixel_bytes - left) * (kind % 16);
                const uint32_t made = kind % 4 == 0   ? value
                                      : kind % 4 == 1 ? noise >> 24
                                                      : static_cast<uint32_t>(std::min(slope, 255));
                to->data[static_cast<size_t>(y * width * pixel_bytes + i)] =
                    static_cast<uint8_t>(made);
            }
        }
    }
}

// The object of a photo or cut-out, cleaned; the input's own picture where that cannot be.
pixels clean_object(FuzzedDataProvider& input, const pixels& source) {
    pixels mask(source.record.width, source.record.height, 1);
    const bool masked = input.ConsumeBool();
    if (masked) draw(input, 1, &mask);
    const imageblend_source from = {&source.record, masked ? &mask.record : nullptr};
    imageblend_box box;
    check(imageblend_clean_box(&from, &box) == 0);
    if (box.width == 0) return source;
    const imageblend_clean_options options = {input.ConsumeBool(),
                                              input.ConsumeFloatingPointInRange(-17.0f, 17.0f)};
    pixels object(box.width, box.height, 4);
    imageblend_findings findings;
    const int32_t status = imageblend_clean(&from, &options, &box, &object.record, &findings);
    check(status == (options.grow >= -16.0f && options.grow <= 16.0f ? 0 : -1));
    if (status != 0) return source;
    for (size_t i = 0; i < object.data.size(); i += 4)
        check(object.data[i] != 0 || memcmp(&object.data[i], "\0\0\0\0", 4) == 0);
    return object;
}

int32_t consume_place(FuzzedDataProvider& input, int32_t object, int32_t destination) {
    if (input.ConsumeIntegralInRange(0, 15) == 0) return input.ConsumeIntegral<int32_t>();
    return input.ConsumeIntegralInRange(-object - 40, destination + 40);
}

void blend_in_steps(const imageblend_layer& layer, pixels* destination, int32_t* reach) {
    imageblend_frames frames;
    const int32_t width = destination->record.width, height = destination->record.height;
    check(imageblend_place(&layer, width, height, &frames) == 0);
    *reach = 0;
    if (frames.box.width == 0) return;
    pixels icon(frames.box.width, frames.box.height, 4),
        mask(frames.box.width, frames.box.height, 1);
    pixels under(frames.box.width, frames.box.height, 4), blended(under);
    frames.icon.data = icon.data.data();
    frames.mask.data = mask.data.data();
    frames.destination.data = under.data.data();
    check(imageblend_lay(&layer, &destination->record, &frames, reach) == 0);
    check(vorn_imageBlending(&frames.icon, &frames.destination, &frames.mask, &blended.record, 0, 0,
                             frames.center_x, frames.center_y, 1.0f, 0.0f) == 0);
    check(imageblend_finish(&frames, &blended.record, &destination->record) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    const int32_t longest = input.ConsumeBool() ? 24 : 150;
    pixels source(input.ConsumeIntegralInRange(1, longest),
                  input.ConsumeIntegralInRange(1, longest), 4);
    draw(input, 4, &source);
    const pixels object = clean_object(input, source);
    pixels around(object.record.width, object.record.height, 4);
    const bool surrounded = input.ConsumeBool();
    if (surrounded) draw(input, 4, &around);
    pixels destination(input.ConsumeIntegralInRange(1, longest),
                       input.ConsumeIntegralInRange(1, longest), 4);
    draw(input, 4, &destination);
    const imageblend_layer layer = {
        &object.record, surrounded ? &around.record : nullptr,
        input.ConsumeIntegralInRange(-1, 256),
        consume_place(input, object.record.width, destination.record.width),
        consume_place(input, object.record.height, destination.record.height)};
    pixels stepped(destination), pasted(destination);
    int32_t reach, reach_of_paste;
    blend_in_steps(layer, &stepped, &reach);
    check(imageblend_paste(&layer, &pasted.record, &reach_of_paste) == 0);
    check(stepped.data == pasted.data && reach == reach_of_paste);
    if (reach > 0) return 0;
    // Without the object a pixel stays as it is.
    for (int64_t y = 0; y < pasted.record.height; y++) {
        for (int64_t x = 0; x < pasted.record.width; x++) {
            const int64_t u = x - layer.left, v = y - layer.top;
            const bool over =
                u >= 0 && v >= 0 && u < object.record.width && v < object.record.height &&
                object.data[static_cast<size_t>((v * object.record.width + u) * 4)] != 0;
            const size_t i = static_cast<size_t>((y * pasted.record.width + x) * 4);
            check(over || memcmp(&pasted.data[i], &destination.data[i], 4) == 0);
        }
    }
    return 0;
}

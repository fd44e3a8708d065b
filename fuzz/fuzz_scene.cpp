#include "fuzz_scene.h"

#include <string.h>

#include <algorithm>

namespace {

using model::frame;

class byte_reader {
  public:
    byte_reader(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
    int32_t below(int32_t count) { return byte() % count; }
    uint32_t word() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return value;
    }
    size_t left() const { return size_ - at_; }

  private:
    const uint8_t* data_;
    size_t size_;
    size_t at_ = 0;
};

// 1 to 112, most often at most 32.
int32_t read_side(byte_reader& in) {
    const int32_t value = in.byte();
    return value < 112 ? value + 1 : 1 + (value - 112) % 32;
}

// At least one side below 1, and no size that would need much memory: the cut-out's icon has
// 2 - width by 2 - height pixels then, or none when one of these is below 1.
void read_empty_size(byte_reader& in, int32_t* width, int32_t* height) {
    static const int32_t sides[] = {0, -1, -2, -17, -100, INT32_MIN, INT32_MIN + 1, -65536};
    const int32_t side = sides[in.below(8)];
    int32_t other = side < -100 || in.below(2) == 0 ? in.byte() : -in.below(64);
    if (side < -65536) other = std::max(other, 2);
    const bool flat = in.below(2) == 0;
    *width = flat ? other : side;
    *height = flat ? side : other;
}

float read_float(byte_reader& in) {
    const uint32_t bits = in.word();
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

void read_placement(byte_reader& in, int shape, const frame& mask, model::placement* place) {
    if ((shape & FUZZ_ANY_CENTRE) != 0) {
        place->center_x = static_cast<int32_t>(in.word());
        place->center_y = static_cast<int32_t>(in.word());
    } else {
        place->center_x = in.byte() - (255 - std::clamp(mask.width, 0, 255)) / 2;
        place->center_y = in.byte() - (255 - std::clamp(mask.height, 0, 255)) / 2;
    }
    if ((shape & FUZZ_PLAIN_PLACEMENT) != 0) return;
    place->zoom = (shape & FUZZ_ANY_ZOOM) != 0
                      ? read_float(in)
                      : static_cast<float>(in.word() >> 16) / static_cast<float>(1 << 14);
    place->angle = (shape & FUZZ_ANY_ANGLE) != 0
                       ? read_float(in)
                       : static_cast<float>(static_cast<int16_t>(in.word() >> 16)) / 64.0F;
}

// A rectangle of one value or of noise, or single pixels.
void draw_mask(byte_reader& in, uint64_t seed, frame& mask) {
    const int32_t style = in.below(4);
    if (mask.data.empty()) return;
    const int32_t x = in.below(mask.width), y = in.below(mask.height);
    if (style == 3) {
        for (int32_t left = in.below(16); left > 0; --left) {
            const int32_t column = in.below(mask.width);
            support::fill(mask, {column, in.below(mask.height), 1, 1}, in.byte());
        }
        return;
    }
    const support::rectangle box = {x, y, 1 + in.below(mask.width - x),
                                    1 + in.below(mask.height - y)};
    support::fill(mask, box, style == 0 ? 255 : in.byte());
    if (style != 2) return;
    for (uint8_t& value : mask.data) {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        if (value != 0) value = static_cast<uint8_t>(seed >> 56);
    }
}

// The remaining bytes over and over, with noise in the bits of `noise`.
frame make_picture(int32_t width, int32_t height, byte_reader in, uint8_t noise, uint64_t seed) {
    frame picture{width, height, {}};
    if (width > 0 && height > 0)
        picture.data.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    model::bytes tile(in.left() + 1);
    for (uint8_t& value : tile)
        value = in.byte();
    size_t next = 0;
    for (uint8_t& value : picture.data) {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        value = static_cast<uint8_t>(tile[next] ^ (noise & (seed >> 56)));
        next = next + 1 < tile.size() ? next + 1 : 0;
    }
    return picture;
}

}  // namespace

fuzz_scene decode_scene(const uint8_t* data, size_t size) {
    byte_reader in(data, size);
    fuzz_scene made;
    support::scene& s = made.scene;
    const int shape = in.byte();
    s.seed = in.byte();
    int32_t width = read_side(in), height = read_side(in);
    if ((shape & FUZZ_SIDE_BELOW_1) != 0 && in.below(4) == 0) read_empty_size(in, &width, &height);
    s.mask = {width, height, {}};
    if (width > 0 && height > 0) s.mask = support::empty_mask(width, height);
    read_placement(in, shape, s.mask, &s.place);
    draw_mask(in, s.seed, s.mask);

    int32_t icon_width = width, icon_height = height;
    int32_t destination_width = width, destination_height = height;
    if ((shape & FUZZ_SIZES_DIFFER) != 0 && !s.mask.data.empty()) {
        const int32_t kind = in.below(3);
        if (kind == 0) icon_width = read_side(in), icon_height = read_side(in);
        if (kind != 0) destination_width = read_side(in), destination_height = read_side(in);
    }
    const uint8_t noise = in.byte();
    made.alias = static_cast<support::aliasing>(shape & FUZZ_ALIAS);
    s.destination = make_picture(destination_width, destination_height, in, noise, s.seed + 1);
    if (made.alias == support::aliasing::both) {
        s.icon = s.destination;
    } else {
        s.icon = make_picture(icon_width, icon_height, in, noise, s.seed + 2);
    }
    return made;
}

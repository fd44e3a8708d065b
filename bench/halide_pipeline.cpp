// SPDX-License-Identifier: Apache-2.0
#include "halide_pipeline.h"

#include <algorithm>
#include <string>
#include <vector>

#include "halide_formulas.h"

using namespace Halide;
using namespace halide_formulas;

namespace {

// Pixels of a block of the merge, and values of a vector.
enum { BLOCK = 64 };

// Planes of a level: three colours of the source, three of the destination and the mask.
enum { SRC = 0, DST = 3, MASK = 6, PLANES = 7 };

// Pixels repeated on either side of a row.
enum { PAD = 2 };

// Every third byte of 192 in two shuffles of two vectors each, which are one instruction each where
// there is one for bytes of two vectors. Left to itself the compiler moves many of them singly.
class split_colours : public Internal::IRMutator {
    using Internal::IRMutator::visit;

    Expr visit(const Internal::Load* load) override {
        const auto* ramp = load->index.as<Internal::Ramp>();
        const int64_t* stride = ramp != nullptr ? Internal::as_const_int(ramp->stride) : nullptr;
        const bool known = load->alignment.modulus % 3 == 0;
        if (stride == nullptr || *stride != 3 || ramp->lanes != BLOCK || !known)
            return Internal::IRMutator::visit(load);
        const int offset = static_cast<int>(load->alignment.remainder % 3);
        const auto dense = [&](int k) {
            const Expr begin = Internal::simplify(ramp->base - offset + k * BLOCK);
            return Internal::Load::make(load->type, load->name,
                                        Internal::Ramp::make(begin, 1, BLOCK), load->image,
                                        load->param, Internal::const_true(BLOCK), {});
        };
        std::vector<int> of_two(BLOCK), of_all(BLOCK);
        for (int i = 0; i < BLOCK; i++) {
            const int at = 3 * i + offset;
            const bool in_two = at < 2 * BLOCK;
            of_two[static_cast<size_t>(i)] = in_two ? at : at - BLOCK;
            of_all[static_cast<size_t>(i)] = in_two ? i : at - BLOCK;
        }
        const Expr low = Internal::Shuffle::make({dense(0), dense(1)}, of_two);
        return Internal::Shuffle::make({low, dense(2)}, of_all);
    }
};

struct builder {
    int32_t side;
    halide_pipeline* out;
    Var x{"x"}, y{"y"}, c{"c"}, block{"block"}, strip{"strip"}, in_strip{"in_strip"};
    Func level[DEPTH + 1];   // of both pictures and the mask; the finest is never made
    Func result[DEPTH + 1];  // that of the finest level in rows of bytes

    int width(int l) const { return side >> l; }

    // Repeats the ends of rows of `f`, which has `planes` planes and its pixels from update 0 on.
    void pad_rows(Func f, int pixels, int pad, int planes) const {
        const RDom r(0, pad, "pad");
        const int first = f.num_update_definitions();
        f(r.x - pad, y, c) = f(0, y, c);
        f(r.x + pixels, y, c) = f(pixels - 1, y, c);
        f.bound(x, -pad, pixels + 2 * pad).bound(c, 0, planes);
        for (int u = first; u < first + 2; u++)
            f.update(u).unroll(r.x).reorder(r.x, c, y).unroll(c);
    }

    // Rows of the finest level as planes.
    Func split_rows() const {
        Func f("split");
        const RDom colour(0, side, 0, 3, "colour"), pixel(0, side, "pixel");
        f(x, y, c) = undef<uint8_t>();
        f(colour.x, y, colour.y + SRC) = out->src(colour.x, y, colour.y);
        f(colour.x, y, colour.y + DST) = out->dst(colour.x, y, colour.y);
        f(pixel.x, y, MASK) = out->mask(pixel.x, y);
        for (int u = 0; u < 2; u++) {
            f.update(u).reorder(colour.y, colour.x, y).unroll(colour.y);
            f.update(u).vectorize(colour.x, BLOCK);
        }
        f.update(2).vectorize(pixel.x, BLOCK);
        pad_rows(f, side, PAD, PLANES);
        return f;
    }

    void reduce(int l) {
        const int coarse_width = width(l + 1), fine_height = width(l);
        const int lanes = std::min<int>(BLOCK, coarse_width);
        const Func fine = l == 0 ? split_rows() : level[l];
        Func across("across"), f("level");
        across(x, y, c) = reduce5(fine(2 * x - 2, y, c), fine(2 * x - 1, y, c), fine(2 * x, y, c),
                                  fine(2 * x + 1, y, c), fine(2 * x + 2, y, c));
        const RDom r(0, coarse_width, "pixel");
        const auto tap = [&](int k) {
            return across(r.x, clamp(2 * y + k, 0, fine_height - 1), c);
        };
        f(x, y, c) = undef<uint8_t>();
        f(r.x, y, c) = reduce5(tap(-2), tap(-1), tap(0), tap(1), tap(2));
        f.compute_root();
        f.update(0)
            .split(y, strip, in_strip, out->down_strip[static_cast<size_t>(l)],
                   TailStrategy::GuardWithIf)
            .reorder(r.x, c, in_strip, strip)
            .vectorize(r.x, lanes)
            .unroll(c)
            .parallel(strip);
        pad_rows(f, coarse_width, PAD, PLANES);
        across.compute_at(f, in_strip).store_at(f, strip);
        across.reorder(x, c, y).vectorize(x, lanes).unroll(c);
        if (l == 0) Func(fine).compute_at(across, y);
        level[l + 1] = f;
    }

    void merge_coarsest() {
        const int pixels = width(DEPTH);
        const Func of = level[DEPTH];
        const Expr zero = cast<uint8_t>(0);
        const RDom r(0, pixels, "pixel");
        Func f("coarsest");
        f(x, y, c) = undef<uint8_t>();
        f(r.x, y, c) =
            merge_two(of(r.x, y, MASK), of(r.x, y, c + SRC), zero, of(r.x, y, c + DST), zero, zero);
        f.compute_root();
        f.update(0).reorder(r.x, c, y).vectorize(r.x, std::min<int>(BLOCK, pixels)).unroll(c);
        pad_rows(f, pixels, 1, 3);
        result[DEPTH] = f;
    }

    // Rows of three planes of a coarser level from `base` on, twice as wide: as planes, or as bytes
    // for the finest level.
    Func expand_rows(int l, const Func& coarse, int base) const {
        const int coarse_width = width(l + 1), lanes = std::min<int>(BLOCK, coarse_width);
        const auto even = [&](const Expr& i, const Expr& k) {
            return expand3(coarse(i - 1, y, k + base), coarse(i, y, k + base),
                           coarse(i + 1, y, k + base));
        };
        const auto odd = [&](const Expr& i, const Expr& k) {
            return expand2(coarse(i, y, k + base), coarse(i + 1, y, k + base));
        };
        Func f("expanded");
        if (l == 0) {
            const RDom r(0, 3, 0, 2, 0, coarse_width, "byte");
            f(x, y) = undef<uint8_t>();
            f(6 * r.z + 3 * r.y + r.x, y) = select(r.y == 0, even(r.z, r.x), odd(r.z, r.x));
            f.bound(x, 0, 3 * side);
            f.update(0).allow_race_conditions().unroll(r.x).unroll(r.y).vectorize(r.z, lanes);
        } else {
            Var pair("pair"), parity("parity");
            f(x, y, c) = select(x % 2 == 0, even(x / 2, c), odd(x / 2, c));
            f.bound(x, 0, 2 * coarse_width).bound(c, 0, 3);
            f.split(x, pair, parity, 2).reorder(parity, pair, c, y);
            f.unroll(parity).vectorize(pair, lanes).unroll(c);
        }
        return f;
    }

    // What the mask is in a block of a row: 0 all set, 1 all clear, 2 anything else.
    Func kinds_of_blocks(int l, int pixels) const {
        const RDom r(0, pixels, "pixel");
        const auto is = [&](int value) {
            const Expr at = block * pixels + r.x;
            const Expr sample = l == 0 ? Expr(out->mask(at, y)) : Expr(level[l](at, y, MASK));
            return sample == cast<uint8_t>(value);
        };
        Func all("all"), none("none"), kind("kind");
        all(block, y) = cast<bool>(true);
        none(block, y) = cast<bool>(true);
        all(block, y) = all(block, y) && is(255);
        none(block, y) = none(block, y) && is(0);
        kind(block, y) = select(all(block, y), cast<uint8_t>(0), none(block, y), cast<uint8_t>(1),
                                cast<uint8_t>(2));
        for (Func* f : {&all, &none})
            f->compute_at(kind, block).update(0).atomic().vectorize(r.x, pixels);
        return kind;
    }

    // The mask of the finest level, each sample three times.
    Func spread_mask() const {
        const RDom r(0, 3, 0, side, "byte");
        Func f("spread");
        f(x, y) = undef<uint8_t>();
        f(3 * r.y + r.x, y) = out->mask(r.y, y);
        f.bound(x, 0, 3 * side);
        f.update(0).allow_race_conditions().unroll(r.x).vectorize(r.y, BLOCK);
        return f;
    }

    void merge(int l) {
        const int pixels = std::min<int>(BLOCK, width(l)), last = width(l + 1) - 1;
        const bool bytes = l == 0;
        const Func expanded[3] = {expand_rows(l, level[l + 1], SRC),
                                  expand_rows(l, level[l + 1], DST),
                                  expand_rows(l, result[l + 1], 0)};
        const Func kind = kinds_of_blocks(l, pixels);
        // A value in its vector, the vector, the kind of merge and the block.
        RDom r(0, pixels, 0, bytes ? 3 : 1, 0, 3, 0, width(l) / pixels, "r");
        r.where(kind(r[3], y) == cast<uint8_t>(r[2]));
        const Expr at = r[3] * (bytes ? 3 * pixels : pixels) + r[1] * pixels + r[0];
        const auto value = [&](const Func& f, const Expr& row, int plane) {
            return bytes ? Expr(f(at, row)) : Expr(f(at, row, c + plane));
        };
        const auto coarse = [&](int picture) {
            const auto row = [&](int k) {
                return value(expanded[picture], clamp(y / 2 + k, 0, last), 0);
            };
            return select(y % 2 == 0, expand3(row(-1), row(0), row(1)), expand2(row(0), row(1)));
        };
        const Func spread = spread_mask();
        const Expr m = bytes ? Expr(spread(at, y)) : Expr(level[l](at, y, MASK));
        const Expr s = value(bytes ? Func(out->src_bytes) : level[l], y, SRC);
        const Expr t = value(bytes ? Func(out->dst_bytes) : level[l], y, DST);
        const Expr es = coarse(0), et = coarse(1), base = coarse(2);
        const Expr merged = select(r[2] == 0, merge_one(s, es, base),  //
                                   r[2] == 1, merge_one(t, et, base),  //
                                   merge_two(m, s, es, t, et, base));
        Func f("result");
        if (bytes) {
            f(x, y) = undef<uint8_t>();
            f(at, y) = merged;
            f.bound(x, 0, 3 * side);
            Func(spread).compute_at(f, in_strip);
        } else {
            f(x, y, c) = undef<uint8_t>();
            f(at, y, c) = merged;
            f.compute_root();
        }
        schedule_merge(f, r, l);
        for (Func rows : expanded)
            rows.compute_at(f, in_strip).store_at(f, strip);
        Func(kind).compute_at(f, in_strip);
        if (!bytes) pad_rows(f, width(l), 1, 3);
        result[l] = f;
    }

    void schedule_merge(Func f, const RDom& r, int l) const {
        Var pair("pair"), parity("parity");
        f.bound(y, 0, width(l));
        Stage stage = f.update(0);
        stage.allow_race_conditions();  // every value is written once
        stage.split(y, pair, parity, 2, TailStrategy::GuardWithIf);
        stage.split(pair, strip, in_strip, out->up_strip[static_cast<size_t>(l)],
                    TailStrategy::GuardWithIf);
        const RVar lane(r[0].name()), vector(r[1].name()), kind(r[2].name()), at(r[3].name());
        if (l == 0) {
            stage.reorder(lane, vector, kind, at, parity, in_strip, strip);
        } else {
            stage.reorder({lane, vector, c, kind, at, parity, in_strip, strip}).unroll(c);
        }
        stage.unroll(parity).unroll(kind).unroll(vector);
        stage.vectorize(lane, std::min<int>(BLOCK, width(l))).parallel(strip);
    }
};

// A picture of `step` bytes a pixel, packed.
void set_layout(ImageParam* picture, int32_t width, int32_t height, int32_t step) {
    picture->dim(0).set_bounds(0, width).set_stride(step);
    picture->dim(1).set_bounds(0, height).set_stride(step * width);
    if (step > 1) picture->dim(2).set_bounds(0, step).set_stride(1);
}

}  // namespace

halide_pipeline make_halide_pipeline(int32_t side) {
    const Type byte = UInt(8);
    halide_pipeline out = {{},
                           ImageParam(byte, 3, "src"),
                           ImageParam(byte, 3, "dst"),
                           ImageParam(byte, 2, "src_bytes"),
                           ImageParam(byte, 2, "dst_bytes"),
                           ImageParam(byte, 2, "mask"),
                           {},
                           {}};
    set_layout(&out.src, side, side, 3);
    set_layout(&out.dst, side, side, 3);
    set_layout(&out.src_bytes, 3 * side, side, 1);
    set_layout(&out.dst_bytes, 3 * side, side, 1);
    set_layout(&out.mask, side, side, 1);
    builder b;
    b.side = side;
    b.out = &out;
    for (int l = 0; l < DEPTH; l++)
        b.reduce(l);
    b.merge_coarsest();
    for (int l = DEPTH - 1; l >= 0; l--)
        b.merge(l);
    out.blend = Pipeline(b.result[0]);
    OutputImageParam to = b.result[0].output_buffer();
    to.dim(0).set_bounds(0, 3 * side);
    to.dim(1).set_bounds(0, side).set_stride(3 * side);
    out.blend.add_custom_lowering_pass(new split_colours);
    return out;
}

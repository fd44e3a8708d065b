// SPDX-License-Identifier: Apache-2.0
// The formulas of the blend for Halide, with the results of src/kernels/row_math.h. Most need 8
// bits all along, so that a vector holds as many values as it has bytes.
#ifndef IMAGEBLEND_BENCH_HALIDE_FORMULAS_H
#define IMAGEBLEND_BENCH_HALIDE_FORMULAS_H

#include <Halide.h>

namespace halide_formulas {

using Halide::cast;
using Halide::Expr;

// (a + b + 1) >> 1, one instruction.
inline Expr mean_up(const Expr& a, const Expr& b) {
    return rounding_halving_add(a, b);
}

// (a + 4b + 6c + 4d + e + 8) >> 4. The sum is four times the mean of c, b, d and
// g = (((a + e) >> 1) + c) >> 1, rounded; means that round down are the complements of means of
// complements that round up. A mean of two rounded means is one too large when their last bits
// differ and either was rounded.
inline Expr reduce5(const Expr& a, const Expr& b, const Expr& c, const Expr& d, const Expr& e) {
    const Expr g = ~mean_up(mean_up(~a, ~e), ~c);
    const Expr one = mean_up(g, c), other = mean_up(b, d);
    const Expr too_much = ((g ^ c) | (b ^ d)) & (one ^ other) & cast<uint8_t>(1);
    return mean_up(one, other) - too_much;
}

// (a + 6b + c + 4) >> 3
inline Expr expand3(const Expr& a, const Expr& b, const Expr& c) {
    return mean_up(~mean_up(mean_up(~a, ~c), ~b), b);
}

// (4b + 4c + 4) >> 3
inline Expr expand2(const Expr& b, const Expr& c) {
    return mean_up(b, c);
}

// base + ((255 (s - e) + 128) >> 8), clamped: the merge where only one picture counts. The
// difference keeps its size up to 127 and becomes one smaller above; 128 itself stays when it is
// positive.
inline Expr merge_one(const Expr& s, const Expr& e, const Expr& base) {
    const Expr one = cast<uint8_t>(1), half = cast<uint8_t>(128);
    const Expr above = saturating_sub(s, e), below = saturating_sub(e, s);
    const Expr more = select(above > half, above - one, above);
    const Expr less = select(below >= half, below - one, below);
    return saturating_sub(saturating_add(base, more), less);
}

// base + ((m (s - es) + (255 - m) (t - et) + 128) >> 8), clamped. With d = (s - es) - (t - et) the
// shifted sum is (t - et) + ((m d - (t - et) + 128) >> 8), whose product of 18 bits is taken in a
// high and a low part.
inline Expr merge_two(const Expr& mask, const Expr& s, const Expr& es, const Expr& t,
                      const Expr& et, const Expr& base) {
    const auto wide = [](const Expr& value) { return cast<int16_t>(value); };
    const Expr under = wide(t) - wide(et), d = wide(s) - wide(es) - under, m = wide(mask);
    const Expr high = cast<int16_t>((cast<int32_t>(m << 7) * cast<int32_t>(d << 1)) >> 16);
    const Expr low = (m * d) & cast<int16_t>(255);
    const Expr sum = under + high + ((low - under + cast<int16_t>(128)) >> 8);
    return cast<uint8_t>(clamp(sum + wide(base), 0, 255));
}

}  // namespace halide_formulas

#endif

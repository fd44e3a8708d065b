// SPDX-License-Identifier: Apache-2.0
// The row operations for a driver outside the module: table 0 has the plain ones, table 1 those of
// vectors. Whole blends take either; the linker puts what is named __wrap_ in the function's place.
#include "kernels/row_ops.h"

static bool plain_is_forced = false;

static const row_ops* table_at(int32_t table) {
    return table == 0 ? &plain_rows : machine_row_ops(table - 1);
}

extern "C" {

void use_plain_rows(bool use) {
    plain_is_forced = use;
}

const row_ops* __wrap__Z14active_row_opsv(void) {
    return table_at(plain_is_forced ? 0 : 1);
}

void reduce_row_c3(int32_t table, const uint8_t* src, int32_t src_width, uint8_t* dst,
                   int32_t dst_width) {
    table_at(table)->reduce_row_c3(src, src_width, dst, dst_width);
}

void reduce_row_c1(int32_t table, const uint8_t* src, int32_t src_width, uint8_t* dst,
                   int32_t dst_width) {
    table_at(table)->reduce_row_c1(src, src_width, dst, dst_width);
}

void expand_row_c3(int32_t table, const uint8_t* src, int32_t src_width, uint8_t* dst,
                   int32_t dst_width) {
    table_at(table)->expand_row_c3(src, src_width, dst, dst_width);
}

void reduce_column(int32_t table, const uint8_t* t0, const uint8_t* t1, const uint8_t* t2,
                   const uint8_t* t3, const uint8_t* t4, uint8_t* dst, size_t bytes) {
    const uint8_t* const taps[5] = {t0, t1, t2, t3, t4};
    table_at(table)->reduce_column(taps, dst, bytes);
}

// The three rows of each coarser level lie `coarse_step` bytes apart.
void merge_rows_of(int32_t table, bool odd, const uint8_t* mask, const uint8_t* src,
                   const uint8_t* under, const uint8_t* coarse_src, const uint8_t* coarse_under,
                   const uint8_t* coarse_result, size_t coarse_step, uint8_t* dst, size_t pixels) {
    const size_t s = coarse_step;
    const merge_rows rows = {mask,
                             src,
                             under,
                             {coarse_src, coarse_src + s, coarse_src + 2 * s},
                             {coarse_under, coarse_under + s, coarse_under + 2 * s},
                             {coarse_result, coarse_result + s, coarse_result + 2 * s}};
    const row_ops* ops = table_at(table);
    (odd ? ops->merge_odd : ops->merge_even)(&rows, dst, pixels);
}

void mix_rows(int32_t table, const uint8_t* s0, const uint8_t* s1, int32_t weight, uint8_t* dst,
              size_t bytes) {
    table_at(table)->mix_rows(s0, s1, weight, dst, bytes);
}

void resample_row_c3(int32_t table, const uint8_t* src, const row_tap* taps, uint8_t* dst,
                     size_t pixels) {
    table_at(table)->resample_row_c3(src, taps, dst, pixels);
}

void pack_rgb(int32_t table, const uint8_t* src, uint8_t* dst, size_t pixels) {
    table_at(table)->pack_rgb(src, dst, pixels);
}

void unpack_rgb(int32_t table, const uint8_t* src, uint8_t* dst, size_t pixels) {
    table_at(table)->unpack_rgb(src, dst, pixels);
}

}  // extern "C"

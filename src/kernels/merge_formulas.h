// SPDX-License-Identifier: Apache-2.0
// What the merge of a row is made of in vectors of any kind. Included behind their byte_vector,
// load, average_up, add_saturated, subtract_saturated, drop_from_128, drop_above_128 and
// even_phase. What is here is private to the including file.
#ifndef IMAGEBLEND_KERNELS_MERGE_FORMULAS_H
#define IMAGEBLEND_KERNELS_MERGE_FORMULAS_H

namespace {

// Values under a weight of 255, (255 v + 128) >> 8, which takes one from differences above 128 and
// gives one to those below -127. One of the two parts is 0, so each saturates by itself.
inline byte_vector merge_one(byte_vector row, byte_vector expanded, byte_vector result) {
    const byte_vector gain = drop_above_128(subtract_saturated(row, expanded));
    const byte_vector loss = drop_from_128(subtract_saturated(expanded, row));
    return subtract_saturated(add_saturated(result, gain), loss);
}

// The phases of a merge: rows of a coarser level expanded down the columns.
struct even_rows {
    static inline byte_vector at(const coarse_rows* rows, size_t i) {
        return even_phase(load(rows->above + i), load(rows->centre + i), load(rows->below + i));
    }
};
struct odd_rows {
    static inline byte_vector at(const coarse_rows* rows, size_t i) {
        return average_up(load(rows->centre + i), load(rows->below + i));
    }
};

}  // namespace

#endif

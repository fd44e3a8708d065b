// SPDX-License-Identifier: Apache-2.0
// Header fields of a bitmap file, and the layout that its reader and its writer share.
#ifndef IMAGEBLEND_BMP_FIELDS_H
#define IMAGEBLEND_BMP_FIELDS_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
    BMP_MAGIC_0 = 66,       // 'B'
    BMP_MAGIC_1 = 77,       // 'M'
    BMP_HEADER_BYTES = 54,  // file header and information header
    BMP_INFO_HEADER_BYTES = 40,
    BMP_PIXEL_BYTES = 3  // blue, green, red
};

// 1: fields are stored least significant byte first, as the format has it. Any other value: most
// significant first. The magic and the pixels are the same in both orders.
extern int32_t byte_order_flag;  // NOLINT(bugprone-dynamic-static-initializers): a constant

// Return 0, or 1 at the end of the file with *value left alone.
int32_t read_u32(uint32_t* value, FILE* stream);
int32_t read_u16(uint16_t* value, FILE* stream);

// Return the number of bytes of the field; whether they could be written is not checked.
int32_t write_u32(uint32_t value, FILE* stream);
int32_t write_u16(uint16_t value, FILE* stream);

// Zero bytes that fill a row up to a multiple of four bytes; `width` is not negative.
static inline int32_t bmp_row_padding(int32_t width) {
    return (int32_t)((4 - (int64_t)width * BMP_PIXEL_BYTES % 4) % 4);
}

#ifdef __cplusplus
}
#endif

#endif

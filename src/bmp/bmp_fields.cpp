// SPDX-License-Identifier: Apache-2.0
#include "bmp/bmp_fields.h"

int32_t byte_order_flag = 1;

// Bits by which byte `i` of a field of `bytes` bytes is shifted.
static uint32_t shift_of(uint32_t i, uint32_t bytes) {
    return 8 * (byte_order_flag == 1 ? i : bytes - 1 - i);
}

static int32_t read_field(uint32_t* value, uint32_t bytes, FILE* stream) {
    uint32_t field = 0;
    for (uint32_t i = 0; i < bytes; ++i) {
        const int byte = fgetc(stream);
        if (byte == EOF) return 1;
        field |= (uint32_t)byte << shift_of(i, bytes);
    }
    *value = field;
    return 0;
}

static int32_t write_field(uint32_t value, uint32_t bytes, FILE* stream) {
    for (uint32_t i = 0; i < bytes; ++i)
        (void)fputc((int)(value >> shift_of(i, bytes) & 255), stream);
    return (int32_t)bytes;
}

int32_t read_u32(uint32_t* value, FILE* stream) {
    return read_field(value, 4, stream);
}

int32_t read_u16(uint16_t* value, FILE* stream) {
    uint32_t field;
    if (read_field(&field, 2, stream) != 0) return 1;
    *value = (uint16_t)field;
    return 0;
}

int32_t write_u32(uint32_t value, FILE* stream) {
    return write_field(value, 4, stream);
}

int32_t write_u16(uint16_t value, FILE* stream) {
    return write_field(value, 2, stream);
}

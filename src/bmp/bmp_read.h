// SPDX-License-Identifier: Apache-2.0
// Reading of uncompressed 24-bit bitmap files, as the dump routines write them and as other
// programs do with larger headers. Rows are taken bottom-up; the fields for planes, bits per pixel
// and compression are read past.
//
// Files are not trusted: a picture is taken only when both sides are above 0 and the file is long
// enough to hold it behind its data offset, and no memory is asked for before that is known.
#ifndef IMAGEBLEND_BMP_READ_H
#define IMAGEBLEND_BMP_READ_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Stores the size and a new buffer of width * height pixels of 4 bytes, which the caller frees:
// byte 0 is 255, bytes 1, 2, 3 are red, green and blue. The planes serve while the file is read and
// are null afterwards. Returns 0, or 1 after a failure that is reported on standard output: sizes
// are 0 then and pointers null. Every output must be given.
int32_t bmp_read(const char* path, int32_t* width, int32_t* height, uint8_t** pixels, uint8_t** red,
                 uint8_t** green, uint8_t** blue);

// The same for a grey bitmap that holds a mask: the first width * height bytes of the buffer, which
// is as large as in bmp_read, are the red plane, and the rest is 0.
int32_t bmp_read_mask(const char* path, int32_t* width, int32_t* height, uint8_t** pixels,
                      uint8_t** red, uint8_t** green, uint8_t** blue);

// Reads the first 54 bytes. Returns 0, or 1 when the magic is wrong or the file ends before; the
// outputs are left alone then. The values are not checked.
int32_t bmp_read_header(FILE* stream, int32_t* width, int32_t* height, uint32_t* data_offset);

// Reads the rows from the stream's position on into planes of width * height bytes. Returns 0, or 1
// when the file ends before the last pixel.
int32_t bmp_read_data(FILE* stream, int32_t width, int32_t height, uint8_t* red, uint8_t* green,
                      uint8_t* blue);

// Reads a file and prints its size. Returns what bmp_read does.
int32_t BMP_READ_TEST(const char* path);

#ifdef __cplusplus
}
#endif

#endif

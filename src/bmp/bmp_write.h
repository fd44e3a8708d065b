// SPDX-License-Identifier: Apache-2.0
// Dumps of pictures as uncompressed 24-bit bitmap files and of planes as bare bytes.
//
// All routines return 0, or 1 after a failure that is reported on standard output. Whether the
// bytes reach the file is not checked. Planes hold width * height bytes from the top row on.
#ifndef IMAGEBLEND_BMP_WRITE_H
#define IMAGEBLEND_BMP_WRITE_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Writes the three planes when `pixels` is null. Otherwise the planes are not used, and red, green
// and blue are bytes 1, 2, 3 of each pixel when `skip_first_byte` is set and bytes 0, 1, 2 when
// not.
int32_t bmp_write(const char* path, int32_t width, int32_t height, const uint8_t* pixels,
                  const uint8_t* red, const uint8_t* green, const uint8_t* blue,
                  int32_t bytes_per_pixel, int32_t skip_first_byte);

// The 54 bytes before the rows. The file size in them leaves the padding of the rows out.
int32_t bmp_write_header(FILE* stream, int32_t width, int32_t height);

// The rows, the last one first.
int32_t bmp_write_data(FILE* stream, int32_t width, int32_t height, const uint8_t* red,
                       const uint8_t* green, const uint8_t* blue);

// Writes width * height bytes without a header; byte i is pixels[offset + step * i].
int32_t raw_plane_write(const char* path, int32_t width, int32_t height, const uint8_t* pixels,
                        int32_t offset, int32_t step);

#ifdef __cplusplus
}
#endif

#endif

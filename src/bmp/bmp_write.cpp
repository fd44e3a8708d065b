// SPDX-License-Identifier: Apache-2.0
#include "bmp/bmp_write.h"

#include <stddef.h>
#include <stdlib.h>

#include "bmp/bmp_fields.h"
#include "memory.h"

static const char* printable(const char* path) {
    return path != NULL ? path : "(null)";
}

static FILE* open_output(const char* path) {
    return path != NULL ? fopen(path, "wb") : NULL;
}

static int32_t allocation_failure(void) {
    (void)putchar('\n');
    (void)puts("BMP_WRITE - Fatal error!");
    (void)puts("  Could not allocate data storage.");
    return 1;
}

int32_t bmp_write_header(FILE* stream, int32_t width, int32_t height) {
    // Modulo 2^32, as the field holds no more.
    const uint32_t file_bytes =
        (uint32_t)width * (uint32_t)height * BMP_PIXEL_BYTES + BMP_HEADER_BYTES;
    (void)fputc(BMP_MAGIC_0, stream);
    (void)fputc(BMP_MAGIC_1, stream);
    write_u32(file_bytes, stream);
    write_u32(0, stream);  // reserved
    write_u32(BMP_HEADER_BYTES, stream);
    write_u32(BMP_INFO_HEADER_BYTES, stream);
    write_u32((uint32_t)width, stream);
    write_u32((uint32_t)height, stream);
    write_u16(1, stream);                    // planes
    write_u16(8 * BMP_PIXEL_BYTES, stream);  // bits per pixel
    // Compression, image size, horizontal and vertical resolution, colours used and important.
    for (int32_t i = 0; i < 6; ++i)
        write_u32(0, stream);
    return 0;
}

int32_t bmp_write_data(FILE* stream, int32_t width, int32_t height, const uint8_t* red,
                       const uint8_t* green, const uint8_t* blue) {
    if (width < 1 || height < 1) return 0;
    const int32_t padding = bmp_row_padding(width);
    for (int32_t y = height - 1; y >= 0; --y) {
        const int64_t row = (int64_t)y * width;
        for (int64_t i = row; i < row + width; ++i) {
            const uint8_t bgr[BMP_PIXEL_BYTES] = {blue[i], green[i], red[i]};
            (void)fwrite(bgr, 1, sizeof bgr, stream);
        }
        for (int32_t i = 0; i < padding; ++i)
            (void)fputc(0, stream);
    }
    return 0;
}

// Writes the rows of interleaved pixels, the red byte of the first of which is pixels[0].
static int32_t write_interleaved(FILE* stream, int32_t width, int32_t height, const uint8_t* pixels,
                                 int32_t bytes_per_pixel) {
    uint8_t* const planes = (uint8_t*)alloc_plane(width, height, BMP_PIXEL_BYTES);
    if (planes == NULL) return allocation_failure();
    // No pixels are there to be read when both sides are negative.
    const int64_t count = width > 0 && height > 0 ? (int64_t)width * height : 0;
    uint8_t* const green = planes + count;
    uint8_t* const blue = green + count;
    for (int64_t i = 0; i < count; ++i) {
        const uint8_t* const pixel = pixels + i * bytes_per_pixel;
        planes[i] = pixel[0];
        green[i] = pixel[1];
        blue[i] = pixel[2];
    }
    const int32_t status = bmp_write_data(stream, width, height, planes, green, blue);
    free(planes);
    return status;
}

int32_t bmp_write(const char* path, int32_t width, int32_t height, const uint8_t* pixels,
                  const uint8_t* red, const uint8_t* green, const uint8_t* blue,
                  int32_t bytes_per_pixel, int32_t skip_first_byte) {
    (void)puts("bmp_write enter");
    FILE* const stream = open_output(path);
    if (stream == NULL) {
        (void)putchar('\n');
        (void)puts("BMP_WRITE - Fatal error!");
        (void)printf("  Could not open the output file filename:%s.\n", printable(path));
        return 1;
    }
    int32_t status = bmp_write_header(stream, width, height);
    if (pixels == NULL) {
        status |= bmp_write_data(stream, width, height, red, green, blue);
    } else {
        const uint8_t* const first_red = pixels + (skip_first_byte != 0 ? 1 : 0);
        status |= write_interleaved(stream, width, height, first_red, bytes_per_pixel);
    }
    (void)fclose(stream);
    return status;
}

int32_t raw_plane_write(const char* path, int32_t width, int32_t height, const uint8_t* pixels,
                        int32_t offset, int32_t step) {
    size_t count;
    if (!buffer_size(width, height, 1, &count)) return allocation_failure();
    uint8_t* const bytes = (uint8_t*)alloc_plane(width, height, 1);
    if (bytes == NULL) return allocation_failure();
    for (size_t i = 0; i < count; ++i)
        bytes[i] = pixels[offset + step * (int64_t)i];
    FILE* const stream = open_output(path);
    if (stream == NULL) {
        (void)putchar('\n');
        (void)puts("BMP_WRITE - Fatal error!");
        (void)printf("  Could not open the output file name:%s.\n", printable(path));
    } else {
        (void)fwrite(bytes, 1, count, stream);
        (void)fclose(stream);
    }
    free(bytes);
    return stream == NULL ? 1 : 0;
}

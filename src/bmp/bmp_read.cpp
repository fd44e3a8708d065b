// SPDX-License-Identifier: Apache-2.0
#include "bmp/bmp_read.h"

#include <stddef.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "bmp/bmp_fields.h"
#include "memory.h"

// What the caller of a read wants to have filled in.
typedef struct bmp_outputs {
    int32_t* width;
    int32_t* height;
    uint8_t** pixels;
    uint8_t** planes[3];
} bmp_outputs;

typedef enum bmp_content { BMP_COLOUR, BMP_MASK } bmp_content;

static int32_t failure(const char* title, const char* reason) {
    (void)putchar('\n');
    (void)puts(title);
    (void)puts(reason);
    return 1;
}

static int32_t header_failure(void) {
    return failure("BMP_READ: Fatal error!", "  BMP_READ_HEADER failed.");
}

static int32_t storage_failure(void) {
    return failure("BMP_READ: Fatal error!", "  Could not allocate data storage.");
}

int32_t bmp_read_header(FILE* stream, int32_t* width, int32_t* height, uint32_t* data_offset) {
    enum {
        FILE_SIZE,
        RESERVED,
        DATA_OFFSET,
        INFO_SIZE,
        WIDTH,
        HEIGHT,
        FORMAT,
        FIELDS = FORMAT + 7
    };
    const int first = fgetc(stream);
    const int second = fgetc(stream);
    if (first != BMP_MAGIC_0 || second != BMP_MAGIC_1) return 1;
    // Planes and bits per pixel make one field, and six follow it.
    uint32_t fields[FIELDS];
    for (int32_t i = 0; i < FIELDS; ++i) {
        if (read_u32(&fields[i], stream) != 0) return 1;
    }
    *width = (int32_t)fields[WIDTH];
    *height = (int32_t)fields[HEIGHT];
    *data_offset = fields[DATA_OFFSET];
    return 0;
}

int32_t bmp_read_data(FILE* stream, int32_t width, int32_t height, uint8_t* red, uint8_t* green,
                      uint8_t* blue) {
    if (width < 1 || height < 1) return 0;
    const size_t padding = (size_t)bmp_row_padding(width);
    for (int32_t y = height - 1; y >= 0; --y) {
        uint8_t bytes[BMP_PIXEL_BYTES];
        const int64_t row = (int64_t)y * width;
        for (int64_t i = row; i < row + width; ++i) {
            if (fread(bytes, 1, BMP_PIXEL_BYTES, stream) != BMP_PIXEL_BYTES) return 1;
            blue[i] = bytes[0];
            green[i] = bytes[1];
            red[i] = bytes[2];
        }
        // Nothing is lost when the padding of the last row is missing.
        if (fread(bytes, 1, padding, stream) != padding && y > 0) return 1;
    }
    return 0;
}

// Moves the stream to the data offset. False when the header's values cannot be those of a picture
// in this file.
static bool seek_rows(FILE* stream, int32_t width, int32_t height, uint32_t data_offset) {
    if (width < 1 || height < 1 || data_offset < BMP_HEADER_BYTES) return false;
    if (fseeko(stream, 0, SEEK_END) != 0) return false;
    const int64_t available = (int64_t)ftello(stream) - data_offset;
    const int64_t last_row = (int64_t)width * BMP_PIXEL_BYTES;
    const int64_t row_bytes = last_row + bmp_row_padding(width);
    // A division, for row_bytes * height may not fit 64 bits.
    if (available < last_row || (available - last_row) / row_bytes < height - 1) return false;
    return fseeko(stream, (off_t)data_offset, SEEK_SET) == 0;
}

static void fill_pixels(uint8_t* pixels, size_t count, const uint8_t* planes, bmp_content content) {
    for (size_t i = 0; i < count; ++i) {
        if (content == BMP_MASK) {
            pixels[i] = planes[i];
        } else {
            pixels[4 * i] = 255;
            pixels[4 * i + 1] = planes[i];
            pixels[4 * i + 2] = planes[count + i];
            pixels[4 * i + 3] = planes[2 * count + i];
        }
    }
}

static int32_t read_rows(FILE* stream, int32_t width, int32_t height, const bmp_outputs* out,
                         bmp_content content) {
    // Red, green and blue in one block.
    uint8_t* const planes = (uint8_t*)alloc_zeroed_plane(width, height, 3);
    uint8_t* const pixels = (uint8_t*)alloc_zeroed_plane(width, height, 4);
    int32_t status;
    if (planes == NULL || pixels == NULL) {
        status = storage_failure();
    } else {
        const size_t count = (size_t)width * (size_t)height;
        status = bmp_read_data(stream, width, height, planes, planes + count, planes + 2 * count);
        if (status != 0) {
            // The file cannot be read or has become shorter, and the header is wrong about it.
            status = header_failure();
        } else {
            fill_pixels(pixels, count, planes, content);
            *out->width = width;
            *out->height = height;
            *out->pixels = pixels;
        }
    }
    free(planes);
    if (status != 0) free(pixels);
    return status;
}

// False when an output is missing.
static bool clear_outputs(const bmp_outputs* out) {
    bool complete = out->width != NULL && out->height != NULL && out->pixels != NULL;
    if (out->width != NULL) *out->width = 0;
    if (out->height != NULL) *out->height = 0;
    if (out->pixels != NULL) *out->pixels = NULL;
    for (int32_t i = 0; i < 3; ++i) {
        if (out->planes[i] != NULL) *out->planes[i] = NULL;
        complete = complete && out->planes[i] != NULL;
    }
    return complete;
}

static int32_t read_picture(const char* path, const bmp_outputs* out, bmp_content content) {
    const bool complete = clear_outputs(out);
    // Only a regular file has a length, and opening a pipe could wait forever.
    struct stat properties;
    FILE* stream = NULL;
    if (path != NULL && stat(path, &properties) == 0 && S_ISREG(properties.st_mode))
        stream = fopen(path, "rb");
    if (stream == NULL)
        return failure("BMP_READ - Fatal error!", "  Could not open the input file.");
    int32_t width;
    int32_t height;
    uint32_t data_offset;
    int32_t status;
    if (bmp_read_header(stream, &width, &height, &data_offset) != 0 ||
        !seek_rows(stream, width, height, data_offset))
        status = header_failure();
    else if (!complete)
        status = storage_failure();
    else
        status = read_rows(stream, width, height, out, content);
    (void)fclose(stream);
    return status;
}

int32_t bmp_read(const char* path, int32_t* width, int32_t* height, uint8_t** pixels, uint8_t** red,
                 uint8_t** green, uint8_t** blue) {
    const bmp_outputs out = {width, height, pixels, {red, green, blue}};
    return read_picture(path, &out, BMP_COLOUR);
}

int32_t bmp_read_mask(const char* path, int32_t* width, int32_t* height, uint8_t** pixels,
                      uint8_t** red, uint8_t** green, uint8_t** blue) {
    const bmp_outputs out = {width, height, pixels, {red, green, blue}};
    return read_picture(path, &out, BMP_MASK);
}

int32_t BMP_READ_TEST(const char* path) {
    int32_t width;
    int32_t height;
    uint8_t* pixels;
    uint8_t* planes[3];
    const int32_t status =
        bmp_read(path, &width, &height, &pixels, &planes[0], &planes[1], &planes[2]);
    (void)puts("BMP_READ_TEST:");
    (void)printf("  XSIZE = %d.\n", width);
    (void)printf("  YSIZE = %d.\n", height);
    free(pixels);
    if (status != 0) return failure("BMP_READ_TEST: Fatal error!", "  BMP_READ failed.");
    return 0;
}

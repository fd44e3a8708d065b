/* SPDX-License-Identifier: Apache-2.0 */
/*
 * blend OBJECT MASK PHOTO RESULT X Y ZOOM: pastes the object that MASK marks in OBJECT into PHOTO,
 * with its centre at (X, Y), and writes RESULT.
 *
 * OBJECT and PHOTO are binary PPM files (P6), MASK is a binary PGM file (P5), all of one size and
 * with 8 bits a channel. "vips copy IN.jpg OUT.ppm" makes them from any picture.
 */
#include <imageblend.h>
#include <stdio.h>
#include <stdlib.h>

static void fail(const char* file, const char* what) {
    fprintf(stderr, "blend: %s: %s\n", file, what);
    exit(1);
}

/* The next number of a header, after blanks and comments; -1 if there is none. */
static int32_t read_number(FILE* file) {
    int next = getc(file);
    while (next == ' ' || next == '\t' || next == '\r' || next == '\n' || next == '#') {
        if (next == '#') {
            while (next != '\n' && next != EOF)
                next = getc(file);
        } else {
            next = getc(file);
        }
    }
    int32_t number = -1;
    for (; next >= '0' && next <= '9' && number < 100000; next = getc(file))
        number = (number < 0 ? 0 : number * 10) + (next - '0');
    return number; /* one byte behind the number is read too */
}

/* Reads a file of `channels` channels: colours as A, R, G, B with 4 bytes a pixel, a mask with 1.
 */
static blend_image read_picture(const char* path, int channels) {
    FILE* file = fopen(path, "rb");
    if (file == NULL) fail(path, "cannot be opened");
    if (getc(file) != 'P' || getc(file) != (channels == 3 ? '6' : '5'))
        fail(path, channels == 3 ? "is no binary PPM file" : "is no binary PGM file");
    blend_image image;
    image.width = read_number(file);
    image.height = read_number(file);
    if (image.width < 1 || image.height < 1 || image.width > 30000 || image.height > 30000 ||
        read_number(file) != 255)
        fail(path, "has no header with a size up to 30000 and 8 bits a channel");
    const size_t pixels = (size_t)image.width * (size_t)image.height;
    const size_t pixel_bytes = channels == 3 ? 4 : 1;
    image.data = malloc(pixels * pixel_bytes);
    if (image.data == NULL) fail(path, "is too large for the memory");
    for (size_t i = 0; i < pixels; i++) {
        uint8_t* pixel = image.data + i * pixel_bytes;
        if (channels == 3) *pixel++ = 255;
        if (fread(pixel, 1, (size_t)channels, file) != (size_t)channels) fail(path, "is cut short");
    }
    fclose(file);
    return image;
}

static void write_picture(const char* path, const blend_image* image) {
    FILE* file = fopen(path, "wb");
    if (file == NULL) fail(path, "cannot be written");
    const size_t pixels = (size_t)image->width * (size_t)image->height;
    fprintf(file, "P6\n%d %d\n255\n", image->width, image->height);
    for (size_t i = 0; i < pixels; i++)
        fwrite(image->data + 4 * i + 1, 1, 3, file);
    const int failed = ferror(file);
    if (fclose(file) != 0 || failed) fail(path, "cannot be written");
}

int main(int count, char** arguments) {
    if (count != 8) {
        fprintf(stderr, "usage: blend OBJECT.ppm MASK.pgm PHOTO.ppm RESULT.ppm X Y ZOOM\n");
        return 2;
    }
    const blend_image icon = read_picture(arguments[1], 3);
    const blend_image mask = read_picture(arguments[2], 1);
    blend_image photo = read_picture(arguments[3], 3);
    if (icon.width != photo.width || icon.height != photo.height || icon.width != mask.width ||
        icon.height != mask.height)
        fail(arguments[3], "and the other two must have one size");
    const int32_t x = (int32_t)atoi(arguments[5]), y = (int32_t)atoi(arguments[6]);
    const float zoom = (float)atof(arguments[7]), angle = 0.0f;

    const int32_t verdict =
        vorn_verify_icon_pos(mask.data, mask.width, mask.height, 0, 0, x, y, zoom, angle);
    if (verdict < 0) fail(arguments[1], "is too large for the photo at this zoom");
    if (verdict > 0) fprintf(stderr, "blend: near the border a seam may show\n");
    /* The photo's own frame receives the result. */
    if (vorn_imageBlending(&icon, &photo, &mask, &photo, 0, 0, x, y, zoom, angle) != 0)
        fail(arguments[4], "was not blended for want of memory");
    write_picture(arguments[4], &photo);
    free(icon.data);
    free(mask.data);
    free(photo.data);
    return 0;
}

/* SPDX-License-Identifier: Apache-2.0 */
#include "pixels.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

_Static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
               "an int 0xAARRGGBB is taken to be the bytes B, G, R, A");

/* Pixels that are copied and turned round at a time: 16 KB, which stay in the first cache. */
enum { chunk_pixels = 4096 };

void throw_java(JNIEnv* env, const char* class_name, const char* format, ...) {
    char message[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    const jclass type = (*env)->FindClass(env, class_name);
    if (type != NULL) (*env)->ThrowNew(env, type, message);
}

uint8_t* alloc_frame(JNIEnv* env, jsize count, size_t item_bytes) {
    const size_t bytes = (size_t)count * item_bytes;
    uint8_t* frame = malloc(bytes);
    if (frame == NULL) {
        throw_java(env, "java/lang/OutOfMemoryError", "no memory for a frame of %zu bytes", bytes);
    }
    return frame;
}

uint8_t* bytes_of(JNIEnv* env, jobject buffer, jint offset) {
    return (uint8_t*)(*env)->GetDirectBufferAddress(env, buffer) + offset;
}

blend_image image_of(jint width, jint height, uint8_t* data) {
    const blend_image image = {width, height, data};
    return image;
}

int ranges_overlap(const uint8_t* a, size_t a_bytes, const uint8_t* b, size_t b_bytes) {
    return (uintptr_t)a < (uintptr_t)b + b_bytes && (uintptr_t)b < (uintptr_t)a + a_bytes;
}

void throw_overlap(JNIEnv* env, const char* name, const uint8_t* a, const char* other,
                   const uint8_t* b) {
    throw_java(env, "java/lang/IllegalArgumentException", "%s at address %p overlaps %s at %p",
               name, (const void*)a, other, (const void*)b);
}

uint8_t* copy_mask(JNIEnv* env, jbyteArray mask, jsize count) {
    uint8_t* copy = alloc_frame(env, count, 1);
    if (copy != NULL) (*env)->GetByteArrayRegion(env, mask, 0, count, (jbyte*)copy);
    return copy;
}

/* B, G, R, A to A, R, G, B and back. */
static void reverse_bytes(uint32_t* pixels, jsize count) {
    for (jsize i = 0; i < count; i++)
        pixels[i] = __builtin_bswap32(pixels[i]);
}

static jsize chunk_length(jsize begin, jsize count) {
    return count - begin < chunk_pixels ? count - begin : chunk_pixels;
}

uint8_t* load_pixels(JNIEnv* env, jintArray pixels, jsize count) {
    uint8_t* frame = alloc_frame(env, count, 4);
    if (frame == NULL) return NULL;
    for (jsize begin = 0, length = 0; begin < count; begin += length) {
        length = chunk_length(begin, count);
        jint* chunk = (jint*)(void*)frame + begin;
        (*env)->GetIntArrayRegion(env, pixels, begin, length, chunk);
        reverse_bytes((uint32_t*)chunk, length);
    }
    return frame;
}

void store_pixels(JNIEnv* env, uint8_t* frame, jintArray pixels, jsize count) {
    for (jsize begin = 0, length = 0; begin < count; begin += length) {
        length = chunk_length(begin, count);
        jint* chunk = (jint*)(void*)frame + begin;
        reverse_bytes((uint32_t*)chunk, length);
        (*env)->SetIntArrayRegion(env, pixels, begin, length, chunk);
    }
}

// SPDX-License-Identifier: Apache-2.0
/* Moves pixels and masks between Java's arrays and the library's frames. */
#ifndef IMAGEBLEND_JNI_PIXELS_H
#define IMAGEBLEND_JNI_PIXELS_H

#include <jni.h>
#include <stddef.h>
#include <stdint.h>

#include "imageblend.h"

/* Throws a Java exception with a printf message; `class_name` is in the form java/lang/Error. */
void throw_java(JNIEnv* env, const char* class_name, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/* Memory for `count` items of `item_bytes`, or null with an OutOfMemoryError thrown. */
uint8_t* alloc_frame(JNIEnv* env, jsize count, size_t item_bytes);

/* A direct buffer's bytes from an offset on. */
uint8_t* bytes_of(JNIEnv* env, jobject buffer, jint offset);

blend_image image_of(jint width, jint height, uint8_t* data);

/* Tells whether two ranges of `a_bytes` and `b_bytes` share memory. */
int ranges_overlap(const uint8_t* a, size_t a_bytes, const uint8_t* b, size_t b_bytes);

void throw_overlap(JNIEnv* env, const char* name, const uint8_t* a, const char* other,
                   const uint8_t* b);

/* A copy of the first `count` bytes of a mask; null with an exception thrown. The caller frees it.
 * Another thread may write the array during a call, so the library sees only copies. */
uint8_t* copy_mask(JNIEnv* env, jbyteArray mask, jsize count);

/* A copy of the first `count` pixels, 0xAARRGGBB each, in the library's order A, R, G, B; null with
 * an exception thrown. The caller frees it. */
uint8_t* load_pixels(JNIEnv* env, jintArray pixels, jsize count);

/* Writes `count` pixels of a frame to the start of an array. Turns the frame's bytes round. */
void store_pixels(JNIEnv* env, uint8_t* frame, jintArray pixels, jsize count);

#endif /* IMAGEBLEND_JNI_PIXELS_H */

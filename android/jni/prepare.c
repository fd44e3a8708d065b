/* SPDX-License-Identifier: Apache-2.0 */
#include "prepare.h"

#include <stdlib.h>

#include "imageblend_prepare.h"
#include "pixels.h"

static size_t bytes_in(const blend_image* picture) {
    return (size_t)picture->width * (size_t)picture->height * 4;
}

static jintArray box_result(JNIEnv* env, const imageblend_box* box) {
    const jint values[4] = {box->left, box->top, box->width, box->height};
    const jintArray result = (*env)->NewIntArray(env, 4);
    if (result != NULL) (*env)->SetIntArrayRegion(env, result, 0, 4, values);
    return result;
}

/* A call's source with a copy of its mask. */
typedef struct source_pair {
    blend_image picture, mask;
    imageblend_source source;
} source_pair;

/* False with an exception thrown; otherwise the caller frees mask.data. */
static int open_source(JNIEnv* env, jobject source, jint offset, jbyteArray mask, jint width,
                       jint height, source_pair* pair) {
    pair->picture = image_of(width, height, bytes_of(env, source, offset));
    pair->mask = image_of(width, height, NULL);
    pair->source.picture = &pair->picture;
    pair->source.mask = NULL;
    if (mask == NULL) return 1;
    pair->mask.data = copy_mask(env, mask, width * height);
    pair->source.mask = &pair->mask;
    return pair->mask.data != NULL;
}

jintArray prepare_box(JNIEnv* env, jclass type, jobject source, jint source_offset, jbyteArray mask,
                      jint width, jint height) {
    (void)type;
    source_pair pair;
    if (!open_source(env, source, source_offset, mask, width, height, &pair)) return NULL;
    imageblend_box box = {0, 0, 0, 0};
    imageblend_clean_box(&pair.source, &box);
    free(pair.mask.data);
    return box_result(env, &box);
}

/* Checks where the object goes to; false with an exception thrown. */
static int object_has_place(JNIEnv* env, const blend_image* object, jint has,
                            const blend_image* picture) {
    if ((size_t)has < bytes_in(object)) {
        throw_java(env, "java/lang/IllegalArgumentException",
                   "object has %d bytes, must have at least %zu for %d x %d pixels", has,
                   bytes_in(object), object->width, object->height);
        return 0;
    }
    if (!ranges_overlap(object->data, bytes_in(object), picture->data, bytes_in(picture))) return 1;
    throw_overlap(env, "object", object->data, "source", picture->data);
    return 0;
}

jintArray prepare_object(JNIEnv* env, jclass type, jobject source, jint source_offset,
                         jbyteArray mask, jint width, jint height, jboolean fit, jfloat grow,
                         jobject object, jint object_offset, jint object_bytes) {
    (void)type;
    source_pair pair;
    if (!open_source(env, source, source_offset, mask, width, height, &pair)) return NULL;
    const imageblend_clean_options options = {fit, grow};
    imageblend_box box = {0, 0, 0, 0};
    imageblend_clean_box(&pair.source, &box);
    blend_image cleaned = image_of(box.width, box.height, bytes_of(env, object, object_offset));
    int done = box.width == 0 || object_has_place(env, &cleaned, object_bytes, &pair.picture);
    if (done && box.width > 0 &&
        imageblend_clean(&pair.source, &options, &box, &cleaned, NULL) != 0) {
        throw_java(env, "java/lang/OutOfMemoryError", "no memory to prepare %d x %d pixels",
                   box.width, box.height);
        done = 0;
    }
    free(pair.mask.data);
    return done ? box_result(env, &box) : NULL;
}

jboolean paste_object(JNIEnv* env, jclass type, jobject object, jint object_offset,
                      jint object_width, jint object_height, jobject picture, jint picture_offset,
                      jint width, jint height, jint left, jint top) {
    (void)type;
    const blend_image pixels =
        image_of(object_width, object_height, bytes_of(env, object, object_offset));
    blend_image target = image_of(width, height, bytes_of(env, picture, picture_offset));
    if (ranges_overlap(target.data, bytes_in(&target), pixels.data, bytes_in(&pixels))) {
        throw_overlap(env, "picture", target.data, "object", pixels.data);
        return JNI_FALSE;
    }
    const imageblend_layer layer = {&pixels, NULL, 0, left, top};
    imageblend_frames frames;
    if (imageblend_place(&layer, width, height, &frames) == 0) {
        if (frames.box.width == 0) return JNI_FALSE;
        if (imageblend_paste(&layer, &target, NULL) == 0) return JNI_TRUE;
    }
    throw_java(env, "java/lang/OutOfMemoryError", "no memory to paste %d x %d pixels", object_width,
               object_height);
    return JNI_FALSE;
}

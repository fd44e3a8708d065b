/* SPDX-License-Identifier: Apache-2.0 */
// The native methods of org.imageblend.ImageBlend. The class has checked that no argument is null
// and that frames and masks have width * height pixels; only the room for an icon is checked here,
// where the mask cannot change between the check and the use.
#include <jni.h>
#include <stdlib.h>

#include "imageblend.h"
#include "pixels.h"
#include "prepare.h"

typedef struct size_2d {
    int32_t width, height;
} size_2d;

static size_2d size_of_icon(const blend_image* mask) {
    size_2d size = {0, 0};
    vorn_get_icon_size(mask, &size.width, &size.height);
    return size;
}

static jintArray size_result(JNIEnv* env, size_2d size) {
    const jint values[2] = {size.width, size.height};
    const jintArray result = (*env)->NewIntArray(env, 2);
    if (result != NULL) (*env)->SetIntArrayRegion(env, result, 0, 2, values);
    return result;
}

static jintArray icon_size(JNIEnv* env, jclass type, jbyteArray mask, jint width, jint height) {
    (void)type;
    blend_image image = image_of(width, height, copy_mask(env, mask, width * height));
    if (image.data == NULL) return NULL;
    const size_2d size = size_of_icon(&image);
    free(image.data);
    return size_result(env, size);
}

// Pixels of an icon: none when there is no object.
static jsize pixels_of(size_2d size) {
    return size.width < 1 || size.height < 1 ? 0 : size.width * size.height;
}

// Checks the room for an icon, in items of an array or a buffer.
static int icon_has_room(JNIEnv* env, size_2d size, jint has, jint items_a_pixel,
                         const char* unit) {
    const int64_t needs = (int64_t)pixels_of(size) * items_a_pixel;
    if (has >= needs) return 1;
    throw_java(env, "java/lang/IllegalArgumentException",
               "icon has %d %s, must have at least %lld for %d x %d pixels", has, unit,
               (long long)needs, size.width, size.height);
    return 0;
}

// Cuts the object out; false with an exception thrown.
static int cut_out(JNIEnv* env, const blend_image* source, const blend_image* mask,
                   uint8_t* icon_data) {
    blend_image icon = image_of(0, 0, icon_data);
    if (vorn_create_rgb_icon(source, mask, &icon, 1.0f) == 0) return 1;
    throw_java(env, "java/lang/OutOfMemoryError",
               "no memory to cut an object out of %d x %d pixels", mask->width, mask->height);
    return 0;
}

// Cuts an object of one pixel or more out of an array; false with an exception thrown.
static int cut_out_ints(JNIEnv* env, jintArray source, const blend_image* mask, jintArray icon,
                        size_2d size) {
    const jsize count = pixels_of(size);
    blend_image frame = image_of(mask->width, mask->height, NULL);
    frame.data = load_pixels(env, source, mask->width * mask->height);
    if (frame.data == NULL) return 0;
    uint8_t* cut = alloc_frame(env, count, 4);
    const int done = cut != NULL && cut_out(env, &frame, mask, cut);
    if (done) store_pixels(env, cut, icon, count);
    free(cut);
    free(frame.data);
    return done;
}

static jintArray create_icon_ints(JNIEnv* env, jclass type, jintArray source, jbyteArray mask,
                                  jint width, jint height, jintArray icon, jint icon_ints) {
    (void)type;
    blend_image image = image_of(width, height, copy_mask(env, mask, width * height));
    if (image.data == NULL) return NULL;
    const size_2d size = size_of_icon(&image);
    const int done = icon_has_room(env, size, icon_ints, 1, "ints") &&
                     (pixels_of(size) == 0 || cut_out_ints(env, source, &image, icon, size));
    free(image.data);
    return done ? size_result(env, size) : NULL;
}

static jintArray create_icon_buffers(JNIEnv* env, jclass type, jobject source, jint source_offset,
                                     jbyteArray mask, jint width, jint height, jobject icon,
                                     jint icon_offset, jint icon_bytes) {
    (void)type;
    const blend_image frame = image_of(width, height, bytes_of(env, source, source_offset));
    uint8_t* const cut = bytes_of(env, icon, icon_offset);
    blend_image image = image_of(width, height, copy_mask(env, mask, width * height));
    if (image.data == NULL) return NULL;
    const size_2d size = size_of_icon(&image);
    int done = icon_has_room(env, size, icon_bytes, 4, "bytes");
    if (done && ranges_overlap(cut, (size_t)pixels_of(size) * 4, frame.data,
                               (size_t)width * (size_t)height * 4)) {
        throw_overlap(env, "icon", cut, "source", frame.data);
        done = 0;
    }
    done = done && (pixels_of(size) == 0 || cut_out(env, &frame, &image, cut));
    free(image.data);
    return done ? size_result(env, size) : NULL;
}

// Where an object is to stand.
typedef struct placement {
    jint center_x, center_y;
    jfloat zoom, angle;
} placement;

static jint verdict_on(const blend_image* mask, const placement* at) {
    return vorn_verify_icon_pos(mask->data, mask->width, mask->height, 0, 0, at->center_x,
                                at->center_y, at->zoom, at->angle);
}

static jint blend_at(const blend_image* icon, const blend_image* destination,
                     const blend_image* mask, blend_image* output, const placement* at) {
    return vorn_imageBlending(icon, destination, mask, output, 0, 0, at->center_x, at->center_y,
                              at->zoom, at->angle);
}

static jint verify_position(JNIEnv* env, jclass type, jbyteArray mask, jint width, jint height,
                            jint center_x, jint center_y, jfloat zoom, jfloat angle) {
    (void)type;
    const placement at = {center_x, center_y, zoom, angle};
    const blend_image image = image_of(width, height, copy_mask(env, mask, width * height));
    if (image.data == NULL) return -1;
    const jint verdict = verdict_on(&image, &at);
    free(image.data);
    return verdict;
}

// A blend that the library refuses for its size keeps memory, so the question comes first. What the
// check lets pass is never larger than the frame. The destination's copy serves as the output.
static jint blend_ints(JNIEnv* env, jclass type, jintArray icon, jintArray destination,
                       jbyteArray mask, jintArray output, jint width, jint height, jint center_x,
                       jint center_y, jfloat zoom, jfloat angle) {
    (void)type;
    const placement at = {center_x, center_y, zoom, angle};
    const jsize count = width * height;
    jint status = -1;
    blend_image mask_image = image_of(width, height, copy_mask(env, mask, count));
    blend_image icon_image = image_of(width, height, NULL);
    blend_image output_image = image_of(width, height, NULL);
    if (mask_image.data != NULL && verdict_on(&mask_image, &at) >= 0)
        icon_image.data = load_pixels(env, icon, count);
    if (icon_image.data != NULL) output_image.data = load_pixels(env, destination, count);
    if (output_image.data != NULL) {
        status = blend_at(&icon_image, &output_image, &mask_image, &output_image, &at);
        if (status == 0) store_pixels(env, output_image.data, output, count);
    }
    free(output_image.data);
    free(icon_image.data);
    free(mask_image.data);
    return status;
}

// An output may be the very frame that is read; any other overlap would be read half written.
static int output_is_apart(JNIEnv* env, const blend_image* output, const char* name,
                           const blend_image* frame) {
    const size_t bytes = (size_t)frame->width * (size_t)frame->height * 4;
    if (output->data == frame->data) return 1;
    if (!ranges_overlap(output->data, bytes, frame->data, bytes)) return 1;
    throw_overlap(env, "output", output->data, name, frame->data);
    return 0;
}

static jint blend_buffers(JNIEnv* env, jclass type, jobject icon, jint icon_offset,
                          jobject destination, jint destination_offset, jbyteArray mask,
                          jobject output, jint output_offset, jint width, jint height,
                          jint center_x, jint center_y, jfloat zoom, jfloat angle) {
    (void)type;
    const blend_image icon_image = image_of(width, height, bytes_of(env, icon, icon_offset));
    const blend_image destination_image =
        image_of(width, height, bytes_of(env, destination, destination_offset));
    blend_image output_image = image_of(width, height, bytes_of(env, output, output_offset));
    if (!output_is_apart(env, &output_image, "icon", &icon_image) ||
        !output_is_apart(env, &output_image, "destination", &destination_image)) {
        return -1;
    }
    blend_image mask_image = image_of(width, height, copy_mask(env, mask, width * height));
    if (mask_image.data == NULL) return -1;
    const placement at = {center_x, center_y, zoom, angle};
    jint status = verdict_on(&mask_image, &at);
    if (status >= 0)
        status = blend_at(&icon_image, &destination_image, &mask_image, &output_image, &at);
    free(mask_image.data);
    return status;
}

#define BUFFER "Ljava/nio/ByteBuffer;"

typedef void function(void);

// ISO C turns no function pointer into an untyped one but by way of an integer.
static JNINativeMethod method(const char* name, const char* signature, function* code) {
    const JNINativeMethod entry = {(char*)(uintptr_t)name, (char*)(uintptr_t)signature,
                                   (void*)(uintptr_t)code};
    return entry;
}

JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void* reserved) {
    (void)reserved;
    const JNINativeMethod methods[] = {
        method("nativeIconSize", "([BII)[I", (function*)icon_size),
        method("nativeCreateIconInts", "([I[BII[II)[I", (function*)create_icon_ints),
        method("nativeCreateIconBuffers", "(" BUFFER "I[BII" BUFFER "II)[I",
               (function*)create_icon_buffers),
        method("nativeVerifyPosition", "([BIIIIFF)I", (function*)verify_position),
        method("nativeBlendInts", "([I[I[B[IIIIIFF)I", (function*)blend_ints),
        method("nativeBlendBuffers", "(" BUFFER "I" BUFFER "I[B" BUFFER "IIIIIFF)I",
               (function*)blend_buffers),
        method("nativePrepareBox", "(" BUFFER "I[BII)[I", (function*)prepare_box),
        method("nativePrepare", "(" BUFFER "I[BIIZF" BUFFER "II)[I", (function*)prepare_object),
        method("nativePaste", "(" BUFFER "III" BUFFER "IIIII)Z", (function*)paste_object),
    };
    JNIEnv* env = NULL;
    if ((*vm)->GetEnv(vm, (void**)&env, JNI_VERSION_1_6) != JNI_OK) return JNI_ERR;
    const jclass type = (*env)->FindClass(env, "org/imageblend/ImageBlend");
    if (type == NULL) return JNI_ERR;
    const jint count = (jint)(sizeof methods / sizeof methods[0]);
    return (*env)->RegisterNatives(env, type, methods, count) == 0 ? JNI_VERSION_1_6 : JNI_ERR;
}

// SPDX-License-Identifier: Apache-2.0
/* The native methods that make an object ready and paste it. As in imageblend_jni.c the class has
 * checked the arguments, but for the room for an object and for memory that is shared. */
#ifndef IMAGEBLEND_JNI_PREPARE_H
#define IMAGEBLEND_JNI_PREPARE_H

#include <jni.h>

/* {left, top, width, height}, or null with an exception thrown. `mask` may be null. */
jintArray prepare_box(JNIEnv* env, jclass type, jobject source, jint source_offset, jbyteArray mask,
                      jint width, jint height);

/* Writes the object; its box like prepare_box. */
jintArray prepare_object(JNIEnv* env, jclass type, jobject source, jint source_offset,
                         jbyteArray mask, jint width, jint height, jboolean fit, jfloat grow,
                         jobject object, jint object_offset, jint object_bytes);

/* False when nothing of the object lies in the picture, or an exception is thrown. */
jboolean paste_object(JNIEnv* env, jclass type, jobject object, jint object_offset,
                      jint object_width, jint object_height, jobject picture, jint picture_offset,
                      jint width, jint height, jint left, jint top);

#endif /* IMAGEBLEND_JNI_PREPARE_H */

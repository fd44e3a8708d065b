// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import java.nio.Buffer;
import java.nio.ByteBuffer;

/**
 * Pastes an object that was cut out of one picture into another and hides the join.
 *
 * <p>The pictures of a call are frames of one size, width x height, as {@code int[]} or as direct
 * buffers:
 *
 * <ul>
 *   <li>{@code int[]}: one pixel an int, 0xAARRGGBB without premultiplied alpha, as Android's
 *       Bitmap.getPixels gives them. They are copied in and out.
 *   <li>direct {@code ByteBuffer}: four bytes a pixel, A, R, G, B in memory, from the buffer's
 *       position to its limit, which stay as they are. They are used where they are. Position and
 *       limit are read once, when the call begins.
 * </ul>
 *
 * <p>The mask has one byte a pixel: 0 is outside the object, anything else inside, 255 shows the
 * object alone. Alpha is never read, except by {@link #prepare} and {@link #paste}. Frames have
 * exactly width * height pixels. x runs to the right and y downwards from the top left pixel; a
 * positive angle (in degrees) turns the object counter-clockwise. An argument that is null or of a
 * wrong size raises IllegalArgumentException.
 *
 * <p>All methods may be called from any thread, beside any other call.
 */
public final class ImageBlend {
    /** The object fits with full margins. */
    public static final int FITS = 0;

    /** The object fits, but a margin touches the border of the frame: a seam may show there. */
    public static final int SEAM = 1;

    /** The object cannot be placed. */
    public static final int REFUSED = -1;

    static { System.loadLibrary("imageblend_jni"); }

    private ImageBlend() {}

    /**
     * Measures the object.
     *
     * @return {width, height} of the box around the mask's non-zero bytes; {2 - width, 2 - height},
     *     mostly below 1, when there are none
     */
    public static int[] iconSize(byte[] mask, int width, int height) {
        checkMask(mask, width, height);
        return nativeIconSize(mask, width, height);
    }

    /**
     * Cuts the object out of {@code source}: pixels inside the mask become opaque, the others 0.
     *
     * @param icon receives the pixels, row after row from its start; may be larger than the object
     * @return {width, height} of the object, as {@link #iconSize} gives it
     */
    public static int[] createIcon(int[] source, byte[] mask, int width, int height, int[] icon) {
        checkMask(mask, width, height);
        checkFrame("source", source, width, height);
        if (icon == null) throw nullArgument("icon", "an array for the object's pixels");
        return nativeCreateIconInts(source, mask, width, height, icon, icon.length);
    }

    /**
     * Cuts the object out of a direct buffer.
     *
     * @param icon receives the pixels from its position on; must not overlap {@code source}
     * @see #createIcon(int[], byte[], int, int, int[])
     */
    public static int[] createIcon(
        ByteBuffer source, byte[] mask, int width, int height, ByteBuffer icon) {
        checkMask(mask, width, height);
        final int sourceOffset = frameOffset("source", source, width, height);
        if (icon == null) throw nullArgument("icon", "a direct buffer for the object's pixels");
        checkDirect("icon", icon);
        checkWritable("icon", icon);
        final int iconOffset = icon.position();
        final int iconBytes = icon.limit() - iconOffset;
        return nativeCreateIconBuffers(
            source, sourceOffset, mask, width, height, icon, iconOffset, iconBytes);
    }

    /**
     * Tells whether the object would fit with its centre at (centerX, centerY), without blending.
     *
     * @return {@link #FITS}, {@link #SEAM} or {@link #REFUSED}
     */
    public static int verifyPosition(
        byte[] mask, int width, int height, int centerX, int centerY, float zoom, float angle) {
        checkMask(mask, width, height);
        return nativeVerifyPosition(mask, width, height, centerX, centerY, zoom, angle);
    }

    /**
     * Blends the object of {@code icon} into {@code destination}.
     *
     * @param output receives the destination with the object; the pixels of the rectangle around
     *     the object get alpha 255, the others keep the destination's. May be the same array as
     *     {@code destination} or {@code icon}
     * @return false when the placement is refused, as {@link #verifyPosition} tells, which is asked
     *     first: the zoomed object is larger than the frame, or the library ran out of memory (its
     *     log tells which). The output is untouched then, and all memory of the call is given back
     */
    public static boolean blend(int[] icon, int[] destination, byte[] mask, int[] output, int width,
        int height, int centerX, int centerY, float zoom, float angle) {
        checkMask(mask, width, height);
        checkFrame("icon", icon, width, height);
        checkFrame("destination", destination, width, height);
        checkFrame("output", output, width, height);
        return nativeBlendInts(icon, destination, mask, output, width, height, centerX, centerY,
                   zoom, angle)
            == 0;
    }

    /**
     * Blends in direct buffers, without a copy.
     *
     * @param output as above; where it is not the very memory of {@code destination} or
     *     {@code icon}, it must not overlap them
     * @return as above, but a blend without memory may have copied the destination to the output
     * @see #blend(int[], int[], byte[], int[], int, int, int, int, float, float)
     */
    public static boolean blend(ByteBuffer icon, ByteBuffer destination, byte[] mask,
        ByteBuffer output, int width, int height, int centerX, int centerY, float zoom,
        float angle) {
        checkMask(mask, width, height);
        final int iconOffset = frameOffset("icon", icon, width, height);
        final int destinationOffset = frameOffset("destination", destination, width, height);
        final int outputOffset = frameOffset("output", output, width, height);
        checkWritable("output", output);
        return nativeBlendBuffers(icon, iconOffset, destination, destinationOffset, mask, output,
                   outputOffset, width, height, centerX, centerY, zoom, angle)
            == 0;
    }

    /**
     * Finds the part of a picture that {@link #prepare} makes the object from: the object with some
     * room around it.
     *
     * @param source direct buffer
     * @param mask null: the alpha of {@code source} is the mask
     * @return {left, top, width, height}; the width is 0 when there is no object
     */
    public static int[] prepareBox(ByteBuffer source, byte[] mask, int width, int height) {
        checkOptionalMask(mask, width, height);
        final int offset = frameOffset("source", source, width, height);
        return nativePrepareBox(source, offset, mask, width, height);
    }

    /**
     * Makes the object ready to be pasted: a picture of its own with soft alpha, with its outline
     * where {@code source} shows it and with colours that nothing of its old surroundings is left
     * in. Alpha is read and written here, colours are not multiplied by it; those of a source that
     * are, as cut-outs often have them, are divided. The object may be scaled and turned before it
     * is pasted, with its colours weighed by alpha, as Android's Canvas does it.
     *
     * @param source direct buffer
     * @param mask null: the alpha of {@code source} is the mask. Values between 0 and 255 are
     *     partly inside
     * @param fit the outline may be moved to where the colours of {@code source} change
     * @param grow then it moves outwards by so many pixels, inwards when negative; -16 to 16
     * @param object direct buffer, receives the pixels from its position on; may be larger than
     *     needed, must not overlap {@code source}
     * @return where they lie in {@code source}, as {@link #prepareBox} gives it; nothing is written
     *     when there is no object
     */
    public static int[] prepare(ByteBuffer source, byte[] mask, int width, int height, boolean fit,
        float grow, ByteBuffer object) {
        checkOptionalMask(mask, width, height);
        final int sourceOffset = frameOffset("source", source, width, height);
        if (!(Math.abs(grow) <= 16))
            throw new IllegalArgumentException("grow is " + grow + ", must be -16 .. 16");
        if (object == null) throw nullArgument("object", "a direct buffer for the object's pixels");
        checkDirect("object", object);
        checkWritable("object", object);
        final int objectOffset = object.position();
        final int objectBytes = object.limit() - objectOffset;
        return nativePrepare(source, sourceOffset, mask, width, height, fit, grow, object,
            objectOffset, objectBytes);
    }

    /**
     * Pastes a prepared object into a picture, so that no edge shows and nothing but the object
     * changes. It may lie across the picture's border and be larger than the picture.
     *
     * @param object direct buffer with exactly objectWidth * objectHeight pixels
     * @param picture direct buffer, in which the object appears; must not overlap {@code object}. A
     *     pixel's alpha becomes that of both
     * @param left where the object's top left pixel stands in the picture
     * @return false when nothing of the object lies in the picture, which is untouched then
     */
    public static boolean paste(ByteBuffer object, int objectWidth, int objectHeight,
        ByteBuffer picture, int width, int height, int left, int top) {
        checkSides(objectWidth, objectHeight);
        checkSides(width, height);
        final int objectOffset = frameOffset("object", object, objectWidth, objectHeight);
        final int pictureOffset = frameOffset("picture", picture, width, height);
        checkWritable("picture", picture);
        return nativePaste(object, objectOffset, objectWidth, objectHeight, picture, pictureOffset,
            width, height, left, top);
    }

    private static void checkOptionalMask(byte[] mask, int width, int height) {
        if (mask == null) {
            checkSides(width, height);
        } else {
            checkMask(mask, width, height);
        }
    }

    private static void checkSides(int width, int height) {
        if (width < 1) throw new IllegalArgumentException("width is " + width + ", must be >= 1");
        if (height < 1)
            throw new IllegalArgumentException("height is " + height + ", must be >= 1");
    }

    // Every method checks the mask first, and with it that the frame has pixels.
    private static void checkMask(byte[] mask, int width, int height) {
        checkSides(width, height);
        final String needs = frameOf("bytes", 1, width, height);
        if (mask == null) throw nullArgument("mask", needs);
        checkLength("mask", mask.length, "bytes", (long) width * height, needs);
    }

    private static void checkFrame(String name, int[] frame, int width, int height) {
        final String needs = frameOf("ints", 1, width, height);
        if (frame == null) throw nullArgument(name, needs);
        checkLength(name, frame.length, "ints", (long) width * height, needs);
    }

    // Where the frame begins. Another thread may move the buffer's position and limit at any time,
    // so what was checked is what is used: no limit is ever beyond the buffer's memory.
    private static int frameOffset(String name, ByteBuffer frame, int width, int height) {
        final String needs = frameOf("bytes", 4, width, height);
        if (frame == null) throw nullArgument(name, needs);
        checkDirect(name, frame);
        final int begin = frame.position();
        final int end = frame.limit();
        checkLength(name, end - begin, "bytes", 4L * width * height, needs);
        return begin;
    }

    private static void checkDirect(String name, Buffer buffer) {
        if (buffer.isDirect()) return;
        throw new IllegalArgumentException(name + " is a heap buffer, must be a direct one");
    }

    private static void checkWritable(String name, Buffer buffer) {
        if (!buffer.isReadOnly()) return;
        throw new IllegalArgumentException(name + " is a read-only buffer, must be writable");
    }

    private static void checkLength(String name, int has, String unit, long count, String needs) {
        if (has == count) return;
        throw new IllegalArgumentException(
            name + " has " + has + " " + unit + ", must have " + needs);
    }

    private static IllegalArgumentException nullArgument(String name, String needs) {
        return new IllegalArgumentException(name + " is null, must have " + needs);
    }

    private static String frameOf(String unit, int bytesPerPixel, int width, int height) {
        final long count = (long) bytesPerPixel * width * height;
        return count + " " + unit + " for " + width + " x " + height + " pixels";
    }

    private static native int[] nativeIconSize(byte[] mask, int width, int height);

    private static native int[] nativeCreateIconInts(
        int[] source, byte[] mask, int width, int height, int[] icon, int iconInts);

    private static native int[] nativeCreateIconBuffers(ByteBuffer source, int sourceOffset,
        byte[] mask, int width, int height, ByteBuffer icon, int iconOffset, int iconBytes);

    private static native int nativeVerifyPosition(
        byte[] mask, int width, int height, int centerX, int centerY, float zoom, float angle);

    private static native int nativeBlendInts(int[] icon, int[] destination, byte[] mask,
        int[] output, int width, int height, int centerX, int centerY, float zoom, float angle);

    private static native int nativeBlendBuffers(ByteBuffer icon, int iconOffset,
        ByteBuffer destination, int destinationOffset, byte[] mask, ByteBuffer output,
        int outputOffset, int width, int height, int centerX, int centerY, float zoom, float angle);

    private static native int[] nativePrepareBox(
        ByteBuffer source, int sourceOffset, byte[] mask, int width, int height);

    private static native int[] nativePrepare(ByteBuffer source, int sourceOffset, byte[] mask,
        int width, int height, boolean fit, float grow, ByteBuffer object, int objectOffset,
        int objectBytes);

    private static native boolean nativePaste(ByteBuffer object, int objectOffset, int objectWidth,
        int objectHeight, ByteBuffer picture, int pictureOffset, int width, int height, int left,
        int top);
}

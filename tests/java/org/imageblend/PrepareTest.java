// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import static org.imageblend.Frames.*;
import static org.junit.Assert.*;

import java.nio.ByteBuffer;
import java.util.Arrays;
import org.junit.Test;
import org.junit.function.ThrowingRunnable;

/** Objects that are prepared and pasted. */
public class PrepareTest {
    private static final int COLOUR = 0x1E90D2;

    /** The object in one colour on another, with its mask as alpha where it is asked for. */
    private static int[] source(boolean ownAlpha) {
        final int[] pixels = new int[PIXELS];
        for (int i = 0; i < PIXELS; i++) {
            final int inside = MASK[i] != 0 ? COLOUR : 0xE0D0C0;
            pixels[i] = ownAlpha ? MASK[i] != 0 ? 0xFF000000 | COLOUR : 0 : inside;
        }
        return pixels;
    }

    /** Prepares into the middle of a larger buffer and returns that part. */
    private static ByteBuffer prepare(boolean ownAlpha, int[] box) {
        final byte[] mask = ownAlpha ? null : MASK;
        final ByteBuffer source = bytesOf(source(ownAlpha));
        final int[] found = ImageBlend.prepareBox(source, mask, WIDTH, HEIGHT);
        final int size = 4 * found[2] * found[3];
        final ByteBuffer all = bytes(size + 8);
        all.putInt(0, 7).putInt(size + 4, 7).position(4);
        System.arraycopy(
            ImageBlend.prepare(source, mask, WIDTH, HEIGHT, true, 0, all), 0, box, 0, 4);
        assertArrayEquals(found, box);
        assertEquals(7, all.getInt(0));
        assertEquals(7, all.getInt(size + 4));
        assertArrayEquals(source(ownAlpha), pixelsOf(source));
        all.limit(4 + size);
        return all;
    }

    @Test
    public void theObjectAloneComesIn() {
        for (boolean ownAlpha : new boolean[] {false, true}) {
            final int[] box = new int[4];
            final ByteBuffer object = prepare(ownAlpha, box);
            final int[] before = noise(5);
            final ByteBuffer all = bytes(BYTES + 8);
            all.position(4).limit(4 + BYTES);
            all.duplicate().asIntBuffer().put(before);
            final int dx = 43;
            final int dy = -20;
            assertTrue(ImageBlend.paste(
                object, box[2], box[3], all, WIDTH, HEIGHT, box[0] + dx, box[1] + dy));
            all.limit(BYTES + 8);
            assertEquals(0, all.getInt(0));
            assertEquals(0, all.getInt(BYTES + 4));
            for (int y = 0; y < HEIGHT; y++) {
                for (int x = 0; x < WIDTH; x++) {
                    final int pixel = all.getInt(4 + 4 * (y * WIDTH + x));
                    final int u = x - dx - ICON_X;
                    final int v = y - dy - ICON_Y;
                    if (u < -2 || v < -2 || u > ICON_WIDTH + 1 || v > ICON_HEIGHT + 1) {
                        assertEquals(before[y * WIDTH + x], pixel);
                    } else if (u > 12 && v > 12 && u < ICON_WIDTH - 3 && v < ICON_HEIGHT - 3) {
                        for (int shift = 0; shift < 24; shift += 8)
                            assertEquals(COLOUR >>> shift & 255, pixel >>> shift & 255, 8);
                        assertEquals(255, pixel >>> 24);
                    }
                }
            }
        }
    }

    @Test
    public void bordersAndBeyond() {
        final int[] box = new int[4];
        final ByteBuffer object = prepare(true, box);
        final ByteBuffer picture = bytesOf(noise(5));
        assertTrue(ImageBlend.paste(
            object, box[2], box[3], picture, WIDTH, HEIGHT, WIDTH - box[2] / 2, -box[3] / 2));
        final int[] pasted = pixelsOf(picture);
        assertFalse(Arrays.equals(noise(5), pasted));
        for (int left : new int[] {WIDTH, Integer.MIN_VALUE, Integer.MAX_VALUE})
            assertFalse(ImageBlend.paste(object, box[2], box[3], picture, WIDTH, HEIGHT, left, 0));
        assertArrayEquals(pasted, pixelsOf(picture));
        // Larger than the picture.
        assertTrue(
            ImageBlend.paste(object, box[2], box[3], bytes(4 * 9), 3, 3, -box[2] / 2, -box[3] / 2));
    }

    @Test
    public void withoutAnObject() {
        final ByteBuffer source = bytesOf(source(false));
        final int[] none = {0, 0, 0, 0};
        assertArrayEquals(none, ImageBlend.prepareBox(source, null, WIDTH, HEIGHT));
        assertArrayEquals(
            none, ImageBlend.prepare(source, new byte[PIXELS], WIDTH, HEIGHT, true, 0, bytes(0)));
    }

    private static void expect(String pattern, ThrowingRunnable call) {
        final String message = assertThrows(IllegalArgumentException.class, call).getMessage();
        assertTrue(message, message.matches(pattern));
    }

    private static int[] prepare(byte[] mask, float grow, ByteBuffer from, ByteBuffer to) {
        return ImageBlend.prepare(from, mask, WIDTH, HEIGHT, true, grow, to);
    }

    @Test
    public void wrongArguments() {
        final ByteBuffer frame = bytesOf(source(false));
        final ByteBuffer other = bytes(BYTES);
        final String needs = ", must have 76800 bytes for 160 x 120 pixels";
        expect("source is null" + needs, () -> ImageBlend.prepareBox(null, MASK, WIDTH, HEIGHT));
        expect("mask has 1 bytes, .*", () -> prepare(new byte[1], 0, frame, other));
        expect("grow is NaN, .*", () -> prepare(MASK, Float.NaN, frame, other));
        expect("object is a heap buffer, .*",
            () -> prepare(MASK, 0, frame, ByteBuffer.allocate(BYTES)));
        expect("object is a read-only buffer, .*",
            () -> prepare(MASK, 0, frame, other.asReadOnlyBuffer()));
        expect(
            "object has 99 bytes, must have at least .*", () -> prepare(MASK, 0, frame, bytes(99)));
        expect("object at .* overlaps source.*", () -> prepare(MASK, 0, frame, frame));
        expect("height is 0, .*", () -> ImageBlend.paste(frame, 1, 0, other, 1, 1, 0, 0));
        expect("object has 76800 bytes, must have 4 bytes for 1 x 1 pixels",
            () -> ImageBlend.paste(frame, 1, 1, other, WIDTH, HEIGHT, 0, 0));
        expect("picture is a read-only buffer, .*",
            ()
                -> ImageBlend.paste(
                    frame, WIDTH, HEIGHT, other.asReadOnlyBuffer(), WIDTH, HEIGHT, 0, 0));
        expect("picture at .* overlaps object.*",
            () -> ImageBlend.paste(frame, WIDTH, HEIGHT, frame, WIDTH, HEIGHT, 0, 0));
    }
}

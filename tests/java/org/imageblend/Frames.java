// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.Random;

/** Frames and blends for the tests: 160 x 120 with an object of 50 x 40 at (30, 25). */
final class Frames {
    static final int WIDTH = 160;
    static final int HEIGHT = 120;
    static final int PIXELS = WIDTH * HEIGHT;
    static final int BYTES = PIXELS * 4;
    static final int ICON_WIDTH = 50;
    static final int ICON_HEIGHT = 40;
    static final int ICON_X = 30;
    static final int ICON_Y = 25;
    static final byte[] MASK = mask();

    private Frames() {}

    static int[] noise(long seed) { return new Random(seed).ints(PIXELS).toArray(); }

    static int[] flat(int pixel) {
        final int[] frame = new int[PIXELS];
        Arrays.fill(frame, pixel);
        return frame;
    }

    /** A rectangle without one of its corners. */
    private static byte[] mask() {
        final byte[] mask = new byte[PIXELS];
        for (int y = 0; y < ICON_HEIGHT; y++) {
            for (int x = 0; x < ICON_WIDTH; x++)
                mask[(ICON_Y + y) * WIDTH + ICON_X + x] = (byte) (x + y < 10 ? 0 : 255);
        }
        return mask;
    }

    static ByteBuffer bytes(int capacity) { return ByteBuffer.allocateDirect(capacity); }

    /** The pixels as A, R, G, B bytes of a direct buffer. */
    static ByteBuffer bytesOf(int[] pixels) {
        final ByteBuffer buffer = bytes(pixels.length * 4);
        buffer.asIntBuffer().put(pixels);
        return buffer;
    }

    static int[] pixelsOf(ByteBuffer buffer) {
        final int[] pixels = new int[buffer.remaining() / 4];
        buffer.asIntBuffer().get(pixels);
        return pixels;
    }

    static boolean blend(int[] icon, int[] destination, int[] output) {
        return ImageBlend.blend(icon, destination, MASK, output, WIDTH, HEIGHT, 85, 62, 1.25f, 30);
    }

    static boolean blend(ByteBuffer icon, ByteBuffer destination, ByteBuffer output) {
        return ImageBlend.blend(icon, destination, MASK, output, WIDTH, HEIGHT, 85, 62, 1.25f, 30);
    }
}

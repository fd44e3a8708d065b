package org.imageblend;

import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.Random;

/** Frames and masks for the tests: 160 x 120 with an object of 50 x 40 at (30, 25). */
final class Frames {
    static final int WIDTH = 160;
    static final int HEIGHT = 120;
    static final int PIXELS = WIDTH * HEIGHT;
    static final int ICON_WIDTH = 50;
    static final int ICON_HEIGHT = 40;
    static final int ICON_X = 30;
    static final int ICON_Y = 25;

    private Frames() {}

    static int[] noise(long seed) { return new Random(seed).ints(PIXELS).toArray(); }

    static int[] flat(int pixel) {
        final int[] frame = new int[PIXELS];
        Arrays.fill(frame, pixel);
        return frame;
    }

    /** An ellipse that touches all four sides of the object's box. */
    static byte[] mask() {
        final byte[] mask = new byte[PIXELS];
        for (int y = 0; y < ICON_HEIGHT; y++) {
            for (int x = 0; x < ICON_WIDTH; x++) {
                final double across = (x + 0.5) / ICON_WIDTH * 2 - 1;
                final double down = (y + 0.5) / ICON_HEIGHT * 2 - 1;
                final boolean inside = across * across + down * down < 1;
                if (inside) mask[(ICON_Y + y) * WIDTH + ICON_X + x] = (byte) 255;
            }
        }
        return mask;
    }

    static ByteBuffer bytes(int capacity) { return ByteBuffer.allocateDirect(capacity); }

    /** The pixels as A, R, G, B bytes of a direct buffer. */
    static ByteBuffer bytesOf(int[] pixels) {
        final ByteBuffer buffer = bytes(pixels.length * 4);
        for (int i = 0; i < pixels.length; i++)
            buffer.putInt(4 * i, pixels[i]);
        return buffer;
    }

    static int[] pixelsOf(ByteBuffer buffer) {
        final int[] pixels = new int[buffer.remaining() / 4];
        for (int i = 0; i < pixels.length; i++)
            pixels[i] = buffer.getInt(buffer.position() + 4 * i);
        return pixels;
    }
}

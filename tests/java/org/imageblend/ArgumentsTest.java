// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import static org.imageblend.Frames.*;
import static org.imageblend.ImageBlend.createIcon;
import static org.imageblend.ImageBlend.iconSize;
import static org.imageblend.ImageBlend.verifyPosition;
import static org.junit.Assert.*;

import java.nio.ByteBuffer;
import org.junit.Test;
import org.junit.function.ThrowingRunnable;

/** Wrong arguments: the message names the argument, what it has and what it must have. */
public class ArgumentsTest {
    private static final String INTS = "must have 19200 ints for 160 x 120 pixels";
    private static final String COLOUR_BYTES = "must have 76800 bytes for 160 x 120 pixels";
    private static final String MASK_BYTES = "must have 19200 bytes for 160 x 120 pixels";

    private final int[] frame = new int[PIXELS];
    private final ByteBuffer buffer = bytes(BYTES);

    private static void expect(String pattern, ThrowingRunnable call) {
        final String message = assertThrows(IllegalArgumentException.class, call).getMessage();
        assertTrue(message, message.matches(pattern));
    }

    @Test
    public void arrays() {
        expect("icon is null, " + INTS, () -> blend(null, frame, frame));
        expect(
            "destination has 19199 ints, " + INTS, () -> blend(frame, new int[PIXELS - 1], frame));
        expect("output has 19201 ints, " + INTS, () -> blend(frame, frame, new int[PIXELS + 1]));
        expect(
            "source has 5 ints, " + INTS, () -> createIcon(new int[5], MASK, WIDTH, HEIGHT, frame));
        expect("icon is null, must have an array for the object's pixels",
            () -> createIcon(frame, MASK, WIDTH, HEIGHT, null));
        expect("icon has 1999 ints, must have at least 2000 for 50 x 40 pixels",
            () -> createIcon(frame, MASK, WIDTH, HEIGHT, new int[1999]));
    }

    @Test
    public void buffers() {
        final ByteBuffer moved = buffer.duplicate();
        moved.position(4);
        expect("icon has 76796 bytes, " + COLOUR_BYTES, () -> blend(moved, buffer, buffer));
        expect("destination is null, " + COLOUR_BYTES, () -> blend(buffer, null, buffer));
        expect("destination is a heap buffer, must be a direct one",
            () -> blend(buffer, ByteBuffer.allocate(BYTES), buffer));
        expect("output is a read-only buffer, must be writable",
            () -> blend(buffer, buffer, buffer.asReadOnlyBuffer()));
        expect("icon has 7999 bytes, must have at least 8000 for 50 x 40 pixels",
            () -> createIcon(buffer, MASK, WIDTH, HEIGHT, bytes(7999)));
    }

    @Test
    public void overlappingBuffers() {
        final ByteBuffer first = bytes(BYTES + 4);
        final ByteBuffer second = first.duplicate();
        first.limit(BYTES);
        second.position(4);
        expect("output at .* overlaps destination.*", () -> blend(buffer, first, second));
        expect("output at .* overlaps icon.*", () -> blend(first, buffer, second));
        expect(
            "icon at .* overlaps source.*", () -> createIcon(first, MASK, WIDTH, HEIGHT, second));
    }

    @Test
    public void masksAndSizes() {
        expect("width is 0, must be >= 1", () -> iconSize(MASK, 0, HEIGHT));
        expect("height is -3, must be >= 1", () -> iconSize(MASK, WIDTH, -3));
        expect("mask is null, " + MASK_BYTES, () -> iconSize(null, WIDTH, HEIGHT));
        // 65536 * 65536 is 0 in 32 bits.
        expect("mask has 0 bytes, must have 4294967296 bytes for 65536 x 65536 pixels",
            () -> iconSize(new byte[0], 65536, 65536));
        final byte[] small = new byte[3];
        final ThrowingRunnable[] calls = {
            ()
                -> iconSize(small, WIDTH, HEIGHT),
            ()
                -> verifyPosition(small, WIDTH, HEIGHT, 80, 60, 1, 0),
            ()
                -> createIcon(frame, small, WIDTH, HEIGHT, frame),
            ()
                -> createIcon(buffer, small, WIDTH, HEIGHT, buffer),
            ()
                -> ImageBlend.blend(frame, frame, small, frame, WIDTH, HEIGHT, 80, 60, 1, 0),
            () -> ImageBlend.blend(buffer, buffer, small, buffer, WIDTH, HEIGHT, 80, 60, 1, 0),
        };
        for (ThrowingRunnable call : calls)
            expect("mask has 3 bytes, " + MASK_BYTES, call);
    }
}

package org.imageblend;

import static org.imageblend.Frames.HEIGHT;
import static org.imageblend.Frames.PIXELS;
import static org.imageblend.Frames.WIDTH;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import java.nio.ByteBuffer;
import org.junit.Test;
import org.junit.function.ThrowingRunnable;

/** Wrong arguments: the message names the argument, what it has and what it must have. */
public class ArgumentsTest {
    private static final String INTS = "must have 19200 ints for 160 x 120 pixels";
    private static final String BYTES = "must have 76800 bytes for 160 x 120 pixels";
    private static final String MASK = "must have 19200 bytes for 160 x 120 pixels";

    private final byte[] mask = Frames.mask();
    private final int[] frame = new int[PIXELS];
    private final ByteBuffer bytes = Frames.bytes(PIXELS * 4);

    private static String message(ThrowingRunnable call) {
        return assertThrows(IllegalArgumentException.class, call).getMessage();
    }

    private String blend(int[] icon, int[] destination, byte[] over, int[] output) {
        return message(
            () -> ImageBlend.blend(icon, destination, over, output, WIDTH, HEIGHT, 80, 60, 1, 0));
    }

    private String blend(ByteBuffer icon, ByteBuffer destination, byte[] over, ByteBuffer output) {
        return message(
            () -> ImageBlend.blend(icon, destination, over, output, WIDTH, HEIGHT, 80, 60, 1, 0));
    }

    @Test
    public void arraysOfABlend() {
        final int[] small = new int[PIXELS - 1];
        final int[] large = new int[PIXELS + 1];
        assertEquals("icon is null, " + INTS, blend(null, frame, mask, frame));
        assertEquals("destination has 19199 ints, " + INTS, blend(frame, small, mask, frame));
        assertEquals("output has 19201 ints, " + INTS, blend(frame, frame, mask, large));
        assertEquals("mask is null, " + MASK, blend(frame, frame, null, frame));
        assertEquals("mask has 3 bytes, " + MASK, blend(frame, frame, new byte[3], frame));
    }

    @Test
    public void buffersOfABlend() {
        final ByteBuffer moved = bytes.duplicate();
        moved.position(4);
        final ByteBuffer heap = ByteBuffer.allocate(PIXELS * 4);
        assertEquals("icon has 76796 bytes, " + BYTES, blend(moved, bytes, mask, bytes));
        assertEquals("destination is null, " + BYTES, blend(bytes, null, mask, bytes));
        assertEquals(
            "destination is a heap buffer, must be a direct one", blend(bytes, heap, mask, bytes));
        assertEquals("output is a read-only buffer, must be writable",
            blend(bytes, bytes, mask, bytes.asReadOnlyBuffer()));
        assertEquals("mask has 0 bytes, " + MASK, blend(bytes, bytes, new byte[0], bytes));
    }

    @Test
    public void overlappingBuffers() {
        final ByteBuffer both = Frames.bytes(PIXELS * 4 + 4);
        final ByteBuffer first = both.duplicate();
        final ByteBuffer second = both.duplicate();
        first.limit(PIXELS * 4);
        second.position(4);
        assertTrue(
            blend(bytes, first, mask, second).matches("output at .* overlaps destination.*"));
        assertTrue(blend(first, bytes, mask, second).matches("output at .* overlaps icon.*"));
        assertTrue(message(() -> ImageBlend.createIcon(first, mask, WIDTH, HEIGHT, second))
                       .matches("icon at .* overlaps source.*"));
    }

    @Test
    public void sizesOfTheFrame() {
        assertEquals(
            "width is 0, must be >= 1", message(() -> ImageBlend.iconSize(new byte[0], 0, HEIGHT)));
        assertEquals("height is -3, must be >= 1",
            message(() -> ImageBlend.verifyPosition(mask, WIDTH, -3, 0, 0, 1, 0)));
        // 65536 * 65536 is 0 in 32 bits, and four times 2^62 is 0 in 64.
        assertEquals("mask has 0 bytes, must have 4294967296 bytes for 65536 x 65536 pixels",
            message(() -> ImageBlend.iconSize(new byte[0], 65536, 65536)));
        assertEquals("mask has 19200 bytes, must have 19360 bytes for 160 x 121 pixels",
            message(() -> ImageBlend.iconSize(mask, WIDTH, HEIGHT + 1)));
    }

    @Test
    public void roomForAnIcon() {
        assertEquals("icon is null, must have an array for the object's pixels",
            message(() -> ImageBlend.createIcon(frame, mask, WIDTH, HEIGHT, null)));
        assertEquals("icon has 1999 ints, must have at least 2000 for 50 x 40 pixels",
            message(() -> ImageBlend.createIcon(frame, mask, WIDTH, HEIGHT, new int[1999])));
        assertEquals("icon has 7999 bytes, must have at least 8000 for 50 x 40 pixels",
            message(() -> ImageBlend.createIcon(bytes, mask, WIDTH, HEIGHT, Frames.bytes(7999))));
        assertEquals("source has 5 ints, " + INTS,
            message(() -> ImageBlend.createIcon(new int[5], mask, WIDTH, HEIGHT, frame)));
    }
}

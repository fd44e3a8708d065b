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

    private String size(int width, int height) {
        return message(() -> ImageBlend.iconSize(mask, width, height));
    }

    private String icon(int[] source, int[] icon) {
        return message(() -> ImageBlend.createIcon(source, mask, WIDTH, HEIGHT, icon));
    }

    private String icon(ByteBuffer source, ByteBuffer icon) {
        return message(() -> ImageBlend.createIcon(source, mask, WIDTH, HEIGHT, icon));
    }

    @Test
    public void messages() {
        final ByteBuffer moved = bytes.duplicate();
        moved.position(4);
        final ByteBuffer heap = ByteBuffer.allocate(PIXELS * 4);
        final String[][] table = {
            {"icon is null, " + INTS, blend(null, frame, mask, frame)},
            {"destination has 19199 ints, " + INTS, blend(frame, new int[PIXELS - 1], mask, frame)},
            {"output has 19201 ints, " + INTS, blend(frame, frame, mask, new int[PIXELS + 1])},
            {"mask is null, " + MASK, blend(frame, frame, null, frame)},
            {"mask has 3 bytes, " + MASK, blend(frame, frame, new byte[3], frame)},
            {"icon has 76796 bytes, " + BYTES, blend(moved, bytes, mask, bytes)},
            {"destination is null, " + BYTES, blend(bytes, null, mask, bytes)},
            {"destination is a heap buffer, must be a direct one", blend(bytes, heap, mask, bytes)},
            {"output is a read-only buffer, must be writable",
                blend(bytes, bytes, mask, bytes.asReadOnlyBuffer())},
            {"mask has 0 bytes, " + MASK, blend(bytes, bytes, new byte[0], bytes)},
            {"width is 0, must be >= 1", size(0, HEIGHT)},
            {"height is -3, must be >= 1",
                message(() -> ImageBlend.verifyPosition(mask, WIDTH, -3, 0, 0, 1, 0))},
            // 65536 * 65536 is 0 in 32 bits, and four times 2^62 is 0 in 64.
            {"mask has 19200 bytes, must have 4294967296 bytes for 65536 x 65536 pixels",
                size(65536, 65536)},
            {"mask has 19200 bytes, must have 19360 bytes for 160 x 121 pixels",
                size(WIDTH, HEIGHT + 1)},
            {"icon is null, must have an array for the object's pixels", icon(frame, null)},
            {"icon has 1999 ints, must have at least 2000 for 50 x 40 pixels",
                icon(frame, new int[1999])},
            {"icon has 7999 bytes, must have at least 8000 for 50 x 40 pixels",
                icon(bytes, Frames.bytes(7999))},
            {"source has 5 ints, " + INTS, icon(new int[5], frame)},
        };
        for (String[] row : table)
            assertEquals(row[0], row[1]);
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
        assertTrue(icon(first, second).matches("icon at .* overlaps source.*"));
    }
}

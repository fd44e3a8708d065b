package org.imageblend;

import static org.imageblend.Frames.HEIGHT;
import static org.imageblend.Frames.ICON_HEIGHT;
import static org.imageblend.Frames.ICON_WIDTH;
import static org.imageblend.Frames.ICON_X;
import static org.imageblend.Frames.ICON_Y;
import static org.imageblend.Frames.PIXELS;
import static org.imageblend.Frames.WIDTH;
import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;

import java.nio.ByteBuffer;
import java.util.Arrays;
import org.junit.Test;

/** The object's size and its cut-out. */
public class IconTest {
    private static final int[] SIZE = {ICON_WIDTH, ICON_HEIGHT};
    private final byte[] mask = Frames.mask();
    private final int[] source = Frames.noise(3);

    private int[] expectedIcon() {
        final int[] icon = new int[ICON_WIDTH * ICON_HEIGHT];
        for (int y = 0; y < ICON_HEIGHT; y++) {
            for (int x = 0; x < ICON_WIDTH; x++) {
                final int at = (ICON_Y + y) * WIDTH + ICON_X + x;
                icon[y * ICON_WIDTH + x] = mask[at] == 0 ? 0 : source[at] | 0xFF000000;
            }
        }
        return icon;
    }

    @Test
    public void theObjectIsCutOutOfArrays() {
        assertArrayEquals(SIZE, ImageBlend.iconSize(mask, WIDTH, HEIGHT));
        final int[] icon = Frames.flat(7);
        assertArrayEquals(SIZE, ImageBlend.createIcon(source, mask, WIDTH, HEIGHT, icon));
        final int count = ICON_WIDTH * ICON_HEIGHT;
        assertArrayEquals(expectedIcon(), Arrays.copyOf(icon, count));
        assertArrayEquals(
            Arrays.copyOf(Frames.flat(7), PIXELS - count), Arrays.copyOfRange(icon, count, PIXELS));
    }

    @Test
    public void theObjectIsCutOutOfBuffers() {
        final int bytes = ICON_WIDTH * ICON_HEIGHT * 4;
        final ByteBuffer icon = Frames.bytes(bytes + 12);
        icon.position(8);
        assertArrayEquals(
            SIZE, ImageBlend.createIcon(Frames.bytesOf(source), mask, WIDTH, HEIGHT, icon));
        assertEquals(0, icon.getInt(4));
        assertEquals(0, icon.getInt(8 + bytes));
        icon.limit(8 + bytes);
        assertArrayEquals(expectedIcon(), Frames.pixelsOf(icon));
    }

    @Test
    public void aMaskWithoutAnObjectCutsNothingOut() {
        final byte[] empty = new byte[PIXELS];
        final int[] none = {2 - WIDTH, 2 - HEIGHT};
        assertArrayEquals(none, ImageBlend.iconSize(empty, WIDTH, HEIGHT));
        assertArrayEquals(none, ImageBlend.createIcon(source, empty, WIDTH, HEIGHT, new int[0]));
        assertArrayEquals(none,
            ImageBlend.createIcon(Frames.bytesOf(source), empty, WIDTH, HEIGHT, Frames.bytes(0)));
        // A box of one negative side.
        assertArrayEquals(
            new int[] {2 - PIXELS, 1}, ImageBlend.createIcon(source, empty, PIXELS, 1, new int[0]));
    }
}

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
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import java.nio.ByteBuffer;
import org.junit.Test;

/** Blends, placements and cut-outs: pixels, orders, shared memory and refusals. */
public class BlendTest {
    private static final int[] SIZE = {ICON_WIDTH, ICON_HEIGHT};
    private final byte[] mask = Frames.mask();
    private final int[] icon = Frames.noise(1);
    private final int[] destination = Frames.noise(2);

    private boolean blend(int[] from, int[] onto, int[] output) {
        return ImageBlend.blend(from, onto, mask, output, WIDTH, HEIGHT, 85, 62, 1.25f, 30);
    }

    private boolean blend(ByteBuffer from, ByteBuffer onto, ByteBuffer output) {
        return ImageBlend.blend(from, onto, mask, output, WIDTH, HEIGHT, 85, 62, 1.25f, 30);
    }

    private int[] expected() {
        final int[] output = new int[PIXELS];
        assertTrue(blend(icon, destination, output));
        return output;
    }

    @Test
    public void channelsAndPlaces() {
        final int[] output = new int[PIXELS];
        assertTrue(ImageBlend.blend(Frames.flat(0x11C86414), Frames.flat(0x220A3C96), mask, output,
            WIDTH, HEIGHT, 100, 50, 1, 0));
        final int pixel = output[50 * WIDTH + 100];
        for (int shift = 0; shift < 32; shift += 8)
            assertEquals(0xFFC86414 >>> shift & 255, pixel >>> shift & 255, 2);
        assertEquals(0x220A3C96, output[0]);
        // Where the object would stand if x and y, or its old and new place, were exchanged.
        assertEquals(0x220A3C96, output[100 * WIDTH + 50]);
        assertEquals(0x220A3C96, output[45 * WIDTH + 40]);
    }

    @Test
    public void buffersAreUsedFromPositionToLimit() {
        final ByteBuffer all = Frames.bytes(3 * PIXELS * 4 + 8);
        final ByteBuffer[] frames = new ByteBuffer[3];
        for (int i = 0; i < 3; i++) {
            frames[i] = all.duplicate();
            frames[i].position(4 + i * PIXELS * 4).limit(4 + (i + 1) * PIXELS * 4);
        }
        frames[0].duplicate().put(Frames.bytesOf(icon));
        frames[1].duplicate().put(Frames.bytesOf(destination));
        assertTrue(blend(frames[0], frames[1], frames[2]));
        assertArrayEquals(expected(), Frames.pixelsOf(frames[2]));
        assertArrayEquals(icon, Frames.pixelsOf(frames[0]));
        assertArrayEquals(destination, Frames.pixelsOf(frames[1]));
        assertEquals(4 + 2 * PIXELS * 4, frames[2].position());
        assertEquals(0, all.getInt(0));
        assertEquals(0, all.getInt(all.capacity() - 4));
    }

    @Test
    public void theOutputMayBeAnInput() {
        final int[] intoIcon = icon.clone();
        final int[] intoDestination = destination.clone();
        assertTrue(blend(intoIcon, destination, intoIcon));
        assertTrue(blend(icon, intoDestination, intoDestination));
        assertArrayEquals(expected(), intoIcon);
        assertArrayEquals(expected(), intoDestination);
        final ByteBuffer iconBytes = Frames.bytesOf(icon);
        final ByteBuffer destinationBytes = Frames.bytesOf(destination);
        assertTrue(blend(iconBytes, destinationBytes, iconBytes));
        assertTrue(blend(Frames.bytesOf(icon), destinationBytes, destinationBytes.duplicate()));
        assertArrayEquals(expected(), Frames.pixelsOf(iconBytes));
        assertArrayEquals(expected(), Frames.pixelsOf(destinationBytes));
    }

    @Test
    public void refusalsAndVerdicts() {
        final int[] output = Frames.flat(7);
        assertFalse(ImageBlend.blend(icon, destination, mask, output, WIDTH, HEIGHT, 80, 60, 5, 0));
        assertArrayEquals(Frames.flat(7), output);
        assertFalse(ImageBlend.blend(Frames.bytesOf(icon), Frames.bytesOf(destination), mask,
            Frames.bytes(PIXELS * 4), WIDTH, HEIGHT, 80, 60, 5, 0));
        final int fits = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 60, 1, 0);
        final int seam = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 27, 60, 1, 0);
        final int turned = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 27, 1, 90);
        final int refused = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 60, 5, 0);
        assertArrayEquals(
            new int[] {ImageBlend.FITS, ImageBlend.SEAM, ImageBlend.SEAM, ImageBlend.REFUSED},
            new int[] {fits, seam, turned, refused});
    }

    @Test
    public void theObjectIsCutOut() {
        final int count = ICON_WIDTH * ICON_HEIGHT;
        final int[] array = Frames.flat(7);
        final ByteBuffer buffer = Frames.bytes(count * 4 + 12);
        buffer.position(8);
        assertArrayEquals(SIZE, ImageBlend.iconSize(mask, WIDTH, HEIGHT));
        assertArrayEquals(SIZE, ImageBlend.createIcon(icon, mask, WIDTH, HEIGHT, array));
        assertArrayEquals(
            SIZE, ImageBlend.createIcon(Frames.bytesOf(icon), mask, WIDTH, HEIGHT, buffer));
        for (int i = 0; i < count; i++) {
            final int at = (ICON_Y + i / ICON_WIDTH) * WIDTH + ICON_X + i % ICON_WIDTH;
            assertEquals(mask[at] == 0 ? 0 : icon[at] | 0xFF000000, array[i]);
            assertEquals(array[i], buffer.getInt(8 + 4 * i));
        }
        assertEquals(7, array[count]);
        assertEquals(0, buffer.getInt(4));
        assertEquals(0, buffer.getInt(8 + 4 * count));
        // Without an object nothing is written; the last box has one negative side.
        final byte[] empty = new byte[PIXELS];
        final int[] none = {2 - WIDTH, 2 - HEIGHT};
        assertArrayEquals(none, ImageBlend.iconSize(empty, WIDTH, HEIGHT));
        assertArrayEquals(none, ImageBlend.createIcon(icon, empty, WIDTH, HEIGHT, new int[0]));
        assertArrayEquals(none,
            ImageBlend.createIcon(Frames.bytesOf(icon), empty, WIDTH, HEIGHT, Frames.bytes(0)));
        assertArrayEquals(
            new int[] {2 - PIXELS, 1}, ImageBlend.createIcon(icon, empty, PIXELS, 1, new int[0]));
    }
}

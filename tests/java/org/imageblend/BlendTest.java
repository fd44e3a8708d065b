// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import static org.imageblend.Frames.*;
import static org.junit.Assert.*;

import java.nio.ByteBuffer;
import org.junit.Test;

/** Blends, placements and cut-outs: pixels, orders, shared memory and refusals. */
public class BlendTest {
    private final int[] icon = noise(1);
    private final int[] destination = noise(2);

    private int[] expected() {
        final int[] output = new int[PIXELS];
        assertTrue(blend(icon, destination, output));
        return output;
    }

    @Test
    public void channelsAndPlaces() {
        final int[] output = new int[PIXELS];
        assertTrue(ImageBlend.blend(
            flat(0x11C86414), flat(0x220A3C96), MASK, output, WIDTH, HEIGHT, 100, 50, 1, 0));
        final int pixel = output[50 * WIDTH + 100];
        for (int shift = 0; shift < 32; shift += 8)
            assertEquals(0xFFC86414 >>> shift & 255, pixel >>> shift & 255, 2);
        // Outside, and where the object would stand if x and y, or its old and new place, were
        // exchanged.
        for (int place : new int[] {0, 100 * WIDTH + 50, 45 * WIDTH + 40})
            assertEquals(0x220A3C96, output[place]);
    }

    @Test
    public void buffersAreUsedFromPositionToLimit() {
        final ByteBuffer all = bytes(3 * BYTES + 8);
        final ByteBuffer[] frames = new ByteBuffer[3];
        for (int i = 0; i < 3; i++) {
            frames[i] = all.duplicate();
            frames[i].position(4 + i * BYTES).limit(4 + (i + 1) * BYTES);
        }
        frames[0].asIntBuffer().put(icon);
        frames[2].asIntBuffer().put(destination);
        assertTrue(blend(frames[0], frames[2], frames[1]));
        assertArrayEquals(icon, pixelsOf(frames[0]));
        assertArrayEquals(expected(), pixelsOf(frames[1]));
        assertArrayEquals(destination, pixelsOf(frames[2]));
        assertEquals(4 + BYTES, frames[1].position());
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
        final ByteBuffer iconBytes = bytesOf(icon);
        final ByteBuffer destinationBytes = bytesOf(destination);
        assertTrue(blend(iconBytes, destinationBytes, iconBytes));
        assertTrue(blend(bytesOf(icon), destinationBytes, destinationBytes.duplicate()));
        assertArrayEquals(expected(), pixelsOf(iconBytes));
        assertArrayEquals(expected(), pixelsOf(destinationBytes));
    }

    @Test
    public void refusals() {
        final int[] output = flat(7);
        assertFalse(ImageBlend.blend(icon, destination, MASK, output, WIDTH, HEIGHT, 80, 60, 5, 0));
        assertArrayEquals(flat(7), output);
        assertFalse(ImageBlend.blend(
            bytesOf(icon), bytesOf(destination), MASK, bytes(BYTES), WIDTH, HEIGHT, 80, 60, 5, 0));
    }

    private static int verify(int x, int y, float zoom, float angle) {
        return ImageBlend.verifyPosition(MASK, WIDTH, HEIGHT, x, y, zoom, angle);
    }

    @Test
    public void verdicts() {
        assertEquals(ImageBlend.FITS, verify(80, 30, 1, 0));
        assertEquals(ImageBlend.SEAM, verify(27, 60, 1, 0));
        assertEquals(ImageBlend.SEAM, verify(80, 30, 1, 90));
        assertEquals(ImageBlend.REFUSED, verify(80, 60, 5, 0));
    }

    @Test
    public void theObjectIsCutOut() {
        final int[] size = {ICON_WIDTH, ICON_HEIGHT};
        final int count = ICON_WIDTH * ICON_HEIGHT;
        final int[] array = flat(7);
        final ByteBuffer buffer = bytes(count * 4 + 12);
        buffer.position(8);
        assertArrayEquals(size, ImageBlend.iconSize(MASK, WIDTH, HEIGHT));
        assertArrayEquals(size, ImageBlend.createIcon(icon, MASK, WIDTH, HEIGHT, array));
        assertArrayEquals(size, ImageBlend.createIcon(bytesOf(icon), MASK, WIDTH, HEIGHT, buffer));
        for (int i = 0; i < count; i++) {
            final int y = ICON_Y + i / ICON_WIDTH;
            final int at = y * WIDTH + ICON_X + i % ICON_WIDTH;
            assertEquals(MASK[at] == 0 ? 0 : icon[at] | 0xFF000000, array[i]);
            assertEquals(array[i], buffer.getInt(8 + 4 * i));
        }
        assertEquals(7, array[count]);
        assertEquals(0, buffer.getInt(4));
        assertEquals(0, buffer.getInt(8 + 4 * count));
    }

    @Test
    public void withoutAnObjectNothingIsCutOut() {
        final byte[] empty = new byte[PIXELS];
        final int[] none = {2 - WIDTH, 2 - HEIGHT};
        assertArrayEquals(none, ImageBlend.iconSize(empty, WIDTH, HEIGHT));
        assertArrayEquals(none, ImageBlend.createIcon(icon, empty, WIDTH, HEIGHT, new int[0]));
        assertArrayEquals(
            none, ImageBlend.createIcon(bytesOf(icon), empty, WIDTH, HEIGHT, bytes(0)));
        // A box with one negative side.
        assertArrayEquals(
            new int[] {2 - PIXELS, 1}, ImageBlend.createIcon(icon, empty, PIXELS, 1, new int[0]));
    }
}

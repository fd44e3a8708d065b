package org.imageblend;

import static org.imageblend.Frames.HEIGHT;
import static org.imageblend.Frames.PIXELS;
import static org.imageblend.Frames.WIDTH;
import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import java.nio.ByteBuffer;
import org.junit.Test;

/** Blends and placements: pixels, orders, shared memory and refusals. */
public class BlendTest {
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

    private static void assertNear(int expected, int pixel) {
        for (int shift = 0; shift < 32; shift += 8) {
            assertEquals(
                Integer.toHexString(pixel), expected >>> shift & 255, pixel >>> shift & 255, 2);
        }
    }

    @Test
    public void channelsKeepTheirPlaces() {
        final int[] output = new int[PIXELS];
        assertTrue(ImageBlend.blend(Frames.flat(0x11C86414), Frames.flat(0x220A3C96), mask, output,
            WIDTH, HEIGHT, 80, 60, 1, 0));
        assertNear(0xFFC86414, output[60 * WIDTH + 80]);
        assertEquals(0x220A3C96, output[0]);
        assertEquals(0x220A3C96, output[PIXELS - 1]);
    }

    @Test
    public void theObjectStandsAtTheCentre() {
        final int[] output = new int[PIXELS];
        final int white = 0xFFFFFFFF;
        final int black = 0xFF000000;
        assertTrue(ImageBlend.blend(
            Frames.flat(white), Frames.flat(black), mask, output, WIDTH, HEIGHT, 100, 50, 1, 0));
        assertNear(white, output[50 * WIDTH + 100]);
        // Where the object would stand if x and y, or its old and new place, were taken for
        // another.
        assertNear(black, output[100 * WIDTH + 50]);
        assertNear(black, output[45 * WIDTH + 55]);
    }

    @Test
    public void buffersAgreeWithArrays() {
        final ByteBuffer output = Frames.bytes(PIXELS * 4);
        assertTrue(blend(Frames.bytesOf(icon), Frames.bytesOf(destination), output));
        assertArrayEquals(expected(), Frames.pixelsOf(output));
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
        assertTrue(blend(intoIcon, destination, intoIcon));
        assertArrayEquals(expected(), intoIcon);
        final int[] intoDestination = destination.clone();
        assertTrue(blend(icon, intoDestination, intoDestination));
        assertArrayEquals(expected(), intoDestination);

        final ByteBuffer iconBytes = Frames.bytesOf(icon);
        assertTrue(blend(iconBytes, Frames.bytesOf(destination), iconBytes));
        assertArrayEquals(expected(), Frames.pixelsOf(iconBytes));
        final ByteBuffer destinationBytes = Frames.bytesOf(destination);
        assertTrue(blend(Frames.bytesOf(icon), destinationBytes, destinationBytes.duplicate()));
        assertArrayEquals(expected(), Frames.pixelsOf(destinationBytes));
    }

    @Test
    public void aRefusedPlacementIsAResult() {
        final int[] output = Frames.flat(7);
        assertFalse(ImageBlend.blend(icon, destination, mask, output, WIDTH, HEIGHT, 80, 60, 5, 0));
        assertArrayEquals(Frames.flat(7), output);
        assertFalse(ImageBlend.blend(Frames.bytesOf(icon), Frames.bytesOf(destination), mask,
            Frames.bytes(PIXELS * 4), WIDTH, HEIGHT, 80, 60, 5, 0));
    }

    @Test
    public void verdictsOfPlacements() {
        final int fits = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 60, 1, 0);
        final int seam = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 27, 60, 1, 0);
        final int turned = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 27, 1, 90);
        final int refused = ImageBlend.verifyPosition(mask, WIDTH, HEIGHT, 80, 60, 5, 0);
        assertArrayEquals(
            new int[] {ImageBlend.FITS, ImageBlend.SEAM, ImageBlend.SEAM, ImageBlend.REFUSED},
            new int[] {fits, seam, turned, refused});
    }
}

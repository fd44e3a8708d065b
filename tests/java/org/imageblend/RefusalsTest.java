// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import static org.junit.Assert.*;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.util.Arrays;
import org.junit.Test;

/** Many refused blends: the library keeps memory of each one that reaches it. */
public class RefusalsTest {
    private static final int SIDE = 500;
    private static final int MOST_GROWTH_KB =
        40000; // a refusal that reaches the library keeps 0.6 MB

    private static int residentKb() throws IOException {
        final byte[] status = Files.readAllBytes(Paths.get("/proc/self/status"));
        for (String line : new String(status, StandardCharsets.US_ASCII).split("\n"))
            if (line.startsWith("VmRSS:")) return Integer.parseInt(line.replaceAll("\\D", ""));
        throw new IOException("/proc/self/status has no VmRSS");
    }

    @Test
    public void leaveNothingBehind() throws IOException {
        final int[] array = new int[SIDE * SIDE];
        final ByteBuffer buffer = ByteBuffer.allocateDirect(SIDE * SIDE * 4);
        final byte[] mask = new byte[SIDE * SIDE];
        Arrays.fill(mask, 20 * SIDE, 400 * SIDE, (byte) 1);
        int before = 0;
        for (int i = 0; i < 550; i++) {
            if (i == 50) before = residentKb();
            final float angle = i / 2 % 2 * 10;
            assertFalse(i % 2 == 0
                    ? ImageBlend.blend(array, array, mask, array, SIDE, SIDE, 250, 250, 2, angle)
                    : ImageBlend.blend(
                        buffer, buffer, mask, buffer, SIDE, SIDE, 250, 250, 2, angle));
        }
        final int growth = residentKb() - before;
        assertTrue("grown by " + growth + " KB", growth < MOST_GROWTH_KB);
    }
}

// SPDX-License-Identifier: Apache-2.0
package org.imageblend;

import static org.imageblend.Frames.*;
import static org.junit.Assert.*;

import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import org.junit.Test;

/** Blends from many threads. */
public class ThreadsTest {
    private static final int BLENDS = 33;

    /** Blends in all threads at once, half of them in arrays and half in buffers. */
    public static void main(String[] arguments) {
        final int[] expected = new int[PIXELS];
        blend(noise(1), noise(2), expected);
        IntStream.range(1, BLENDS).parallel().forEach(i -> {
            final int[] output = new int[PIXELS];
            if (i % 2 == 0) {
                blend(noise(1), noise(2), output);
            } else {
                final ByteBuffer bytes = bytesOf(output);
                blend(bytesOf(noise(1)), bytesOf(noise(2)), bytes);
                bytes.asIntBuffer().get(output);
            }
            if (!Arrays.equals(expected, output)) System.exit(1);
        });
    }

    // In a process of its own, which checks the native calls.
    @Test
    public void blendsMayOverlap() throws IOException, InterruptedException {
        final ProcessBuilder command =
            new ProcessBuilder(new File(System.getProperty("java.home"), "bin/java").getPath(),
                "-Xcheck:jni", "-Djava.util.concurrent.ForkJoinPool.common.parallelism=4",
                "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp",
                System.getProperty("java.class.path"), ThreadsTest.class.getName());
        command.environment().put("IMAGEBLEND_LOG", "debug");
        final Process process = command.redirectErrorStream(true).start();
        final Map<Boolean, Long> log;
        try (BufferedReader lines =
                 new BufferedReader(new InputStreamReader(process.getInputStream()))) {
            log = lines.lines()
                      .filter(line -> line.contains("time_cost_"))
                      .collect(Collectors.partitioningBy(
                          line -> line.contains("time_cost_start"), Collectors.counting()));
        }
        assertEquals("blends begun", BLENDS, (long) log.get(true));
        assertEquals("blends ended", BLENDS, (long) log.get(false));
        assertEquals("a blend gave other pixels", 0, process.waitFor());
    }

    // While the call is on its way its output begins and ends elsewhere: it lies whole in one place
    // or the other, or the buffer was refused between the two moves.
    @Test
    public void buffersThatMoveMeanwhile() throws InterruptedException {
        final int[] expected = new int[PIXELS];
        blend(noise(1), noise(2), expected);
        for (int i = 0; i < 40; i++) {
            final ByteBuffer all = bytes(2 * BYTES);
            final ByteBuffer output = all.duplicate();
            output.limit(BYTES);
            final Thread caller = new Thread(() -> {
                try {
                    blend(bytesOf(noise(1)), bytesOf(noise(2)), output);
                } catch (IllegalArgumentException refused) {
                    return;
                }
            });
            caller.start();
            for (int k = 0; k < i * 20; k++)
                Thread.yield();
            output.limit(2 * BYTES).position(BYTES);
            caller.join();
            final int[] written = new int[2 * PIXELS];
            all.asIntBuffer().get(written);
            final int[] first = Arrays.copyOf(written, PIXELS);
            final int[] second = Arrays.copyOfRange(written, PIXELS, 2 * PIXELS);
            final int[] nothing = new int[PIXELS];
            assertTrue(Arrays.equals(first, nothing) || Arrays.equals(second, nothing));
            assertTrue(Arrays.equals(first, nothing) || Arrays.equals(first, expected));
            assertTrue(Arrays.equals(second, nothing) || Arrays.equals(second, expected));
        }
    }
}

package org.imageblend;

import static org.imageblend.Frames.*;
import static org.junit.Assert.*;

import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.Collections;
import java.util.concurrent.atomic.AtomicBoolean;
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

    // The log of a process of its own shows that none begins in another.
    @Test
    public void blendsDoNotOverlap() throws IOException, InterruptedException {
        final ProcessBuilder command =
            new ProcessBuilder(new File(System.getProperty("java.home"), "bin/java").getPath(),
                "-Xcheck:jni", "-Djava.util.concurrent.ForkJoinPool.common.parallelism=4",
                "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp",
                System.getProperty("java.class.path"), ThreadsTest.class.getName());
        command.environment().put("IMAGEBLEND_LOG", "debug");
        final Process process = command.redirectErrorStream(true).start();
        final String log;
        try (BufferedReader lines =
                 new BufferedReader(new InputStreamReader(process.getInputStream()))) {
            log = lines.lines()
                      .filter(line -> line.contains("time_cost_"))
                      .map(line -> line.contains("time_cost_start") ? "start" : " end ")
                      .collect(Collectors.joining());
        }
        assertEquals(String.join("", Collections.nCopies(BLENDS, "start end ")), log);
        assertEquals("a blend gave other pixels", 0, process.waitFor());
    }

    // While the call waits for another blend its output begins and ends elsewhere.
    @Test
    public void buffersThatMoveMeanwhile() throws InterruptedException {
        final int[] expected = new int[PIXELS];
        blend(noise(1), noise(2), expected);
        final int side = 1000;
        final int[] other = new int[side * side];
        final byte[] otherMask = new byte[side * side];
        Arrays.fill(otherMask, 300 * side, 600 * side, (byte) 255);
        final AtomicBoolean stop = new AtomicBoolean();
        final Thread busy = new Thread(() -> {
            while (!stop.get())
                ImageBlend.blend(
                    other, other, otherMask, other, side, side, side / 2, side / 2, 1, 0);
        });
        busy.start();
        for (int i = 0; i < 5; i++) {
            final ByteBuffer all = bytes(2 * BYTES);
            final ByteBuffer output = all.duplicate();
            output.limit(BYTES);
            final Thread caller =
                new Thread(() -> blend(bytesOf(noise(1)), bytesOf(noise(2)), output));
            caller.start();
            while (caller.isAlive() && caller.getState() != Thread.State.BLOCKED)
                Thread.yield();
            output.limit(2 * BYTES).position(BYTES);
            caller.join();
            final int[] written = new int[2 * PIXELS];
            all.asIntBuffer().get(written);
            assertArrayEquals(expected, Arrays.copyOf(written, PIXELS));
            assertArrayEquals(new int[PIXELS], Arrays.copyOfRange(written, PIXELS, 2 * PIXELS));
        }
        stop.set(true);
        busy.join();
    }
}

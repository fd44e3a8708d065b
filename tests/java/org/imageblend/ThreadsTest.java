package org.imageblend;

import static org.junit.Assert.assertEquals;

import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.nio.ByteBuffer;
import java.util.Arrays;
import org.junit.Test;

/** Blends from many threads: the log of a process of its own shows that none begins in another. */
public class ThreadsTest {
    private static final int THREADS = 4;
    private static final int BLENDS = 8;

    /** Blends in all threads at once, half of them in arrays and half in buffers. */
    public static void main(String[] arguments) throws InterruptedException {
        final int[] expected = blend(false);
        final Thread[] threads = new Thread[THREADS];
        for (int i = 0; i < THREADS; i++) {
            final boolean inBuffers = i % 2 == 1;
            threads[i] = new Thread(() -> {
                for (int done = 0; done < BLENDS; done++) {
                    if (!Arrays.equals(expected, blend(inBuffers)))
                        System.out.println("a blend gave other pixels");
                }
            });
        }
        for (Thread thread : threads)
            thread.start();
        for (Thread thread : threads)
            thread.join();
    }

    private static int[] blend(boolean inBuffers) {
        final ByteBuffer bytes = Frames.bytes(Frames.PIXELS * 4);
        final int[] output = new int[Frames.PIXELS];
        if (inBuffers) {
            ImageBlend.blend(Frames.bytesOf(Frames.noise(1)), Frames.bytesOf(Frames.noise(2)),
                Frames.mask(), bytes, Frames.WIDTH, Frames.HEIGHT, 80, 60, 1.5f, 40);
        } else {
            ImageBlend.blend(Frames.noise(1), Frames.noise(2), Frames.mask(), output, Frames.WIDTH,
                Frames.HEIGHT, 80, 60, 1.5f, 40);
        }
        return inBuffers ? Frames.pixelsOf(bytes) : output;
    }

    @Test
    public void blendsDoNotOverlap() throws IOException, InterruptedException {
        final ProcessBuilder command =
            new ProcessBuilder(new File(System.getProperty("java.home"), "bin/java").getPath(),
                "-Xcheck:jni", "-Djava.library.path=" + System.getProperty("java.library.path"),
                "-cp", System.getProperty("java.class.path"), ThreadsTest.class.getName());
        command.environment().put("IMAGEBLEND_LOG", "debug");
        final Process process = command.redirectErrorStream(true).start();
        int running = 0;
        int finished = 0;
        try (BufferedReader lines =
                 new BufferedReader(new InputStreamReader(process.getInputStream()))) {
            for (String line = lines.readLine(); line != null; line = lines.readLine()) {
                if (line.contains("time_cost_start")) assertEquals(line, 1, ++running);
                if (line.contains("time_cost_end")) {
                    assertEquals(line, 0, --running);
                    finished++;
                }
                assertEquals(line, -1, line.indexOf("other pixels"));
            }
        } finally {
            process.destroy();
        }
        assertEquals(0, process.waitFor());
        assertEquals(1 + THREADS * BLENDS, finished);
    }
}

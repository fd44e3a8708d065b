// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import java.awt.image.BufferedImage;

/** What the example needs of Android's class, on a desktop's pictures. */
public final class Bitmap {
    public enum Config { ARGB_8888 }

    final BufferedImage image;

    private Bitmap(int width, int height) {
        image = new BufferedImage(width, height, BufferedImage.TYPE_INT_ARGB_PRE);
    }

    public static Bitmap createBitmap(int width, int height, Config config) {
        return new Bitmap(width, height);
    }

    public static Bitmap createBitmap(int[] colors, int width, int height, Config config) {
        final Bitmap bitmap = new Bitmap(width, height);
        bitmap.image.setRGB(0, 0, width, height, colors, 0, width);
        return bitmap;
    }

    public int getWidth() { return image.getWidth(); }

    public int getHeight() { return image.getHeight(); }

    public void setHasMipMap(boolean hasMipMap) {}

    public void getPixels(
        int[] pixels, int offset, int stride, int x, int y, int width, int height) {
        image.getRGB(x, y, width, height, pixels, offset, stride);
    }
}

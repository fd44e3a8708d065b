// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import java.awt.Graphics2D;
import java.awt.RenderingHints;

public final class Canvas {
    private final Graphics2D graphics;

    public Canvas(Bitmap bitmap) { graphics = bitmap.image.createGraphics(); }

    public void drawBitmap(Bitmap bitmap, Matrix matrix, Paint paint) {
        graphics.setRenderingHint(
            RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BILINEAR);
        graphics.drawImage(bitmap.image, matrix.transform, null);
    }
}

// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import java.awt.geom.AffineTransform;

public final class Matrix {
    final AffineTransform transform = new AffineTransform();

    public boolean postTranslate(float dx, float dy) {
        transform.preConcatenate(AffineTransform.getTranslateInstance(dx, dy));
        return true;
    }

    public boolean postScale(float sx, float sy) {
        transform.preConcatenate(AffineTransform.getScaleInstance(sx, sy));
        return true;
    }

    public boolean postRotate(float degrees) {
        transform.preConcatenate(AffineTransform.getRotateInstance(Math.toRadians(degrees)));
        return true;
    }
}

// SPDX-License-Identifier: Apache-2.0
package android.graphics;

public final class Paint {
    public static final int FILTER_BITMAP_FLAG = 2;

    public Paint(int flags) {}
}

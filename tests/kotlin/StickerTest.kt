// SPDX-License-Identifier: Apache-2.0
import android.graphics.Bitmap
import kotlin.system.exitProcess

/** Runs the example: a bar of 40 x 20 pixels, at half its size and on end. */
fun main() {
    val photo = IntArray(100 * 80) { 0xFF30A060.toInt() }
    val icon = IntArray(80 * 60)
    for (y in 20 until 40) for (x in 20 until 60) {
        icon[y * 80 + x] = if (x < 40) 0xFFD02030.toInt() else 0xFF2040E0.toInt()
    }
    fun bitmap(pixels: IntArray, width: Int) =
        Bitmap.createBitmap(pixels, width, pixels.size / width, Bitmap.Config.ARGB_8888)

    val result = Sticker(bitmap(icon, 80)).pasteInto(bitmap(photo, 100), 60, 30, 0.5f, 90f)
    val pixels = IntArray(100 * 80)
    result.getPixels(pixels, 0, 100, 0, 0, 100, 80)
    var faults = 0
    fun expect(x: Int, y: Int, colour: Int, tolerance: Int) {
        val pixel = pixels[y * 100 + x]
        val differences = (0..24 step 8).map { (pixel ushr it and 255) - (colour ushr it and 255) }
        if (differences.all { Math.abs(it) <= tolerance }) return
        faults++
        println("FAILED: (%d, %d) is %08x, must be %08x".format(x, y, pixel, colour))
    }
    // On end and counter-clockwise, so the bar's right half is on top.
    expect(60, 25, 0xFF2040E0.toInt(), 8)
    expect(60, 35, 0xFFD02030.toInt(), 8)
    for (y in 0 until 80) for (x in 0 until 100) {
        if (x < 52 || x > 67 || y < 17 || y > 42) expect(x, y, photo[0], 0)
    }
    exitProcess(if (faults == 0) 0 else 1)
}

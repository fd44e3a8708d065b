// SPDX-License-Identifier: Apache-2.0
import android.graphics.Bitmap
import android.graphics.Canvas
import android.graphics.Matrix
import android.graphics.Paint
import java.nio.ByteBuffer
import org.imageblend.ImageBlend

/** An object with transparent surroundings, made ready once for pastes into any number of photos. */
class Sticker(picture: Bitmap) {
    private val cleaned: Bitmap // the object with some room around it

    init {
        val source = pixelsOf(picture)
        val (_, _, width, height) =
            ImageBlend.prepareBox(source, null, picture.width, picture.height)
        require(width > 0) { "the picture is transparent" }
        val pixels = ByteBuffer.allocateDirect(4 * width * height)
        ImageBlend.prepare(source, null, picture.width, picture.height, true, 0f, pixels)
        cleaned = bitmapOf(pixels, width, height)
        cleaned.setHasMipMap(true) // for zooms below a half
    }

    /** The photo with the middle of the object's box at (x, y), turned counter-clockwise. */
    fun pasteInto(photo: Bitmap, x: Int, y: Int, zoom: Float, angle: Float): Bitmap {
        val target = pixelsOf(photo)
        val drawn = draw(zoom, angle)
        ImageBlend.paste(pixelsOf(drawn), drawn.width, drawn.height, target, photo.width,
            photo.height, x - drawn.width / 2, y - drawn.height / 2)
        return bitmapOf(target, photo.width, photo.height)
    }

    // Bitmaps hold colours multiplied by alpha, so that scaling weighs them by it.
    private fun draw(zoom: Float, angle: Float): Bitmap {
        val diagonal = Math.hypot(cleaned.width.toDouble(), cleaned.height.toDouble())
        val side = (diagonal * zoom).toInt() + 2
        val matrix = Matrix()
        matrix.postTranslate(-cleaned.width / 2f, -cleaned.height / 2f)
        matrix.postScale(zoom, zoom)
        matrix.postRotate(-angle) // Android turns clockwise
        matrix.postTranslate(side / 2f, side / 2f)
        val drawn = Bitmap.createBitmap(side, side, Bitmap.Config.ARGB_8888)
        Canvas(drawn).drawBitmap(cleaned, matrix, Paint(Paint.FILTER_BITMAP_FLAG))
        return drawn
    }

    // Ints 0xAARRGGBB become bytes A, R, G, B: buffers are big-endian unless told otherwise.
    private fun pixelsOf(bitmap: Bitmap): ByteBuffer {
        val ints = IntArray(bitmap.width * bitmap.height)
        bitmap.getPixels(ints, 0, bitmap.width, 0, 0, bitmap.width, bitmap.height)
        val bytes = ByteBuffer.allocateDirect(4 * ints.size)
        bytes.asIntBuffer().put(ints)
        return bytes
    }

    private fun bitmapOf(bytes: ByteBuffer, width: Int, height: Int): Bitmap {
        val ints = IntArray(width * height)
        bytes.asIntBuffer().get(ints)
        return Bitmap.createBitmap(ints, width, height, Bitmap.Config.ARGB_8888)
    }
}

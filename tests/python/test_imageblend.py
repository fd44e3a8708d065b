# SPDX-License-Identifier: Apache-2.0
"""Tests of the Python module. IMAGEBLEND_TOOL names the command line, which must give the same."""
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

import numpy as np
from PIL import Image

import imageblend

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"


def noise(seed, *shape):
    return np.random.default_rng(seed).integers(0, 256, shape, np.uint8)


def ellipse(height, width, y, x, ry, rx):
    rows, columns = np.ogrid[:height, :width]
    return (((rows - y) / ry) ** 2 + ((columns - x) / rx) ** 2 < 1).astype(np.uint8) * 255


def load(name):
    return np.asarray(Image.open(EXAMPLES / name))


def run_tool(source, destination, *options):
    """What the command line makes of the same arrays."""
    with tempfile.TemporaryDirectory() as folder:
        files = [f"{folder}/{name}.png" for name in ("source", "photo", "result", "mask")]
        Image.fromarray(source).save(files[0])
        Image.fromarray(destination).save(files[1])
        command = [os.environ["IMAGEBLEND_TOOL"], "blend", *files[:3]]
        for option in options:
            if isinstance(option, np.ndarray):
                Image.fromarray(option).save(files[3])
                option = files[3]
            command.append(str(option))
        subprocess.run(command, check=True)
        return np.asarray(Image.open(files[2]))


needs_tool = unittest.skipUnless(os.environ.get("IMAGEBLEND_TOOL"), "needs the command line")


class Bare(unittest.TestCase):
    """The four functions."""

    def setUp(self):
        self.icon, self.photo = noise(1, 120, 160, 3), noise(2, 120, 160, 3)
        self.mask = ellipse(120, 160, 50, 60, 20, 31)
        self.at = (90, 62), 1.25, 30.0
        self.expected = imageblend.blend(self.icon, self.photo, self.mask, *self.at)

    @needs_tool
    def test_blends_like_the_command_line(self):
        made = run_tool(self.icon, self.photo, "--as-is", "--mask", self.mask, "--at", "90,62",
                        "--zoom", 1.25, "--angle", 30)
        np.testing.assert_array_equal(self.expected, made)
        self.assertTrue((made != self.photo).any())

    def test_layouts_give_the_same(self):
        views = [imageblend.frame(120, 160) for _ in range(3)]
        views[0][:], views[1][:] = self.icon, self.photo
        alpha = noise(3, 120, 160)
        cases = {
            "Pillow": (Image.fromarray(self.icon), Image.fromarray(self.photo), None),
            "views": (views[0], views[1], None),
            "views into an array": (views[0], views[1], np.empty_like(self.photo)),
            "arrays into a view": (self.icon, self.photo, views[2]),
            "views into a view": (views[0], views[1], views[2]),
            "turned over": (self.icon[::-1].copy()[::-1], np.asfortranarray(self.photo), None),
            "alpha": (np.dstack([self.icon, alpha]), np.dstack([self.photo, alpha]), None),
        }
        for name, (icon, photo, out) in cases.items():
            with self.subTest(name):
                before = np.array(icon), np.array(photo)
                result = imageblend.blend(icon, photo, self.mask > 0, *self.at, out=out)
                np.testing.assert_array_equal(result[..., :3], self.expected)
                np.testing.assert_array_equal(icon, before[0])
                np.testing.assert_array_equal(photo, before[1])
                self.assertTrue(out is None or result is out)
        # The blend's rectangle is opaque, alpha stays outside of it.
        changed = (result[..., 3] != alpha).nonzero()
        self.assertTrue((result[..., 3][changed] == 255).all())
        self.assertTrue((result[..., 3] == alpha)[:5].all() and len(changed[0]) > 2000)

    def test_the_output_may_be_an_input(self):
        for make in (np.array, lambda pixels: np.add(pixels, 0, out=imageblend.frame(120, 160))):
            for which in (0, 1):
                inputs = [make(self.icon), make(self.photo)]
                imageblend.blend(*inputs, self.mask, *self.at, out=inputs[which])
                np.testing.assert_array_equal(inputs[which], self.expected)

    def test_verdicts(self):
        self.assertIs(imageblend.verify(self.mask, (80, 60)), imageblend.Verdict.FITS)
        self.assertIs(imageblend.verify(self.mask, (30, 60)), imageblend.Verdict.SEAM)
        self.assertIs(imageblend.verify(self.mask, (80, 60), 4), imageblend.Verdict.REFUSED)
        out = self.photo.copy()
        with self.assertRaisesRegex(imageblend.PlacementError, "61, 39"):
            imageblend.blend(self.icon, self.photo, self.mask, (80, 60), 4.0, out=out)
        np.testing.assert_array_equal(out, self.photo)

    def test_the_object_is_cut_out(self):
        rows, columns = slice(31, 70), slice(30, 91)
        self.assertEqual(imageblend.object_size(self.mask), (61, 39))
        cut = imageblend.cut_out(self.icon, self.mask)
        inside = self.mask[rows, columns] > 0
        expected = np.dstack([self.icon[rows, columns], np.full(inside.shape, 255)])
        np.testing.assert_array_equal(cut, expected * inside[..., None])
        for shape in ((5, 7), (1, 7), (7, 1), (1, 1)):
            self.assertEqual(imageblend.object_size(np.zeros(shape, bool)), (0, 0))
            with self.assertRaisesRegex(ValueError, "no object"):
                imageblend.cut_out(np.zeros((*shape, 3), np.uint8), np.zeros(shape, bool))


class Prepared(unittest.TestCase):
    """prepare and paste."""

    @classmethod
    def setUpClass(cls):
        cls.vase, cls.mask, cls.dunes = load("vase.jpg"), load("vase-mask.png"), load("dunes.jpg")
        cls.cutout = np.dstack([cls.vase, cls.mask])

    @needs_tool
    def test_pastes_like_the_command_line(self):
        cases = [((640, 535), {}, []),
                 ((1021, 300), {"fit": False}, ["--no-fit"]),
                 ((641, 400), {"grow": -1.5}, ["--grow", -1.5])]
        hard = np.where(self.mask < 128, 0, 255).astype(np.uint8)
        for at, arguments, options in cases:
            place = ["--at", f"{at[0]},{at[1]}", *options]
            for mask in (self.mask, hard):
                np.testing.assert_array_equal(
                    imageblend.paste(self.vase, self.dunes, at, mask, **arguments),
                    run_tool(self.vase, self.dunes, "--mask", mask, *place))
            np.testing.assert_array_equal(
                imageblend.paste(self.cutout, self.dunes, at, **arguments),
                run_tool(self.cutout, self.dunes, *place))
        # The command line cuts off beforehand what crosses the border.
        np.testing.assert_allclose(
            imageblend.paste(self.cutout, self.dunes, (1250, 20)).astype(int),
            run_tool(self.cutout, self.dunes, "--at", "1250,20"), atol=2)

    def test_only_the_object_changes(self):
        alpha = noise(4, *self.dunes.shape[:2])
        photo = np.dstack([self.dunes, alpha])
        prepared = imageblend.prepare(self.vase, self.mask)
        height, width = prepared.pixels.shape[:2]
        for at in ((640, 535), (0, 852), (1300, 400)):
            result = imageblend.paste(prepared, photo, at)
            rows, columns = (result != photo).any(axis=2).nonzero()
            self.assertLess(100, len(rows))
            self.assertTrue((abs(rows - at[1]) <= height / 2).all())
            self.assertTrue((abs(columns - at[0]) <= width / 2).all())
            self.assertTrue((result[..., 3] >= alpha).all())
            alone = imageblend.paste(prepared, self.dunes, at)
            opaque = imageblend.paste(prepared, np.dstack([self.dunes, alpha * 0 + 255]), at)
            np.testing.assert_array_equal(opaque, np.dstack([alone, alpha * 0 + 255]))
        # The middle of the object is the object.
        result = imageblend.paste(prepared, self.dunes, (640, 400))[380:420, 620:660]
        rows, columns = (np.flatnonzero((self.mask > 127).any(axis=axis)) for axis in (1, 0))
        top, left = (rows[0] + rows[-1] - 39) // 2, (columns[0] + columns[-1] - 39) // 2
        middle = self.vase[top:, left:][:40, :40]
        self.assertLess(abs(result - middle.astype(int)).mean(), 10)

    def test_in_place_and_refused(self):
        prepared = imageblend.prepare(self.cutout)
        alone = np.where(self.mask[..., None] > 0, self.cutout, 0)
        self.assertIsNone(imageblend.prepare(alone).source)
        expected = imageblend.paste(self.cutout, self.dunes, (640, 535))
        out = self.dunes.copy()
        self.assertIs(imageblend.paste(prepared, out, (640, 535), out=out), out)
        np.testing.assert_array_equal(out, expected)
        other = np.empty_like(out)
        imageblend.paste(prepared, self.dunes, (640, 535), out=other)
        np.testing.assert_array_equal(other, expected)
        for at in ((-400, 300), (640, 2000), (2.0**30, 0)):
            with self.assertRaises(imageblend.PlacementError):
                imageblend.paste(prepared, out, at, out=out)
        np.testing.assert_array_equal(out, expected)

    def test_the_picture_around_does_not_matter(self):
        large = np.zeros((1500, 2000, 3), np.uint8)
        mask = np.zeros(large.shape[:2], np.uint8)
        large[300:1000, 400:1300], mask[300:1000, 400:1300] = self.vase, self.mask
        one, two = imageblend.prepare(self.vase, self.mask), imageblend.prepare(large, mask)
        self.assertEqual((two.left, two.top), (one.left + 400, one.top + 300))
        np.testing.assert_array_equal(one.pixels, two.pixels)

    def test_the_outline_is_found(self):
        picture = np.full((300, 400, 3), (200, 180, 40), np.uint8)
        true = ellipse(300, 400, 150, 200, 80, 100) > 0
        picture[true] = (20, 60, 120)
        wide = ellipse(300, 400, 150, 200, 84, 104)
        prepared = imageblend.prepare(picture, wide)
        self.assertIs(prepared.fit, imageblend.Fit.MOVED)
        self.assertAlmostEqual(prepared.moved, -4, delta=1)
        self.assertIs(imageblend.prepare(picture, wide, fit=False).fit, imageblend.Fit.NONE)

    def test_surroundings_come_along(self):
        def changed(surroundings):
            result = imageblend.paste(self.vase, self.dunes, (640, 535), self.mask,
                                      surroundings=surroundings)
            return (result != self.dunes).any(axis=2)

        alone, ring = changed(0), changed(24)
        # At most 24 pixels further out.
        rows, columns = alone.any(axis=1).nonzero()[0], alone.any(axis=0).nonzero()[0]
        ring[rows[0] - 24:rows[-1] + 25, columns[0] - 24:columns[-1] + 25] = False
        self.assertFalse(ring.any())
        self.assertGreater(changed(24).sum(), alone.sum() + 1000)


class Arguments(unittest.TestCase):
    def test_wrong_arguments(self):
        ib = imageblend
        photo, mask = np.zeros((30, 40, 3), np.uint8), np.ones((30, 40), np.uint8)
        fixed = photo.copy()
        fixed.flags.writeable = False
        at = (20, 15)
        thin = mask * (np.arange(40) == 9)
        cases = [
            (TypeError, "icon is an array of float64", lambda: ib.blend(photo / 2, photo, mask, at)),
            (ValueError, "destination has shape .30, 40.", lambda: ib.blend(photo, mask, mask, at)),
            (ValueError, "destination .* as large", lambda: ib.blend(photo, photo[1:], mask, at)),
            (ValueError, "mask has shape .29, 40.", lambda: ib.blend(photo, photo, mask[1:], at)),
            (ValueError, "out must", lambda: ib.blend(photo, photo, mask, at, out=fixed)),
            (ValueError, "out must", lambda: ib.blend(photo, photo, mask, at, out=photo[:, 1:])),
            (ValueError, "center x is 2147483648", lambda: ib.verify(mask, (2**31, 0))),
            (ValueError, "must be finite", lambda: ib.verify(mask, at, float("nan"))),
            (ValueError, "must be H x W, sides", lambda: ib.object_size(mask[:0])),
            (TypeError, "mask is an array of int64", lambda: ib.object_size(mask.astype(int))),
            (ValueError, "no alpha", lambda: ib.prepare(photo)),
            (ValueError, "no object", lambda: ib.prepare(photo, mask * 0)),
            (ValueError, "grow is nan", lambda: ib.prepare(photo, mask, grow=float("nan"))),
            (ValueError, "surroundings is 257",
             lambda: ib.paste(photo, photo, at, mask, surroundings=257)),
            (ValueError, "center y is inf", lambda: ib.paste(photo, photo, (1, np.inf), mask)),
            (TypeError, "too late",
             lambda: ib.paste(ib.prepare(photo, mask), photo, at, mask)),
            (ib.PlacementError, "nothing is left",
             lambda: ib.paste(photo, photo, at, thin, grow=-9)),
        ]
        for error, message, call in cases:
            with self.subTest(message), self.assertRaisesRegex(error, message):
                call()


class Library(unittest.TestCase):
    def test_threads(self):
        icon, photo = noise(1, 300, 400, 3), noise(2, 300, 400, 3)
        mask = ellipse(300, 400, 150, 200, 80, 100)
        expected = imageblend.paste(icon, photo, (200, 150), mask)
        results = [None] * 8

        def work(index):
            results[index] = [imageblend.paste(icon, photo, (200, 150), mask) for _ in range(5)]

        threads = [threading.Thread(target=work, args=(index,)) for index in range(len(results))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        for result in sum(results, []):
            np.testing.assert_array_equal(result, expected)

    def test_the_library_is_found(self):
        module = Path(imageblend.__file__)
        library = os.environ["IMAGEBLEND_LIBRARY"]

        def import_copy(beside, named):
            with tempfile.TemporaryDirectory() as folder:
                shutil.copy(module, folder)
                if beside:
                    shutil.copy(library, os.path.join(folder, "libimageblend_full.so"))
                environment = {**os.environ, "PYTHONPATH": folder, "IMAGEBLEND_LIBRARY": named}
                command = [sys.executable, "-c", "import imageblend"]
                return subprocess.run(command, env=environment, cwd=folder, capture_output=True,
                                      text=True)

        self.assertEqual(import_copy(True, "").returncode, 0)
        self.assertEqual(import_copy(False, library).returncode, 0)
        bare = os.path.join(os.path.dirname(library), "libimageblend.so")
        for beside, named in ((False, ""), (True, "/nowhere.so"), (True, bare)):
            with self.subTest(named):
                self.assertIn("IMAGEBLEND_LIBRARY", import_copy(beside, named).stderr)


unittest.main()

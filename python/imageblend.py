# SPDX-License-Identifier: Apache-2.0
"""Pastes objects into pictures so that the join does not show: libimageblend for NumPy.

    photo = imageblend.paste(vase, dunes, (640, 535), vase_mask)
Pictures are H x W x 3 or H x W x 4 arrays of uint8: three colours in any order, treated alike, then
alpha, by which colours are not multiplied. Masks are H x W, uint8 with 0 outside the object, 255
inside and what lies between, or bool. Whatever numpy.asarray takes will do, such as a Pillow image.

paste and prepare do what the command line does: they fit the outline, clean the colours and change
nothing but the object. blend, verify, object_size and cut_out are the library's four functions as
they are; blend draws what surrounds a tight mask into the picture, as a rim.

Copies. The library wants alpha in front, so blend copies what it is given, except the pictures that
`frame` makes. The others copy what the object covers; paste also the destination, if out is none.
Threads. Any function may be called on any thread at any time; Python's lock is released meanwhile.
Errors. TypeError and ValueError for arguments that do not fit, the ValueError PlacementError for an
object that cannot stand where it should, and MemoryError.

The library is libimageblend_full.so: as the environment variable IMAGEBLEND_LIBRARY names it, beside
this module, in the folder build beside the module's, or where the system looks.
"""

from __future__ import annotations

import ctypes
import dataclasses
import enum
import os
from pathlib import Path
from typing import Optional, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

__all__ = ["AUTO", "Fit", "PlacementError", "Prepared", "Verdict", "blend", "cut_out", "frame",
           "object_size", "paste", "prepare", "verify"]

Array = NDArray[np.uint8]

AUTO = -1  # surroundings as wide as they match the destination, 32 pixels at most


class PlacementError(ValueError):
    """The object cannot stand at this place."""


class Verdict(enum.IntEnum):
    """What becomes of an object at a place."""
    FITS = 0
    SEAM = 1  # a margin touches the frame's border, where a seam may show
    REFUSED = -1


class Fit(enum.IntEnum):
    """What became of an outline."""
    NONE = 0  # not tried: switched off, nothing but the object to see, or soft
    UNCLEAR = 1  # no edge in the picture stands out; taken as drawn
    BEYOND = 2  # drawn loosely, the edge lies beyond reach; taken as drawn
    KEPT = 3
    MOVED = 4


@dataclasses.dataclass(frozen=True)
class Prepared:
    """An object by itself, as prepare makes it, for any number of pastes.

    A scaled or turned object is pasted as dataclasses.replace(prepared, pixels=other, source=None);
    resample colours multiplied by alpha, and divide them again.
    """
    pixels: Array  # H x W x 4
    left: int  # where pixels[0, 0] lies in the source
    top: int
    source: Optional[Array] = None  # the picture around the object; None: nothing comes along
    fit: Fit = Fit.NONE
    moved: float = 0.0  # pixels that the fit moved the outline outwards


def _structure(**fields: type) -> type:
    return type("_Structure", (ctypes.Structure,), {"_fields_": list(fields.items())})


# The records of imageblend.h and imageblend_prepare.h.
_INT, _REAL, _POINTER = ctypes.c_int32, ctypes.c_float, ctypes.POINTER
_Image = _structure(width=_INT, height=_INT, data=ctypes.c_void_p)
_Box = _structure(left=_INT, top=_INT, width=_INT, height=_INT)
_Source = _structure(picture=_POINTER(_Image), mask=_POINTER(_Image))
_CleanOptions = _structure(fit=_INT, grow=_REAL)
_Findings = _structure(alpha=_INT, premultiplied=_INT, surroundings=_INT, fit=_INT, moved=_REAL)
_Layer = _structure(object=_POINTER(_Image), surroundings=_POINTER(_Image), reach=_INT, left=_INT,
                    top=_INT)
_Frames = _structure(box=_Box, center_x=_INT, center_y=_INT, icon=_Image, mask=_Image,
                     destination=_Image)


def _find_library() -> str:
    name = "libimageblend_full.so"
    folder = Path(__file__).resolve().parent
    places = [place for place in (folder / name, folder.parent / "build" / name) if place.exists()]
    return os.environ.get("IMAGEBLEND_LIBRARY") or str([*places, name][0])


def _load_library() -> ctypes.CDLL:
    image, result, place = _POINTER(_Image), _POINTER(_INT), [_INT] * 4 + [_REAL] * 2
    source, box, layer = _POINTER(_Source), _POINTER(_Box), _POINTER(_Layer)
    arguments = {
        "vorn_get_icon_size": [image, result, result],
        "vorn_create_rgb_icon": [image, image, image, _REAL],
        "vorn_verify_icon_pos": [ctypes.c_void_p, _INT, _INT, *place],
        "vorn_imageBlending": [image] * 4 + place,
        "imageblend_clean_box": [source, box],
        "imageblend_clean": [source, _POINTER(_CleanOptions), box, image, _POINTER(_Findings)],
        "imageblend_place": [layer, _INT, _INT, _POINTER(_Frames)],
        "imageblend_paste": [layer, image, result],
    }
    try:
        library = ctypes.CDLL(_find_library())
        for name, types in arguments.items():
            getattr(library, name).argtypes = types
    except (OSError, AttributeError) as error:
        raise ImportError(f"{error}; build the target imageblend_python, or name the file "
                          "libimageblend_full.so in IMAGEBLEND_LIBRARY") from error
    return library


_library = _load_library()


def _array(name: str, pixels: ArrayLike, shape: str, channels: Tuple[int, ...]) -> Array:
    array = np.asarray(pixels)
    if array.dtype == np.bool_ and not channels:
        array = array * np.uint8(255)
    if array.dtype != np.uint8:
        raise TypeError(f"{name} is an array of {array.dtype}, must be of uint8")
    if (array.ndim != 2 + bool(channels) or array.shape[2:] not in ((), *((n,) for n in channels))
            or not 1 <= min(array.shape[:2]) <= max(array.shape[:2]) < 2**31):
        raise ValueError(f"{name} has shape {array.shape}, must be {shape}, sides 1 .. 2^31 - 1")
    return array


def _picture(name: str, pixels: ArrayLike) -> Array:
    return _array(name, pixels, "H x W x 3 or H x W x 4", (3, 4))


def _mask(pixels: ArrayLike, like: Optional[Array] = None) -> Array:
    array = _array("mask", pixels, "H x W", ())
    if like is not None and array.shape != like.shape[:2]:
        raise ValueError(f"mask has shape {array.shape}, must be {like.shape[:2]} as its picture")
    return np.ascontiguousarray(array)


def _output(out: Array, destination: Array) -> Array:
    if (not isinstance(out, np.ndarray) or out.dtype != np.uint8 or not out.flags.writeable
            or out.shape != destination.shape):
        raise ValueError(f"out must be a writable array of uint8 with shape {destination.shape}")
    return out


def _integer(name: str, value: float) -> int:
    if not -2**31 <= value < 2**31:
        raise ValueError(f"{name} is {value}, must be in -2^31 .. 2^31 - 1")
    return int(value)


def _placement(center: Tuple[int, int], zoom: float, angle: float) -> tuple:
    if not (np.isfinite(zoom) and np.isfinite(angle)):
        raise ValueError(f"zoom is {zoom} and angle is {angle}, must be finite")
    x, y = center
    return 0, 0, _integer("center x", x), _integer("center y", y), zoom, angle


# In front of the first pixel of an R, G, B, A array there is no byte for its alpha, so the array's
# own memory never serves as a frame of A, R, G, B: vectors read whole pixels.
def frame(height: int, width: int) -> Array:
    """A black H x W x 3 picture that blend uses where it is: its `base` has alpha in front."""
    return np.zeros((height, width, 4), np.uint8)[..., 1:]


def _own_frame(picture: Array) -> Optional[Array]:
    """The frame that shows as this picture, if there is one."""
    base = picture.base
    if (isinstance(base, np.ndarray) and base.dtype == np.uint8 and base.flags.c_contiguous
            and base.shape == (*picture.shape[:2], 4) and picture.shape[2] == 3
            and base.strides == picture.strides and base.ctypes.data + 1 == picture.ctypes.data):
        return base
    return None


def _to_frame(picture: Array) -> Array:
    copy = np.empty((*picture.shape[:2], 4), np.uint8)
    copy[..., 0] = picture[..., 3] if picture.shape[2] == 4 else 255
    for channel in range(3):
        copy[..., 1 + channel] = picture[..., channel]
    return copy


def _from_frame(pixels: Array, picture: Array) -> None:
    for channel in range(3):
        picture[..., channel] = pixels[..., 1 + channel]
    if picture.shape[2] == 4:
        picture[..., 3] = pixels[..., 0]


def _record(pixels: Array) -> ctypes.Structure:
    """The caller keeps the array, which must be contiguous, for as long as the record."""
    return _Image(pixels.shape[1], pixels.shape[0], pixels.ctypes.data)


def _pointer(pixels: Optional[Array]) -> Optional[object]:
    return None if pixels is None else ctypes.pointer(_record(pixels))


def _part(box: ctypes.Structure, picture: Array) -> Tuple[slice, slice]:
    """What of a picture lies in a box."""
    height, width = picture.shape[:2]
    return (slice(max(box.top, 0), min(box.top + box.height, height)),
            slice(max(box.left, 0), min(box.left + box.width, width)))


def _object_part(mask: Array) -> Tuple[slice, slice]:
    box, record = _Box(), _pointer(mask)
    # Beside a mask no pixel of the picture is read.
    _library.imageblend_clean_box(_Source(record, record), box)
    if box.width == 0:
        raise ValueError("there is no object: the mask or alpha is 0 everywhere")
    return _part(box, mask)


def object_size(mask: ArrayLike) -> Tuple[int, int]:
    """Width and height of the box around the non-zero pixels of `mask` (H x W); (0, 0) if none."""
    pixels = _mask(mask)
    if not pixels.any():
        return 0, 0
    width, height = _INT(), _INT()
    _library.vorn_get_icon_size(_record(pixels), width, height)
    return width.value, height.value


def cut_out(source: ArrayLike, mask: ArrayLike) -> Array:
    """The object's box of `source` as it is, H x W x 4: opaque inside the mask, outside all 0.

    ValueError when the mask, of the source's size, marks nothing.
    """
    picture = _picture("source", source)
    pixels = _mask(mask, picture)
    part = _object_part(pixels)
    pixels, whole = np.ascontiguousarray(pixels[part]), _to_frame(picture[part])
    width, height = object_size(pixels)
    cut = np.empty((height, width, 4), np.uint8)
    if _library.vorn_create_rgb_icon(_record(whole), _record(pixels), _record(cut), 1.0) != 0:
        raise MemoryError("no memory to cut the object out")
    _from_frame(cut, icon := np.empty_like(cut))
    return icon


def verify(mask: ArrayLike, center: Tuple[int, int], zoom: float = 1.0,
           angle: float = 0.0) -> Verdict:
    """Tells what blend would do with these arguments, without blending."""
    pixels = _mask(mask)
    return Verdict(_library.vorn_verify_icon_pos(pixels.ctypes.data, *pixels.shape[::-1],
                                                 *_placement(center, zoom, angle)))


def blend(icon: ArrayLike, destination: ArrayLike, mask: ArrayLike, center: Tuple[int, int],
          zoom: float = 1.0, angle: float = 0.0, out: Optional[Array] = None) -> Array:
    """Blends the object of `icon` into `destination`.

    icon, destination  H x W x 3 or H x W x 4; the icon's alpha is not read
    mask               H x W, the object in `icon`; all three have one size
    center             (x, y) in the destination where the middle of the object's box comes to
                       stand; too near to the border it is moved inwards
    zoom, angle        scale factor; degrees counter-clockwise
    out                receives the result; of the destination's shape, and may be it or the icon
    Returns out, or a new array like the destination. Alpha becomes 255 in the rectangle around the
    object, and stays elsewhere. PlacementError when the zoomed object is larger than the frame.
    """
    icon, destination = _picture("icon", icon), _picture("destination", destination)
    pixels = _mask(mask, icon)
    if icon.shape[:2] != destination.shape[:2]:
        raise ValueError(f"destination has shape {destination.shape}, must be as large as icon "
                         f"with {icon.shape}")
    own = _own_frame(destination)
    if out is None:
        target = np.empty(destination.shape, np.uint8) if own is None else frame(*own.shape[:2])
    else:
        target = _output(out, destination)
    # The library keeps memory of each blend that it refuses.
    if verify(pixels, center, zoom, angle) is Verdict.REFUSED:
        raise PlacementError(f"the object of {object_size(pixels)} pixels cannot stand at {center} "
                             f"with zoom {zoom} and angle {angle} in {destination.shape[:2][::-1]}")
    source, written = _own_frame(icon), _own_frame(target)
    source = _to_frame(icon) if source is None else source
    read = _to_frame(destination) if own is None else own
    # A copy of the destination may become the result.
    result = written if written is not None else read if own is None else np.empty_like(read)
    if _library.vorn_imageBlending(_record(source), _record(read), _record(pixels), _record(result),
                                   *_placement(center, zoom, angle)) != 0:
        raise MemoryError(f"no memory to blend {destination.shape[:2][::-1]} pixels")
    if written is None:
        _from_frame(result, target)
    return target


def prepare(source: ArrayLike, mask: Optional[ArrayLike] = None, *, fit: bool = True,
            grow: float = 0.0) -> Prepared:
    """Makes the object of a picture ready to be pasted.

    source  H x W x 3, or H x W x 4 whose alpha is the mask where none is given
    mask    H x W
    fit     the outline may be moved to where the picture's colours change
    grow    then the outline moves outwards by so many pixels, inwards when negative; -16 .. 16
    ValueError when there is no object. The result refers to the source, which should stay as it is.
    """
    picture = _picture("source", source)
    if mask is None and picture.shape[2] == 3:
        raise ValueError("mask is None and source has no alpha")
    if not -16 <= grow <= 16:
        raise ValueError(f"grow is {grow}, must be in -16 .. 16")
    pixels = _mask(picture[..., 3]) if mask is None else _mask(mask, picture)
    rows, columns = part = _object_part(pixels)
    seen, marked = _to_frame(picture[part]), np.ascontiguousarray(pixels[part])
    given = _Source(_pointer(seen), None if mask is None else _pointer(marked))
    cleaned, findings = np.empty_like(seen), _Findings()
    box = _Box(0, 0, seen.shape[1], seen.shape[0])
    if _library.imageblend_clean(given, _CleanOptions(bool(fit), grow), box, _record(cleaned),
                                 findings) != 0:
        raise MemoryError(f"no memory to prepare {box.width} x {box.height} pixels")
    _from_frame(cleaned, result := np.empty_like(cleaned))
    return Prepared(result, columns.start, rows.start, picture if findings.surroundings else None,
                    Fit(findings.fit), findings.moved)


def _middle(pixels: Array) -> Tuple[float, float]:
    """Of the box around what is mostly opaque, or of what there is."""
    alpha = pixels[..., 3]
    inside = alpha >= (128 if alpha.max() >= 128 else 1)
    rows, columns = np.flatnonzero(inside.any(axis=1)), np.flatnonzero(inside.any(axis=0))
    if rows.size == 0:
        raise PlacementError("nothing is left of the object")
    return (columns[0] + columns[-1] + 1) / 2, (rows[0] + rows[-1] + 1) / 2


def _with_surroundings(prepared: Prepared, reach: int) -> Tuple[Array, Array, int, int]:
    """Frames of the object and of the source around it, and how far they begin before it."""
    height, width = prepared.pixels.shape[:2]
    spare = (32 if reach < 0 else reach) + 4
    left, top = min(spare, prepared.left), min(spare, prepared.top)
    around = _to_frame(prepared.source[prepared.top - top:prepared.top + height + spare,
                                       prepared.left - left:prepared.left + width + spare])
    around[..., 0] = 255
    thing = np.zeros_like(around)
    thing[top:top + height, left:left + width] = _to_frame(prepared.pixels)
    return thing, around, left, top


def paste(source: Union[ArrayLike, Prepared], destination: ArrayLike, center: Tuple[float, float],
          mask: Optional[ArrayLike] = None, *, fit: bool = True, grow: float = 0.0,
          surroundings: int = 0, out: Optional[Array] = None) -> Array:
    """Pastes an object: prepare, a blend of the part that it covers, and nothing else changed.

    source        what prepare takes, with mask, fit and grow; or what it gave, without
    destination   H x W x 3 or H x W x 4, of any size
    center        (x, y) in the destination where the middle of the object comes to stand, to the
                  left and upwards by half a pixel at most; the object may cross the border
    surroundings  pixels of the source around the object that come along, such as its shadow:
                  0 .. 256 or AUTO; of a cut-out there are none
    out           receives the result; of the destination's shape, and may be the destination
    Returns out, or a new array like the destination. PlacementError when nothing of the object lies
    in the destination; out is unchanged then.
    """
    if not isinstance(source, Prepared):
        source = prepare(source, mask, fit=fit, grow=grow)
    elif mask is not None or grow != 0.0 or not fit:
        raise TypeError("source is prepared, mask, fit and grow come too late")
    if not AUTO <= surroundings <= 256:
        raise ValueError(f"surroundings is {surroundings}, must be AUTO or 0 .. 256")
    picture = _picture("destination", destination)
    target = None if out is None else _output(out, picture)
    pixels = _picture("pixels", source.pixels)
    x, y = _middle(pixels)
    thing, around, left, top = _to_frame(pixels), None, 0, 0
    if surroundings != 0 and source.source is not None:
        thing, around, left, top = _with_surroundings(source, surroundings)
    layer = _Layer(_pointer(thing), _pointer(around), 0 if around is None else surroundings,
                   _integer("center x", np.floor(center[0] - x) - left),
                   _integer("center y", np.floor(center[1] - y) - top))
    frames = _Frames()
    if (_library.imageblend_place(layer, picture.shape[1], picture.shape[0], frames) != 0
            or frames.box.width == 0):
        raise PlacementError(f"nothing of the object lies in the destination at {center}")
    target = np.empty_like(picture) if target is None else target
    if target is not picture:
        np.copyto(target, picture)
    rows, columns = part = _part(frames.box, picture)
    pixels = _to_frame(target[part])
    layer.top -= rows.start
    layer.left -= columns.start
    if _library.imageblend_paste(layer, _record(pixels), None) != 0:
        raise MemoryError(f"no memory to blend {pixels.shape[1]} x {pixels.shape[0]} pixels")
    _from_frame(pixels, target[part])
    return target

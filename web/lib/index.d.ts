// SPDX-License-Identifier: Apache-2.0
/**
 * Pastes objects into pictures so that the join does not show.
 *
 * PICTURES are what a canvas gives and takes: RGBA, 4 bytes a pixel, rows from top to bottom,
 * colours not multiplied by alpha. x runs to the right and y downwards from the top left corner;
 * angles are in degrees, positive ones turn counter-clockwise. Inputs are copied and never written.
 *
 * LOADING. Functions that return a promise load the WebAssembly module when it is first needed.
 * Everything else is synchronous. Results are the same bytes in every browser and in Node.
 *
 * ERRORS are of the class ImageBlendError. A call that fails changes nothing, but for the code
 * "memory": after it a Blender shows the photo alone, or has no photo if it was setPhoto that failed.
 */

/** An ImageData, or anything of its shape: width * height * 4 bytes. */
export interface Picture {
    readonly data: Uint8ClampedArray | Uint8Array;
    readonly width: number;
    readonly height: number;
}

/**
 * What marks an object: 0 outside, 255 inside, between where a pixel is both.
 *
 * One byte a pixel, or a picture: then its alpha is the mask if any pixel is not opaque, and else
 * its brightness. What noise lossy compression has left in a mask of black and white is no part of
 * the object.
 */
export interface Mask {
    readonly data: Uint8ClampedArray | Uint8Array;
    readonly width: number;
    readonly height: number;
}

/** A picture whose alpha is the mask, such as a cut-out; or a picture and a mask of its size. */
export type ObjectSource = Picture | { readonly picture: Picture; readonly mask: Mask };

/** A picture made here: an ImageData where there is such a class. */
export type Result = typeof globalThis extends { ImageData: { prototype: infer T } }
    ? T
    : { readonly data: Uint8ClampedArray; readonly width: number; readonly height: number };

/** Pixels left .. left + width - 1 and top .. top + height - 1. */
export interface Box {
    readonly left: number;
    readonly top: number;
    readonly width: number;
    readonly height: number;
}

export interface Placement {
    /** Where the middle of the object stands in the photo; may be a fraction. */
    readonly x: number;
    readonly y: number;
    /** Scale factor, above 0; 1 unless given. */
    readonly zoom?: number;
    /** Degrees counter-clockwise; 0 unless given. */
    readonly angle?: number;
}

/**
 * "prepared": the outline is fitted, colours are freed of the old background, and nothing but the
 * object changes. The object may cross the photo's border and be larger than the photo.
 *
 * "plain": the object as its mask marks it, laid over the photo. For comparison.
 *
 * "asIs": the library's bare blend, which draws what surrounds a tight mask into the photo, takes
 * the nearest pixel for zoom and angle, rounds x and y, moves an object inwards that stands too
 * near to the border, and refuses one larger than the photo. An object of another size than the
 * photo is put into the middle of a frame of that size first; cut out, it must fit there.
 */
export type Mode = "prepared" | "plain" | "asIs";

export interface ObjectOptions {
    /** The outline may be moved to where the picture's colours change; true unless given. */
    readonly fit?: boolean;
    /** Then it moves outwards by so many pixels, inwards when negative: -16 .. 16. */
    readonly grow?: number;
}

export interface BlendOptions {
    /** "prepared" unless given. */
    readonly mode?: Mode;
    /**
     * Pixels of the object's picture around it that come along, such as its shadow: 0 .. 256, or
     * "auto" for as many as match the photo, 32 at most. 0 unless given; "prepared" alone.
     */
    readonly surroundings?: number | "auto";
}

/**
 * "fits"; "cut" where the object crosses the photo's border; "seam" where the margin of a bare
 * blend touches it, and a seam may show; "refused" where blend throws.
 */
export type Verdict = "fits" | "cut" | "seam" | "refused";

/** What was found out about an object. */
export interface ObjectInfo {
    /** Size of the object itself: the box of what is mostly opaque. */
    readonly width: number;
    readonly height: number;
    /** Where that box lies in the object's picture; it may reach beyond the mask's. */
    readonly left: number;
    readonly top: number;
    /** The mask's edge: hard, soft for a pixel or two along an outline, or soft over some width. */
    readonly edge: "hard" | "outline" | "soft";
    /** What became of the outline; "none": not tried, "unclear" and "beyond": taken as drawn. */
    readonly fit: "none" | "unclear" | "beyond" | "kept" | "moved";
    /** Pixels that the fit moved the outline outwards; negative inwards. */
    readonly moved: number;
    /** Colours were multiplied by alpha, and have been divided. */
    readonly premultiplied: boolean;
    /** The picture shows what is around the object, so surroundings can come along. */
    readonly surroundings: boolean;
}

/**
 * Where the module is loaded from: an address or its bytes. Needed only where it does not lie beside
 * this file, and only before the first other call.
 */
export function init(source?: string | { readonly href: string } | ArrayBuffer | ArrayBufferView):
    Promise<void>;

/** Blends an object into a photo; the result has the photo's size. */
export function blend(object: ObjectSource, photo: Picture, placement: Placement,
                      options?: ObjectOptions & BlendOptions): Promise<Result>;

/**
 * The object as a picture of its own: its box, as the mask marks it, opaque inside and all 0
 * outside. With `soft`, its alpha is soft and its colours are freed of the old background.
 */
export function cutOut(object: ObjectSource,
                       options?: ObjectOptions & { readonly soft?: boolean }): Promise<Result>;

/** Width and height of the box around what a mask marks at all; 0 and 0 if nothing. */
export function objectSize(mask: Mask): Promise<{ width: number; height: number }>;

/**
 * One photo and one object, for any number of blends: what does not change between two blends is
 * not done again. Moving an object by whole pixels is fastest; a new zoom, angle or fraction of a
 * pixel scales it anew.
 *
 * A Blender has memory of its own: 8 bytes for each pixel of the photo, 5 for each of the object's
 * picture, and up to 40 for each of the object.
 */
export class Blender {
    private constructor();
    static create(): Promise<Blender>;

    /** Replaces the photo. */
    setPhoto(photo: Picture): void;

    /** Replaces the object, which is prepared here, once. Error "argument" if nothing is marked. */
    setObject(object: ObjectSource, options?: ObjectOptions): ObjectInfo;

    /** Tells what blend would do with these arguments. */
    verify(placement: Placement, options?: BlendOptions): Verdict;

    /** The box of the scaled and turned object in the photo, in fractions of a pixel. */
    bounds(placement: Placement): Box;

    /**
     * The photo with the object: a view of the Blender's memory, good until its next call of any
     * kind; copy what is to last. Error "refused" where the object cannot stand.
     */
    blend(placement: Placement, options?: BlendOptions): Result;

    /** The photo without an object, as such a view. */
    clear(): Result;

    /**
     * The part in which the last picture of blend or clear differs from the one before it: what a
     * canvas that shows that one has to draw. The whole after setPhoto; width and height are 0
     * when nothing changed.
     */
    readonly dirty: Box;

    /** Bytes of memory that this Blender holds. */
    readonly memory: number;

    /** Lets go of the memory. Any later call is an error. */
    dispose(): void;
}

/**
 * refused   the object cannot stand there: outside of the photo, smaller than a pixel; too large
 *           for a bare blend
 * size      sizes that do not belong together: data and its width and height, picture and mask
 * memory    there is not enough
 * load      the module could not be loaded
 * argument  a value of a wrong kind or out of its range, a mask that marks nothing, a photo or an
 *           object not set, a Blender after dispose
 */
export type ErrorCode = "refused" | "size" | "memory" | "load" | "argument";

export class ImageBlendError extends Error {
    readonly code: ErrorCode;
}

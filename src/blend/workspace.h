// All planes of all levels of one blend, in one block.
#ifndef IMAGEBLEND_BLEND_WORKSPACE_H
#define IMAGEBLEND_BLEND_WORKSPACE_H

#include <stdint.h>

// Deeper than any 32-bit side can be halved.
enum { MAX_LEVELS = 32 };

// Level l has w(l) = width >> l by h(l) = height >> l pixels, l = 0 .. levels. Planes are packed;
// the 16-bit ones have three interleaved channels, the mask one. The block holds, in this order:
// this header, the arrays in the order level_width, level_height, lap_dst, lap_src, mask_levels
// (levels + 1 entries each), down_plane, down_plane2, up_plane, and for each level lap_dst,
// lap_src, mask.
typedef struct blend_workspace {
    uint32_t levels;
    uint32_t width;
    uint32_t height;
    int16_t** lap_dst;      // destination's Laplacian levels, overwritten by the blended ones
    int16_t** lap_src;      // source's Laplacian levels
    uint8_t** mask_levels;  // level 0 is the mask, the others its reductions; even offsets
    uint32_t* level_width;
    uint32_t* level_height;
    uint8_t* down_plane;   // 3 x width x height: the reduced level of the current step
    uint8_t* down_plane2;  // the same, of every other step
    uint8_t* up_plane;     // 3 x width x height, rounded up to even: the expanded level
} blend_workspace;

// A workspace, or null after one line in the log. Without levels below the first its planes are filled
// with zeros; otherwise they are left as the system gives them. The caller frees it with
// free_blend_workspace.
blend_workspace* alloc_blend_workspace(int32_t width, int32_t height, uint32_t levels);

void free_blend_workspace(blend_workspace* ws);

#endif

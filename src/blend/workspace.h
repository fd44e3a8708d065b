// SPDX-License-Identifier: Apache-2.0
// The coarser levels of one blend, in one block.
#ifndef IMAGEBLEND_BLEND_WORKSPACE_H
#define IMAGEBLEND_BLEND_WORKSPACE_H

#include <stdint.h>

// Deeper than any 32-bit side can be halved.
enum { MAX_LEVELS = 32 };

// Level l has w(l) = width >> l by h(l) = height >> l pixels, l = 0 .. levels. Planes are packed;
// the colour planes have three interleaved channels, the mask one.
//
// The finest level belongs to the caller and is not here. The colours of the others lie one level
// behind the other, finest first; no level is ever whole in 16 bits. So the block has about 3.3
// bytes for a pixel of the finest level. It holds, in this order: this header, the arrays
// level_width, level_height and mask_levels (levels + 1 entries each), down_plane, down_plane2,
// up_plane, and the mask of each level. Every mask starts at an even offset.
typedef struct blend_workspace {
    uint32_t levels;
    uint32_t width;
    uint32_t height;
    uint8_t** mask_levels;  // reductions of the mask; null for level 0
    uint32_t* level_width;
    uint32_t* level_height;
    uint8_t* down_plane;   // reduced levels of the source
    uint8_t* down_plane2;  // reduced levels of the destination
    uint8_t* up_plane;     // levels of the result
} blend_workspace;

// A workspace, or null after one line in the log. Its planes are left as the system gives them,
// since each is written before it is read. The caller frees it with free_blend_workspace.
blend_workspace* alloc_blend_workspace(int32_t width, int32_t height, uint32_t levels);

void free_blend_workspace(blend_workspace* ws);

#endif

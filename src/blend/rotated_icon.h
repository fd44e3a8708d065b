// SPDX-License-Identifier: Apache-2.0
// The one piece of process-wide state: a rotated icon that a failed blend has left behind.
#ifndef IMAGEBLEND_BLEND_ROTATED_ICON_H
#define IMAGEBLEND_BLEND_ROTATED_ICON_H

#include "imageblend.h"

// A blend turns its icon row by row where it is read and needs none in memory. One that fails
// because the zoomed object is too large leaves one here all the same, with pixels that nobody
// reads; the next blend that succeeds without an angle frees it, the next with an angle puts what
// it leaves, an icon or null, in its place. Changed atomically, as blends may run at the same time.
extern blend_image* g_rotated_icon;

// A record and pixels of its own for a rotated icon, not filled; null without memory.
blend_image* alloc_rotated_icon(int32_t width, int32_t height);

// Puts an icon, or null, into the place of what is there.
void leave_rotated_icon(blend_image* icon);

// Frees what is there, if there is something, and leaves null.
void free_rotated_icon(void);

#endif

// The one piece of process-wide state: the rotated copy of the icon that a blend is working on.
#ifndef IMAGEBLEND_BLEND_ROTATED_ICON_H
#define IMAGEBLEND_BLEND_ROTATED_ICON_H

#include "imageblend.h"

// Set by a blend with an angle, freed and set to null when the blend has run. It outlives a blend
// that fails because the zoomed object is too large; the next one frees or replaces it.
extern blend_image* g_rotated_icon;

// Frees the record and its pixels, if there is one, and clears the pointer.
void free_rotated_icon(void);

#endif

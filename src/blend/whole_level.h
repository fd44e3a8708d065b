// Levels that have too few rows for bands, done whole in the calling thread.
#ifndef IMAGEBLEND_BLEND_WHOLE_LEVEL_H
#define IMAGEBLEND_BLEND_WHOLE_LEVEL_H

#include "blend/pyramid_run.h"

// The same results as the stages of pyramid_run.h. The finest level must be packed patches. False
// when the scratch of a routine cannot be had.
bool build_whole_level(pyramid_run* run, int32_t level);
bool collapse_whole_level(pyramid_run* run, int32_t level);

#endif

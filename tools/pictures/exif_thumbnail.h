// SPDX-License-Identifier: Apache-2.0
// The small picture that EXIF data carries along.
#ifndef IMAGEBLEND_TOOLS_PICTURES_EXIF_THUMBNAIL_H
#define IMAGEBLEND_TOOLS_PICTURES_EXIF_THUMBNAIL_H

#include <string>

namespace tool {

// The EXIF data, beginning with "Exif", without the directory that holds the thumbnail. Damaged
// data stay as they are.
std::string without_thumbnail(std::string exif);

}  // namespace tool

#endif

// SPDX-License-Identifier: Apache-2.0
// The kinds of image files that libvips writes.
#ifndef IMAGEBLEND_TOOLS_PICTURES_FILE_KIND_H
#define IMAGEBLEND_TOOLS_PICTURES_FILE_KIND_H

#include <string>
#include <vips/vips8>

namespace tool {

struct FileKind {
    std::string suffix;  // in small letters, such as ".png"
    std::string saver;   // class of libvips
    bool alpha;          // holds an alpha channel
    bool colour;
    bool wants_name;  // its saver writes only to a path with the suffix
};

// By the suffix of a path, or by a path that is no more than the suffix; false for one that is not
// known.
bool find_kind(const std::string& path, FileKind& kind);

// The kind of the file that the picture was read from; false when there is no way to write it.
bool find_kind_of(const vips::VImage& picture, FileKind& kind);

// Writes over a file that is there. `options` are those of libvips, without brackets; they win over
// the defaults of the kind: a JPEG has quality 92 and full chroma.
void save_picture(const vips::VImage& picture, const FileKind& kind, const std::string& options,
                  const std::string& path);

// EXIF, XMP, IPTC and colour profile that the picture has and the file that was written of it has
// not, as words; empty when nothing is lost or when this cannot be told.
std::string lost_metadata(const vips::VImage& picture, const FileKind& kind,
                          const std::string& options, const std::string& path);

}  // namespace tool

#endif

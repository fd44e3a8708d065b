// SPDX-License-Identifier: Apache-2.0
// Writes an image file whole or not at all.
#ifndef IMAGEBLEND_TOOLS_PICTURES_OUTPUT_FILE_H
#define IMAGEBLEND_TOOLS_PICTURES_OUTPUT_FILE_H

#include <string>
#include <vips/vips8>

#include "pictures/file_kind.h"
#include "pictures/temporary_file.h"

namespace tool {

// "-", or a suffix alone such as ".png" or ".jpg[Q=95]".
bool is_standard_output(const std::string& path);

// The picture goes to a temporary file, which takes the output's name once it is complete. Standard
// output, pipes and devices get the bytes of the complete file.
class OutputFile {
  public:
    // Makes the temporary file, so that an unknown suffix or an unwritable folder shows at once.
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Where no suffix gives the kind of file, it is PNG unless it is taken from this picture, which
    // was read from a file.
    void take_kind_of(const vips::VImage& picture);

    // Whether this kind of file holds an alpha channel.
    bool keeps_alpha() const { return kind_.alpha; }

    // Warns of metadata and colours that are lost. Puts nothing in place when a warning was given
    // under --strict.
    void commit(const vips::VImage& image);

  private:
    enum class Place { file, stream, standard_output };

    void find_place();
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void fail_with_errno() const;
    void warn_of_losses(const vips::VImage& image) const;
    void copy_to_stream() const;
    void replace_target();

    std::string path_;     // as given, for messages
    std::string target_;   // without options, symbolic links followed
    std::string options_;  // libvips options, without brackets
    Place place_ = Place::file;
    FileKind kind_;
    bool suffix_given_ = false;
    TemporaryFile file_;
};

}  // namespace tool

#endif

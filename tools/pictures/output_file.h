// Writes an image file whole or not at all.
#ifndef IMAGEBLEND_TOOLS_PICTURES_OUTPUT_FILE_H
#define IMAGEBLEND_TOOLS_PICTURES_OUTPUT_FILE_H

#include <string>
#include <vips/vips8>

namespace tool {

// The picture goes to a temporary file in the folder of the output, which takes the output's name
// once it is complete. Until then, a failure, the destructor and the signals of
// remove_output_on_signals remove it. At most one object exists at a time.
class OutputFile {
  public:
    // Makes the temporary file, so that an unknown suffix or an unwritable folder shows at once.
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Whether this kind of file holds an alpha channel.
    bool keeps_alpha() const { return keeps_alpha_; }
    void commit(const vips::VImage& image);

  private:
    [[noreturn]] void fail(const std::string& reason) const;

    std::string path_;     // as given, for messages
    std::string target_;   // without options, symbolic links followed
    std::string options_;  // libvips options in brackets, or nothing
    bool keeps_alpha_ = false;
    int descriptor_ = -1;
};

// A signal that ends the process (hang-up, interrupt, termination) removes the temporary file
// first.
void remove_output_on_signals();

}  // namespace tool

#endif

// SPDX-License-Identifier: Apache-2.0
// A file that takes its name once it is complete.
#ifndef IMAGEBLEND_TOOLS_PICTURES_TEMPORARY_FILE_H
#define IMAGEBLEND_TOOLS_PICTURES_TEMPORARY_FILE_H

#include <string>

namespace tool {

// The file has no name where the file system knows such files, so that nothing of it can be left
// behind. Elsewhere its name begins with ".imageblend-", and the destructor and every signal that
// ends the process remove it, but for SIGKILL. At most one exists at a time. Functions fail with
// false or a negative descriptor, and errno.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // In the folder of the file whose place it is to take. With a suffix, the file has a name that
    // ends in it.
    bool create_beside(const std::string& target, const std::string& suffix = "");
    // For what is copied to a pipe or a device afterwards.
    bool create_in_memory();

    int descriptor() const { return descriptor_; }
    // Opens the file again.
    std::string path() const;

    // Replaces the target.
    bool take_place_of(const std::string& target);

  private:
    bool create_unnamed(const std::string& folder);
    bool create_named(const std::string& folder, const std::string& suffix);
    bool link_to(const std::string& name) const;

    int descriptor_ = -1;
    bool named_ = false;
};

// Removes the file that has a name, if any; for a process that ends at once. Fit for signal
// handlers.
void remove_temporary_file();

}  // namespace tool

#endif

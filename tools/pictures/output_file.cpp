// SPDX-License-Identifier: Apache-2.0
#include "pictures/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "pictures/errors.h"
#include "pictures/picture_file.h"

namespace tool {
namespace {

using vips::VImage;

// The permissions that a newly created file would get, or those of the file that is replaced.
mode_t mode_for(const std::string& target) {
    struct stat existing;
    if (stat(target.c_str(), &existing) == 0) return existing.st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// libvips repeats itself when a write fails: up to the system's reason, without the temporary name.
std::string shorten(std::string message, const std::string& temporary_path) {
    const std::string name = temporary_path + ": ";
    if (message.compare(0, name.size(), name) == 0) message.erase(0, name.size());
    const size_t reason = message.find("unix error: ");
    return reason == std::string::npos ? message : message.substr(0, message.find(';', reason));
}

bool write_all(int descriptor, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t part = write(descriptor, bytes, size);
        if (part < 0 && errno == EINTR) continue;
        if (part < 0) return false;
        bytes += part;
        size -= static_cast<size_t>(part);
    }
    return true;
}

bool copy_file(int from, int to) {
    char block[65536];
    off_t at = 0;
    ssize_t bytes = 0;
    while ((bytes = pread(from, block, sizeof block, at)) > 0) {
        if (!write_all(to, block, static_cast<size_t>(bytes))) return false;
        at += bytes;
    }
    return bytes == 0;
}

}  // namespace

bool is_standard_output(const std::string& path) {
    const std::string plain = path.substr(0, path.find('['));
    return plain == standard_stream ||
           (plain.rfind('.') == 0 && plain.find('/') == std::string::npos);
}

OutputFile::OutputFile(const std::string& path) : path_(path) {
    char* const plain = vips_filename_get_filename(path.c_str());
    target_ = plain;
    g_free(plain);
    const std::string bracketed = path.substr(target_.size());
    if (bracketed.size() > 2) options_ = bracketed.substr(1, bracketed.size() - 2);

    suffix_given_ = find_kind(target_, kind_);
    if (!suffix_given_) find_kind(".png", kind_);
    find_place();
    if (!suffix_given_ && target_ != standard_stream && place_ != Place::stream) {
        throw Error(Exit::usage, path + ": no kind of image file has this suffix");
    }
    signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is a failed write
    if (place_ != Place::file && kind_.wants_name) {
        throw Error(Exit::usage, path + ": this kind of file cannot be written to a stream");
    }
    const bool created = place_ == Place::file
                             ? file_.create_beside(target_, kind_.wants_name ? kind_.suffix : "")
                             : file_.create_in_memory();
    if (!created) fail_with_errno();
}

void OutputFile::find_place() {
    if (is_standard_output(path_)) {
        place_ = Place::standard_output;
        return;
    }
    struct stat found;
    const int missing = stat(target_.c_str(), &found) == 0 ? 0 : errno;
    if (missing == 0) {
        if (S_ISDIR(found.st_mode)) fail(std::strerror(EISDIR));
        if (!S_ISREG(found.st_mode)) place_ = Place::stream;
    } else if (lstat(target_.c_str(), &found) == 0 && S_ISLNK(found.st_mode)) {
        fail(missing == ENOENT ? "a symbolic link that leads to no file" : std::strerror(missing));
    }
    std::error_code failure;
    const std::filesystem::path followed = std::filesystem::weakly_canonical(target_, failure);
    if (place_ == Place::file && !failure) target_ = followed;
}

void OutputFile::take_kind_of(const VImage& picture) {
    FileKind kind;
    if (suffix_given_ || !find_kind_of(picture, kind) || kind.wants_name) return;
    kind_ = kind;
}

void OutputFile::fail(const std::string& reason) const {
    const std::string name = path_ == standard_stream ? "standard output" : path_;
    throw Error(Exit::no_output, name + ": cannot be written: " + reason);
}

void OutputFile::fail_with_errno() const {
    fail(std::strerror(errno));
}

void OutputFile::warn_of_losses(const VImage& image) const {
    const std::string metadata = lost_metadata(image, kind_, options_, file_.path());
    if (!kind_.colour) warn(path_ + ": this kind of file holds no colour");
    if (!metadata.empty()) warn(path_ + ": this kind of file does not keep " + metadata);
}

void OutputFile::copy_to_stream() const {
    int descriptor = STDOUT_FILENO;
    if (place_ == Place::stream) {
        descriptor = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0) fail_with_errno();
    }
    const bool written = copy_file(file_.descriptor(), descriptor);
    const int reason = errno;
    const bool closed = place_ != Place::stream || close(descriptor) == 0;
    if (!written) fail(std::strerror(reason));
    if (!closed) fail_with_errno();
}

void OutputFile::replace_target() {
    // Late write errors (quota, network folders) show here, before the old file is replaced.
    if (fsync(file_.descriptor()) != 0 && errno != EINVAL) fail_with_errno();
    // Some file systems have no permissions to set.
    if (chmod(file_.path().c_str(), mode_for(target_)) != 0 && errno != EPERM) fail_with_errno();
    if (!file_.take_place_of(target_)) fail_with_errno();
}

void OutputFile::commit(const VImage& image) {
    try {
        save_picture(image, kind_, options_, file_.path());
        warn_of_losses(image);
    } catch (const vips::VError& error) {
        const std::string message = vips_message(error);
        if (is_lack_of_memory(message)) {
            throw Error(Exit::internal, "not enough memory to write " + path_);
        }
        fail(shorten(message, file_.path()));
    }
    refuse_warnings(path_ + ": is not written");
    if (place_ == Place::file) {
        replace_target();
    } else {
        copy_to_stream();
    }
}

}  // namespace tool

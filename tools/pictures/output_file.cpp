#include "pictures/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "pictures/errors.h"
#include "pictures/picture_file.h"

namespace tool {
namespace {

constexpr int ending_signals[] = {SIGHUP, SIGINT, SIGTERM};

// Read by the signal handler: the temporary file that is to be removed.
char pending_path[PATH_MAX];
volatile sig_atomic_t pending = 0;

void remove_and_end(int signal_number) {
    if (pending) unlink(pending_path);
    signal(signal_number, SIG_DFL);
    raise(signal_number);
}

// Held while the file and `pending` change together.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : ending_signals)
            sigaddset(&held, number);
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

std::string take_text(char* text_of_glib) {
    std::string result = text_of_glib ? text_of_glib : "";
    g_free(text_of_glib);
    return result;
}

// The permissions that a newly created file would get, or those of the file that is replaced.
mode_t mode_for(const std::string& target) {
    struct stat existing;
    if (stat(target.c_str(), &existing) == 0) return existing.st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// libvips repeats itself when a write fails: up to the system's reason, without the temporary name.
std::string shorten(std::string message) {
    const std::string name = std::string(pending_path) + ": ";
    if (message.compare(0, name.size(), name) == 0) message.erase(0, name.size());
    const size_t reason = message.find("unix error: ");
    return reason == std::string::npos ? message : message.substr(0, message.find(';', reason));
}

bool saver_keeps_alpha(const char* saver) {
    const auto* const kind =
        static_cast<const VipsForeignSaveClass*>(g_type_class_ref(g_type_from_name(saver)));
    return kind->saveable == VIPS_SAVEABLE_RGBA || kind->saveable == VIPS_SAVEABLE_RGBA_ONLY ||
           kind->saveable == VIPS_SAVEABLE_ANY;
}

}  // namespace

void remove_output_on_signals() {
    for (const int number : ending_signals) {
        // An ignored signal stays ignored (nohup).
        if (signal(number, remove_and_end) == SIG_IGN) signal(number, SIG_IGN);
    }
    signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is a failed write
}

OutputFile::OutputFile(const std::string& path)
    : path_(path),
      target_(take_text(vips_filename_get_filename(path.c_str()))),
      options_(take_text(vips_filename_get_options(path.c_str()))) {
    namespace fs = std::filesystem;
    const char* const saver = vips_foreign_find_save(path.c_str());
    // A DeepZoom saver writes a tree of files, which cannot take the place of the output at once.
    if (!saver || std::strncmp(saver, "VipsForeignSaveDz", 17) == 0) {
        vips_error_clear();
        throw Error(Exit::usage, path + ": no kind of image file has this suffix");
    }
    keeps_alpha_ = saver_keeps_alpha(saver);

    std::error_code ignored;
    if (fs::is_symlink(target_, ignored)) {
        const fs::path followed = fs::weakly_canonical(target_, ignored);
        if (!ignored) target_ = followed;
    }
    if (fs::is_directory(target_, ignored)) fail(std::strerror(EISDIR));

    const fs::path file(target_);
    const std::string suffix = file.extension();
    const std::string name = file.parent_path() / (".imageblend-XXXXXX" + suffix);
    if (name.size() >= sizeof pending_path) fail(std::strerror(ENAMETOOLONG));
    const SignalsHeld held;
    std::copy_n(name.c_str(), name.size() + 1, pending_path);
    descriptor_ = mkostemps(pending_path, static_cast<int>(suffix.size()), O_CLOEXEC);
    if (descriptor_ < 0) fail(std::strerror(errno));
    pending = 1;
}

OutputFile::~OutputFile() {
    close(descriptor_);
    if (pending) unlink(pending_path);
    pending = 0;
}

void OutputFile::fail(const std::string& reason) const {
    throw Error(Exit::no_output, path_ + ": cannot be written: " + reason);
}

void OutputFile::commit(const vips::VImage& image) {
    try {
        image.write_to_file((pending_path + options_).c_str());
    } catch (const vips::VError& error) {
        fail(shorten(vips_message(error)));
    }
    refuse_warnings(path_ + ": is not written");
    // Late write errors (quota, network folders) show here, before the old file is replaced.
    if (fsync(descriptor_) != 0 && errno != EINVAL) fail(std::strerror(errno));
    // Some file systems have no permissions to set.
    if (fchmod(descriptor_, mode_for(target_)) != 0 && errno != EPERM) fail(std::strerror(errno));
    const SignalsHeld held;
    if (std::rename(pending_path, target_.c_str()) != 0) fail(std::strerror(errno));
    pending = 0;
}

}  // namespace tool

// Reads and writes whole files.
#include "embedded_host/embedded_host.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace embedded_host {
namespace {
namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, const char* what, int error) {
    throw FileError(path + ": " + what + ": " + std::strerror(error));
}

// An open file, closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_descriptor >= 0) ::close(m_descriptor);
    }
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

void writeAll(int descriptor, const std::string& text, const std::string& path) {
    for (std::size_t done = 0; done < text.size();) {
        const auto written = ::write(descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR) fail(path, "cannot write", errno);
        if (written > 0) done += static_cast<std::size_t>(written);
    }
}

// The permissions that a new file gets, as `open` would give them.
mode_t newFileMode() {
    const auto mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

[[noreturn]] void refuseExisting(const std::string& path) {
    throw FileError(path + ": the file exists and is not overwritten");
}

// Makes `temporary` appear as `path`; without `overwrite` only when there is no such file yet.
void publish(const std::string& temporary, const std::string& path, bool overwrite) {
    int result = -1;
    if (overwrite) {
        result = ::rename(temporary.c_str(), path.c_str());
    } else {
        result = ::link(temporary.c_str(), path.c_str());
        if (result == 0) ::unlink(temporary.c_str());
        if (result != 0 && errno == EEXIST) refuseExisting(path);
        if (result != 0) result = ::rename(temporary.c_str(), path.c_str());  // a file system without links
    }
    if (result != 0) fail(path, "cannot write", errno);
}

}  // namespace

std::string readFile(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) fail(path, "cannot open", errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) fail(path, "cannot read", errno);
    // The size is a hint only: it is 0 for pipes, and one byte more lets the end be seen without growing.
    std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
    for (std::size_t done = 0;;) {
        if (done == text.size()) text.resize(text.size() * 2 + 4096);
        const auto count = ::read(file.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path, "cannot read", errno);
        if (count == 0) {
            text.resize(done);
            return text;
        }
        done += static_cast<std::size_t>(count);
    }
}

void writeFile(const std::string& path, const std::string& text, bool overwrite) {
    std::error_code ignored;
    const auto status = fs::status(path, ignored);
    if (fs::is_directory(status)) fail(path, "cannot write", EISDIR);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        const Descriptor device(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
        if (device.get() < 0) fail(path, "cannot open", errno);
        return writeAll(device.get(), text, path);
    }
    if (fs::exists(status) && !overwrite) refuseExisting(path);

    // A link stays a link: the file it names is replaced.
    const auto target = fs::exists(status) ? fs::canonical(path, ignored).string() : path;
    std::string temporary = target + ".XXXXXX";
    const Descriptor file(::mkstemp(temporary.data()));
    if (file.get() < 0) fail(path, "cannot write", errno);
    try {
        ::fchmod(file.get(), newFileMode());
        writeAll(file.get(), text, path);
        publish(temporary, target, overwrite);
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
}

}  // namespace embedded_host

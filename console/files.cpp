#include "console/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "console/problems.h"

namespace vorn::console {

namespace {

// A descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const { return number_; }
  // Some systems tell only here that the disk was full.
  [[nodiscard]] bool close() {
    const int number = number_;
    number_ = -1;
    return ::close(number) == 0;
  }

 private:
  int number_;
};

std::string reason() { return std::strerror(errno); }

bool writeAll(int file, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t written = ::write(file, contents.data(), contents.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

[[noreturn]] void refuseWriting(const std::string& path, const std::string& why) {
  throw Refusal("cannot write " + path + ": " + why);
}

void writeDirectly(const std::string& path, std::string_view contents) {
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (file.number() < 0 || !writeAll(file.number(), contents) || !file.close()) refuseWriting(path, reason());
}

}  // namespace

std::string readFile(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::string contents;
  char block[65536];
  while (true) {
    const ssize_t count = file.number() < 0 ? -1 : ::read(file.number(), block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw Refusal("cannot read " + path + ": " + reason());
    if (count == 0) return contents;
    contents.append(block, static_cast<std::size_t>(count));
  }
}

void writeFile(const std::string& path, std::string_view contents) {
  struct stat status = {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) refuseWriting(path, std::strerror(EISDIR));
  if (exists && !S_ISREG(status.st_mode)) return writeDirectly(path, contents);

  const std::string pattern = path + ".XXXXXX";
  std::vector<char> name(pattern.c_str(), pattern.c_str() + pattern.size() + 1);
  Descriptor file(::mkstemp(name.data()));
  if (file.number() < 0) refuseWriting(path, reason());
  // Files of mkstemp are for their owner alone; this one takes over what the old one allowed, or the usual.
  const mode_t mode = exists ? status.st_mode & 07777 : 0644;
  if (::fchmod(file.number(), mode) != 0 || !writeAll(file.number(), contents) || ::fsync(file.number()) != 0 ||
      !file.close() || ::rename(name.data(), path.c_str()) != 0) {
    const std::string why = reason();
    ::unlink(name.data());
    refuseWriting(path, why);
  }
}

std::string expandedPath(std::string_view path) {
  const char* home = std::getenv("HOME");
  if (home == nullptr || !(path == "~" || path.starts_with("~/"))) return std::string(path);
  return home + std::string(path.substr(1));
}

}  // namespace vorn::console

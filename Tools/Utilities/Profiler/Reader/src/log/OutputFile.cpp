// Renaming over a link would replace the link, and renaming over a device would replace the
// device: so links are followed first, and only regular files are replaced.
#include "OutputFile.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

namespace kvt::profiling {

namespace fs = std::filesystem;

namespace {

constexpr size_t streamBufferBytes = 1 << 20; // large writes keep a synthesised log at disk speed
constexpr int maxLinksFollowed = 40;          // as the system's own limit on nested links

// Paths that stand for a process's open files (/dev/stdout, /dev/fd/1, /proc/self/fd/1): a rename
// would never reach the open file, so they are written in place even when a regular file is
// behind them.
bool isSystemPath(const fs::path& path) {
  const std::string text = path.string();
  return text.starts_with("/proc/") || text.starts_with("/dev/fd/") || text == "/dev/stdout" ||
         text == "/dev/stderr";
}

// The file a path leads to through its symbolic links, dangling ones included; none when the
// chain passes through a system path.
std::optional<fs::path> followLinks(fs::path path) {
  std::error_code error;
  for (int i = 0; i < maxLinksFollowed && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
    if (isSystemPath(path))
      return std::nullopt;
    const fs::path next = fs::read_symlink(path, error);
    if (error)
      return std::nullopt;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return isSystemPath(path) ? std::nullopt : std::optional(path);
}

// Only a regular file, or none, is replaced by renaming another file over it.
bool isReplaceable(const fs::path& path) {
  std::error_code ignored;
  const fs::file_type type = fs::status(path, ignored).type();
  return type == fs::file_type::regular || type == fs::file_type::not_found;
}

std::string systemReason(int error) {
  return std::generic_category().message(error);
}

} // namespace

OutputFile::OutputFile(const std::string& path) {
  const std::optional<fs::path> followed = followLinks(path);
  if (followed && isReplaceable(path) && isReplaceable(*followed)) {
    target = followed->string();
    partialPath = target + ".partial";
  } else {
    target = path;
  }
  errno = 0;
  file = std::fopen(partialPath.empty() ? target.c_str() : partialPath.c_str(), "wb");
  if (!file) {
    reason = systemReason(errno ? errno : EIO);
    return;
  }
  std::setvbuf(file, nullptr, _IOFBF, streamBufferBytes);
}

OutputFile::~OutputFile() {
  if (file)
    discard();
}

bool OutputFile::write(std::span<const uint8_t> bytes) {
  if (!file || !reason.empty())
    return false;
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) {
    fail();
    return false;
  }
  writtenBytes += bytes.size();
  return true;
}

bool OutputFile::write(std::string_view text) {
  return write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

bool OutputFile::commit() {
  if (!file)
    return false;
  errno = 0;
  if (!reason.empty() || std::fflush(file) != 0) {
    if (reason.empty())
      fail();
    discard();
    return false;
  }
  errno = 0;
  const bool closed = std::fclose(file) == 0;
  file = nullptr;
  if (!closed)
    reason = systemReason(errno ? errno : EIO);
  if (partialPath.empty())
    return closed;
  std::error_code renameError;
  if (closed)
    fs::rename(partialPath, target, renameError);
  if (!closed || renameError) {
    if (renameError)
      reason = renameError.message();
    std::remove(partialPath.c_str());
    return false;
  }
  return true;
}

void OutputFile::fail() {
  reason = systemReason(errno ? errno : EIO);
}

void OutputFile::discard() {
  std::fclose(file);
  file = nullptr;
  if (!partialPath.empty())
    std::remove(partialPath.c_str());
}

bool writeWholeFile(const std::string& path, std::string_view bytes, std::string& failure) {
  OutputFile file(path);
  const bool written = file.write(bytes) && file.commit();
  failure = file.failure();
  return written;
}

} // namespace kvt::profiling

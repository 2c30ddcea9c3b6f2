#include "host/assembly/StandardChannels.h"

#include <fcntl.h>
#include <unistd.h>

#include <boost/format.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "common/log/Logger.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

/// A duplicate of a channel that child processes do not inherit.
Platform::FileDescriptor CopyOf(int channel) {
  return Platform::FileDescriptor(::fcntl(channel, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

std::string ContentOf(const Platform::FileDescriptor& file) {
  std::string text(static_cast<std::size_t>(::lseek(file.Get(), 0, SEEK_END)), '\0');
  ::lseek(file.Get(), 0, SEEK_SET);
  text.resize(Platform::ReadFull(file, text.data(), text.size()));
  return text;
}

}  // namespace

void FillStandardChannels() {
  for (const int channel : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(channel, F_GETFD) >= 0) continue;
    // `open` returns the lowest free number, which is this one. Read-only, so that writing fails.
    Platform::FileDescriptor filled(::open("/dev/null", O_RDONLY));
    static_cast<void>(filled.Release());
  }
}

OwnErrors::OwnErrors() : std::ostream(this), channel_(CopyOf(STDERR_FILENO)) {}

int OwnErrors::sync() {
  const std::string text = str();
  str("");
  try {
    Platform::WriteAll(channel_, text.data(), text.size());
    return 0;
  } catch (const std::exception&) {
    return -1;  // sets the stream's bad state
  }
}

ToolErrors::ToolErrors() {
  std::FILE* const file = std::tmpfile();
  if (!file) return;
  kept_ = CopyOf(::fileno(file));
  std::fclose(file);
  former_ = CopyOf(STDERR_FILENO);
  if (kept_.IsOpen() && former_.IsOpen()) ::dup2(kept_.Get(), STDERR_FILENO);
}

ToolErrors::~ToolErrors() {
  if (!kept_.IsOpen() || !former_.IsOpen()) return;
  ::dup2(former_.Get(), STDERR_FILENO);
  try {
    std::istringstream lines(ContentOf(kept_));
    for (std::string line; std::getline(lines, line);) NORVIK_DETAIL(line);
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The error output of tools is lost: %1%") % error.what());
  }
}

}  // namespace Norvik::Host

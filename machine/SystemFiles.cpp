#include "machine/SystemFiles.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <utility>

#include "common/files/TextFile.h"
#include "common/text/Text.h"
#include "machine/SystemText.h"
#include "platform/MachinePath.h"

namespace Norvik::Machine {

using Common::ReadTextFile;
namespace fs = boost::filesystem;

SystemFiles::SystemFiles(fs::path root) : root_(std::move(root)) {}

fs::path SystemFiles::At(const std::string& path) const {
  return root_.empty() ? Platform::MachinePath(path) : root_ / fs::path(path).relative_path();
}

std::string SystemFiles::Bytes(const std::string& path) const {
  try {
    return ReadTextFile(At(path));
  } catch (const std::exception&) {
    return {};  // a fact that cannot be read is left out
  }
}

std::string SystemFiles::Text(const std::string& path) const {
  return Common::trim_copy(Common::EncodeUtf8Characters(Bytes(path)));
}

std::uint64_t SystemFiles::Number(const std::string& path) const {
  return LeadingNumber(Text(path));
}

bool SystemFiles::Exists(const std::string& path) const {
  boost::system::error_code unknown;
  return fs::exists(At(path), unknown);
}

std::vector<std::string> SystemFiles::Names(const std::string& folder) const {
  std::vector<std::string> names;
  boost::system::error_code error;
  for (fs::directory_iterator item(At(folder), error), end; !error && item != end;
       item.increment(error)) {
    names.push_back(item->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string SystemFiles::LinkText(const std::string& path) const {
  boost::system::error_code error;
  const fs::path target = fs::read_symlink(At(path), error);
  return error ? std::string() : target.string();
}

std::string SystemFiles::Resolved(const std::string& path) const {
  boost::system::error_code error;
  const fs::path target = fs::canonical(At(path), error);
  return error ? std::string() : target.string();
}

std::string TimeZoneOf(const SystemFiles& files) {
  static const std::string FOLDER = "zoneinfo/";
  const std::string link = files.LinkText("/etc/localtime");
  const auto position = link.find(FOLDER);
  if (position != std::string::npos) return link.substr(position + FOLDER.size());
  return files.Text("/etc/timezone");
}

}  // namespace Norvik::Machine

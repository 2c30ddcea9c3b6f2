#include "common/inventory/ApplicationBundles.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <string>

#include "common/text/Text.h"
#include "platform/MachinePath.h"
#include "platform/PropertyListFile.h"

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;
using Software = std::vector<SoftwareRegisteredInfo>;

const std::string EXTENSION = ".app";

constexpr const char* FOLDERS[] = {"/Applications",
                                   "/System/Applications",
                                   "/System/Library/CoreServices",
                                   "/System/Library/Image Capture",
                                   "/System/Library/Input Methods",
                                   "/System/Library/Services",
                                   "/Library/Apple/System/Library/CoreServices",
                                   "/Library/Image Capture",
                                   "/Library/Input Methods"};

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  boost::system::error_code error;
  for (fs::directory_iterator item(Platform::MachinePath(folder), error), end;
       !error && item != end; item.increment(error)) {
    names.push_back(item->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool Exists(const std::string& path) {
  boost::system::error_code unknown;
  return fs::exists(Platform::MachinePath(path), unknown);
}

/// A folder that is neither a link, which could lead in a circle, nor a bundle.
bool IsPlainFolder(const std::string& path) {
  boost::system::error_code unknown;
  const auto status = fs::symlink_status(Platform::MachinePath(path), unknown);
  return status.type() == fs::directory_file && !Exists(path + "/Contents");
}

std::time_t LastChange(const std::string& path) {
  boost::system::error_code error;
  const std::time_t time = fs::last_write_time(Platform::MachinePath(path), error);
  return error ? 0 : time;
}

SoftwareRegisteredInfo BundleOf(const std::string& path, const std::string& listPath) {
  const Platform::PropertyListFile list(Platform::MachinePath(listPath));
  const std::string text = EncodeUtf8Characters(path);
  SoftwareRegisteredInfo software;
  software.location = text;
  software.softwareKey = text;
  software.name = text.substr(text.rfind('/') + 1);
  software.name.resize(software.name.size() - EXTENSION.size());
  software.version = list.Text("CFBundleShortVersionString");
  if (software.version.empty()) software.version = list.Text("CFBundleVersion");
  software.description = list.Text("CFBundleGetInfoString");
  software.installDate = LastChange(path);
  software.systemComponent = boost::starts_with(text, "/System/");
  return software;
}

void AddBundle(const std::string& path, Software& result) {
  // Applications for phones are inside a wrapper.
  for (const char* list : {"/Contents/Info.plist", "/WrappedBundle/Info.plist"}) {
    if (!Exists(path + list)) continue;
    result.push_back(BundleOf(path, path + list));
    return;
  }
}

/// @param levels how many folders deep to search
void AddBundlesIn(const std::string& folder, int levels, Software& result) {
  for (const auto& name : NamesIn(folder)) {
    const std::string path = folder + "/" + name;
    if (name.size() > EXTENSION.size() && boost::ends_with(name, EXTENSION)) {
      AddBundle(path, result);
    } else if (levels > 1 && IsPlainFolder(path)) {
      AddBundlesIn(path, levels - 1, result);
    }
  }
}

}  // namespace

Software ReadApplicationBundles() {
  constexpr int LEVELS = 3;
  Software result;
  for (const char* folder : FOLDERS) AddBundlesIn(folder, LEVELS, result);
  for (const auto& user : NamesIn("/Users")) {
    AddBundlesIn("/Users/" + user + "/Applications", LEVELS, result);
  }
  return result;
}

}  // namespace Norvik::Common

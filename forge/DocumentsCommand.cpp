#include "forge/DocumentsCommand.h"

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <memory>
#include <ostream>
#include <stdexcept>

#include "forge/DocumentSealer.h"
#include "forge/MacDocuments.h"

namespace Norvik::Forge {

namespace fs = boost::filesystem;

namespace {

class Target {
 public:
  explicit Target(const DocumentsOptions& options) : folder_(options.output) {
    if (!options.keys.empty()) sealer_ = std::make_unique<DocumentSealer>(options.keys);
    boost::system::error_code error;
    fs::create_directories(folder_, error);
    if (error) throw std::runtime_error(folder_.string() + ": " + error.message());
    if (!fs::is_empty(folder_)) throw std::runtime_error(folder_.string() + " is not empty");
  }

  void Write(const MadeDocument& document, const Mac& mac) {
    const fs::path folder = folder_ / FolderOf(mac);
    if (folder != last_) fs::create_directory(last_ = folder);
    const fs::path file = folder / (DayPrefix(document.day) + document.KindName() + "." +
                                    (sealer_ ? document.Extension() : "json"));
    const std::string content =
        sealer_ ? sealer_->Sealed(document, mac.HostName()) : document.text + "\n";
    fs::ofstream stream(file, std::ios::binary);
    if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
      throw std::runtime_error("cannot write " + file.string());
    }
  }

 private:
  fs::path folder_;
  fs::path last_;
  std::unique_ptr<DocumentSealer> sealer_;
};

}  // namespace

std::string FolderOf(const Mac& mac) {
  char name[32];
  std::snprintf(name, sizeof(name), "mac-%06u", mac.Number());
  return name;
}

std::string DayPrefix(int day) {
  char prefix[16];
  std::snprintf(prefix, sizeof(prefix), "%04d-", day);
  return prefix;
}

void WriteDocuments(const DocumentsOptions& options, std::ostream& output) {
  const FleetOptions& fleet = options.fleet;
  const Profiles profiles;
  std::unique_ptr<Target> target;
  if (options.output != "-") target = std::make_unique<Target>(options);
  std::size_t count = 0;
  for (unsigned int i = 0; i < fleet.macs; ++i) {
    const Mac mac(profiles, fleet.seed, fleet.first + i, fleet.start);
    MacDocuments documents(mac, fleet.files);
    for (int day = 0; day < fleet.days; ++day) {
      for (const MadeDocument& document : documents.Next(day)) {
        ++count;
        if (target) {
          target->Write(document, mac);
        } else if (!(output << document.text << '\n')) {
          throw std::runtime_error("cannot write the output");
        }
      }
    }
  }
  if (target) {
    output << count << " documents of " << fleet.macs << " Macs in " << options.output << '\n';
  }
}

}  // namespace Norvik::Forge

#include "forge/DocumentSealer.h"

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <limits>
#include <stdexcept>

#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/SealingKeys.h"
#include "common/files/TextFile.h"

namespace Norvik::Forge {

namespace fs = boost::filesystem;

DocumentSealer::DocumentSealer(const fs::path& keyFolder) : keyFolder_(keyFolder) {
  const std::string problem = Common::SealingKeys(keyFolder).ServerKeyProblem();
  if (!problem.empty()) throw std::runtime_error(problem);
  work_ = fs::temp_directory_path() / fs::unique_path("norvik-forge-%%%%%%%%");
  fs::create_directory(work_);
}

DocumentSealer::~DocumentSealer() {
  boost::system::error_code ignored;
  fs::remove_all(work_, ignored);
}

std::string DocumentSealer::Sealed(const MadeDocument& document,
                                   const std::string& hostName) const {
  const bool files = document.kind == MadeDocument::FileInventory;
  const fs::path plain = work_ / (hostName + (files ? ".rud" : ".jsonkob"));
  const fs::path packed = work_ / "packed";
  const fs::path sealed = work_ / "sealed";
  fs::ofstream stream(plain, std::ios::binary);
  if (!stream.write(document.text.data(), static_cast<std::streamsize>(document.text.size()))
           .flush()) {
    throw std::runtime_error("cannot write " + plain.string());
  }
  Common::WriteArchive(plain, packed);
  Common::FileSealer(keyFolder_).Seal(packed, sealed);
  fs::remove(plain);
  return Common::ReadTextFile(sealed, std::numeric_limits<std::size_t>::max());
}

}  // namespace Norvik::Forge

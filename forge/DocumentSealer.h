#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "forge/MacDocuments.h"

namespace Norvik::Forge {

/// Makes of documents the files that agents send: packed, and sealed to a server's key.
class DocumentSealer {
 public:
  /// @param keyFolder  has `server.pub`; throws `std::runtime_error` if it has not
  explicit DocumentSealer(const boost::filesystem::path& keyFolder);
  DocumentSealer(const DocumentSealer&) = delete;
  DocumentSealer& operator=(const DocumentSealer&) = delete;
  ~DocumentSealer();

  /// The bytes of the file. Not twice at a time.
  std::string Sealed(const MadeDocument& document, const std::string& hostName) const;

 private:
  boost::filesystem::path keyFolder_;
  boost::filesystem::path work_;  ///< a folder of its own for the steps
};

}  // namespace Norvik::Forge

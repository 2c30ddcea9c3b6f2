#pragma once

#include <string>
#include <vector>

namespace Norvik::Receiver {

/// The files that agents have sent, as they came. Their paths are made of the agent's identifier
/// and the checksum only.
class UploadFolder {
 public:
  /// @param data the folder of the receiver's data
  explicit UploadFolder(const std::string& data) : folder_(data + "/files") {}

  /// Creates what is missing of the folders. Throws `std::runtime_error`.
  void Prepare() const;
  std::string PathOf(const std::string& agent, const std::string& sha256) const;
  /// Removes a file that is not needed any more, if it is there.
  void Remove(const std::string& agent, const std::string& sha256) const;
  /// The paths of all files, also of those that are just being received.
  std::vector<std::string> Paths() const;
  const std::string& Folder() const { return folder_; }

 private:
  std::string folder_;
};

}  // namespace Norvik::Receiver

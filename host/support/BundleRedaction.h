#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "host/OutputText.h"
#include "host/redaction/BytesRedaction.h"
#include "host/support/BundleFile.h"

namespace Norvik::Host {

/// Redacts the files of a support archive with one secret, which ends with this object.
class BundleRedaction {
 public:
  /// Knows the machine, and the identity and the keys of the data folder.
  explicit BundleRedaction(const boost::filesystem::path& dataFolder);
  BundleRedaction(const BundleRedaction&) = delete;
  BundleRedaction& operator=(const BundleRedaction&) = delete;
  ~BundleRedaction() = default;

  /// Adds the sensitive values of a file, which may be in others as well. Before any is redacted.
  void AddValues(const BundleFile& file);
  /// The content of a file. Throws `std::runtime_error` if it would hold a secret of the agent.
  std::string Redacted(const BundleFile& file) const;
  std::string RedactedText(const std::string& text, int depth = 0) const;

 private:
  void AddMachine();
  void AddIdentity();
  void AddKeys();
  void AddSecret(const std::string& secret);
  void AddJson(const std::string& key, const OrderedJson& value);
  void AddTexts(const std::string& text);
  std::string RedactedString(const std::string& key, const std::string& text) const;
  OrderedJson RedactedJson(const std::string& key, const OrderedJson& value) const;
  std::string RedactedPlain(const std::string& text, int depth) const;
  std::string RedactedParts(const std::string& text, int depth) const;
  std::string RedactedLine(const std::string& line) const;
  std::string RedactedHomePath(const std::string& path) const;

  const boost::filesystem::path folder_;
  const StandIns standIns_;
  BytesRedaction bytes_;
  std::vector<std::string> secrets_;
};

}  // namespace Norvik::Host

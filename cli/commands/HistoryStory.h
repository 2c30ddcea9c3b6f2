#pragma once

#include <chrono>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/CommandLine.h"
#include "cli/commands/Rendering.h"
#include "documents/DocumentChain.h"
#include "host/history/KeptDocuments.h"

namespace Norvik::Cli {

/// What the documents of a history changed, in the order in which they were made.
class HistoryStory {
 public:
  /// @param section of which changes are told; empty: all
  /// @param since   earlier documents are read, but not told
  HistoryStory(std::string section, std::chrono::system_clock::time_point since)
      : section_(std::move(section)), since_(since) {}

  /// Reads the documents with the keys that `ReadDocument` finds. A document that does not open, or
  /// is damaged, breaks the chain of its kind.
  void Tell(const std::vector<Host::KeptDocument>& documents, const CommandLine& line);

  /// For each document a line for each change of a property, and for each record that came or went.
  std::string ToText(std::size_t width) const;
  OrderedJson ToJson() const { return told_; }
  /// Whether any document was read.
  bool HasRead() const { return hasRead_; }
  /// How many documents do not open, as a rule because they are sealed to another key.
  std::size_t Closed() const { return closed_; }
  /// The fingerprints of the keys that these need, as far as they name them.
  const std::set<std::string>& NeededKeys() const { return neededKeys_; }
  /// Why other files could not be read.
  const std::vector<std::string>& Problems() const { return problems_; }

 private:
  bool IsWanted(const Host::KeptDocument& document) const;
  void NoteClosed(const boost::filesystem::path& file);
  void TellOne(const Host::KeptDocument& document, const std::string& text,
               Documents::DocumentChain& chain);

  const std::string section_;
  const std::chrono::system_clock::time_point since_;
  OrderedJson told_ = OrderedJson::array();
  bool hasRead_ = false;
  std::size_t closed_ = 0;
  std::set<std::string> neededKeys_;
  std::vector<std::string> problems_;
};

/// The sections of which a history can tell changes.
std::vector<std::string> SectionsWithHistory();

}  // namespace Norvik::Cli

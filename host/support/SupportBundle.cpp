#include "host/support/SupportBundle.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <utility>

#include "common/files/Archive.h"
#include "common/identification/HostInfoProvider.h"
#include "host/HostError.h"
#include "host/support/BundleRedaction.h"

namespace Norvik::Host {

namespace {

using Kind = BundleFile::Kind;

constexpr char CONTENTS[] = "contents.json";
/// Of the list of contents.
constexpr std::size_t RESERVED = 100'000;
constexpr std::size_t MAX_NOTES = 200;

/// Cuts the oldest lines of a log.
void CutLog(BundleFile& file, std::size_t limit, std::vector<BundleNote>& leftOut) {
  const std::size_t before = file.content.size();
  if (before > limit) {
    const auto lineEnd = file.content.find('\n', before - limit);
    file.content.erase(0, lineEnd == std::string::npos ? before : lineEnd + 1);
    file.cut += before - file.content.size();
  }
  if (file.cut > 0) leftOut.push_back({file.name, "the oldest " + SizeText(file.cut)});
}

/// Everything else comes before the logs, which come newest first.
void Fit(BundleContent& content) {
  std::stable_partition(content.files.begin(), content.files.end(),
                        [](const BundleFile& file) { return file.kind != Kind::LOG; });
  std::size_t left = MAX_BUNDLE - RESERVED;
  std::vector<BundleFile> fitting;
  for (BundleFile& file : content.files) {
    if (file.kind == Kind::LOG) CutLog(file, left, content.leftOut);
    if (file.kind != Kind::LOG && file.content.size() > left) {
      content.leftOut.push_back({file.name, SizeText(file.content.size()) + " are too much"});
      continue;
    }
    left -= file.content.size();
    if (file.kind != Kind::LOG || !file.content.empty()) fitting.push_back(std::move(file));
  }
  content.files = std::move(fitting);
}

OrderedJson ContentsOf(const std::vector<Common::ArchiveEntry>& entries,
                       const std::vector<BundleNote>& leftOut) {
  OrderedJson files = OrderedJson::array();
  for (const auto& entry : entries) {
    files.push_back({{"name", entry.name}, {"bytes", entry.content.size()}});
  }
  OrderedJson notes = OrderedJson::array();
  for (const auto& note : leftOut) {
    if (notes.size() == MAX_NOTES) {
      notes.push_back({{"name", "others"}, {"why", std::to_string(leftOut.size() - MAX_NOTES)}});
      break;
    }
    notes.push_back({{"name", note.name}, {"why", note.why}});
  }
  return {{"made", TimeText(std::chrono::system_clock::now())},
          {"agentVersion", Common::GetAgentVersion()},
          {"files", std::move(files)},
          {"leftOut", std::move(notes)}};
}

}  // namespace

OrderedJson WriteSupportBundle(const boost::filesystem::path& dataFolder, BundleContent content,
                               const boost::filesystem::path& target) {
  const auto refuse = [&] { return UsageError(target.string() + " exists already"); };
  if (boost::filesystem::exists(boost::filesystem::symlink_status(target))) throw refuse();
  Fit(content);
  BundleRedaction redaction(dataFolder);
  for (const BundleFile& file : content.files) redaction.AddValues(file);
  std::vector<Common::ArchiveEntry> entries;
  for (const BundleFile& file : content.files) {
    try {
      entries.push_back({redaction.RedactedText(file.name), redaction.Redacted(file)});
    } catch (const std::exception& error) {
      content.leftOut.push_back({file.name, ReasonOf(error)});
    }
  }
  for (BundleNote& note : content.leftOut) {
    note = {redaction.RedactedText(note.name), redaction.RedactedText(note.why)};
  }
  OrderedJson contents = ContentsOf(entries, content.leftOut);
  entries.insert(
      entries.begin(),
      {CONTENTS, contents.dump(1, ' ', false, OrderedJson::error_handler_t::replace) + "\n"});
  if (!Common::WriteNewArchive(entries, target)) throw refuse();
  return contents;
}

}  // namespace Norvik::Host

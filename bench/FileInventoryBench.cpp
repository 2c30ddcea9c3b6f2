// Runs one part of a file inventory, for bench/file-inventory: PROGRAM PART TREE. Prints the
// processor time of the part, the amount of its work and the peak memory of the process as JSON.

#include <sys/resource.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "RawSqlite.h"
#include "common/database/AgentDatabase.h"
#include "json/JSON.h"
#include "module/ActionCodes.h"
#include "module/KOBModule.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "module/RUD/Data/RudSentences.h"
#include "module/RUD/RudFileHarvesterV2.h"
#include "module/RUD/RudPrinterV2.h"
#include "support/FakeHost.h"
#include "support/Files.h"

namespace Norvik::Bench {
namespace {

using namespace KOB;
using Tests::FakeHost;
using V2::FileHarvester;
using V2::RudBuffer;
using V2::RudDataSource;

const std::vector<std::string> Extensions = {"txt", "dylib", "pdf", "jpg",     "plist", "nib",
                                             "js",  "h",     "png", "strings", "app",   "so"};

double ProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long PeakKilobytes() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

struct Result {
  double seconds;
  std::size_t count;          ///< files that the part processed, or bytes that it wrote
  Platform::ReadCalls calls;  ///< of a walk, as the reader of the folders counts them
};

Result Timed(const std::function<std::size_t()>& part) {
  const double start = ProcessorSeconds();
  const std::size_t count = part();
  return {ProcessorSeconds() - start, count, {}};
}

void Walk(FileHarvester& harvester, const std::string& tree) {
  V2::ScanConfiguration config;
  config[V2::ExcludePath];
  config[V2::ExcludeFile];
  config[V2::IncludePath] = {tree};
  for (const auto& extension : Extensions) config[V2::IncludeExtension].insert("." + extension);
  harvester.SetConfigScan(config);
  harvester.Harvester();
}

RudBuffer Scan(const std::string& tree) {
  FileHarvester harvester;
  Walk(harvester, tree);
  return harvester.GetBuffer();
}

Result MeasureWalk(FileHarvester& harvester, const std::string& tree) {
  Result result = Timed([&] {
    Walk(harvester, tree);
    return harvester.GetBuffer().GetBufferFile().size();
  });
  result.calls = harvester.GetReadCalls();
  return result;
}

Result MeasureWalk(FakeHost&, const std::string& tree) {
  FileHarvester harvester;
  return MeasureWalk(harvester, tree);
}

/// The walk as a Mac makes it. Its time is that of the calls of this system which stand for a
/// Mac's.
Result MeasureBulkWalk(FakeHost&, const std::string& tree) {
  FileHarvester oneByOne{Platform::ReadingWay()};
  Walk(oneByOne, tree);
  FileHarvester harvester(Platform::BulkWay());
  const Result result = MeasureWalk(harvester, tree);
  const auto& rows = harvester.GetBuffer().GetBufferFile();
  const auto& expected = oneByOne.GetBuffer().GetBufferFile();
  const auto areEqual = [](const RudFileInfo& file, const RudFileInfo& other) {
    return std::tie(file.absolutePath, file.fileName, file.pathId, file.extensionId, file.size,
                    file.lastModification) == std::tie(other.absolutePath, other.fileName,
                                                       other.pathId, other.extensionId, other.size,
                                                       other.lastModification);
  };
  if (!std::equal(rows.begin(), rows.end(), expected.begin(), expected.end(), areEqual)) {
    throw std::runtime_error("the two ways to read folders give different rows");
  }
  return result;
}

/// Saves into tables that already hold the same scan.
Result MeasureSave(FakeHost&, const std::string& tree) {
  RudBuffer buffer = Scan(tree);
  RudDataSource::SaveBuffer(buffer, false);
  return Timed([&] {
    RudDataSource::SaveBuffer(buffer, false);
    return buffer.GetBufferFile().size();
  });
}

InventoryRow RowOf(const RudFileInfo& file) {
  const RudFileDetails& details = file.details.Get();
  return {file.pathId,           file.extensionId,        file.size,
          file.lastModification, file.fileName,           file.absolutePath,
          details.productName,   details.version,         file.isExecutable,
          file.companyId,        details.fileDescription, 1,
          details.fileVersion};
}

Result MeasureRawSave(FakeHost& host, const std::string& tree) {
  std::vector<InventoryRow> rows;
  RudBuffer buffer = Scan(tree);
  for (const auto& file : buffer.GetBufferFile()) rows.push_back(RowOf(file));
  RawSqlite raw(host.database.File().string());
  const auto save = [&] {
    raw.Clear();
    raw.Begin();
    for (const auto& row : rows) raw.Insert(row);
    raw.Commit();
    return rows.size();
  };
  save();
  return Timed(save);
}

/// Saves a scan, and another one in which a file in a hundred differs.
void SaveTwoScans(const std::string& tree) {
  RudBuffer before = Scan(tree);
  RudBuffer after = before;
  auto& files = after.GetBufferFile();
  for (std::size_t i = 0; i < files.size(); i += 100) {
    if (i % 400 == 0) {
      files[i].absolutePath += "-moved";
    } else {
      files[i].lastModification += 1000;
    }
  }
  RudDataSource::SaveBuffer(before, false);
  RudDataSource::SaveBuffer(after, true);
}

Result MeasureDifferences(FakeHost&, const std::string& tree) {
  SaveTwoScans(tree);
  return Timed([] {
    return RudDataSource::getNewFiles().size() + RudDataSource::getRemoveFiles().size() +
           RudDataSource::getModifiedFiles().size();
  });
}

Result MeasureRawDifferences(FakeHost& host, const std::string& tree) {
  SaveTwoScans(tree);
  RawSqlite raw(host.database.File().string());
  return Timed([&] {
    return raw.CountRows(V2::Sentences::NEW_FILES) + raw.CountRows(V2::Sentences::REMOVED_FILES) +
           raw.CountRows(V2::Sentences::MODIFIED_FILES);
  });
}

/// Leaves the document unchanged, so that only its creation is measured.
class NoPipeline final : public Common::IFilePipeline {
 public:
  using Path = boost::filesystem::path;
  bool Compress(const Path&, const Path&) override { return true; }
  bool Encrypt(const Path&, const Path&) override { return true; }
  bool Copy(const Path&, const Path&) override { return true; }
  bool MoveToOutbox(const Path&, const boost::optional<bool>&) override { return true; }
};

Result MeasureDocument(FakeHost&, const std::string& tree) {
  std::size_t files = 0;
  {
    RudBuffer buffer = Scan(tree);
    files = buffer.GetBufferFile().size();
    RudDataSource::SaveBuffer(buffer, false);
  }
  const auto former = Common::GetFilePipeline();
  Common::SetFilePipeline(std::make_shared<NoPipeline>());
  const Result result = Timed([&] {
    V2::RudPrinter::GenerateJSON("agent", false);
    return files;
  });
  Common::SetFilePipeline(former);
  return result;
}

json::JSON FilesOf(const std::vector<RudFileInfo>& files) {
  json::JSON array;
  for (const auto& file : files) {
    json::JSON object;
    object["filename"] = file.fileName;
    object["extension"] = "TXT";
    object["size"] = file.size;
    object["fileStatus"] = -1;
    object["lastMod"] = file.lastModification;
    array.append(std::move(object));
  }
  return array;
}

Result MeasureRender(FakeHost&, const std::string& tree) {
  RudBuffer buffer = Scan(tree);
  const json::JSON document = FilesOf(buffer.GetBufferFile());
  return Timed([&] { return document.strUgly().size(); });
}

/// Writes the same bytes except for escapes, without a value tree.
Result MeasureAppend(FakeHost&, const std::string& tree) {
  RudBuffer buffer = Scan(tree);
  const auto& files = buffer.GetBufferFile();
  return Timed([&] {
    std::string out = "[";
    for (const auto& file : files) {
      if (out.size() > 1) out += ',';
      out += "{\"extension\":\"TXT\",\"fileStatus\":-1,\"filename\":\"";
      out += file.fileName;
      out += "\",\"lastMod\":";
      out += std::to_string(file.lastModification);
      out += ",\"size\":";
      out += std::to_string(file.size);
      out += '}';
    }
    out += ']';
    return out.size();
  });
}

std::size_t CountOfFiles() {
  const auto rows =
      Common::V2::DataBase().ExecuteSentence("select count(*) from RUD2_LAST_INVENTORY");
  return static_cast<std::size_t>(boost::get<int>(rows.at(0).at(0)));
}

/// Runs a whole inventory, from the request to the outbox.
void Run(FakeHost& host, Common::IModule& module, unsigned int code) {
  Common::ModuleAction action = module.GetAction(code, {});
  action.handler(action.parameters);
  host.actions->RunWaiting();
  if (host.communications->TakeStatuses() != std::vector<std::string>{"7", "2"}) {
    throw std::runtime_error("the inventory was refused");
  }
}

std::unique_ptr<Common::IModule> LoadModule(FakeHost& host, const std::string& tree) {
  auto& configuration = *host.dependencies->configuration.kob;
  configuration.excludedPaths = Tests::AllBut(tree);
  configuration.includedExtensions = Extensions;
  return std::unique_ptr<Common::IModule>(::GetAgentModuleObject(host.Dependencies()));
}

Result MeasureTotal(FakeHost& host, const std::string& tree) {
  const auto module = LoadModule(host, tree);
  return Timed([&] {
    Run(host, *module, ACTION_FILE_INVENTORY_ON_DEMAND);
    return CountOfFiles();
  });
}

/// Changes the modification time of every hundredth file.
void ChangeSome(const std::string& tree) {
  std::size_t number = 0;
  for (const auto& entry : boost::filesystem::recursive_directory_iterator(tree)) {
    if (entry.symlink_status().type() != boost::filesystem::regular_file) continue;
    if (++number % 100 == 0) {
      boost::filesystem::last_write_time(entry, boost::filesystem::last_write_time(entry) + 1);
    }
  }
}

Result MeasureIncremental(FakeHost& host, const std::string& tree) {
  const auto module = LoadModule(host, tree);
  Run(host, *module, ACTION_FILE_INVENTORY_ON_DEMAND);
  ChangeSome(tree);
  return Timed([&] {
    Run(host, *module, ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND);
    return CountOfFiles();
  });
}

const std::map<std::string, Result (*)(FakeHost&, const std::string&)> Parts = {
    {"walk", MeasureWalk},
    {"bulk-walk", MeasureBulkWalk},
    {"save", MeasureSave},
    {"raw-save", MeasureRawSave},
    {"differences", MeasureDifferences},
    {"raw-differences", MeasureRawDifferences},
    {"document", MeasureDocument},
    {"render", MeasureRender},
    {"append", MeasureAppend},
    {"total", MeasureTotal},
    {"incremental", MeasureIncremental},
};

}  // namespace
}  // namespace Norvik::Bench

int main(int count, char** arguments) {
  using namespace Norvik;
  Common::AgentDatabase::LeaveOutConnectionLocks();  // as the agent does
  const auto part = Bench::Parts.find(count == 3 ? arguments[1] : "");
  if (part == Bench::Parts.end()) {
    std::fprintf(stderr, "usage: %s PART TREE; parts:", arguments[0]);
    for (const auto& known : Bench::Parts) std::fprintf(stderr, " %s", known.first.c_str());
    std::fprintf(stderr, "\n");
    return 2;
  }
  Bench::FakeHost host;
  const Bench::Result result = part->second(host, arguments[2]);
  std::printf(
      "{\"seconds\": %.4f, \"count\": %zu, \"peakKilobytes\": %ld, \"bulkCalls\": %ju, "
      "\"metadataCalls\": %ju}\n",
      result.seconds, result.count, Bench::PeakKilobytes(), std::uintmax_t{result.calls.bulk},
      std::uintmax_t{result.calls.metadata});
  return 0;
}

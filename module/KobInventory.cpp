#include "module/KobInventory.h"

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <boost/property_tree/json_parser.hpp>
#include <new>
#include <stdexcept>
#include <utility>

#include "common/files/DeleteExtension.h"
#include "common/files/FilePipeline.h"
#include "common/files/Paths.h"
#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "common/text/Text.h"
#include "module/Entities/InventoryReader.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

namespace Norvik::KOB {

namespace fs = boost::filesystem;

/// The files of a run. The one for the outbox has the name of the document.
struct KobInventory::Files {
  static Files OfThisHost() {
    using Common::Paths;
    const std::string host =
        Common::ToUtf8(Common::WxStringFromStdString(Common::HostInfoProvider::GetHostName()));
    const Path work = Paths(Paths::WORK, true).AppData();
    fs::create_directories(work);
    return {work / (host + ".jsonkob"), work / (host + "-incremental.jsonkob"),
            work / (host + "kob.zip"),
            Paths(Paths::PREVIOUS_INVENTORY, true).AppData() / (host + ".jsonkob")};
  }

  Path document;
  Path incremental;
  Path archive;
  Path previous;
};

namespace {

/// Null if there is not enough memory for the document.
std::unique_ptr<json::JSON> ToDocument(const Common::ISerializerJson& record) {
  try {
    return std::make_unique<json::JSON>(record);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void LogFailure(bool done, const char* message, const fs::path& first, const fs::path& second) {
  if (!done) NORVIK_ERROR(boost::format(message) % first.string() % second.string());
}

/// Half a document must not be sent: whoever reads it would take the rest for deleted.
void CloseWhole(fs::ofstream& stream, const fs::path& file) {
  stream.close();
  if (stream) return;
  boost::system::error_code ignored;
  fs::remove(file, ignored);
  throw std::runtime_error("cannot write " + file.string());
}

/// @param write writes the content
template <class Write>
void WriteFile(const fs::path& file, Write write) {
  fs::ofstream stream(file, std::ios::binary | std::ios::trunc);
  if (!stream) {
    NORVIK_ERROR("Failed to open the output file");
    return;
  }
  write(stream);
  CloseWhole(stream, file);
  NORVIK_DETAIL("JSON data written to file successfully");
  Common::ReportDocument({Common::DocumentStep::WRITE, true, {}, file, {}});
}

void DeleteUndelivered() {
  const fs::path outbox = Common::Paths(Common::Paths::OUTBOX, true).AppData();
  Common::DeleteExtensionInPath(".jsonkob", outbox, {outbox / ".", outbox / ".."});
}

}  // namespace

void KobInventory::GenerateInventory(bool incremental) {
  try {
    NORVIK_SCOPE();
    const Files files = Files::OfThisHost();
    InventoryPointer inventory = GenerateInventoryKOB();
    if (!ProcessInventoryData(files.document, inventory)) return;
    if (incremental && !CompareWithPrevious(files, std::move(inventory))) {
      incremental = false;
      NORVIK_WARNING(
          "KOB incremental will not be sent. An KOB total inventory will be sent instead");
      Common::ReportTotalInstead(Common::RunKind::MachineInventory, whyTotal_);
    }
    Deliver(files, incremental);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Unable to generate kob inventory: %1%") % error.what());
  }
}

bool KobInventory::CompareWithPrevious(const Files& files, InventoryPointer inventory) {
  hasChanges_ = true;
  if (!CheckJsonFile(files.previous)) return false;
  try {
    const InventoryPointer changes =
        GenerateIncrementalInventoryData(files.previous.string(), std::move(inventory));
    return ProcessIncrementalInventoryData(files.incremental, changes);
  } catch (const boost::property_tree::json_parser_error& error) {
    whyTotal_ = std::string(
                    "KOB incremental inventory will not be sent due to a JSON parsing "
                    "error: ") +
                error.what();
  } catch (const std::exception& error) {
    whyTotal_ =
        std::string("KOB incremental inventory will not be sent due to an error: ") + error.what();
  }
  NORVIK_ERROR(whyTotal_);
  return false;
}

void KobInventory::Deliver(const Files& files, bool incremental) const {
  // Deliberately no failed step ends the run: the server sees from what arrives how far it got.
  LogFailure(Common::CopyFileToDestination(files.document, files.previous),
             "Unable to copy %1% to %2%", files.document, files.previous);
  if (incremental) RenameIncrementalJsonFile(files.incremental, files.document);
  LogFailure(Common::CompressFile(files.document, files.archive), "Unable to compress %1% from %2%",
             files.archive, files.document);
  LogFailure(Common::AgentEncryptFile(files.archive, files.document),
             "Unable to Encrypt %1% from %2%", files.document, files.archive);
  NORVIK_DETAIL("Going out Inventory");
  if (!incremental) DeleteUndelivered();
  Common::MoveToOutbox(Path(files.document), incremental);
}

bool KobInventory::ProcessInventoryData(const Path& document, const InventoryPointer& inventory) {
  if (!inventory) {
    NORVIK_ERROR("Failed to generate inventory data");
    return false;
  }
  WriteFile(document, [&](std::ostream& stream) { inventory->WriteTo(stream); });
  return true;
}

bool KobInventory::CheckJsonFile(const Path& file) {
  boost::system::error_code error;
  const auto complain = [&](const boost::format& message) {
    whyTotal_ = message.str();
    NORVIK_ERROR(whyTotal_);
    return false;
  };
  const auto about = [&](const char* message) { return boost::format(message) % file.string(); };
  // By its kind, since a file that is just missing sets the error code as well.
  const fs::file_type kind = fs::status(file, error).type();
  if (kind == fs::file_not_found) {
    return complain(about("The JSON file at the specified location '%1%' does not exist"));
  }
  if (kind == fs::status_error) {
    return complain(about("Error checking existence of JSON file at '%1%': %2%") % error.message());
  }
  const bool empty = fs::is_empty(file, error);
  if (error) {
    return complain(about("Error checking if JSON file at '%1%' is empty: %2%") % error.message());
  }
  if (empty) return complain(about("The JSON file at the specified location '%1%' is empty"));
  return true;
}

KobInventory::InventoryPointer KobInventory::GenerateIncrementalInventoryData(
    const std::string& previousDocument, InventoryPointer inventory) {
  NORVIK_SCOPE();
  fs::ifstream stream(previousDocument);
  return KobIncrementalInventory(ReadInventory(stream, previousDocument), std::move(inventory))
      .GenerateIncrementalInventoryKOB();
}

bool KobInventory::ProcessIncrementalInventoryData(const Path& document,
                                                   const InventoryPointer& inventory) {
  if (!inventory) {
    whyTotal_ = "Failed to generate incremental inventory data";
    NORVIK_ERROR(whyTotal_);
    return false;
  }
  WriteJsonFile(*inventory, document);
  if (!hasChanges_) {
    whyTotal_ = "No new updates. KOB incremental inventory will not be sent";
    NORVIK_INFORMATION(whyTotal_);
    return false;
  }
  return true;
}

void KobInventory::WriteJsonFile(const Common::ISerializerJson& record, const Path& file) {
  const std::unique_ptr<json::JSON> document = ToDocument(record);
  if (!document) {
    hasChanges_ = false;
    NORVIK_ERROR("Failed to generate data for creating JSON file");
    return;
  }
  if (document->IsNull()) {
    hasChanges_ = false;
    return;
  }
  WriteFile(file, [&](std::ostream& stream) { stream << document->strUgly(); });
}

void KobInventory::RenameIncrementalJsonFile(const Path& from, const Path& to) const {
  boost::system::error_code error;
  if (!fs::exists(from, error)) {
    NORVIK_ERROR(boost::format("Incremental file does not exist: %1%") % error.message());
    return;
  }
  fs::rename(from, to, error);
  if (error) {
    NORVIK_ERROR(boost::format("Error renaming file: %1%") % error.message());
  } else {
    NORVIK_DETAIL("JSON KOB incremental inventory file renamed successfully");
  }
}

}  // namespace Norvik::KOB

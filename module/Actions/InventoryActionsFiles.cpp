// The file inventories of InventoryActions.

#include <boost/format.hpp>
#include <chrono>
#include <ctime>
#include <functional>
#include <utility>

#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/files/FilePipeline.h"
#include "common/files/ScanRules.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "module/ActionCodes.h"
#include "module/Actions/InventoryActions.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ElapsedTime.h"
#include "module/RUD/RudInventoryV2.h"

namespace Norvik::KOB {

namespace {

using Common::ReportRefusal;
using Common::RunKind;
using Common::ScanRules;
using Common::TaskResponseInfo;
using Common::V2::DataBase;
using std::chrono::steady_clock;
using std::chrono::system_clock;
using Names = std::set<std::string>;

constexpr char FILES_INCREMENTAL[] = "incremental";
constexpr char MAIN_TABLE[] = "RUD2_LAST_INVENTORY";
constexpr char FILES_ALREADY_RUNNING[] = "RUD Inventory already running";
constexpr char FILES_NOT_FINISHED[] = "RUD is running, kindly wait until it finishes";
constexpr char NO_CONFIGURATION[] = "RUD doesn't have a valid configuration";
constexpr char BLOCKED_TODAY[] =
    "RUD incremental inventory is blocked due RUD complet executed today";
// Not in the log, where a scheduled total run that is blocked leaves nothing.
constexpr char TOTAL_ENDED_TODAY[] =
    "a total file inventory has already ended on this day (UTC), so the scheduled one does not run";

void RecordScheduledRun(const char* key) {
  // Cut to the 32 bits that the table's numbers have.
  DataBase::SetDataTable(key, static_cast<int>(system_clock::to_time_t(system_clock::now())));
}

bool HasNoBase() {
  if (!DataBase::IsTableEmpty(MAIN_TABLE)) return false;
  NORVIK_WARNING("RUD2_LAST_INVENTORY table is empty, RUD Total will run instead");
  Common::ReportTotalInstead(RunKind::FileInventory, "no file of a former file inventory is known");
  return true;
}

std::tm UtcOf(std::time_t time) {
  std::tm fields{};
  ::gmtime_r(&time, &fields);
  return fields;
}

Names SetOf(const std::vector<std::string>& values) { return {values.begin(), values.end()}; }

}  // namespace

Common::ActionResponse InventoryActions::OnRUDInventoryV2(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const auto lock = TryRunLock(parameters);
  if (!lock) return {};
  if (blockInventoryRUDV2()) {
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_NOT_RUN, nullptr);
    ReportRefusal(RunKind::FileInventory, TOTAL_ENDED_TODAY);
    return {};
  }
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  RecordScheduledRun(Common::LAST_FILE_INVENTORY_KEY);
  StartRudInventoryV2(false, parameters);
  return {};
}

Common::ActionResponse InventoryActions::OnRUDInventoryOnDemandV2(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const auto lock = TryRunLock(parameters);
  if (!lock) return {};
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  StartRudInventoryV2(false, parameters);
  return {};
}

Common::ActionResponse InventoryActions::DoRUDInventoryIncrementalV2(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const auto lock = TryRunLock(parameters);
  if (!lock) return {};
  if (blockInventoryRUDV2()) {
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, BLOCKED_TODAY);
    NORVIK_WARNING(BLOCKED_TODAY);
    ReportRefusal(RunKind::FileInventory, BLOCKED_TODAY);
    return {};
  }
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  const bool incremental = !HasNoBase();
  // Deliberately recorded also if the run is refused: a schedule counts how often it fires.
  StartRudInventoryV2(incremental, parameters);
  RecordScheduledRun(incremental ? Common::LAST_INCREMENTAL_FILE_INVENTORY_KEY
                                 : Common::LAST_FILE_INVENTORY_KEY);
  return {};
}

Common::ActionResponse InventoryActions::DoRUDInventoryIncrementalOnDemandV2(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const auto lock = TryRunLock(parameters);
  if (!lock) return {};
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  StartRudInventoryV2(!HasNoBase(), parameters);
  return {};
}

Common::ActionResponse InventoryActions::RUDInventoryInitV2(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const bool incremental = parameters.Get<bool>(FILES_INCREMENTAL);
  const auto start = steady_clock::now();
  V2::RudInventory* const run = TakeWaitingRun();
  if (run == nullptr) {
    NORVIK_WARNING("No RUD Inventory waits to be carried out");
    return {};
  }
  const Common::RunScope progress(RunKind::FileInventory);
  progress.DecideKind(incremental);
  run->StartHarvester(incremental);
  // The run has destroyed itself.
  if (!incremental) KOBDataSourceV2::updateRudCompletoLastInventory(system_clock::now());
  NORVIK_INFORMATION(boost::format("RUD finish with %1% milliseconds") %
                     std::to_string(MillisecondsSince(start)));
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FINISHED, nullptr);
  return {};
}

std::unique_lock<std::mutex> InventoryActions::TryRunLock(Common::ActionParameters& parameters) {
  std::unique_lock<std::mutex> lock(runLock_, std::try_to_lock);
  if (!lock) {
    NORVIK_WARNING(FILES_ALREADY_RUNNING);
    ReportRefusal(RunKind::FileInventory, FILES_ALREADY_RUNNING);
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, FILES_ALREADY_RUNNING);
  }
  return lock;
}

V2::RudInventory* InventoryActions::TakeWaitingRun() {
  const std::lock_guard<std::mutex> lock(runLock_);
  return std::exchange(runWaits_, false) ? currentRun_.get() : nullptr;
}

bool InventoryActions::blockInventoryRUDV2() {
  try {
    const std::tm last = UtcOf(KOBDataSourceV2::getRudCompletoLastInventory());
    const std::tm now = UtcOf(system_clock::to_time_t(system_clock::now()));
    return last.tm_mday == now.tm_mday && last.tm_mon == now.tm_mon && last.tm_year == now.tm_year;
  } catch (const std::exception& error) {
    NORVIK_WARNING(
        boost::format("No se pudo comparar la fecha del útlimo inventario RUD completo. %1%") %
        error.what());
    return false;
  }
}

bool InventoryActions::StartRudInventoryV2(const bool& incremental,
                                           Common::ActionParameters& parameters) {
  if (currentRun_) {
    NORVIK_WARNING(FILES_NOT_FINISHED);
    ReportRefusal(RunKind::FileInventory, FILES_NOT_FINISHED);
    return false;
  }
  const auto configuration = configuration_.Kob();
  if (!configuration) {
    NORVIK_WARNING(NO_CONFIGURATION);
    ReportRefusal(RunKind::FileInventory, NO_CONFIGURATION);
    return false;
  }
  NORVIK_INFORMATION(boost::format("RUD Inventory Started: %1%") % incremental);
  auto run = std::make_unique<V2::RudInventory>(
      std::bind(&InventoryActions::OnRUDInventoryFinishV2, this, std::placeholders::_1),
      agentIdentifier_);
  ConfigureRUDV2(*run, *configuration);
  parameters.Set(FILES_INCREMENTAL, incremental);
  // Only once it is configured: a run that stays here without starting would block all others.
  currentRun_ = std::move(run);
  runWaits_ = true;
  RunOneShotAction(ACTION_FILE_INVENTORY_INIT, std::chrono::seconds(0), &parameters);
  return true;
}

void InventoryActions::ConfigureRUDV2(V2::RudInventory& run,
                                      const Common::KobConfigurationInfo& configuration) {
  run.SetConfig(V2::ExcludeFile, SetOf(configuration.excludedFiles));
  run.SetConfig(V2::ExcludePath, SetOf(configuration.excludedPaths));
  run.SetConfig(V2::IncludeExtension, SetOf(configuration.includedExtensions));
  const auto first =
      std::shared_ptr<Common::IIdentificationSystem>(identification)->GetFirstInventoryInfo();
  const Names roots = V2::RudInventory::GetDevices(first.physicalDisks);
  run.AddConfig(V2::IncludeExtension,
                ScanRules::AdditionalExtensions(configuration.additionalExtensions));
  run.AddConfig(V2::IncludePath, roots);
  CompleteExtensionToScanV2(run);
  PrintLogConfigV2(run, V2::ExcludeFile, "Exclude file");
  PrintLogConfigV2(run, V2::ExcludePath, "Exclude path");
  PrintLogConfigV2(run, V2::IncludeExtension, "Include extension");
  PrintLogConfigV2(run, V2::IncludePath, "Include path");
}

void InventoryActions::CompleteExtensionToScanV2(V2::RudInventory& run) {
  run.SetConfig(V2::IncludeExtension,
                ScanRules::CompleteExtensions(run.GetConfig(V2::IncludeExtension)));
}

void InventoryActions::PrintLogConfigV2(const V2::RudInventory& run, const V2::ConfigScan& key,
                                        const std::string& label) {
  std::string text;
  for (const auto& value : run.GetConfig(key)) text += value + ", ";
  // Deliberately not for a set of one empty text, whose separator is all there is.
  if (text.size() > 2) text.resize(text.size() - 2);
  NORVIK_INFORMATION(boost::format("RUD config for %1%: [%2%]") % label % text);
}

void InventoryActions::OnRUDInventoryFinishV2(const boost::filesystem::path& result) {
  const std::lock_guard<std::mutex> lock(runLock_);
  if (!currentRun_->IsFinished()) {
    NORVIK_ERROR("There was an error in RUD Inventory");
  } else if (result.empty()) {
    NORVIK_WARNING("RUD File empty. With nothing to send.");
    Common::ReportNothingToSend();
  } else {
    SendRUDInventoryFileV2(result);
  }
  // Called from inside the run, which uses none of its members any more.
  currentRun_.reset();
  NORVIK_INFORMATION("RUD Inventory Finished");
}

void InventoryActions::SendRUDInventoryFileV2(boost::filesystem::path file) {
  Common::MoveToOutbox(std::move(file), boost::none);
  RiseNewFileOnOutbox();
}

}  // namespace Norvik::KOB

#include <sys/stat.h>
#include <wx/arrstr.h>
#include <wx/datetime.h>
#include <wx/dir.h>
#include <wx/filefn.h>
#include <wx/filename.h>
#include <wx/log.h>

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <limits>

#include "common/files/DeleteExtension.h"
#include "common/log/Logger.h"
#include "common/text/Dates.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "platform/MachinePath.h"
#include "platform/SystemChanges.h"

namespace Norvik::KOB {

namespace {

namespace fs = boost::filesystem;

constexpr const char* PROTECTED_FOLDERS[] = {"/Applications", "/System", "/Library",
                                             "/opt",          "/etc",    "/bin"};
constexpr char HOMES[] = "/home";
constexpr char USERS[] = "/Users";

wxString OnMachine(const wxString& path) {
  return Common::WxStringFromStdString(Platform::MachinePath(Common::ToUtf8(path)));
}

/// Opens a folder to be listed. If it cannot be opened, the response says why.
bool OpenFolder(const wxFileName& requested, const wxString& path, wxDir& folder,
                Common::ActionResponse& response) {
  if (!requested.Exists(wxFILE_EXISTS_ANY)) {
    response.text = "File not found";
    return false;
  }
  if (folder.Open(path)) return true;
  // Deliberately U+00B4, an acute accent: servers expect the text with it.
  response.text = "File couldn\u00B4t be opened";
  return false;
}

/// A file that no longer exists gets no row, one without a time a shorter row.
void AddFileRow(const wxString& folder, const wxString& name, Common::ActionResponseTable& table) {
  // One call for all columns, because folders may be large.
  wxStructStat status;
  if (wxStat(wxFileName(folder, name).GetFullPath(), &status) != 0) return;
  if (!S_ISREG(status.st_mode)) return;
  std::vector<std::string> cells = {Common::ToUtf8(name), std::to_string(status.st_size)};
  const wxDateTime modified(status.st_mtime);
  if (modified.IsValid()) cells.push_back(Common::DateToISOCombinedUTC(modified.GetTicks()));
  AddTextRow(table, cells);
}

bool DeleteOne(const wxString& path) {
  const wxFileName file(OnMachine(path));
  if (!file.IsOk()) return false;
  const wxString fullPath = file.GetFullPath();
  const auto name = fullPath.fn_str();
  // Null if the file system's encoding cannot hold the path.
  return name.data() && Platform::GetSystemChanges()->Remove(name.data()) == 0;
}

bool IsFolder(const fs::path& path) {
  boost::system::error_code error;
  return fs::exists(path, error) && fs::is_directory(path, error);
}

void WarnOfMissing(const char* folder) {
  NORVIK_WARNING(boost::format("Directory %1% does not exist or is not accessible") % folder);
}

/// Adds the folders of the users, up to a read error.
void AddUserFolders(std::vector<fs::path>& folders) {
  const fs::path users = Platform::MachinePath(USERS);
  if (!IsFolder(users)) {
    WarnOfMissing(USERS);
    return;
  }
  boost::system::error_code error;
  for (fs::directory_iterator entry(users, error), end; !error && entry != end;
       entry.increment(error)) {
    if (IsFolder(entry->path())) folders.push_back(entry->path());
  }
  if (error) NORVIK_WARNING(boost::format("Error reading /Users directory: %1%") % error.message());
}

std::vector<fs::path> FoldersToSweep() {
  std::vector<fs::path> folders;
  const fs::path homes = Platform::MachinePath(HOMES);
  if (IsFolder(homes)) {
    folders.push_back(homes);
  } else {
    WarnOfMissing(HOMES);
  }
  AddUserFolders(folders);
  return folders;
}

}  // namespace

Common::ActionResponse RemoteAdministration::ListFiles(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  if (!Requires(parameters, "path", response)) return response;
  const wxString path = OnMachine(parameters.Get<wxString>("path"));
  const wxLogNull quiet;
  wxDir folder;
  if (!OpenFolder(wxFileName(path), path, folder, response)) return response;
  wxString name;
  bool found = folder.GetFirst(&name, wxEmptyString, wxDIR_FILES | wxDIR_HIDDEN);
  if (found) AddTitles(response.table, {"Name", "Size", "ModifyDate"});
  for (; found; found = folder.GetNext(&name)) AddFileRow(path, name, response.table);
  return response;
}

Common::ActionResponse RemoteAdministration::ListFolders(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  if (!Requires(parameters, "path", response)) return response;
  const wxString given = parameters.Get<wxString>("path");
  AddTitles(response.table, {"Name"});
  if (given.empty()) {
    AddTextRow(response.table, {"/"});
    return response;
  }
  const wxString path = OnMachine(given);
  wxFileName requested(path);
  const wxLogNull quiet;
  wxDir folder;
  if (!OpenFolder(requested, path, folder, response)) return response;
  wxString name;
  bool found = folder.GetFirst(&name, "*", wxDIR_DIRS | wxDIR_HIDDEN);
  for (; found; found = folder.GetNext(&name)) {
    // Deliberately a check of the requested path, with one result for all entries. For a path that
    // does not end in "/" it checks the parent folder.
    requested.DontFollowLink();
    if (requested.DirExists()) {
      AddTextRow(response.table, {Common::ToUtf8(name)});
    } else {
      NORVIK_ERROR(boost::format("The directory %1% does not exist ") %
                   Common::ToUtf8(requested.GetFullPath()));
    }
  }
  return response;
}

Common::ActionResponse RemoteAdministration::DeleteFile(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  if (!Requires(parameters, "file", response)) return response;
  const wxArrayString files = wxSplit(parameters.Get<wxString>("file"), '|', '\\');
  const wxLogNull quiet;
  std::string results;
  bool allGood = true;
  // Deliberately a 16-bit index. With more files than it can count the loop would never end.
  using Index = unsigned short;
  if (files.size() > std::numeric_limits<Index>::max()) {
    NORVIK_ERROR(boost::format("A request to delete %1% files is refused: at most %2% are allowed, "
                               "and none is deleted") %
                 std::to_string(files.size()) % std::to_string(std::numeric_limits<Index>::max()));
    response.text = "Invalid Parameter file";
    return response;
  }
  // NOLINTNEXTLINE(bugprone-too-small-loop-variable)
  for (Index i = 0; i < files.size(); ++i) {
    if (files[i].empty()) continue;
    const bool good = DeleteOne(files[i]);
    results += good ? "1|" : "0|";
    allGood = allGood && good;
  }
  if (!allGood) response.text = results;
  return response;
}

Common::ActionResponse RemoteAdministration::DeleteExtension(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  ReportStarted(parameters);
  if (!Requires(parameters, "ext", response)) {
    Fail(parameters, response, std::string(*response.text));
    return response;
  }
  const std::string extension = ReadText(parameters, "ext");
  std::vector<fs::path> protectedFolders;
  for (const char* folder : PROTECTED_FOLDERS) {
    protectedFolders.emplace_back(Platform::MachinePath(folder));
  }
  const std::vector<fs::path> folders = FoldersToSweep();
  NORVIK_INFORMATION(boost::format("Delete extension %s started") % extension);
  for (const auto& folder : folders) {
    Common::DeleteExtensionInPath(extension, folder, protectedFolders);
  }
  NORVIK_INFORMATION(boost::format("Delete extension %s finished") % extension);
  ReportFinished(parameters);
  return response;
}

}  // namespace Norvik::KOB

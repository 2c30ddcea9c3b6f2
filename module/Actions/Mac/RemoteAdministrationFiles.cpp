#include <sys/stat.h>
#include <wx/arrstr.h>
#include <wx/datetime.h>
#include <wx/dir.h>
#include <wx/filefn.h>
#include <wx/filename.h>
#include <wx/log.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

#include "common/files/DeleteExtension.h"
#include "common/log/Logger.h"
#include "common/text/Dates.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "platform/DirectoryReader.h"
#include "platform/MachinePath.h"
#include "platform/SystemChanges.h"

namespace Norvik::KOB {

namespace {

namespace fs = boost::filesystem;

constexpr const char* PROTECTED_FOLDERS[] = {"/Applications", "/System", "/Library",
                                             "/opt",          "/etc",    "/bin"};
constexpr char HOMES[] = "/home";
constexpr char USERS[] = "/Users";
constexpr char FOLDER_MISSING[] = "File not found";
// Deliberately U+00B4, an acute accent: servers expect the text with it.
constexpr char FOLDER_CLOSED[] = "File couldn\u00B4t be opened";

wxString OnMachine(const wxString& path) {
  return Common::WxStringFromStdString(Platform::MachinePath(Common::ToUtf8(path)));
}

/// Opens a folder to be listed. If it cannot be opened, the response says why.
bool OpenFolder(const wxFileName& requested, const wxString& path, wxDir& folder,
                Common::ActionResponse& response) {
  if (!requested.Exists(wxFILE_EXISTS_ANY)) {
    response.text = FOLDER_MISSING;
    return false;
  }
  if (folder.Open(path)) return true;
  response.text = FOLDER_CLOSED;
  return false;
}

bool IsAscii(const char* text) {
  return std::none_of(text, text + std::strlen(text), [](char c) { return (c & 0x80) != 0; });
}

/// A name as the file system's converter reads it, which may compose its characters.
wxString NameOf(const Platform::DirectoryEntry& entry) { return {entry.name, *wxConvFileName}; }

/// The metadata of an entry, or of what a link refers to. The kind is `Unknown` if the file has
/// gone, and also if its name is no text: then no server can name the file.
Platform::EntryMetadata MetadataOf(Platform::DirectoryReader& reader, const wxString& folder,
                                   const Platform::DirectoryEntry& entry) {
  Platform::EntryMetadata metadata;
  if (IsAscii(entry.name)) {
    std::error_code error;
    metadata = reader.ReadMetadata(entry, error);
    if (error || metadata.kind != Platform::EntryKind::Link) return metadata;
  }
  wxStructStat status;
  if (wxStat(wxFileName(folder, NameOf(entry)).GetFullPath(), &status) != 0) return metadata;
  metadata.kind = Platform::EntryKind::Other;
  if (S_ISREG(status.st_mode)) metadata.kind = Platform::EntryKind::File;
  if (S_ISDIR(status.st_mode)) metadata.kind = Platform::EntryKind::Folder;
  metadata.size = status.st_size;
  metadata.lastModification = status.st_mtime;
  return metadata;
}

/// A file without a time gets a shorter row.
void AddFileRow(std::string name, const Platform::EntryMetadata& file,
                Common::ActionResponseTable& table) {
  std::vector<std::string> cells = {std::move(name), std::to_string(file.size)};
  const wxDateTime modified(static_cast<time_t>(file.lastModification));
  if (modified.IsValid()) cells.push_back(Common::DateToISOCombinedUTC(modified.GetTicks()));
  AddTextRow(table, std::move(cells));
}

/// Adds the files of an open folder, after the titles if any entry is no folder. Reads the entries
/// and the metadata of each within the folder: a listing by paths takes twice the time.
void AddFileRows(Platform::DirectoryReader& reader, const wxString& folder,
                 Common::ActionResponseTable& table) {
  Platform::DirectoryEntry entry;
  std::error_code error;
  while (reader.Next(entry, error)) {
    if (entry.kind == Platform::EntryKind::Folder) continue;
    const Platform::EntryMetadata metadata = MetadataOf(reader, folder, entry);
    if (metadata.kind == Platform::EntryKind::Folder) continue;
    if (!table.HasTitles()) AddTitles(table, {"Name", "Size", "ModifyDate"});
    if (metadata.kind != Platform::EntryKind::File) continue;
    std::string name = IsAscii(entry.name) ? entry.name : Common::ToUtf8(NameOf(entry));
    AddFileRow(std::move(name), metadata, table);
  }
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
  if (!wxFileName(path).Exists(wxFILE_EXISTS_ANY)) {
    response.text = FOLDER_MISSING;
    return response;
  }
  Platform::DirectoryReader reader;
  try {
    reader.Open(std::string(path.fn_str()));
  } catch (const fs::filesystem_error&) {
    response.text = FOLDER_CLOSED;
    return response;
  }
  AddFileRows(reader, path, response.table);
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

#include "module/Inventory/ServicesSection.h"

#include <libproc.h>
#include <wx/dir.h>
#include <wx/log.h>

#include <cstdint>
#include <queue>
#include <utility>
#include <vector>

#include "common/text/Text.h"
#include "module/ProcessIds.h"
#include "platform/MachinePath.h"
#include "platform/PropertyListFile.h"

namespace Norvik::KOB {

namespace {

constexpr const char* DAEMON_FOLDERS[] = {"/System/Library/LaunchDaemons",
                                          "/Library/LaunchDaemons"};
constexpr int FILES_WITHOUT_LINKS = wxDIR_FILES | wxDIR_NO_FOLLOW;
constexpr std::uint32_t PATH_SIZE = 4096;

std::string FileName(const wxString& path) {
  const wxCharBuffer bytes = path.mb_str(*wxConvFileName);
  return bytes.data() ? bytes.data() : "";
}

std::vector<wxString> NamesIn(const wxString& folder) {
  const wxLogNull quiet;  // a missing folder is not an error
  std::vector<wxString> names;
  const wxDir directory(folder);
  wxString name;
  // Checked first: a search in a folder that could not be opened would be an error of its own.
  bool found = directory.IsOpened() && directory.GetFirst(&name, "", FILES_WITHOUT_LINKS);
  for (; found; found = directory.GetNext(&name)) names.push_back(name);
  return names;
}

std::string CommandOf(const Platform::PropertyListFile& file) {
  std::string command = file.Text("Program");
  if (command.empty() && file.Has("ProgramArguments")) command = file.FirstText("ProgramArguments");
  return command;
}

}  // namespace

void ServicesSection::GetInfo(std::list<ServiceInfo>& result) {
  FindProcesses();
  std::queue<wxString> folders;
  for (const char* const folder : DAEMON_FOLDERS) folders.push(folder);
  for (; !folders.empty(); folders.pop()) {
    const wxString folder =
        Common::WxStringFromStdString(Platform::MachinePath(Common::ToUtf8(folders.front())));
    for (const wxString& name : NamesIn(folder)) {
      // Deliberately anywhere in the name, so that a renamed copy is listed as well.
      if (name.rfind(".plist") != wxString::npos) ParsePList(result, folder + "/" + name);
    }
  }
}

void ServicesSection::FindProcesses() {
  for (const std::int32_t process : ProcessIds()) {
    if (process == 0) continue;
    char path[PATH_SIZE] = {};
    ::proc_pidpath(process, path, PATH_SIZE);
    if (path[0] != '\0') processOfProgram_[path] = process;
  }
}

void ServicesSection::ParsePList(std::list<ServiceInfo>& result, const wxString& path) {
  const Platform::PropertyListFile file(FileName(path));
  const std::string command = CommandOf(file);
  ServiceInfo service;
  service.name = Common::WxStringFromStdString(file.Text("Label"));
  service.displayName = service.name;
  service.command = Common::WxStringFromStdString(command);
  // Deliberately by the presence of the key: the server expects a "Disabled" of false as disabled.
  service.startupMode = file.Has("Disabled") ? "Disabled" : "Enabled";
  service.state = processOfProgram_.count(command) > 0 ? "Running" : "Stopped";
  if (!service.name.empty()) result.push_back(std::move(service));
}

}  // namespace Norvik::KOB

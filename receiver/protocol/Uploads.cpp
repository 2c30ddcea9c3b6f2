#include "receiver/protocol/Protocol.h"

namespace Norvik::Receiver {

namespace {

constexpr std::size_t MAX_NAME = 1024;

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// A file's name as the header has it. It is kept as a text and names nothing here.
std::string NameOf(const std::string& header) {
  std::string name;
  for (std::size_t at = 0; at < header.size(); ++at) {
    if (header[at] != '%') {
      name += header[at];
      continue;
    }
    const int high = at + 2 < header.size() ? DigitOf(header[at + 1]) : -1;
    const int low = at + 2 < header.size() ? DigitOf(header[at + 2]) : -1;
    if (high < 0 || low < 0) throw Refusal{400, "Norvik-File-Name has a wrong escape."};
    name += static_cast<char>(high * 16 + low);
    at += 2;
  }
  if (name.empty() || name.size() > MAX_NAME) {
    throw Refusal{400, "Norvik-File-Name has no name of up to 1024 bytes."};
  }
  // What is not UTF-8 becomes U+FFFD; a database stores no other text, and no NUL.
  const std::string text = Json(name).dump(-1, ' ', false, Json::error_handler_t::replace);
  name = Json::parse(text).get<std::string>();
  for (char& c : name) c = c == '\0' ? '?' : c;
  return name;
}

}  // namespace

Response Protocol::KeepFile(const Resource& resource, Request& request) const {
  const std::string name = NameOf(request.fileName);
  if (request.sha256 != resource.checksum) {
    throw Refusal{400, "The checksum of the body is another one."};
  }
  const Json answer = {{"sha256", request.sha256}, {"size", request.fileSize}};
  return pool_.With([&](Session& session) {
    const Values key = {resource.agent, resource.checksum};
    const auto known = session.Rows<1>("SELECT 1 FROM uploads WHERE agent=? AND sha256=?", key);
    if (!known.empty()) return JsonResponse(answer);
    // The file is on the disk before its row: a file without a row is sent again.
    request.file->Commit();
    session.Run(
        "INSERT INTO uploads(agent, sha256, size, name, received, state, reason) "
        "VALUES(?,?,?,?,?,'new','') ON CONFLICT DO NOTHING",
        {resource.agent, resource.checksum, request.fileSize, name, Now()});
    onUpload_();
    return JsonResponse(answer);
  });
}

}  // namespace Norvik::Receiver

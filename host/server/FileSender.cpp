#include "host/server/FileSender.h"

#include <boost/filesystem/operations.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>
#include <utility>

#include "common/files/FileSealer.h"
#include "common/text/Text.h"
#include "host/server/FileDigest.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

using Common::OnOneLine;
namespace fs = boost::filesystem;

constexpr char NOT_SEALED[] = "is not given the file: it is not sealed";

/// Encodes a name for a header: everything but letters, digits and "-._" as %XX.
std::string PercentEncoded(const std::string& text) {
  static constexpr char HEX[] = "0123456789ABCDEF";
  static constexpr char PLAIN[] = "-._";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isLetterOrDigit =
        (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (isLetterOrDigit || (c != '\0' && std::strchr(PLAIN, c))) {
      encoded += c;
    } else {
      encoded += {'%', HEX[byte >> 4], HEX[byte & 0x0F]};
    }
  }
  return encoded;
}

}  // namespace

FileSender::FileSender(std::shared_ptr<ServerSession> session, fs::path keyFolder,
                       std::shared_ptr<DocumentHistory> history, const std::atomic<bool>& stopped)
    : session_(std::move(session)),
      keyFolder_(std::move(keyFolder)),
      history_(std::move(history)),
      stopped_(stopped) {}

void FileSender::SealForServer(const fs::path& file) const {
  const Common::FileSealer sealer(keyFolder_);
  if (!sealer.IsSealedToOwnKey(file)) return;
  const auto seal = [&] { sealer.SealAgain(file); };
  if (history_) return history_->Follow(file, seal);
  seal();
}

Attempt FileSender::Send(HttpClient& client, const OutboxFile& file) {
  try {
    if (!fs::exists(file.path)) return {};
    // A run without a valid key cannot seal its document and leaves it in plain text.
    if (!Common::IsSealedFile(file.path))
      return {Attempt::Result::Refused, NOT_SEALED, boost::none};
    SealForServer(file.path);
    // A new full document removes the file from the outbox, even while it is sent.
    const fs::path kept = history_ ? history_->KeptAs(file.path) : fs::path();
    const auto opened = Platform::OpenRegularFile(file.path.string());
    const FileDigest digest = DigestOf(opened, stopped_);

    HttpRequest request;
    request.method = "PUT";
    request.headers = {"Content-Type: application/octet-stream",
                       "Norvik-File-Name: " + PercentEncoded(file.name)};
    request.file = &opened;
    request.fileSize = digest.size;
    const HttpAnswer answer = session_->Send(client, "files/" + digest.sha256, std::move(request));

    const Attempt attempt = AttemptOf(answer, [&](const boost::property_tree::ptree& body) {
      return body.get<std::string>("sha256") == digest.sha256 &&
             body.get<std::uint64_t>("size") == digest.size;
    });
    if (attempt.result == Attempt::Result::Acknowledged) {
      if (history_) history_->Delivered(kept);
      fs::remove(file.path);
    }
    return attempt;
  } catch (const std::exception& error) {
    const std::string reason = std::string("cannot be given the file: ") + OnOneLine(error.what());
    return {Attempt::Result::Refused, reason, boost::none};
  }
}

}  // namespace Norvik::Host

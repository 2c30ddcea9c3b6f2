#include "host/ipc/Frames.h"

#include <cstdint>

#include "json/Utf8.h"

namespace Norvik::Host {

namespace {

using Common::IPCMessage;

constexpr std::size_t NUMBER_BYTES = 4;

void AppendNumber(std::string& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(number >> shift & 0xFF);
}

/// The four bytes must exist.
std::uint32_t NumberAt(const std::string& bytes, std::size_t position) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < NUMBER_BYTES; ++i) {
    number = number << 8 | static_cast<unsigned char>(bytes[position + i]);
  }
  return number;
}

FrameKind KindOf(char byte) {
  const auto kind = static_cast<FrameKind>(byte);
  switch (kind) {
    case FrameKind::JOIN:
    case FrameKind::MESSAGE:
    case FrameKind::REQUEST:
    case FrameKind::EVENTS:
    case FrameKind::ANSWER:
    case FrameKind::PART:
      return kind;
  }
  throw FrameError("sent a frame of the unknown kind " +
                   std::to_string(static_cast<unsigned char>(byte)));
}

}  // namespace

std::string EncodeFrame(FrameKind kind, const std::string& content) {
  std::string bytes;
  bytes.reserve(NUMBER_BYTES + 1 + content.size());
  AppendNumber(bytes, static_cast<std::uint32_t>(1 + content.size()));
  bytes += static_cast<char>(kind);
  return bytes + content;
}

std::string EncodeMessage(const IPCMessage& message) {
  std::string bytes;
  AppendNumber(bytes, static_cast<std::uint32_t>(message.kind));
  AppendNumber(bytes, message.code);
  AppendNumber(bytes, static_cast<std::uint32_t>(message.key.size()));
  return bytes + message.key + message.value;
}

IPCMessage DecodeMessage(const std::string& content) {
  constexpr std::size_t HEAD = 3 * NUMBER_BYTES;
  if (content.size() < HEAD) throw FrameError("sent a message without a head");
  const std::size_t keyLength = NumberAt(content, 2 * NUMBER_BYTES);
  if (keyLength > content.size() - HEAD) {
    throw FrameError("sent a message whose key is longer than the message");
  }
  IPCMessage message;
  message.kind = static_cast<std::int32_t>(NumberAt(content, 0));
  message.code = NumberAt(content, NUMBER_BYTES);
  message.key = content.substr(HEAD, keyLength);
  message.value = content.substr(HEAD + keyLength);
  if (!json::IsUtf8(message.key) || !json::IsUtf8(message.value)) {
    throw FrameError("sent a message that is no UTF-8");
  }
  return message;
}

void FrameReader::Append(const char* data, std::size_t size) {
  bytes_.erase(0, position_);
  position_ = 0;
  bytes_.append(data, size);
}

boost::optional<Frame> FrameReader::Next() {
  if (bytes_.size() - position_ < NUMBER_BYTES) return boost::none;
  const std::size_t length = NumberAt(bytes_, position_);
  if (length == 0 || length > limit_) {
    throw FrameError("sent a frame of " + std::to_string(length) + " bytes, where 1 to " +
                     std::to_string(limit_) + " are allowed");
  }
  const std::size_t start = position_ + NUMBER_BYTES;
  if (bytes_.size() == start) return boost::none;
  const FrameKind kind = KindOf(bytes_[start]);
  if (bytes_.size() - start < length) {
    bytes_.reserve(start + length);
    return boost::none;
  }
  Frame frame{kind, bytes_.substr(start + 1, length - 1)};
  position_ = start + length;
  if (position_ == bytes_.size()) {
    std::string().swap(bytes_);
    position_ = 0;
  }
  return frame;
}

}  // namespace Norvik::Host

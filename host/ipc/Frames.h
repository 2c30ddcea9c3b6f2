#pragma once

#include <boost/optional.hpp>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

// The protocol of the agent's local socket. A frame is a length of four bytes, followed by that
// many bytes: one byte for the kind of the frame, then its content. Numbers are in network byte
// order. Contents:
//
//   JOIN     empty; makes the connection the session of a user's process
//   MESSAGE  kind (4 bytes, signed), code (4), length of the key (4), key, value; texts are UTF-8
//   REQUEST  JSON, from an administrator
//   EVENTS   a JSON array: what has happened of a run that a request began
//   ANSWER   JSON, the answer to a request
//   PART     the beginning of the content of the next frame, or the next piece of it

enum class FrameKind : char {
  JOIN = 'J',
  MESSAGE = 'M',
  REQUEST = 'R',
  EVENTS = 'E',
  ANSWER = 'A',
  PART = 'P'
};

struct Frame {
  FrameKind kind;
  std::string content;
};

/// The peer violated the protocol. The text says what it did: "sent a frame of 0 bytes".
class FrameError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string EncodeFrame(FrameKind kind, const std::string& content);

/// The content of a MESSAGE frame.
std::string EncodeMessage(const Common::IPCMessage& message);
/// Throws `FrameError` if the content is malformed or its texts are not UTF-8.
Common::IPCMessage DecodeMessage(const std::string& content);

/// Splits the bytes of a stream into frames. Buffers at most one unfinished frame and the bytes
/// received with it. For one thread.
class FrameReader {
 public:
  /// @param limit the largest length of a frame in bytes
  explicit FrameReader(std::size_t limit) : limit_(limit) {}

  void Append(const char* data, std::size_t size);
  /// The next complete frame; empty until it has arrived. Throws `FrameError` as soon as the bytes
  /// cannot be a frame.
  boost::optional<Frame> Next();
  /// Whether an incomplete frame is buffered.
  bool IsInside() const { return position_ < bytes_.size(); }
  /// The memory of the buffer in bytes.
  std::size_t Memory() const { return bytes_.capacity(); }

 private:
  const std::size_t limit_;
  std::string bytes_;
  std::size_t position_ = 0;  ///< of the first byte that is not part of a returned frame
};

}  // namespace Norvik::Host

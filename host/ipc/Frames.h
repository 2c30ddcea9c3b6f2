#pragma once

#include <boost/optional.hpp>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

// What travels over the agent's local socket. A frame is a length of four bytes, then as many bytes
// as it says: one byte that tells the kind of the frame, and its content. Numbers are in network
// order. Contents:
//
//   JOIN     nothing; makes the connection the session of a user's process
//   MESSAGE  kind (4 bytes, signed), code (4), length of the key (4), key, value; texts are UTF-8
//   REQUEST  JSON, of an administrator
//   ANSWER   JSON, to a request

enum class FrameKind : char { JOIN = 'J', MESSAGE = 'M', REQUEST = 'R', ANSWER = 'A' };

struct Frame {
  FrameKind kind;
  std::string content;
};

/// The other end does not speak this protocol. The text says what it did.
class FrameError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string EncodeFrame(FrameKind kind, const std::string& content);

/// Content of a MESSAGE.
std::string EncodeMessage(const Common::IPCMessage& message);
/// Raises `FrameError` for a content that is none, or holds texts that are no UTF-8.
Common::IPCMessage DecodeMessage(const std::string& content);

/// Cuts what a stream brings into frames. Holds at most one unfinished frame and what came with it.
class FrameReader {
 public:
  /// @param limit the largest length that a frame may have
  explicit FrameReader(std::size_t limit) : limit_(limit) {}

  void Append(const char* data, std::size_t size);
  /// The next whole frame. Raises `FrameError` as soon as one cannot be right.
  boost::optional<Frame> Next();
  /// Whether a frame has begun that has not ended.
  bool IsInside() const { return position_ < bytes_.size(); }

 private:
  const std::size_t limit_;
  std::string bytes_;
  std::size_t position_ = 0;  ///< of the first byte that was not handed out
};

}  // namespace Norvik::Host

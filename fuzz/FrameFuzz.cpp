#include "Fuzz.h"
#include "host/ipc/Frames.h"

/// Reads the input as frames of the local socket, in small pieces as a stream may deliver them. A
/// message is encoded as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Norvik::Host;
  constexpr std::size_t LIMIT = 1 << 16;
  FrameReader reader(LIMIT);
  const auto* const bytes = reinterpret_cast<const char*>(data);
  try {
    for (std::size_t start = 0; start < size; start += 7) {
      reader.Append(bytes + start, std::min<std::size_t>(7, size - start));
      while (const auto frame = reader.Next()) {
        if (frame->kind != FrameKind::MESSAGE) continue;
        if (EncodeMessage(DecodeMessage(frame->content)) != frame->content) std::abort();
      }
    }
  } catch (const FrameError&) {
  }
  return 0;
}

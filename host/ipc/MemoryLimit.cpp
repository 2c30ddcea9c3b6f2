#include "host/ipc/MemoryLimit.h"

namespace Norvik::Host {

std::string MemoryLimit::Take(std::size_t bytes) {
  if (taken_.fetch_add(bytes) + bytes > most_) {
    taken_ -= bytes;
    return "the limit of " + std::to_string(most_ >> 10) + " KiB of memory " + whose_;
  }
  std::string refusal = outer_ ? outer_->Take(bytes) : "";
  if (!refusal.empty()) taken_ -= bytes;
  return refusal;
}

void MemoryLimit::Return(std::size_t bytes) {
  taken_ -= bytes;
  if (outer_) outer_->Return(bytes);
}

std::string MemoryShare::Resize(std::size_t bytes) {
  if (!limit_) return "";
  if (bytes > bytes_) {
    std::string refusal = limit_->Take(bytes - bytes_);
    if (!refusal.empty()) return refusal;
  } else {
    limit_->Return(bytes_ - bytes);
  }
  bytes_ = bytes;
  return "";
}

}  // namespace Norvik::Host

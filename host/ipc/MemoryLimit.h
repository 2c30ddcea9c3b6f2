#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace Norvik::Host {

/// Counts the bytes of memory that something occupies, up to a limit. Safe on any thread.
class MemoryLimit {
 public:
  /// @param whose for the reason of a refusal: "of one user"
  /// @param outer has to grant the bytes, too; may be null
  MemoryLimit(std::size_t most, std::string whose, std::shared_ptr<MemoryLimit> outer = nullptr)
      : most_(most), whose_(std::move(whose)), outer_(std::move(outer)) {}

  /// Counts more bytes. Otherwise returns which limit they exceed, and counts nothing.
  std::string Take(std::size_t bytes);
  void Return(std::size_t bytes);

 private:
  const std::size_t most_;
  const std::string whose_;
  const std::shared_ptr<MemoryLimit> outer_;
  std::atomic<std::size_t> taken_{0};
};

/// The memory of one owner under a limit, which its end returns. For one thread at a time.
class MemoryShare {
 public:
  /// @param limit null: nothing is limited
  explicit MemoryShare(std::shared_ptr<MemoryLimit> limit) : limit_(std::move(limit)) {}
  MemoryShare(const MemoryShare&) = delete;
  MemoryShare& operator=(const MemoryShare&) = delete;
  ~MemoryShare() { Resize(0); }

  /// Sets the number of bytes that the owner occupies. Otherwise returns the limit that they
  /// exceed, and changes nothing.
  std::string Resize(std::size_t bytes);

 private:
  const std::shared_ptr<MemoryLimit> limit_;
  std::size_t bytes_ = 0;
};

}  // namespace Norvik::Host

#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "host/actions/Clock.h"

namespace Norvik::Host {

/// In the data folder.
inline constexpr char HISTORY_FOLDER[] = "history";

inline constexpr std::uintmax_t MEGABYTE = 1'000'000;

/// How much of the history is kept.
struct HistoryLimits {
  unsigned int days = 90;  ///< 0: nothing is kept, and what is kept is removed
  std::uintmax_t bytes = 256 * MEGABYTE;
};

/// Keeps what goes to the outbox in the folder `history`, as it is sent: by a hard link, so that a
/// document takes no second room while it waits. Files that are too old or too many are removed,
/// oldest first. Names are described by `KeptName`.
///
/// A document has its final name only after it has reached the outbox. Until then the name is that
/// of a file that is not committed: `Recover` decides about it after a crash. A document that
/// cannot be kept is logged at level 3 and sent all the same. Safe on any thread; one object per
/// folder.
class DocumentHistory {
 public:
  explicit DocumentHistory(const boost::filesystem::path& dataFolder,
                           std::shared_ptr<const Clock> clock = std::make_shared<Clock>());

  /// Before `RemoveLeftReplacements`, while no other process uses the data folder: gives each
  /// document whose keeping was interrupted its final name if it is in the outbox.
  void Recover();
  /// Removes what is beyond the new limits.
  void SetLimits(const HistoryLimits& limits);

  /// Keeps a file that is about to be moved to the outbox, if the move succeeds.
  /// @param incremental as in `MoveToOutbox`
  /// @param move        moves the file and returns whether that succeeded; must not throw
  /// @return what `move` returns
  bool Keep(const boost::filesystem::path& file, const boost::optional<bool>& incremental,
            const std::function<bool()>& move);
  /// Keeps the new content of a file of the outbox in place of the old one.
  /// @param replace replaces the file by one with the new content; may throw
  void Follow(const boost::filesystem::path& file, const std::function<void()>& replace);
  /// The document of the history that a file of the outbox is; empty if it is not kept.
  boost::filesystem::path KeptAs(const boost::filesystem::path& file);
  /// Marks a document as delivered. Its file may have left the outbox meanwhile.
  /// @param kept from `KeptAs`; may be empty
  void Delivered(const boost::filesystem::path& kept);

 private:
  boost::filesystem::path Prepare(const boost::filesystem::path& file,
                                  const boost::optional<bool>& incremental) const;
  boost::filesystem::path Find(const boost::filesystem::path& file) const;
  void Prune() const;

  const boost::filesystem::path dataFolder_;
  const boost::filesystem::path folder_;
  const std::shared_ptr<const Clock> clock_;
  std::mutex mutex_;
  HistoryLimits limits_;
};

}  // namespace Norvik::Host

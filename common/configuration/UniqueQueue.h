#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <utility>

namespace Norvik::Common {

/// A queue that holds each text once. Not synchronised.
class UniqueQueue {
 public:
  /// False if the text waits already.
  bool Push(const std::string& text) {
    if (std::find(items_.begin(), items_.end(), text) != items_.end()) return false;
    items_.push_back(text);
    return true;
  }
  /// Takes the oldest text; the queue must not be empty.
  std::string Pop() {
    std::string text = std::move(items_.front());
    items_.pop_front();
    return text;
  }
  bool Empty() const { return items_.empty(); }

 private:
  std::deque<std::string> items_;
};

}  // namespace Norvik::Common

#pragma once

#include <stdexcept>

namespace Norvik::Documents {

/// A text is not a document of the expected kind, or two documents do not belong together. `what()`
/// gives the reason on one line.
class DocumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Norvik::Documents

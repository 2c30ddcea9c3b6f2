#pragma once

#include <stdexcept>

namespace Norvik::Documents {

/// A text is no document of the kind that is wanted, or two documents do not belong together. The
/// text says why, on one line.
class DocumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Norvik::Documents

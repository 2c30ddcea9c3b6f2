#pragma once

#include <gmock/gmock.h>

#include <string>

#include "documents/ApplyIncrement.h"
#include "documents/DocumentError.h"

namespace Norvik::Tests {

/// Expects that the two documents, called "full" and "changes", are refused with a reason.
inline void ExpectRefusal(const std::string& full, const std::string& changes, const char* reason) {
  try {
    Documents::ApplyIncrement({"full", full}, {"changes", changes});
    ADD_FAILURE() << reason;
  } catch (const Documents::DocumentError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr(reason));
  }
}

}  // namespace Norvik::Tests

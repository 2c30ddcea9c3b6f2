#pragma once

namespace Norvik::Common {

/// State of a file inventory. The numbers are those of the agent database.
enum RudStatus : int {
  RudStatusNone = 1,      ///< no run has been recorded
  RudStatusFinished = 2,  ///< the last run has ended, with or without success
  RudStatusScanning = 3,  ///< the folders are being walked
  RudStatusSaving = 4,    ///< results are being written to the store
  RudStatusPrinting = 5,  ///< the document is being made
};

/// As users read it: "scanning". A number that is no state gives "unknown".
constexpr const char* NameOf(RudStatus status) {
  switch (status) {
    case RudStatusNone:
      return "none";
    case RudStatusFinished:
      return "finished";
    case RudStatusScanning:
      return "scanning";
    case RudStatusSaving:
      return "saving";
    case RudStatusPrinting:
      return "printing";
  }
  return "unknown";
}

}  // namespace Norvik::Common

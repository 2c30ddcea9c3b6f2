#include "Fuzz.h"
#include "module/Inventory/CSharedResourcesSection.h"

/// Reads the input as the list of shares up to the first NUL, and the rest as the properties of
/// each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const std::size_t end = std::min(text.find('\0'), text.size());
  const auto shares = Norvik::KOB::ReadShares(text.substr(0, end),
                                              [&](const std::string&) { return text.substr(end); });
  for (const auto& share : shares) {
    if (share.name.empty() || share.path.empty()) std::abort();
  }
  return 0;
}

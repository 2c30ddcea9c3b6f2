#pragma once

#include <string>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

// The texts of `why`, from the answers that it gives in JSON.

/// The table of all sections: two lines for each.
std::string SectionsText(const OrderedJson& sections);
/// All that is known of one key.
std::string KeyText(const OrderedJson& key);
/// The costliest sections, or why they are not known.
std::string LedgerText(const OrderedJson& ledger);

}  // namespace Norvik::Cli

#pragma once

#include <string>

#include "host/recording/Replacements.h"

namespace Norvik::Host {

/// Adds the values in a text that are known by their form, whatever is around them: UUIDs,
/// addresses of networks, links and e-mail, users in paths of home folders, users and hosts in
/// URIs, keys in PEM.
void AddForms(const std::string& text, Replacements& replacements);

}  // namespace Norvik::Host

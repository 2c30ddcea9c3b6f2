#pragma once

#include <functional>
#include <string>

#include "host/redaction/Replacements.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

/// Calls `take` with each value in a text that is known by its form, whatever is around it: UUIDs,
/// addresses of networks, links and e-mail, users in paths of home folders, users and hosts in
/// URIs, keys in PEM.
using TakeForm = std::function<void(SensitiveKind kind, const std::string& value)>;
void ForEachForm(const std::string& text, const TakeForm& take);

/// The same with the users in paths of home folders alone. Those of a directory service are in no
/// list of accounts.
void ForEachHomeFolder(const std::string& text, const TakeForm& take);

/// Adds these values.
void AddForms(const std::string& text, Replacements& replacements);

}  // namespace Norvik::Host

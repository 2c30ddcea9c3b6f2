#pragma once

#include <boost/optional.hpp>
#include <string>
#include <vector>

namespace Norvik::Common {

/// The name of a table in quotes, as a statement needs it. Throws `std::invalid_argument` for a
/// name that is empty or has other characters than letters, digits and underscores.
std::string QuotedTableName(const std::string& name);

/// The number that a text holds; empty if the text holds anything else or the number does not fit.
template <class Integer>
boost::optional<Integer> ParseInteger(const std::string& text);

// One key of a table with the columns `name` and `value`. They throw what the database throws.

/// Empty if the key is missing.
boost::optional<std::string> ReadKey(const std::string& table, const std::string& key);
void WriteKey(const std::string& table, const std::string& key, const std::string& value);
/// The keys that begin with this text, in order.
std::vector<std::string> ReadKeysFrom(const std::string& table, const std::string& prefix);
void RemoveKey(const std::string& table, const std::string& key);

}  // namespace Norvik::Common

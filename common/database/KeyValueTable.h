#pragma once

#include <boost/optional.hpp>
#include <string>

namespace Norvik::Common {

/// A table's name as it may stand in a statement. Raises `std::invalid_argument` for a name that
/// is not made of letters, digits and underscores.
std::string QuotedTableName(const std::string& name);

/// The text of a number, if it is nothing else and fits.
template <class Integer>
boost::optional<Integer> ParseInteger(const std::string& text);

/// One key of a table with the columns `name` and `value`. Raise what the database raises.
boost::optional<std::string> ReadKey(const std::string& table, const std::string& key);
void WriteKey(const std::string& table, const std::string& key, const std::string& value);
void RemoveKey(const std::string& table, const std::string& key);

}  // namespace Norvik::Common

#include "cli/commands/SectionText.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <chrono>
#include <cstdint>
#include <set>
#include <utility>

#include "cli/commands/FittedTable.h"
#include "common/text/MaskedDocument.h"
#include "common/text/Text.h"
#include "documents/SectionKeys.h"
#include "host/OutputText.h"

namespace Norvik::Cli {

namespace {

using Common::EncodeUtf8Characters;
using Common::MaskedDocument;
using Documents::Json;
using Names = std::vector<std::string>;
using Records = std::vector<Json>;

bool IsEmpty(const Json& value) { return value.empty() || value == ""; }

bool IsListOfRecords(const Json& value) {
  return value.is_array() && !value.empty() && value.front().is_object();
}

Json Member(const Json& record, const std::string& name) { return record.value(name, Json()); }

/// The properties that identify a record of the section, or could.
Names IdentityOf(const std::string& section) {
  const Names identity = Documents::IdentityOfSection(section);
  return identity.empty() ? Names{"name", "pathName"} : identity;
}

/// Names of the properties that are wanted in some record: those that identify it first, the others
/// in the order of the document.
template <class Wanted>
Names PropertiesOf(const Names& identity, const Records& records, Wanted wanted) {
  std::set<std::string> found;
  for (const Json& record : records) {
    for (const auto& [name, value] : record.items()) {
      if (wanted(value)) found.insert(name);
    }
  }
  Names names;
  for (const std::string& name : identity) {
    if (found.erase(name) > 0) names.push_back(name);
  }
  names.insert(names.end(), found.begin(), found.end());
  return names;
}

Records RecordsOf(const Json& value) {
  Records records;
  const auto add = [&](const Json& record) {
    records.push_back(record.is_object() ? record : Json{{"value", record}});
  };
  if (value.is_array()) {
    std::for_each(value.begin(), value.end(), add);
  } else if (!value.is_null()) {
    add(value);
  }
  return records;
}

/// Members of nested records get names such as "system.serial".
void Flatten(const std::string& prefix, const Json& record, Json& flat) {
  for (const auto& [name, value] : record.items()) {
    if (value.is_object()) {
      Flatten(prefix + name + ".", value, flat);
    } else {
      flat[prefix + name] = value;
    }
  }
}

/// The records of the lists of one name, each with what identifies the record that holds it.
Records PartsOf(const std::string& section, const Records& records, const std::string& name) {
  Records parts;
  for (const Json& record : records) {
    const Json list = Member(record, name);
    if (!IsListOfRecords(list)) continue;
    std::string owner;
    for (const std::string& key : IdentityOf(section)) {
      const Json value = Member(record, key);
      if (!IsEmpty(value))
        owner += (owner.empty() ? "" : ", ") + CellText(ReadableValue(key, value));
    }
    for (Json part : RecordsOf(list)) {
      if (!owner.empty()) part["of " + section] = owner;
      parts.push_back(std::move(part));
    }
  }
  return parts;
}

/// A line for each record under the names, or a line for each name of the only record.
std::vector<TableRow> RowsOf(const Names& names, const Records& records, bool isList) {
  std::vector<TableRow> rows;
  if (isList) rows.emplace_back(names.begin(), names.end());
  for (const Json& record : records) {
    TableRow row;
    for (const std::string& name : names) row.push_back(ReadableValue(name, Member(record, name)));
    if (isList) {
      rows.push_back(std::move(row));
      continue;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      rows.push_back({names[i], CellText(row[i])});
    }
  }
  return rows;
}

std::string TablesOf(const std::string& key, const Names& identity, Records records, bool isList,
                     std::size_t width) {
  for (Json& record : records) {
    Json flat = Json::object();
    Flatten("", record, flat);
    record = std::move(flat);
  }
  const Names plain = PropertiesOf(identity, records, [](const Json& value) {
    return !IsEmpty(value) && !IsListOfRecords(value);
  });
  const Names nested =
      PropertiesOf({}, records, [](const Json& value) { return IsListOfRecords(value); });
  std::string text = Common::EscapeControls(key) + ":";
  if (isList)
    text += " " + std::to_string(records.size()) + (records.size() == 1 ? " record" : " records");
  text += "\n";
  if (!plain.empty()) text += FittedTable(RowsOf(plain, records, isList), width);
  for (const std::string& name : nested) {
    text += "\n" + TablesOf(key + "." + name, {"of " + key, "name", "filename"},
                            PartsOf(key, records, name), true, width);
  }
  return text;
}

}  // namespace

OrderedJson ReadableValue(const std::string& property, const Json& value) {
  if (value.is_null()) return nullptr;
  if (value.is_string()) return EncodeUtf8Characters(MaskedDocument::Unmask(value));
  if (value.is_number_integer() && boost::iends_with(property, "date")) {
    const std::chrono::milliseconds time(value.get<std::int64_t>());
    return value == 0 ? OrderedJson()
                      : OrderedJson(Host::TimeText(std::chrono::system_clock::time_point(time)));
  }
  if (value.is_number_unsigned() && boost::ends_with(property, "Bytes")) {
    return SizeText(value.get<std::uintmax_t>());
  }
  if (!value.is_structured()) return OrderedJson::parse(Documents::TextOf(value));
  if (value.is_object() || IsListOfRecords(value)) {
    return EncodeUtf8Characters(Documents::TextOf(value));
  }
  std::string list;
  for (const Json& element : value) {
    const OrderedJson text = ReadableValue("", element);
    list += (list.empty() ? "" : ", ") + (text.is_string() ? text.get<std::string>() : text.dump());
  }
  return list;
}

std::string SectionText(const std::string& key, const Json& value, std::size_t width) {
  if (IsEmpty(value)) return Common::EscapeControls(key) + ": none\n";
  return TablesOf(key, IdentityOf(key), RecordsOf(value), value.is_array(), width);
}

std::string SectionCsv(const std::string& key, const Json& value) {
  const Records records = RecordsOf(value);
  const Names names =
      PropertiesOf(IdentityOf(key), records, [](const Json& /*value*/) { return true; });
  std::string text;
  const auto addLine = [&](auto fieldOf) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      std::string field = fieldOf(names[i]);
      if (field.find_first_of(",\"\r\n") != std::string::npos) {
        field = '"' + boost::algorithm::replace_all_copy(field, "\"", "\"\"") + '"';
      }
      text += (i == 0 ? "" : ",") + field;
    }
    text += "\r\n";
  };
  if (names.empty()) return text;
  addLine([](const std::string& name) { return MaskedDocument::Unmask(name); });
  for (const Json& record : records) {
    addLine([&](const std::string& name) {
      const Json cell = Member(record, name);
      if (cell.is_string()) return MaskedDocument::Unmask(cell);
      return cell.is_null() ? std::string() : Documents::TextOf(cell);
    });
  }
  return text;
}

}  // namespace Norvik::Cli

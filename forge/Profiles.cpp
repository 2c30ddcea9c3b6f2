#include "forge/Profiles.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "forge/Tables.h"

namespace Norvik::Forge {

namespace {

Json RowsOf(const Json& table) {
  if (!table.is_object()) return table;
  Json rows = Json::array();
  for (const Json& values : table.at("rows")) {
    Json row;
    for (std::size_t i = 0; i < values.size(); ++i)
      row[table["columns"][i].get<std::string>()] = values[i];
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string Lower(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
  return text;
}

}  // namespace

Profiles::Profiles() {
  const Json text = Json::parse(ProfilesJson());
  for (const auto& [name, table] : text.items()) tables_[name] = RowsOf(table);
  std::map<std::string, const Json*> makers;
  for (const Json& maker : Rows("makers")) makers[maker["name"]] = &maker;
  for (const Json& row : Rows("programs")) {
    const Json& maker = *makers.at(row["maker"]);
    Program& program = programs_.emplace_back();
    program.name = row["name"];
    program.maker = row["maker"];
    program.signedBy = "Developer ID Application: " + program.maker + " (" +
                       maker["team"].get<std::string>() + ")";
    program.share = row["share"].get<double>() / 1000;
    program.version = row["version"];
    program.step = row["step"];
    program.days = row["days"];
    if (row["service"] == 1) {
      program.serviceName =
          "com." + maker["domain"].get<std::string>() + "." + Lower(program.name) + "d";
    }
  }
}

const Json& AnyOf(const Json& list, Random random) { return list[random.Below(list.size())]; }

const Json& Drawn(const Json& rows, Random random) {
  double sum = 0;
  for (const Json& row : rows) sum += row["share"].get<double>();
  double left = random.Unit() * sum;
  for (const Json& row : rows) {
    left -= row["share"].get<double>();
    if (left < 0) return row;
  }
  return rows.back();
}

std::string LaterVersion(const std::string& version, const std::string& step,
                         std::int64_t releases) {
  constexpr long long PATCHES = 6;  // then the next minor version
  long long major = 0;
  long long minor = 0;
  long long patch = 0;
  const int parts = std::sscanf(version.c_str(), "%lld.%lld.%lld", &major, &minor, &patch);
  if (step == "major") {
    major += releases;
  } else if (step == "minor") {
    minor += releases;
  } else {
    const long long whole = minor * PATCHES + patch + releases;
    minor = whole / PATCHES;
    patch = whole % PATCHES;
  }
  std::string text = std::to_string(major) + "." + std::to_string(minor);
  if (parts == 3) text += "." + std::to_string(patch);
  return text;
}

}  // namespace Norvik::Forge

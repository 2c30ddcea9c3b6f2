#pragma once

#include <gtest/gtest.h>

#include <map>

#include "support/Files.h"
#include "support/JsonLibrary.h"

/// Test cases in data files: a test names the function, the file its arguments and results.
/// tests/README.md describes the formats.
namespace Norvik::Tests {

/// Keeps the order of the keys, which matters in property lists.
using Json = nlohmann::ordered_json;

/// A data file below tests/; read once per process.
inline const Json& DataOf(const std::string& file) {
  static std::map<std::string, Json> files;
  const auto [found, isNew] = files.try_emplace(file);
  if (isNew) found->second = Json::parse(ContentOf(NORVIK_SOURCE_DIR "/tests/" + file));
  return found->second;
}

/// The value of an object under a key; an empty object without one.
inline const Json& PartOf(const Json& object, const char* key) {
  static const Json none = Json::object();
  return object.contains(key) ? object[key] : none;
}

/// A value as a failure shows it; invalid UTF-8 is replaced.
inline std::string Shown(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// A cell of bytes: a text in which each character stands for the byte of that code, because JSON
/// cannot hold other bytes; or a list of `[cell, count]`, repeated and joined.
struct Bytes : std::string {
  Bytes(std::string bytes = {}) : std::string(std::move(bytes)) {}
  friend void from_json(const Json& cell, Bytes& bytes) {
    bytes.clear();
    if (cell.is_array()) {
      for (const Json& part : cell) {
        const auto repeated = part[0].get<Bytes>();
        for (int times = part[1]; times > 0; --times) bytes += repeated;
      }
      return;
    }
    const std::string& text = cell.get_ref<const std::string&>();
    for (std::size_t at = 0; at < text.size(); ++at) {
      const auto lead = static_cast<unsigned char>(text[at]);
      bytes += lead < 0x80 ? text[at] : static_cast<char>(((lead & 3) << 6) | (text[++at] & 0x3F));
    }
  }
  friend void to_json(Json& cell, const Bytes& bytes) {
    std::string text;
    for (const char byte : bytes) {
      const auto number = static_cast<unsigned char>(byte);
      if (number >= 0x80) text += static_cast<char>(0xC0 | (number >> 6));
      text += number < 0x80 ? byte : static_cast<char>(0x80 | (number & 0x3F));
    }
    cell = text;
  }
};

/// Checks a function against rows: the cells of a row are the arguments followed by the expected
/// result. A name may precede them.
template <class Result, class... Arguments>
void ExpectRows(const Json& rows, Result (*function)(Arguments...)) {
  EXPECT_FALSE(rows.empty());
  for (const Json& row : rows) {
    Json cells = row;
    cells.erase(cells.size() - 1);
    if (cells.size() > sizeof...(Arguments)) cells.erase(0);
    const auto arguments = cells.get<std::tuple<std::decay_t<Arguments>...>>();
    const nlohmann::json result = Json(std::apply(function, arguments));
    EXPECT_TRUE(result == nlohmann::json(row.back())) << Shown(row) << "\ngives " << Shown(result);
  }
}

/// The message of the exception of type `Error` that an action throws; "" if it throws none.
template <class Error, class Action>
std::string MessageOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

/// The value reduced to the keys that the wanted value has, at any depth.
inline Json Chosen(const Json& actual, const Json& wanted) {
  Json chosen = actual;
  if (actual.is_object() && wanted.is_object()) {
    chosen = Json::object();
    for (const auto& [key, value] : wanted.items()) {
      chosen[key] = actual.contains(key) ? Chosen(actual[key], value) : Json("missing");
    }
  } else if (actual.is_array() && wanted.is_array() && actual.size() == wanted.size()) {
    for (std::size_t i = 0; i < actual.size(); ++i) chosen[i] = Chosen(actual[i], wanted[i]);
  }
  return chosen;
}

}  // namespace Norvik::Tests

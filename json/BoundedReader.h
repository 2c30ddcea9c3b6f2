#pragma once

#include <cstddef>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "json/Nesting.h"

namespace json {

/// A text was refused. `what` is general: callers word the message for their users by the reason.
struct ReadError : std::exception {
  enum class Reason { NestsTooDeep, NotJson, NumberTooLarge };

  ReadError(Reason why, std::size_t wrongByte) : reason(why), byte(wrongByte) {}
  const char* what() const noexcept override { return "the text is not JSON, or exceeds a limit"; }

  Reason reason;
  std::size_t byte;  ///< of `NotJson`: number of the first wrong byte, from 1; otherwise 0
};

/// Reads a JSON text that comes from outside. `Value` is `nlohmann::json` or `ordered_json`. Throws
/// `ReadError` if the text is no JSON as a whole (a NUL in it is wrong as well), holds a number
/// beyond a double, or nests deeper than `limit`.
/// @param watch called for each event of the parser, see there; what it throws passes through
template <class Value>
Value ReadBounded(const std::string& text, std::size_t limit,
                  typename Value::parser_callback_t watch = nullptr) {
  if (NestsDeeperThan(text, limit)) throw ReadError(ReadError::Reason::NestsTooDeep, 0);
  // The parser would take a NUL for the end of the text and ignore what follows.
  const std::size_t nul = text.find('\0');
  if (nul != std::string::npos) throw ReadError(ReadError::Reason::NotJson, nul + 1);
  try {
    return Value::parse(text, std::move(watch));
  } catch (const typename Value::parse_error& error) {
    throw ReadError(ReadError::Reason::NotJson, error.byte);
  } catch (const typename Value::out_of_range&) {
    throw ReadError(ReadError::Reason::NumberTooLarge, 0);
  }
}

}  // namespace json

#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "host/actions/TaskAnswer.h"

namespace Norvik::Host {

inline constexpr std::size_t LARGEST_ANSWER = 8 << 20;  ///< in bytes of JSON

/// The JSON object of an answer, as docs/server-protocol.md describes it. A longer one is cut: its
/// text after a character, its rows after a whole row. Row by row, since the rows of a large
/// response as JSON values would take several times its memory.
/// @param id a UUID of this answer, the first value of the object
/// @param limit in bytes, at least 16 KiB
std::string AnswerText(const std::string& id, const TaskAnswer& answer,
                       std::chrono::system_clock::time_point time,
                       std::size_t limit = LARGEST_ANSWER);

}  // namespace Norvik::Host

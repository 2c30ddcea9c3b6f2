#include "host/server/AnswerBody.h"

#include <boost/property_tree/json_parser.hpp>
#include <cstddef>
#include <sstream>
#include <stdexcept>

#include "json/Nesting.h"

namespace Norvik::Host {

namespace {

constexpr std::size_t MAX_NESTING = 32;

}  // namespace

boost::property_tree::ptree ParseAnswerBody(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos || text[first] != '{') {
    throw std::runtime_error("the answer is no JSON object");
  }
  if (json::NestsDeeperThan(text, MAX_NESTING)) {
    throw std::runtime_error("the answer is nested too deep");
  }
  std::istringstream stream(text);
  boost::property_tree::ptree body;
  try {
    boost::property_tree::read_json(stream, body);
  } catch (const boost::property_tree::json_parser_error& error) {
    throw std::runtime_error("the answer is no JSON: " + error.message());
  }
  return body;
}

}  // namespace Norvik::Host

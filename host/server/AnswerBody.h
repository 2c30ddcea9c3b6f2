#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace Norvik::Host {

/// Parses the JSON object in the body of a server's answer. Throws `std::runtime_error` if the text
/// is no JSON object or nests deeper than 32 levels: the parser recurses once per level.
boost::property_tree::ptree ParseAnswerBody(const std::string& text);

}  // namespace Norvik::Host

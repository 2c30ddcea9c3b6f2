#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Norvik::Machine {

// Shapes of text that systems use in many places. All take any text.

/// The decimal number at the beginning of a text; 0 if there is none or it is too large.
std::uint64_t LeadingNumber(const std::string& text);

/// Lines without their ends; no empty one at the end.
std::vector<std::string> LinesOf(const std::string& text);

/// Words between blanks.
std::vector<std::string> WordsOf(const std::string& text);

using Entries = std::map<std::string, std::string>;

/// Entries of the form `key<separator>value`, one a line, without the blanks around both; the first
/// of a key counts. Lines without the separator are passed over.
Entries ParseEntries(const std::string& text, char separator);

/// The same for paragraphs between empty lines.
std::vector<std::map<std::string, std::string>> ParseParagraphs(const std::string& text,
                                                                char separator);

/// The value of a key; empty if it is absent.
std::string ValueOf(const std::map<std::string, std::string>& entries, const std::string& key);

/// A text without a pair of quotes around it.
std::string WithoutQuotes(const std::string& text);

/// Twelve upper-case hexadecimal digits of an address like "00:1a:2b:3c:4d:5e"; empty for anything
/// else.
std::string PlainMacAddress(const std::string& text);

}  // namespace Norvik::Machine

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Norvik::Machine {

// Parsers of the text formats that systems use in many places. All accept any text.

/// The decimal number at the beginning of a text; 0 without a number or if it is too large.
std::uint64_t LeadingNumber(const std::string& text);

/// The lines without their newlines. A trailing newline adds no empty line.
std::vector<std::string> LinesOf(const std::string& text);

/// The words between blanks.
std::vector<std::string> WordsOf(const std::string& text);

/// Values by key.
using Entries = std::map<std::string, std::string>;

/// Lines of the form `key<separator>value`, without blanks around key and value. The first entry of
/// a key counts. Lines without the separator are skipped.
Entries ParseEntries(const std::string& text, char separator);

/// The entries of each paragraph; paragraphs are separated by empty lines.
std::vector<Entries> ParseParagraphs(const std::string& text, char separator);

/// The value of a key; empty if it is absent.
std::string ValueOf(const Entries& entries, const std::string& key);

/// Removes one pair of quotes around a text.
std::string WithoutQuotes(const std::string& text);

/// The language and the region of a locale like "en_US@rg=dezzzz", whose keywords change no
/// language.
std::string WithoutKeywords(const std::string& locale);

/// The twelve hexadecimal digits, in upper case, of an address like "00:1a:2b:3c:4d:5e"; empty for
/// anything else.
std::string PlainMacAddress(const std::string& text);

}  // namespace Norvik::Machine

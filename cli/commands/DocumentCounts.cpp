#include "cli/commands/DocumentCounts.h"

#include <nlohmann/json.hpp>

#include "common/text/MaskedDocument.h"

namespace Norvik::Cli {

namespace {

using Json = nlohmann::json;

/// Counts during parsing. Depth 1 is inside the document's object, depth 2 inside a section's
/// value.
class Counter : public nlohmann::json_sax<Json> {
 public:
  std::map<std::string, SectionCount> counts;

  bool null() override { return Value(0); }
  bool boolean(bool /*value*/) override { return Value(1); }
  bool number_integer(number_integer_t /*value*/) override { return Value(1); }
  bool number_unsigned(number_unsigned_t /*value*/) override { return Value(1); }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override {
    return Value(1);
  }
  bool string(string_t& /*value*/) override { return Value(1); }
  bool binary(binary_t& /*value*/) override { return false; }
  bool key(string_t& name) override {
    if (depth_ == 1) {
      section_ = name;
      counts[section_] = {};
    }
    return true;
  }
  bool start_object(std::size_t /*elements*/) override {
    if (depth_ > 0) Value(1);
    ++depth_;
    return true;
  }
  bool end_object() override { return Leave(); }
  bool start_array(std::size_t /*elements*/) override {
    if (depth_ == 0) return false;
    if (depth_ == 1) inList_ = counts[section_].isList = true;
    if (depth_ == 2 && inList_) Value(1);
    ++depth_;
    return true;
  }
  bool end_array() override {
    if (depth_ == 2) inList_ = false;
    return Leave();
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const Json::exception& /*error*/) override {
    return false;
  }

 private:
  bool Value(std::size_t records) {
    const std::size_t depth = inList_ ? 2 : 1;
    if (depth_ == depth) counts[section_].records += records;
    return depth_ > 0;
  }
  bool Leave() {
    --depth_;
    return true;
  }

  std::size_t depth_ = 0;
  bool inList_ = false;  ///< the section's value is a list
  std::string section_;
};

}  // namespace

std::map<std::string, SectionCount> CountRecords(std::istream& document) {
  Counter counter;
  Common::MaskedDocument masked(document);
  std::istream stream(&masked);
  if (!Json::sax_parse(stream, &counter)) return {};
  return counter.counts;
}

}  // namespace Norvik::Cli

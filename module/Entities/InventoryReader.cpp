#include "module/Entities/InventoryReader.h"

#include <boost/property_tree/json_parser.hpp>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/text/MaskedDocument.h"
#include "module/Entities/InventorySections.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::json_parser_error;
using boost::property_tree::ptree;
using Json = nlohmann::json;

/// No record nests deeper. A tree is freed by recursion, and hostile text must not exhaust the
/// stack.
constexpr std::size_t MAX_NESTING = 64;

/// In bytes. The parser quotes the token at which it failed, whatever its length.
constexpr std::size_t MAX_REASON = 200;

/// A section, and the function that stores one of its records.
struct SectionReader {
  std::string key;
  bool isList;
  bool isRequired;
  void (*store)(InventoryKOBInfo& inventory, const ptree& record);
  bool seen = false;
};

template <std::size_t index>
SectionReader ReaderOf() {
  constexpr auto section = std::get<index>(Sections());
  using Section = std::decay_t<decltype(section)>;
  return {section.key, Section::isList, Section::kind != SectionKind::Device,
          [](InventoryKOBInfo& inventory, const ptree& record) {
            auto& value = std::get<index>(Sections()).In(inventory);
            if constexpr (Section::isList) {
              value.emplace_back(record);
            } else {
              value = typename Section::Value(record);
            }
          }};
}

template <std::size_t... indices>
std::vector<SectionReader> ReadersOf(std::index_sequence<indices...> /*all*/) {
  return {ReaderOf<indices>()...};
}

/// A number as the document has it: in the parser's text the C locale's decimal point replaces the
/// document's.
std::string WithPoint(std::string number) {
  const auto place = number.find_first_not_of("0123456789+-eE");
  if (place != std::string::npos) number[place] = '.';
  return number;
}

/// Receives the parser's events. Level 1 is the document's object, level 2 a section, and level 3 a
/// record of a list.
class Reader : public Json::json_sax_t {
 public:
  Reader(InventoryKOBInfo& inventory, const std::string& file)
      : inventory_(inventory), file_(file) {}

  /// Call after the last event. Throws `ptree_bad_path` if a required section is missing.
  void CheckComplete() const {
    for (const SectionReader& section : sections_) {
      if (section.seen || !section.isRequired) continue;
      throw boost::property_tree::ptree_bad_path("No such node", ptree::path_type(section.key));
    }
  }

  bool null() override { return Value("null"); }
  bool boolean(bool value) override { return Value(value ? "true" : "false"); }
  bool number_integer(number_integer_t value) override { return Value(std::to_string(value)); }
  bool number_unsigned(number_unsigned_t value) override { return Value(std::to_string(value)); }
  bool number_float(number_float_t /*value*/, const string_t& text) override {
    return Value(WithPoint(text));
  }
  bool string(string_t& value) override {
    return Value(Common::MaskedDocument::Unmask(std::move(value)));
  }
  bool binary(binary_t& /*value*/) override { return false; }

  bool key(string_t& name) override {
    if (level_ == 1) {
      Select(name);
    } else {
      key_ = std::move(name);
    }
    return true;
  }
  bool start_object(std::size_t /*elements*/) override { return Open(false); }
  bool start_array(std::size_t /*elements*/) override { return Open(true); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const Json::exception& error) override {
    throw json_parser_error(std::string(error.what()).substr(0, MAX_REASON), file_, 0);
  }

 private:
  void Select(const std::string& name) {
    section_ = nullptr;
    for (SectionReader& section : sections_) {
      if (section.key == name) section_ = &section;
    }
    if (section_) section_->seen = true;
  }

  bool Value(const std::string& text) {
    if (!section_) return true;
    if (!open_.empty()) {
      open_.back()->push_back({std::exchange(key_, {}), ptree(text)});
    } else if (level_ > 1 || text != "null") {
      ThrowWrongKind();
    }
    return true;
  }

  bool Open(bool isArray) {
    ++level_;
    if (level_ == 1 || !section_) return true;
    if (!open_.empty()) {
      open_.push_back(&open_.back()->push_back({std::exchange(key_, {}), ptree()})->second);
    } else if (isArray) {
      if (level_ != 2 || !section_->isList) ThrowWrongKind();
    } else {
      if ((level_ == 2) == section_->isList) ThrowWrongKind();
      open_.push_back(&record_);
    }
    if (open_.size() > MAX_NESTING)
      throw json_parser_error("the document nests too deep", file_, 0);
    return true;
  }

  bool Close() {
    --level_;
    if (open_.empty()) return true;
    open_.pop_back();
    if (open_.empty()) section_->store(inventory_, std::exchange(record_, {}));
    return true;
  }

  [[noreturn]] void ThrowWrongKind() const {
    throw boost::property_tree::ptree_bad_data(
        section_->key + " is no " + (section_->isList ? "list of records" : "record"),
        std::string());
  }

  InventoryKOBInfo& inventory_;
  const std::string& file_;
  std::vector<SectionReader> sections_ =
      ReadersOf(std::make_index_sequence<std::tuple_size_v<decltype(Sections())>>());
  SectionReader* section_ = nullptr;  ///< null in an unknown section, which is skipped
  std::size_t level_ = 0;
  std::string key_;           ///< of the next value inside a record
  ptree record_;              ///< the current one, while `open_` is not empty
  std::vector<ptree*> open_;  ///< the path from the record to its innermost open node
};

}  // namespace

std::unique_ptr<InventoryKOBInfo> ReadInventory(std::istream& document, const std::string& file) {
  auto inventory = std::make_unique<InventoryKOBInfo>();
  Reader reader(*inventory, file);
  Common::MaskedDocument masked(document);
  std::istream stream(&masked);
  Json::sax_parse(stream, &reader);
  reader.CheckComplete();
  return inventory;
}

}  // namespace Norvik::KOB

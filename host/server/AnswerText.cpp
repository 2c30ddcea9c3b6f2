#include "host/server/AnswerText.h"

#include <string_view>

#include "host/OutputText.h"
#include "host/run/ResponseJson.h"
#include "json/Utf8.h"

namespace Norvik::Host {

namespace {

using std::chrono::system_clock;
using Row = Common::ActionResponseTable::Row;

constexpr std::size_t LONGEST_REQUEST = 1024;
/// All that follows the text in an answer without titles and rows.
constexpr std::string_view REST = ",\"titles\":[],\"rows\":[],\"truncated\":false}";

/// Bytes that a step of a text takes in JSON, where bytes that are not UTF-8 become U+FFFD.
std::size_t BytesOf(const json::Utf8Step& step) {
  constexpr std::string_view SHORT_ESCAPES = "\"\\\b\f\n\r\t";
  if (step.kind != json::Utf8Step::Kind::Character) return 3 * step.length;
  if (step.code >= 0x80) return step.length;
  if (SHORT_ESCAPES.find(static_cast<char>(step.code)) != std::string_view::npos) return 2;
  return step.code < 0x20 ? 6 : 1;
}

/// The part of a text that takes at most `room` bytes in JSON, without its quotes.
std::string_view PartWithin(std::string_view text, std::size_t room) {
  for (std::size_t at = 0; at < text.size();) {
    const json::Utf8Step step = json::Utf8StepAt(text, at);
    const std::size_t bytes = BytesOf(step);
    if (bytes > room) return text.substr(0, at);
    room -= bytes;
    at += step.length;
  }
  return text;
}

/// Writes an answer up to a limit.
class Writer {
 public:
  Writer(const OrderedJson& head, std::size_t limit) : json_(JsonText(head)), limit_(limit) {
    json_.back() = ',';
  }

  void AddText(const std::string* text) {
    json_ += "\"text\":";
    if (!text) {
      json_ += "null";
      return;
    }
    constexpr std::size_t QUOTES = 2;
    const auto part = PartWithin(*text, limit_ - json_.size() - QUOTES - REST.size());
    isCut_ = part.size() < text->size();
    json_ += JsonText(std::string(part));
  }
  void AddTable(const Common::ActionResponseTable& table) {
    const auto& rows = table.Rows();
    auto row = rows.begin();
    std::string titles = "[]";
    if (table.HasTitles() && row != rows.end()) titles = RowText(*row++);
    // Rows mean nothing without their titles.
    isCut_ = isCut_ || !Fits(titles);
    json_ += ",\"titles\":" + (isCut_ ? "[]" : titles) + ",\"rows\":[";
    for (; row != rows.end() && !isCut_; ++row) AddRow(RowText(*row));
  }
  std::string Finish() {
    json_ += isCut_ ? "],\"truncated\":true}" : "],\"truncated\":false}";
    return std::move(json_);
  }

 private:
  bool Fits(const std::string& part) const {
    return json_.size() + part.size() + REST.size() <= limit_;
  }
  void AddRow(const std::string& row) {
    isCut_ = !Fits(row);
    if (isCut_) return;
    if (json_.back() != '[') json_ += ',';
    json_ += row;
  }

  std::string json_;
  const std::size_t limit_;
  bool isCut_ = false;
};

}  // namespace

std::string AnswerText(const std::string& id, const TaskAnswer& answer,
                       system_clock::time_point time, std::size_t limit) {
  const ActionResult& result = answer.result;
  const bool hasThrown = !result.failure.empty();
  const std::string* text = result.response.text.get_ptr();
  if (hasThrown) text = &result.failure;
  Writer writer({{"id", id},
                 {"taskIdentifier", answer.taskIdentifier},
                 {"requestId", answer.requestId.substr(0, LONGEST_REQUEST)},
                 {"code", answer.code},
                 {"time", system_clock::to_time_t(time)},
                 {"success", text == nullptr},
                 {"result", result.response.result}},
                limit);
  writer.AddText(text);
  writer.AddTable(result.response.table);
  return writer.Finish();
}

}  // namespace Norvik::Host

#include "host/run/ResponseJson.h"

#include "common/text/Text.h"
#include "host/HostError.h"
#include "json/Escape.h"

namespace Norvik::Host {

using namespace Common;

namespace {

struct CellVisitor : boost::static_visitor<OrderedJson> {
  template <class Plain>
  OrderedJson operator()(const Plain& value) const {
    return value;
  }
  OrderedJson operator()(const wxString& value) const { return ToUtf8(value); }
  OrderedJson operator()(const AgentConfigurationInfo& value) const {
    return "configuration of profile " + std::to_string(value.profileId);
  }
  OrderedJson operator()(const ActionTimePoint& value) const {
    return TimeText(std::chrono::time_point_cast<std::chrono::system_clock::duration>(value));
  }
};

ActionPropertyValue CellOf(const OrderedJson& json) {
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_unsigned()) return json.get<unsigned long long>();
  if (json.is_number_integer()) return json.get<long long>();
  if (json.is_number()) return json.get<double>();
  return json.get<std::string>();
}

void AppendCell(std::string& out, const ActionPropertyValue& value) {
  const auto* const text = boost::get<std::string>(&value);
  // Most cells of a large table are such texts.
  if (text && json::IsPlain(*text)) {
    out.append(1, '"').append(*text).append(1, '"');
  } else {
    out += JsonText(CellToJson(value));
  }
}

}  // namespace

std::string RowText(const ActionResponseTable::Row& row) {
  std::string text = "[";
  for (const auto& value : row) {
    if (text.size() > 1) text += ',';
    AppendCell(text, value);
  }
  return text + ']';
}

OrderedJson CellToJson(const ActionPropertyValue& value) {
  return boost::apply_visitor(CellVisitor(), value);
}

std::string ToJsonText(const ActionResult& result) {
  const ActionResponse& response = result.response;
  const OrderedJson head = {{"failure", result.failure},
                            {"result", response.result},
                            {"text", response.text ? OrderedJson(*response.text) : OrderedJson()},
                            {"extra", response.extra},
                            {"success", response.success},
                            {"titles", response.table.HasTitles()}};
  std::string text = JsonText(head);
  text.back() = ',';
  text += "\"rows\":[";
  for (const auto& row : response.table.Rows()) {
    if (text.back() != '[') text += ',';
    text += RowText(row);
  }
  return text + "]}";
}

ActionResult ResultOf(const OrderedJson& json) {
  ActionResult result;
  ActionResponse& response = result.response;
  result.failure = json.at("failure").get<std::string>();
  response.result = json.at("result").get<std::int32_t>();
  if (json.at("text").is_string()) response.text = json["text"].get<std::string>();
  response.extra = json.at("extra").get<std::uint64_t>();
  response.success = json.at("success").get<bool>();
  response.table.HasTitles(json.at("titles").get<bool>());
  for (const auto& cells : json.at("rows")) {
    response.table.AddNewRow();
    for (const auto& cell : cells) response.table.AddCellToLastRow(CellOf(cell));
  }
  return result;
}

OrderedJson ToJson(const ActionParameters& parameters) {
  OrderedJson json = OrderedJson::object();
  for (const auto& [name, value] : parameters.Values()) json[name] = CellToJson(value);
  return json;
}

ActionParameters ActionParametersOf(const OrderedJson& json) {
  ActionParameters parameters;
  for (const auto& [name, value] : json.items()) {
    if (value.is_string()) {
      parameters.Set(name, WxStringFromStdString(value.get<std::string>()));
    } else if (value.is_boolean()) {
      parameters.Set(name, value.get<bool>());
    } else if (value.is_number_unsigned()) {
      parameters.Set(name, value.get<unsigned long long>());
    } else {
      throw UsageError("parameter " + name + " wants a text, a boolean or a whole number from 0");
    }
  }
  return parameters;
}

}  // namespace Norvik::Host

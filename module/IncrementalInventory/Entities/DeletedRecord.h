#pragma once

#include <string>
#include <tuple>
#include <utility>

#include "common/records/WxStringCodec.h"
#include "json/FieldTable.h"
#include "json/ISerializerJson.h"

namespace Norvik::KOB {

/// A field of a record that is still told when the record has gone, and its key in JSON.
template <class SourceRecord, class FieldValue>
struct KeptField {
  using Source = SourceRecord;
  using Value = FieldValue;
  const char* key;
  Value Source::*member;

  void Write(json::JSON& object, const Value& value) const { json::WriteValue(object[key], value); }
};

/// Bytes that are written by way of a wide text: what is no UTF-8 comes out empty.
template <class SourceRecord>
struct KeptBytes : KeptField<SourceRecord, std::string> {
  constexpr KeptBytes(const char* name, std::string SourceRecord::*field)
      : KeptField<SourceRecord, std::string>{name, field} {}

  void Write(json::JSON& object, const std::string& value) const {
    object[this->key] = Common::ToUtf8(Common::WxStringFromStdString(value));
  }
};

template <class Source, class Value>
constexpr KeptField<Source, Value> Keep(const char* key, Value Source::*member) {
  return {key, member};
}
template <class Source>
constexpr KeptBytes<Source> KeepAsWideText(const char* key, std::string Source::*member) {
  return {key, member};
}

/// The table of what a deleted record keeps of its source. Each source has a specialization.
template <class Source>
constexpr auto KeptFields();

/// A record that has gone: the fields that tell the server which one it was. Written, never read.
template <class SourceRecord>
class DeletedRecord : public Common::ISerializerJson {
 public:
  using Source = SourceRecord;

  explicit DeletedRecord(const Source& source)
      : values_(std::apply([&](const auto&... field) { return Values(source.*field.member...); },
                           KeptFields<Source>())) {}

  /// An object with every key of the table.
  operator json::JSON() const override {
    json::JSON object;
    Write(object, std::make_index_sequence<std::tuple_size_v<Values>>());
    return object;
  }

 private:
  template <class... Fields>
  static std::tuple<typename Fields::Value...> ValuesOf(const std::tuple<Fields...>& fields);
  using Values = decltype(ValuesOf(KeptFields<Source>()));

  template <std::size_t... indices>
  void Write(json::JSON& object, std::index_sequence<indices...> /*all*/) const {
    (std::get<indices>(KeptFields<Source>()).Write(object, std::get<indices>(values_)), ...);
  }

  Values values_;
};

}  // namespace Norvik::KOB

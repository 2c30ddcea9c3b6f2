#pragma once

#include "common/records/InventoryRecord.h"
#include "support/Json.h"
#include "support/Test.h"

/// Fills and changes records through their field tables.
namespace tests {

template <class T>
std::string JsonText(const T& record) {
  return json::RecordToJson(record).strUgly();
}

template <class T>
T ReadBack(const std::string& text) {
  return T(ParseJson(text));
}

/// Gives each field a distinct value. Texts hold characters that JSON must escape and characters
/// outside ASCII.
class Filler {
 public:
  explicit Filler(int start = 0) : next_(start) {}

  template <class T>
  void FillRecord(T& record) {
    std::apply([&](const auto&... field) { (FillField(field, record), ...); }, T::Fields());
  }
  template <class FieldKind, class T>
  void FillField(const FieldKind& field, T& record) {
    Fill(record.*field.member);
  }

  void Fill(wxString& text) { text = wxString::FromUTF8(Text()); }
  void Fill(std::string& text) { text = Text(); }
  void Fill(bool& flag) { flag = !flag; }
  void Fill(double& number) { number = ++next_ + 0.25; }
  template <class Value>
  void Fill(boost::optional<Value>& value) {
    value.emplace();
    Fill(*value);
  }
  template <class Text>
  void Fill(std::set<Text>& texts) {
    for (int i = 0; i < 2; ++i) {
      Text text;
      Fill(text);
      texts.insert(text);
    }
  }
  template <template <class...> class List, class Element, class Allocator>
  void Fill(List<Element, Allocator>& elements) {
    elements.resize(2);
    for (auto& element : elements) Fill(element);
  }
  template <class Value>
  void Fill(Value& value) {
    if constexpr (std::is_integral_v<Value>) {
      value = static_cast<Value>(++next_);
    } else {
      FillRecord(value);
    }
  }

 private:
  std::string Text() {
    return "\"caf\xC3\xA9\" \\ \xF0\x9F\x98\x80 /\n\t" + std::to_string(++next_);
  }
  int next_;
};

template <class T>
T Filled() {
  T record;
  Filler().FillRecord(record);
  return record;
}

/// Calls `action(key, changed)` for each field, with a record that differs from the filled one only
/// in this field.
template <class T, class Action>
void ForEachChange(Action action) {
  const auto change = [&](const auto& field) {
    T changed = Filled<T>();
    Filler(1000).FillField(field, changed);
    action(std::string(field.key), changed);
  };
  std::apply([&](const auto&... field) { (change(field), ...); }, T::Fields());
}

/// Keys of the fields that `HasSameKey` compares, in the order of the table.
template <class T>
std::string IdentityOf() {
  std::string keys;
  ForEachChange<T>([&](const std::string& key, const T& changed) {
    const T record = Filled<T>();
    EXPECT_EQ(changed.HasSameKey(record), record.HasSameKey(changed));
    if (!changed.HasSameKey(record)) keys += (keys.empty() ? "" : " ") + key;
  });
  return keys;
}

}  // namespace tests

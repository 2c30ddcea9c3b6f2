#include "json/JSON.h"

#include <charconv>

#include "json/Escape.h"
#include "json/Numbers.h"

namespace json {

/// Writes a value into one text.
class Renderer {
 public:
  Renderer(std::string tab, std::string nl) : tab_(std::move(tab)), nl_(std::move(nl)) {}

  void Append(const JSON& value, int depth) {
    switch (value.type_) {
      case JSON::Class::Null:
        out_ += "null";
        break;
      case JSON::Class::Object:
        AppendObject(*value.data_.object, depth);
        break;
      case JSON::Class::Array:
        AppendArray(*value.data_.array, depth);
        break;
      case JSON::Class::String:
        out_ += '"';
        AppendEscaped(out_, *value.data_.text);
        out_ += '"';
        break;
      case JSON::Class::Floating:
        out_ += FloatingText(value.data_.floating);
        break;
      case JSON::Class::Integral:
        AppendIntegral(value.data_.integral);
        break;
      case JSON::Class::Boolean:
        out_ += value.data_.flag ? "true" : "false";
        break;
    }
  }

  std::string Take() { return std::move(out_); }

 private:
  std::string Pad(int depth) const {
    std::string pad;
    if (!tab_.empty()) {
      for (int level = 0; level < depth; ++level) pad += tab_;
    }
    return pad;
  }

  void AppendObject(const JSON::Object& object, int depth) {
    std::string pad = Pad(depth);
    const std::string beforeKey = nl_ + pad + '"';
    const std::string afterKey = pad.empty() ? "\":" : "\" : ";
    char lead = '{';
    for (const auto& [key, value] : object) {
      out_ += lead;
      out_ += beforeKey;
      out_ += key;
      out_ += afterKey;
      Append(value, depth + 1);
      lead = ',';
    }
    if (object.empty()) out_ += '{' + nl_;
    // Deliberately two characters, whatever the length of a tab: that is the form of indented
    // texts.
    pad.erase(0, 2);
    out_ += nl_ + pad + '}';
  }

  void AppendArray(const JSON::Array& array, int depth) {
    const std::string comma = tab_.empty() || depth < 1 ? "," : ", ";
    out_ += '[';
    bool first = true;
    for (const JSON& value : array) {
      if (!first) out_ += comma;
      first = false;
      Append(value, depth + 1);
    }
    out_ += ']';
  }

  void AppendIntegral(long long number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out_.append(digits, end);
  }

  const std::string tab_;
  const std::string nl_;
  std::string out_;
};

JSON::JSON(const JSON& other) : type_(other.type_) {
  switch (type_) {
    case Class::Object:
      data_.object = new Object(*other.data_.object);
      break;
    case Class::Array:
      data_.array = new Array(*other.data_.array);
      break;
    case Class::String:
      data_.text = new std::string(*other.data_.text);
      break;
    default:
      data_ = other.data_;
  }
}

JSON::JSON(JSON&& other) noexcept
    : data_(std::exchange(other.data_, BackingData())),
      type_(std::exchange(other.type_, Class::Null)) {}

JSON::~JSON() { ClearInternal(); }

JSON& JSON::operator=(const JSON& other) {
  // Copied before anything is freed, since the other value may be a part of this one.
  return *this = JSON(other);
}

JSON& JSON::operator=(JSON&& other) noexcept {
  // Moved out before anything is freed, for the same reason.
  JSON taken(std::move(other));
  ClearInternal();
  data_ = std::exchange(taken.data_, BackingData());
  type_ = std::exchange(taken.type_, Class::Null);
  return *this;
}

JSON& JSON::operator[](const std::string& key) {
  SetType(Class::Object);
  return (*data_.object)[key];
}

JSON& JSON::operator[](unsigned int index) {
  SetType(Class::Array);
  if (index >= data_.array->size()) data_.array->resize(std::size_t{index} + 1);
  return (*data_.array)[index];
}

void JSON::SetType(Class type) {
  if (type_ == type) return;
  ClearInternal();
  data_ = BackingData();
  type_ = Class::Null;
  switch (type) {
    case Class::Object:
      data_.object = new Object;
      break;
    case Class::Array:
      data_.array = new Array;
      break;
    case Class::String:
      data_.text = new std::string;
      break;
    case Class::Floating:
      data_.floating = 0.0;
      break;
    case Class::Boolean:
      data_.flag = false;
      break;
    default:
      break;
  }
  type_ = type;
}

void JSON::ClearInternal() {
  switch (type_) {
    case Class::Object:
      delete data_.object;
      break;
    case Class::Array:
      delete data_.array;
      break;
    case Class::String:
      delete data_.text;
      break;
    default:
      break;
  }
}

std::string JSON::dump(int depth, std::string tab, std::string nl) const {
  Renderer renderer(std::move(tab), std::move(nl));
  renderer.Append(*this, depth);
  return renderer.Take();
}

std::string JSON::strUgly() const { return dump(1, "", ""); }

}  // namespace json

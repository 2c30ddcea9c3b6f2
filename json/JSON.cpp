#include "json/JSON.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "json/Escape.h"
#include "json/Numbers.h"

namespace json {

struct JSON::Member {
  std::string key;
  JSON value;
};

namespace {

/// A text that grows. Short pieces are gathered first, since each append to a string is a call.
class Text {
 public:
  void Put(char c) {
    if (used_ == sizeof buffer_) Flush();
    buffer_[used_++] = c;
  }
  void Put(std::string_view piece) {
    if (piece.size() > sizeof buffer_ - used_) Flush();
    if (piece.size() > sizeof buffer_) {
      text_ += piece;
      return;
    }
    char* const place = buffer_ + used_;
    used_ += piece.size();
    switch (piece.size()) {  // for a separator, a call would take most of the time
      case 3:
        place[2] = piece[2];
        [[fallthrough]];
      case 2:
        place[1] = piece[1];
        [[fallthrough]];
      case 1:
        place[0] = piece[0];
        [[fallthrough]];
      case 0:
        break;
      default:
        std::memcpy(place, piece.data(), piece.size());
    }
  }
  void PutEscaped(const std::string& piece) {
    if (piece.size() > sizeof buffer_ - used_) Flush();
    if (piece.size() <= sizeof buffer_ && CopyPlain(piece, buffer_ + used_)) {
      used_ += piece.size();
      return;
    }
    Flush();
    AppendEscaped(text_, piece);
  }
  std::string Take() {
    Flush();
    return std::move(text_);
  }

 private:
  void Flush() {
    text_.append(buffer_, used_);
    used_ = 0;
  }

  std::string text_;
  std::size_t used_ = 0;
  char buffer_[4096];
};

}  // namespace

/// Writes a value into one text.
class Renderer {
 public:
  Renderer(std::string tab, std::string nl) : tab_(std::move(tab)), nl_(std::move(nl)) {}

  void Append(const JSON& value, int depth) {
    switch (value.type_) {
      case JSON::Class::Null:
        out_.Put("null");
        break;
      case JSON::Class::Object:
        AppendObject(*value.data_.object, depth);
        break;
      case JSON::Class::Array:
        AppendArray(*value.data_.array, depth);
        break;
      case JSON::Class::String:
        out_.Put('"');
        out_.PutEscaped(*value.data_.text);
        out_.Put('"');
        break;
      case JSON::Class::Floating:
        out_.Put(FloatingText(value.data_.floating));
        break;
      case JSON::Class::Integral:
        AppendIntegral(value.data_.integral);
        break;
      case JSON::Class::Boolean:
        out_.Put(value.data_.flag ? "true" : "false");
        break;
    }
  }

  std::string Take() { return out_.Take(); }

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
    const std::string_view afterKey = pad.empty() ? "\":" : "\" : ";
    char lead = '{';
    for (const auto& member : object) {
      out_.Put(lead);
      out_.Put(beforeKey);
      out_.Put(member->key);
      out_.Put(afterKey);
      Append(member->value, depth + 1);
      lead = ',';
    }
    if (object.empty()) out_.Put('{' + nl_);
    // Deliberately two characters, whatever the length of a tab: that is the form of indented
    // texts.
    pad.erase(0, 2);
    out_.Put(nl_);
    out_.Put(pad);
    out_.Put('}');
  }

  void AppendArray(const JSON::Array& array, int depth) {
    const std::string_view comma = tab_.empty() || depth < 1 ? "," : ", ";
    out_.Put('[');
    bool first = true;
    for (const JSON& value : array) {
      if (!first) out_.Put(comma);
      first = false;
      Append(value, depth + 1);
    }
    out_.Put(']');
  }

  void AppendIntegral(long long number) {
    char digits[24];
    const auto* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out_.Put({digits, static_cast<std::size_t>(end - digits)});
  }

  const std::string tab_;
  const std::string nl_;
  Text out_;
};

JSON::JSON(const JSON& other) : type_(other.type_) {
  switch (type_) {
    case Class::Object: {
      auto copy = std::make_unique<Object>();
      for (const auto& member : *other.data_.object) {
        copy->push_back(std::make_unique<Member>(*member));
      }
      data_.object = copy.release();
      break;
    }
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
  Object& members = *data_.object;
  const auto isBefore = [](const auto& member, const std::string& wanted) {
    return member->key < wanted;
  };
  const auto place = std::lower_bound(members.begin(), members.end(), key, isBefore);
  if (place != members.end() && (*place)->key == key) return (*place)->value;
  return (*members.insert(place, std::make_unique<Member>(Member{key, JSON()})))->value;
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

#include "hosts/calls/json_arguments.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/calls/wrong_call.h"
#include "tessarlorn/collections.h"

namespace tessarlorn {
namespace {

/// Walks the text and tells how far it was read.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, const char** furthest) : at_(at), furthest_(furthest) {}

  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    *furthest_ = ++at_;
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at_ == b.at_; }
  friend bool operator!=(const CountingIterator& a, const CountingIterator& b) { return !(a == b); }

 private:
  const char* at_;
  const char** furthest_;
};

/// Takes the parser's events and builds the value. Its functions have the parser's names.
class ValueBuilder {
 public:
  using Json = nlohmann::json;

  ValueBuilder(std::string_view text, std::string_view name) : text_(text), name_(name), read_(text.data()) {}

  Variant Build() {
    const char* const end = text_.data() + text_.size();
    Json::sax_parse(CountingIterator(text_.data(), &read_), CountingIterator(end, &read_), this);
    return std::move(root_);
  }

  bool null() { return Put(Null{}); }
  bool boolean(bool value) { return Put(value); }
  bool number_integer(Json::number_integer_t value) { return Put(Variant(std::int64_t{value})); }
  bool number_unsigned(Json::number_unsigned_t value) { return PutDecimal(std::to_string(value)); }
  bool number_float(Json::number_float_t, const std::string& text) { return PutDecimal(text); }
  bool string(std::string& value) { return Put(std::move(value)); }
  bool binary(Json::binary_t&) { return false; }
  bool start_object(std::size_t) {
    auto dictionary = std::make_shared<Dictionary>();
    return Open(dictionary, {.dictionary = dictionary, .vector = nullptr, .key = {}});
  }
  bool start_array(std::size_t) {
    auto vector = std::make_shared<Vector>();
    return Open(vector, {.dictionary = nullptr, .vector = vector, .key = {}});
  }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  bool key(std::string& name) {
    Level& level = levels_.back();
    if (level.dictionary->Exists(name)) {
      // Only blanks and a comma stand between the token before and the key.
      Fail(text_.find('"', token_end_), "the key \"" + name + "\" stands twice in its object");
    }
    level.key = std::move(name);
    return Advance();
  }
  bool parse_error(std::size_t position, const std::string&, const Json::exception& error) {
    // The library leads its sentence with its own error name, and with a position in bytes.
    std::string_view sentence = error.what();
    const std::size_t name_end = sentence.find("] ");
    if (name_end != std::string_view::npos) sentence.remove_prefix(name_end + 2);
    if (sentence.starts_with("parse error at ")) sentence.remove_prefix(sentence.find(": ") + 2);
    Fail(position == 0 ? 0 : position - 1, std::string(sentence));
  }

 private:
  struct Level {
    std::shared_ptr<Dictionary> dictionary;
    std::shared_ptr<Vector> vector;
    std::string key;
  };

  [[nodiscard]] std::size_t Consumed() const { return static_cast<std::size_t>(read_ - text_.data()); }

  bool Advance() {
    token_end_ = Consumed();
    return true;
  }
  bool Put(Variant value) {
    if (levels_.empty()) {
      root_ = std::move(value);
    } else if (Level& level = levels_.back(); level.vector) {
      level.vector->Add(std::move(value));
    } else {
      level.dictionary->SetValue(level.key, std::move(value));
    }
    return Advance();
  }
  bool PutDecimal(const std::string& text) {
    const std::optional<Decimal> value = Decimal::Parse(text);
    if (!value) Fail(text_.rfind(text, Consumed()), "the number " + text + " has more than 38 digits");
    const std::optional<std::int64_t> whole = value->scale() == 0 ? value->ToScaled(0) : std::nullopt;
    return Put(whole ? Variant(*whole) : Variant(*value));
  }
  bool Open(Variant value, Level level) {
    if (levels_.size() == kMostJsonLevels) {
      Fail(Consumed() - 1, "more than " + std::to_string(kMostJsonLevels) + " levels of objects and arrays");
    }
    Put(std::move(value));
    levels_.push_back(std::move(level));
    return true;
  }
  bool Close() {
    levels_.pop_back();
    return Advance();
  }
  [[noreturn]] void Fail(std::size_t offset, const std::string& description) const {
    const std::string_view before = text_.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::string_view in_line = before.substr(before.rfind('\n') + 1);
    const auto column =
        1 + std::count_if(in_line.begin(), in_line.end(), [](char byte) { return (byte & 0xC0) != 0x80; });
    throw WrongCall(std::string(name_) + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " +
                    description);
  }

  std::string_view text_;
  std::string_view name_;
  const char* read_;
  /// Where the last token but the current one ended.
  std::size_t token_end_ = 0;
  std::vector<Level> levels_;
  Variant root_;
};

}  // namespace

Variant ReadJson(std::string_view text, std::string_view name) { return ValueBuilder(text, name).Build(); }

}  // namespace tessarlorn

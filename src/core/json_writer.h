#pragma once
// A JSON document written as it goes, into one string: no tree is built, so
// a batch of tens of thousands of documents costs only their text. Every
// document the programs write comes through here.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelmor {

// True when s is well-formed UTF-8 (no overlong forms, no surrogates).
bool isValidUtf8(std::string_view s);

// Appends s as a JSON string literal. Non-ASCII characters pass as they are;
// bytes that are not UTF-8 become U+FFFD, so the result is always valid JSON.
void appendJsonString(std::string& out, std::string_view s);

// A member's name made into JSON text once, for the names that every document
// of a batch repeats.
class JsonName {
public:
    explicit JsonName(std::string_view name) : quoted_("\"" + std::string(name) + "\"") {}
    const std::string& quoted() const { return quoted_; }

private:
    std::string quoted_;
};

class JsonWriter {
public:
    enum class Layout {
        Compact,   // {"a":1,"b":{"c":2}}
        OneLine,   // {"a": 1, "b": {"c": 2}}
        Indented,  // one member a line, two blanks a level
    };

    explicit JsonWriter(Layout layout = Layout::Compact, std::size_t reserve = 0);

    JsonWriter& beginObject();
    JsonWriter& endObject();
    // An array: element() before each of its values.
    JsonWriter& beginArray();
    JsonWriter& element();
    JsonWriter& endArray();
    // A member's name. The name is written as it is: it must need no escaping
    // (the catalogue's names, the format's own words).
    JsonWriter& key(std::string_view name);
    JsonWriter& key(const JsonName& name);
    JsonWriter& integer(std::int64_t v);
    JsonWriter& number(double v);  // the shortest text that reads back the same double
    JsonWriter& boolean(bool v);
    JsonWriter& null();
    JsonWriter& string(std::string_view utf8);  // escaped as appendJsonString does

    const std::string& text() const { return s_; }
    std::string take() { return std::move(s_); }

private:
    void beforeKey();
    void afterKey();
    std::string s_;
    Layout layout_;
    int depth_ = 0;
    bool first_ = true;  // no member yet in the open object
};

}  // namespace zelmor

#include "core/json_writer.h"

#include <charconv>

namespace zelmor {

namespace {

// The length of the UTF-8 sequence at s[i], or 0 when it is not one.
std::size_t utf8SequenceAt(std::string_view s, std::size_t i) {
    const auto c = static_cast<unsigned char>(s[i]);
    std::size_t len;
    std::uint32_t cp;
    if (c < 0x80) return 1;
    if ((c & 0xE0) == 0xC0) {
        len = 2;
        cp = c & 0x1Fu;
    } else if ((c & 0xF0) == 0xE0) {
        len = 3;
        cp = c & 0x0Fu;
    } else if ((c & 0xF8) == 0xF0) {
        len = 4;
        cp = c & 0x07u;
    } else {
        return 0;
    }
    if (i + len > s.size()) return 0;
    for (std::size_t k = 1; k < len; ++k) {
        const auto cc = static_cast<unsigned char>(s[i + k]);
        if ((cc & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (cc & 0x3Fu);
    }
    // No overlong forms, no surrogates, nothing beyond U+10FFFF.
    if ((len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) ||
        (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)
        return 0;
    return len;
}

}  // namespace

bool isValidUtf8(std::string_view s) {
    for (std::size_t i = 0; i < s.size();) {
        const std::size_t len = utf8SequenceAt(s, i);
        if (len == 0) return false;
        i += len;
    }
    return true;
}

void appendJsonString(std::string& out, std::string_view s) {
    static const char kHex[] = "0123456789abcdef";
    out += '"';
    for (std::size_t i = 0; i < s.size();) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c >= 0x80) {
            const std::size_t len = utf8SequenceAt(s, i);
            if (len == 0) {
                out += "\xEF\xBF\xBD";
                ++i;
            } else {
                out.append(s.data() + i, len);
                i += len;
            }
            continue;
        }
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\b': out += "\\b"; break;
            case '\f': out += "\\f"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (c < 0x20) {
                    out += "\\u00";
                    out += kHex[c >> 4];
                    out += kHex[c & 0xF];
                } else {
                    out += static_cast<char>(c);
                }
        }
        ++i;
    }
    out += '"';
}

JsonWriter::JsonWriter(Layout layout, std::size_t reserve) : layout_(layout) {
    if (reserve) s_.reserve(reserve);
}

JsonWriter& JsonWriter::beginObject() {
    s_ += '{';
    ++depth_;
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::endObject() {
    --depth_;
    if (layout_ == Layout::Indented) {
        s_ += '\n';
        s_.append(static_cast<std::size_t>(2 * depth_), ' ');
    }
    s_ += '}';
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::beginArray() {
    s_ += '[';
    ++depth_;
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::element() {
    beforeKey();
    return *this;
}

JsonWriter& JsonWriter::endArray() {
    --depth_;
    if (layout_ == Layout::Indented && !first_) {
        s_ += '\n';
        s_.append(static_cast<std::size_t>(2 * depth_), ' ');
    }
    s_ += ']';
    first_ = false;
    return *this;
}

void JsonWriter::beforeKey() {
    if (!first_) s_ += layout_ == Layout::OneLine ? ", " : ",";
    first_ = false;
    if (layout_ == Layout::Indented) {
        s_ += '\n';
        s_.append(static_cast<std::size_t>(2 * depth_), ' ');
    }
}

void JsonWriter::afterKey() {
    if (layout_ == Layout::Compact)
        s_ += ':';
    else
        s_.append(": ", 2);
}

JsonWriter& JsonWriter::key(std::string_view name) {
    beforeKey();
    s_ += '"';
    s_ += name;
    s_ += '"';
    afterKey();
    return *this;
}

JsonWriter& JsonWriter::key(const JsonName& name) {
    beforeKey();
    s_ += name.quoted();
    afterKey();
    return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t v) {
    char buf[24];
    s_.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
    return *this;
}

JsonWriter& JsonWriter::number(double v) {
    char buf[32];
    s_.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
    return *this;
}

JsonWriter& JsonWriter::boolean(bool v) {
    s_ += v ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::null() {
    s_ += "null";
    return *this;
}

JsonWriter& JsonWriter::string(std::string_view utf8) {
    appendJsonString(s_, utf8);
    return *this;
}

}  // namespace zelmor

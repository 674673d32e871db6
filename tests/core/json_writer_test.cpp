#include "core/json_writer.h"

#include <gtest/gtest.h>

namespace zelmor {
namespace {

std::string nested(JsonWriter::Layout layout) {
    JsonWriter w(layout);
    w.beginObject();
    w.key("a").integer(-1);
    w.key(JsonName("b")).beginObject();
    w.key("c").number(2.25).key("d").null().key("e").boolean(true);
    w.endObject();
    w.key("f").string("x");
    w.endObject();
    return w.take();
}

TEST(JsonWriter, WritesEachLayout) {
    EXPECT_EQ(nested(JsonWriter::Layout::Compact), R"({"a":-1,"b":{"c":2.25,"d":null,"e":true},"f":"x"})");
    EXPECT_EQ(nested(JsonWriter::Layout::OneLine), R"({"a": -1, "b": {"c": 2.25, "d": null, "e": true}, "f": "x"})");
    EXPECT_EQ(nested(JsonWriter::Layout::Indented),
              "{\n  \"a\": -1,\n  \"b\": {\n    \"c\": 2.25,\n    \"d\": null,\n    \"e\": true\n  },\n  \"f\": \"x\"\n}");
}

TEST(JsonWriter, StringsAreEscapedAndAlwaysValidUtf8) {
    struct Case {
        std::string in, out;
    };
    const Case cases[] = {
        {"a\"b\\c", R"("a\"b\\c")"},
        {"\n\t\r\b\f\x01\x1f", R"("\n\t\r\b\f\u0001\u001f")"},
        {"עברית \x7f", "\"עברית \x7f\""},        // non-ASCII and DEL pass as they are
        {"a\xff" "b", "\"a\xEF\xBF\xBD" "b\""},  // a stray byte becomes U+FFFD
        {"\xD7", "\"\xEF\xBF\xBD\""},            // a sequence cut short
        {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},  // a surrogate is not UTF-8
    };
    for (const Case& c : cases) {
        std::string out;
        appendJsonString(out, c.in);
        EXPECT_EQ(out, c.out) << c.in;
        EXPECT_TRUE(isValidUtf8(out)) << c.in;
    }
    EXPECT_FALSE(isValidUtf8("\xC0\x80"));  // overlong
    EXPECT_TRUE(isValidUtf8("שלום"));
}

}  // namespace
}  // namespace zelmor

#include "findings/json.hpp"

#include "base/utf8.hpp"

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>

namespace kestrel {

namespace {

constexpr bool isPlain(char c) { return c >= ' ' && c < '\x7f' && c != '"' && c != '\\'; }

void writeEscape(Output& out, char32_t code) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    switch (code) {
    case '"': out.write("\\\""); return;
    case '\\': out.write("\\\\"); return;
    case '\n': out.write("\\n"); return;
    case '\t': out.write("\\t"); return;
    case '\r': out.write("\\r"); return;
    default: break;
    }
    const std::array<char, 6> text{'\\', 'u', '0', '0', kDigits[(code >> 4U) & 15U], kDigits[code & 15U]};
    out.write({text.data(), text.size()});
}

void writeInteger(Output& out, std::int64_t value) {
    std::string digits;
    appendInteger(digits, value);
    out.write(digits);
}

} // namespace

void writeJsonString(Output& out, std::string_view text) {
    out.write("\"");
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && isPlain(text[plain]))
            ++plain;
        out.write(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        const Character character = takeCharacter(text);
        if (!character.valid) {
            out.write(kReplacement);
        } else if (character.isControl() || character.code < 0x80) {
            writeEscape(out, character.code);
        } else {
            out.write(character.bytes);
        }
    }
    out.write("\"");
}

JsonScope::JsonScope(JsonText& text, char begin, char end, bool lines)
    : text_(text), depth_(++text.open), end_(end), lines_(lines) {
    text_.out.write({&begin, 1});
}

JsonScope::~JsonScope() {
    assert(text_.open == depth_);
    if (lines_ && !empty_) text_.out.write("\n");
    text_.out.write({&end_, 1});
    --text_.open;
}

JsonText& JsonScope::next() {
    assert(text_.open == depth_);
    if (!empty_) text_.out.write(",");
    if (lines_) text_.out.write("\n");
    empty_ = false;
    return text_;
}

JsonObject::JsonObject(JsonArray& parent) : JsonObject(parent.next()) {}

JsonText& JsonObject::named(std::string_view key) {
    Output& out = next().out;
    writeJsonString(out, key);
    out.write(":");
    return text_;
}

void JsonObject::text(std::string_view key, std::string_view value) { writeJsonString(named(key).out, value); }

void JsonObject::number(std::string_view key, std::int64_t value) { writeInteger(named(key).out, value); }

void JsonObject::real(std::string_view key, double value) {
    if (!std::isfinite(value)) return null(key);
    std::array<char, 32> digits{};
    constexpr int kDigits = 12;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, kDigits);
    named(key).out.write({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
}

void JsonObject::flag(std::string_view key, bool value) { named(key).out.write(value ? "true" : "false"); }

void JsonObject::null(std::string_view key) { named(key).out.write("null"); }

void JsonArray::text(std::string_view value) { writeJsonString(next().out, value); }

void writeTool(JsonObject& whole, std::string_view name, std::string_view version) {
    JsonObject tool(whole, "tool");
    tool.text("name", name);
    tool.text("version", version);
}

} // namespace kestrel

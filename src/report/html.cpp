#include "report/html.hpp"

#include "base/utf8.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kestrel {

namespace {

/// By byte: true of what is not written as it is.
constexpr std::array<bool, 256> kSpecial = [] {
    std::array<bool, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = i < 0x20 || i >= 0x7f;
    for (const char c : {'&', '<', '>', '"', '\''})
        table[static_cast<unsigned char>(c)] = true;
    table['\n'] = false;
    return table;
}();

constexpr bool isSpecial(char c) { return kSpecial[static_cast<unsigned char>(c)]; }

/// What stands for a character; empty for one that is written as it is.
constexpr std::string_view standInFor(const Character& character) {
    switch (character.code) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\'': return "&#39;";
    case '\t': return "\t";
    default: break;
    }
    const bool is_none = (character.code & 0xfffeU) == 0xfffe || (character.code >= 0xfdd0 && character.code <= 0xfdef);
    return !character.valid || character.isControl() || is_none ? kReplacement : std::string_view();
}

} // namespace

namespace {

/// Writes the digits of a number; those of a picture have at most four.
char* writeDigits(char* at, std::uint32_t number) {
    if (number >= 10000) return std::to_chars(at, at + 10, number).ptr;
    char* const end = at + (number < 10 ? 1 : number < 100 ? 2 : number < 1000 ? 3 : 4);
    for (char* digit = end; digit != at; number /= 10)
        *--digit = static_cast<char>('0' + number % 10);
    return end;
}

bool isDigit(char c) { return '0' <= c && c <= '9'; }

} // namespace

Coordinates& Coordinates::step(std::int32_t number) {
    if (number >= 0 && !text_.empty() && isDigit(text_.back())) text_.push_back(' ');
    appendInteger(text_, number);
    return *this;
}

Coordinates& Coordinates::tenths(double number) {
    constexpr double kMost = 1e6;
    const auto count = static_cast<std::int64_t>(std::floor(std::clamp(number, -kMost, kMost) * 10.0 + 0.5));
    if (count < 0) text_.push_back('-');
    const std::int64_t size = count < 0 ? -count : count;
    appendInteger(text_, size / 10);
    if (size % 10 != 0) text_.append(1, '.').push_back(static_cast<char>('0' + size % 10));
    return *this;
}

Coordinates::Steps::Steps(Coordinates& to, std::size_t steps) : text_(to.text_) {
    constexpr std::size_t kRoom = 13; // a letter, a sign or blank, digits
    const std::size_t size = text_.size();
    text_.resize(size + steps * kRoom);
    at_ = text_.data() + size;
}

void Coordinates::Steps::step(std::int32_t number) {
    if (number < 0) {
        *at_++ = '-';
        number = -number;
    } else if (at_ != text_.data() && isDigit(at_[-1])) {
        *at_++ = ' ';
    }
    at_ = writeDigits(at_, static_cast<std::uint32_t>(number));
}

void Html::writeText(std::string_view text, bool one_line) {
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && !isSpecial(text[plain]) && !(one_line && text[plain] == '\n'))
            ++plain;
        out_.write(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) return;
        const Character character = takeCharacter(text);
        if (one_line && (character.code == '\n' || character.code == '\t')) {
            out_.write(" ");
            continue;
        }
        const std::string_view stand_in = standInFor(character);
        out_.write(stand_in.empty() ? character.bytes : stand_in);
    }
}

void Html::writeNumber(std::int64_t number) {
    std::string digits;
    appendInteger(digits, number);
    out_.write(digits);
}

Html& Html::operator<<(Anchor anchor) {
    std::string id(1, 'f');
    appendInteger(id, anchor.file);
    if (anchor.number != 0) {
        id.push_back(anchor.kind);
        appendInteger(id, anchor.number);
    }
    out_.write(id);
    return *this;
}

Html& Html::begin(MarkupName element, std::initializer_list<Attribute> attributes) {
    out_.write("<");
    out_.write(element.text());
    for (const Attribute& attribute : attributes) {
        out_.write(" ");
        out_.write(attribute.name_);
        out_.write("=\"");
        switch (attribute.kind_) {
        case Attribute::Kind::literal: out_.write(attribute.text_); break;
        case Attribute::Kind::text: writeText(attribute.text_, false); break;
        case Attribute::Kind::number: writeNumber(attribute.number_); break;
        case Attribute::Kind::link: out_.write("#"); [[fallthrough]];
        case Attribute::Kind::id: *this << attribute.anchor_; break;
        }
        out_.write("\"");
    }
    out_.write(">");
    return *this;
}

Html& Html::path(MarkupName class_name, const Coordinates& data) {
    out_.write("<path class=\"");
    out_.write(class_name.text());
    out_.write("\" d=\"");
    out_.write(data.text());
    out_.write("\"/>");
    return *this;
}

void writeLink(Html& html, const Anchor* anchor, std::string_view text) {
    if (anchor == nullptr) {
        html << Text(text);
    } else {
        html.begin("a", {Attribute::href(*anchor)}) << Text(text) << "</a>";
    }
}

} // namespace kestrel

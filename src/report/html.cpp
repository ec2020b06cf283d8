#include "report/html.hpp"

#include "base/utf8.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

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

constinit const std::array<ShortNumber, kShortNumberCount> kShortNumbers = [] {
    std::array<ShortNumber, kShortNumberCount> numbers{};
    for (unsigned number = 0; number < kShortNumberCount; ++number) {
        ShortNumber& text = numbers[number];
        text.size = number < 10 ? 1 : number < 100 ? 2 : 3;
        unsigned rest = number;
        for (unsigned place = text.size; place-- > 0; rest /= 10)
            text.digits[place] = static_cast<char>('0' + rest % 10);
    }
    return numbers;
}();

void Coordinates::grow(std::size_t more) {
    constexpr std::size_t kLeast = 1024;
    const std::size_t capacity = std::max({size_ + more, 2 * capacity_, kLeast});
    auto room = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy_n(room_.get(), size_, room.get());
    room_ = std::move(room);
    capacity_ = capacity;
}

Coordinates& Coordinates::add(Literal text) {
    std::ranges::copy(text.text(), makeRoom(text.text().size()));
    size_ += text.text().size();
    return *this;
}

Coordinates& Coordinates::step(std::int32_t number) {
    Steps steps = beginSteps(1);
    const bool is_digit = size_ != 0 && '0' <= room_[size_ - 1] && room_[size_ - 1] <= '9';
    if (number < 0 || is_digit) {
        steps.step(number);
    } else {
        steps.digits(static_cast<std::uint32_t>(number));
    }
    endSteps(steps);
    return *this;
}

Coordinates& Coordinates::tenths(double number) {
    constexpr double kMost = 1e6;
    const double tenths = std::clamp(number, -kMost, kMost) * 10.0;
    const auto count = static_cast<std::int32_t>(tenths < 0.0 ? tenths - 0.5 : tenths + 0.5);
    const auto size = static_cast<std::uint32_t>(count < 0 ? -count : count);
    Steps steps = beginSteps(2);
    if (count < 0) *steps.at_++ = '-';
    steps.digits(size / 10);
    if (size % 10 != 0) {
        *steps.at_++ = '.';
        steps.digits(size % 10);
    }
    endSteps(steps);
    return *this;
}

Coordinates& Coordinates::general(double number) {
    std::string text;
    appendGeneral(text, number);
    std::ranges::copy(text, makeRoom(text.size()));
    size_ += text.size();
    return *this;
}

char* Coordinates::Steps::longDigits(char* at, std::uint32_t number) { return std::to_chars(at, at + 10, number).ptr; }

Html::~Html() {
    try {
        flush();
    } catch (const std::bad_alloc&) {
        return;
    }
}

void Html::putLong(std::string_view text) {
    flush();
    if (text.size() > buffer_.size() / 4) return writeOn(text);
    put(text);
}

void Html::writeText(std::string_view text, bool one_line) {
    while (!text.empty()) {
        // Most texts are short and plain: they are looked at and copied at once.
        const std::size_t room = std::min(text.size(), buffer_.size() - used_);
        char* const to = buffer_.data() + used_;
        std::size_t plain = 0;
        for (; plain < room && !isSpecial(text[plain]) && !(one_line && text[plain] == '\n'); ++plain)
            to[plain] = text[plain];
        used_ += plain;
        text.remove_prefix(plain);
        if (text.empty()) return;
        if (plain == room) {
            flush();
            continue;
        }
        const Character character = takeCharacter(text);
        if (one_line && (character.code == '\n' || character.code == '\t')) {
            put(" ");
            continue;
        }
        const std::string_view stand_in = standInFor(character);
        put(stand_in.empty() ? character.bytes : stand_in);
    }
}

void Html::writeNumber(std::int64_t number) {
    std::string digits;
    appendInteger(digits, number);
    put(digits);
}

Html& Html::operator<<(Anchor anchor) {
    std::string id(1, 'f');
    appendInteger(id, anchor.file);
    if (anchor.number != 0) {
        id.push_back(anchor.kind);
        appendInteger(id, anchor.number);
    }
    put(id);
    return *this;
}

Html& Html::begin(MarkupName element, std::initializer_list<Attribute> attributes) {
    put("<");
    put(element.text());
    for (const Attribute& attribute : attributes) {
        put(" ");
        put(attribute.name_);
        put("=\"");
        switch (attribute.kind_) {
        case Attribute::Kind::literal: put(attribute.text_); break;
        case Attribute::Kind::text: writeText(attribute.text_, false); break;
        case Attribute::Kind::number: writeNumber(attribute.number_); break;
        case Attribute::Kind::link: put("#"); [[fallthrough]];
        case Attribute::Kind::id: *this << attribute.anchor_; break;
        }
        put("\"");
    }
    put(">");
    return *this;
}

Html& Html::tick(MarkupName axis, const Coordinates& place, Text text) {
    put("<text ");
    put(axis.text());
    put("=\"");
    put(place.text());
    put("\">");
    writeText(text.text(), false);
    put("</text>");
    return *this;
}

Html& Html::path(MarkupName class_name, const Coordinates& data) {
    put("<path class=\"");
    put(class_name.text());
    put("\" d=\"");
    put(data.text());
    put("\"/>");
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

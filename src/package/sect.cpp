#include "package/sect.hpp"

#include "base/rows.hpp"
#include "diagnostics/diagnostics.hpp"
#include "package/token.hpp"
#include "reader/values.hpp"

namespace kestrel {

namespace {

/// An item of a section.
struct ItemRow {
    std::string_view name;
    std::optional<double> Sect::*value;
    std::optional<CheckedMessage<>> without_len; ///< for the items that need a "Len" before them
    CheckedMessage<> duplicate;
    CheckedMessage<> negative;
};

constexpr std::array<ItemRow, 4> kItems{{
    {"Len", &Sect::len, std::nullopt, 3000, 3001},
    {"R", &Sect::r, CheckedMessage<>(3002), 3003, 3004},
    {"L", &Sect::l, CheckedMessage<>(3005), 3006, 3007},
    {"C", &Sect::c, CheckedMessage<>(3008), 3009, 3010},
}};

/// Takes a name or number off the front of `text`, which does not begin with a blank, "=" or "/".
std::string_view takeWord(std::string_view& text) {
    const std::string_view word = text.substr(0, text.find_first_of(" \t=/"));
    text.remove_prefix(word.size());
    return word;
}

/// Takes the "=" and the value of an item off the front of `text`; reports what is there instead.
std::optional<double> takeValue(Diagnostics& diagnostics, std::string_view& text) {
    text = skipBlanks(text);
    if (text.empty()) {
        errorAtLine(diagnostics, 1920);
        return std::nullopt;
    }
    if (text.front() != '=') {
        errorAtLine(diagnostics, 1921);
        return std::nullopt;
    }
    text = skipBlanks(text.substr(1));
    if (text.empty()) {
        errorAtLine(diagnostics, 1920);
        return std::nullopt;
    }
    if (text.front() == '=') {
        errorAtLine(diagnostics, 1918);
        return std::nullopt;
    }
    if (text.front() == '/') {
        errorAtLine(diagnostics, 1923);
        return std::nullopt;
    }
    const std::string_view number = takeWord(text);
    double value = 0.0;
    if (readScaled(number, value) == ReadResult::noNumber) {
        errorAtLine(diagnostics, 1922, number);
        return std::nullopt;
    }
    return value;
}

/// Takes one item off the front of `text`; false when it was reported and the section is of no use.
bool readItem(Diagnostics& diagnostics, std::string_view& text, Sect& sect) {
    if (text.front() == '=') {
        errorAtLine(diagnostics, 1918);
        return false;
    }
    const std::string_view name = takeWord(text);
    const ItemRow* const item = rowOf(kItems, name, &ItemRow::name);
    if (item == nullptr) {
        errorAtLine(diagnostics, 1919, name);
        return false;
    }
    const std::optional<double> value = takeValue(diagnostics, text);
    if (!value) return false;
    std::optional<double>& place = sect.*(item->value);
    if (item->without_len && !sect.len) errorAtLine(diagnostics, *item->without_len);
    if (place) errorAtLine(diagnostics, item->duplicate);
    if (*value < 0.0) errorAtLine(diagnostics, item->negative);
    place = value;
    return true;
}

} // namespace

SectResult readSection(Diagnostics& diagnostics, std::string_view& text, Sect& sect) {
    sect = {};
    bool any = false;
    for (text = skipBlanks(text); !text.empty() && text.front() != '/'; text = skipBlanks(text)) {
        if (!readItem(diagnostics, text, sect)) return SectResult::failed;
        any = true;
    }
    if (text.empty()) {
        if (!any) return SectResult::endOfLine;
        errorAtLine(diagnostics, 3013);
        return SectResult::failed;
    }
    text.remove_prefix(1);
    if (!any) {
        errorAtLine(diagnostics, 3011);
    } else if (sect.len.value_or(0.0) != 0.0 && (!sect.l || !sect.c)) {
        errorAtLine(diagnostics, 3012);
    }
    return SectResult::section;
}

bool beginsSection(std::string_view text) {
    text = skipBlanks(text);
    return text.starts_with('/') || rowOf(kItems, takeWord(text), &ItemRow::name) != nullptr;
}

void attach(Chain& chain, ChainCursor& cursor, ChainElement element) {
    if (cursor.tail == kNoElement) {
        chain.elements.clear();
        chain.sections.clear();
    }
    const auto place = static_cast<std::uint32_t>(chain.elements.size());
    if (cursor.tail != kNoElement) {
        ChainElement& tail = chain.elements[cursor.tail];
        const bool starts_branch = !cursor.forks.empty() && cursor.forks.back() == cursor.tail;
        (starts_branch ? tail.payload : tail.next) = place;
    }
    chain.elements.push_back(element);
    cursor.tail = place;
}

void attachSection(Chain& chain, ChainCursor& cursor, const Sect& sect) {
    attach(chain, cursor, {.kind = ElementKind::section});
    chain.elements.back().payload = static_cast<std::uint32_t>(chain.sections.size());
    chain.sections.push_back(sect);
}

void openFork(Chain& chain, ChainCursor& cursor) {
    attach(chain, cursor, {.kind = ElementKind::fork});
    cursor.forks.push_back(cursor.tail);
}

void closeFork(Diagnostics& diagnostics, const Chain& chain, ChainCursor& cursor, const ForkEndMessages& messages) {
    if (cursor.forks.empty()) {
        errorAtLine(diagnostics, messages.none_open);
        return;
    }
    cursor.tail = cursor.forks.back();
    cursor.forks.pop_back();
    if (chain.elements[cursor.tail].payload == kNoElement) errorAtLine(diagnostics, messages.empty_branch);
}

void warnOfName(Diagnostics& diagnostics, std::string_view name, const NameWarnings& warnings) {
    constexpr std::array<std::string_view, 6> kWords{"Len", "Fork", "Endfork", "C", "R", "L"};
    if (name.find('=') != std::string_view::npos) warningAtLine(diagnostics, warnings.equals, name);
    if (name.find('/') != std::string_view::npos) warningAtLine(diagnostics, warnings.slash, name);
    if (contains(kWords, name)) warningAtLine(diagnostics, warnings.word, name);
}

} // namespace kestrel

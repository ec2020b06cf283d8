#pragma once

#include "base/object_list.hpp"
#include "base/rows.hpp"
#include "reader/context.hpp"
#include "reader/keyword.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

/// The one form in which a module reads a record: a table of sections, each with its keyword and what is done at the
/// keyword's own line, at the data lines under it, and when the next keyword comes.
namespace kestrel {

/// The end keyword of a section that is a block, which any keyword but its own closes. All report at the line.
struct BlockEnd {
    std::string_view name; ///< of the keyword, as messages have it
    void (*text_behind)(Context& context, std::string_view text);
    void (*not_ended)(Context& context);
    void (*no_begin)(Context& context);
    std::span<const KeywordCode> inner{}; ///< sections of the same record that may be within
};

/// What every module's state begins with: the record being read, null outside one, the list that it is kept in, and its
/// section that waits for its end.
template <class RecordType> struct RecordState {
    using Record = RecordType;

    Record* current = nullptr;
    ObjectList<Record>* list = nullptr;
    KeywordCode open_section = KeywordCode::notKey;
};

/// A row of the table. Rows are made by section() and blockSection().
template <class State> struct Section {
    KeywordCode key;
    void (*open)(Context& context, State& state, const Line& line);
    void (*line)(Context& context, State& state, const Line& line);
    void (*close)(Context& context, State& state); ///< null where nothing is due
    KeywordCode end_key = KeywordCode::notKey;     ///< that of a block
    const BlockEnd* end = nullptr;                 ///< null for a section that is no block
    /// Reads lines that are plain rows of a table as long as there are any; null where `line` reads all.
    void (*read_rows)(Context& context, State& state, LineReader& reader) = nullptr;

    /// True for the keywords that leave a block open, or end it as they should.
    [[nodiscard]] bool admits(KeywordCode code) const {
        return end != nullptr && (code == end_key || contains(end->inner, code));
    }
};

/// Calls a function of a section with those of its arguments that it takes: the context, then the module's state, the
/// record or both, then the line or its text.
template <auto Function, class State> void callSection(Context& context, State& state, const Line& line) {
    using F = decltype(Function);
    using Record = typename State::Record;
    Record& record = *state.current;
    if constexpr (std::is_invocable_v<F, Context&, State&, Record&, const Line&>) {
        Function(context, state, record, line);
    } else if constexpr (std::is_invocable_v<F, Context&, State&, Record&, std::string_view>) {
        Function(context, state, record, line.text);
    } else if constexpr (std::is_invocable_v<F, Context&, Record&, const Line&>) {
        Function(context, record, line);
    } else if constexpr (std::is_invocable_v<F, Context&, Record&, std::string_view>) {
        Function(context, record, line.text);
    } else if constexpr (std::is_invocable_v<F, Context&, State&, std::string_view>) {
        Function(context, state, line.text);
    } else {
        Function(context, line.text);
    }
}

/// The same when a section closes, where there is no line.
template <auto Function, class State> void closeSectionBy(Context& context, State& state) {
    using F = decltype(Function);
    using Record = typename State::Record;
    if constexpr (std::is_invocable_v<F, Context&, State&, Record&>) {
        Function(context, state, *state.current);
    } else if constexpr (std::is_invocable_v<F, Context&, Record&>) {
        Function(context, *state.current);
    } else {
        Function(context, state);
    }
}

/// The same for the rows of a table.
template <auto Function, class State> void callRows(Context& context, State& state, LineReader& reader) {
    using Record = typename State::Record;
    if constexpr (std::is_invocable_v<decltype(Function), Context&, State&, Record&, LineReader&>) {
        Function(context, state, *state.current, reader);
    } else if constexpr (std::is_invocable_v<decltype(Function), Context&, Record&, LineReader&>) {
        Function(context, *state.current, reader);
    } else {
        Function(context, state, reader);
    }
}

/// A section of which nothing is due when the next keyword comes.
template <class State, auto Open, auto DataLine> constexpr Section<State> section(KeywordCode key) {
    return {key, callSection<Open, State>, callSection<DataLine, State>, nullptr};
}

template <class State, auto Open, auto DataLine, auto Close> constexpr Section<State> section(KeywordCode key) {
    return {key, callSection<Open, State>, callSection<DataLine, State>, closeSectionBy<Close, State>};
}

/// A section that is a table, most of whose lines `ReadRows` reads.
template <class State, auto Open, auto DataLine, auto Close, auto ReadRows>
constexpr Section<State> tableSection(KeywordCode key) {
    Section<State> table = section<State, Open, DataLine, Close>(key);
    table.read_rows = callRows<ReadRows, State>;
    return table;
}

/// Sections that have an end keyword.
template <class State, auto Open, auto DataLine>
constexpr Section<State> blockSection(KeywordCode key, KeywordCode end_key, const BlockEnd& end) {
    return {key, callSection<Open, State>, callSection<DataLine, State>, nullptr, end_key, &end};
}

template <class State, auto Open, auto DataLine, auto Close>
constexpr Section<State> blockSection(KeywordCode key, KeywordCode end_key, const BlockEnd& end) {
    return {key, callSection<Open, State>, callSection<DataLine, State>, closeSectionBy<Close, State>, end_key, &end};
}

/// The sections of a record, found by their keywords and by those that end them. Made by sectionTable().
template <class State, std::size_t Count> struct SectionTable {
    std::array<Section<State>, Count> rows;
    std::array<std::uint8_t, kKeywordCodes> places{}; ///< by keyword: the row's place counted from 1

    [[nodiscard]] constexpr const Section<State>* find(KeywordCode code) const {
        const std::uint8_t place = places[static_cast<std::size_t>(code)];
        return place == 0 ? nullptr : &rows[place - 1U];
    }
};

template <class State, std::size_t Count>
consteval SectionTable<State, Count> sectionTable(const Section<State> (&rows)[Count]) {
    SectionTable<State, Count> table{std::to_array(rows)};
    for (std::size_t i = 0; i < Count; ++i) {
        const auto place = static_cast<std::uint8_t>(i + 1);
        table.places[static_cast<std::size_t>(rows[i].key)] = place;
        if (rows[i].end_key != KeywordCode::notKey) table.places[static_cast<std::size_t>(rows[i].end_key)] = place;
    }
    return table;
}

/// How a module reads its records. `close` reports without line, the others that report do so at it.
template <class State> struct RecordModule {
    using Record = typename State::Record;

    KeywordCode opens;                               ///< its section is the record's first
    const Section<State>* (*find)(KeywordCode code); ///< the section that a keyword begins or ends, or null
    void (*close)(Context& context, State& state, Record& record);       ///< checks the whole record
    void (*orphan)(Context& context, const Line& line);                  ///< a line outside any record
    void (*behind_end)(Context& context, const BlockEnd& end) = nullptr; ///< data behind an end keyword
    void (*impossible)(Context& context, LineKind kind); ///< a line that the dispatcher never hands over
    /// The opening keyword once more, where that does not begin another record; null where it does.
    void (*reopened)(Context& context) = nullptr;
};

/// Reports the line of a module that is outside its records, by one of two messages.
template <CheckedMessage<> Keyword, CheckedMessage<> Data> void reportOrphan(Context& context, const Line& line) {
    errorAtLine(context.diagnostics, line.kind == LineKind::keyword ? Keyword : Data);
}

/// A program bug for a line that cannot come, by its kind.
template <LineKind Kind, CheckedMessage<ArgKind::text, ArgKind::integer> OfKind,
          CheckedMessage<ArgKind::text, ArgKind::integer> OfOthers>
void reportImpossible(Context& context, LineKind kind) {
    programBugHereAtLine(context.diagnostics, kind == Kind ? OfKind : OfOthers);
}

/// Begins a record at its keyword, at the end of its list.
template <class State> void openRecord(const Context& context, State& state, ObjectList<typename State::Record>& list) {
    state = State{};
    state.list = &list;
    state.current = &list.add(std::make_unique<typename State::Record>());
    state.current->line = context.parse.line;
    state.current->file = context.diagnostics.file;
}

/// Closes the section that waits for its end, unless the keyword belongs to it.
template <class State>
void closeSection(Context& context, State& state, const RecordModule<State>& module, KeywordCode code) {
    const Section<State>* const section = module.find(state.open_section);
    if (section == nullptr || section->admits(code)) return;
    state.open_section = KeywordCode::notKey;
    if (section->end != nullptr) section->end->not_ended(context);
    if (section->close != nullptr) section->close(context, state);
}

/// Called for every keyword: closes the section before it and, at a keyword that is none of the record's own, the
/// record.
template <class State>
void recordKeywordSeen(Context& context, State& state, const RecordModule<State>& module, KeywordCode code) {
    if (state.current == nullptr) return;
    const About about(context.diagnostics, *state.current);
    closeSection(context, state, module, code);
    if (code == module.opens && module.reopened != nullptr) {
        module.reopened(context);
        return;
    }
    if (code != module.opens && module.find(code) != nullptr) return;
    module.close(context, state, *state.current);
    state = State{};
}

/// Reads the keyword line of a section, or of its end.
template <class State>
void sectionKeywordLine(Context& context, State& state, const RecordModule<State>& module,
                        const Section<State>& section, const Line& line) {
    const Section<State>* const open = module.find(state.open_section);
    if (section.end == nullptr || line.key == section.key) {
        const bool within = open != nullptr && open->end != nullptr; // of an open block, which admits the section
        if (!within) state.open_section = section.key;
        section.open(context, state, line);
        context.parse.in_table = section.read_rows != nullptr;
        return;
    }
    if (!line.text.empty()) section.end->text_behind(context, line.text);
    if (open != &section) {
        section.end->no_begin(context);
        return;
    }
    state.open_section = KeywordCode::notKey;
    if (section.close != nullptr) section.close(context, state);
}

/// Reads a keyword line of a record or a data line under one.
template <class State>
void recordLine(Context& context, State& state, const RecordModule<State>& module, const Line& line) {
    if (line.kind == LineKind::blank) {
        module.impossible(context, line.kind);
        return;
    }
    if (state.current == nullptr) {
        module.orphan(context, line);
        return;
    }
    const About about(context.diagnostics, *state.current);
    const Section<State>* const section = module.find(line.key);
    if (section == nullptr) {
        module.impossible(context, line.kind);
    } else if (line.kind == LineKind::keyword) {
        sectionKeywordLine(context, state, module, *section, line);
    } else if (line.key == section->key) {
        section->line(context, state, line);
    } else {
        module.behind_end(context, *section->end);
    }
}

/// Reads rows of the open section, which is a table.
template <class State>
void recordRows(Context& context, State& state, const RecordModule<State>& module, LineReader& reader) {
    const About about(context.diagnostics, *state.current);
    module.find(context.parse.current)->read_rows(context, state, reader);
}

} // namespace kestrel

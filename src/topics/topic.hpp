#pragma once

#include "diagnostics/finding_code.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel {

/// What messages mean that are alike: an explanation that they share. The parts in prose have one line for each
/// paragraph, with empty lines between them; lines that begin with a blank are not to be wrapped.
struct Topic {
    std::string_view slug; ///< its name in lower case, such as "c-comp-corners"
    std::string_view title;
    std::span<const FindingCode> codes; ///< ascending
    std::string_view meaning;
    std::string_view why; ///< why it matters
    std::string_view mend;
    std::string_view formula; ///< how an advice computes what it compares; empty for messages
    std::string_view bad;     ///< lines of an example; empty where none is possible
    std::string_view mended;  ///< the same lines as they should be
    std::string_view reason;  ///< why there is no example; empty with one
};

/// All topics, by their slugs. They come from the files in docs/messages when the program is built.
[[nodiscard]] std::span<const Topic> topics();

/// Which topic a code belongs to.
struct TopicRow {
    FindingCode code;
    std::uint16_t topic; ///< its place among the topics
};

/// A row for every code that has a topic, ascending.
[[nodiscard]] std::span<const TopicRow> topicRows();

/// The topic of a code; null when it has none.
[[nodiscard]] const Topic* topicOf(FindingCode code);

/// The topic of a slug; null when there is none.
[[nodiscard]] const Topic* topicNamed(std::string_view slug);

/// A part of a topic under its heading.
struct TopicPart {
    std::string_view heading;
    std::string_view text; ///< empty when the topic lacks it
};

/// The parts in prose in the order in which they are shown.
[[nodiscard]] constexpr std::array<TopicPart, 4> partsOf(const Topic& topic) {
    return {{{"Meaning", topic.meaning},
             {"Why it matters", topic.why},
             {"How to mend", topic.mend},
             {"Formula", topic.formula}}};
}

} // namespace kestrel

#pragma once

#include "diagnostics/message.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

struct Diagnostics;

/// One R/L/C section of a pin or path: its length, and resistance, inductance and capacitance per unit of length.
struct Sect {
    std::optional<double> len;
    std::optional<double> l;
    std::optional<double> r;
    std::optional<double> c;
};

/// What became of the text at the front of a line of sections.
enum class SectResult : std::uint8_t {
    endOfLine, ///< nothing more is on the line
    section,   ///< one section was read, and possibly found empty
    failed     ///< reported; what is left of the line is of no use
};

/// Takes one section, closed by "/", off the front of `text`.
SectResult readSection(Diagnostics& diagnostics, std::string_view& text, Sect& sect);

/// True when the next thing in `text` is an item of a section or the end of one.
[[nodiscard]] bool beginsSection(std::string_view text);

/// Stands for no element.
inline constexpr std::uint32_t kNoElement = 0xFFFFFFFF;

/// What an element of a chain is. Pins, nodes and "NC" occur in the paths of boards only.
enum class ElementKind : std::uint8_t { fork = 0, section = 1, pin = 2, node = 3, nc = 4 };

/// One element of a chain. Elements refer to each other by their place in the chain's vector, so that neither depth nor
/// length of a chain costs stack.
struct ChainElement {
    ElementKind kind;
    std::uint32_t next = kNoElement; ///< the element behind it on the same chain or branch
    std::uint32_t payload =
        kNoElement; ///< of a fork: the first element of its branch; else the place in the owner's vector of its kind
};

/// A chain of elements with branches, in the order in which they were read. The first element, if any, is the head; all
/// others hang from it.
struct Chain {
    std::vector<ChainElement> elements;
    std::vector<Sect> sections; ///< payload of the section elements, those in branches included

    [[nodiscard]] bool empty() const { return elements.empty(); }
};

/// Where the chain being read goes on.
struct ChainCursor {
    std::uint32_t tail = kNoElement;  ///< the element that the next one is attached to
    std::vector<std::uint32_t> forks; ///< the forks still open, innermost last
};

/// Appends an element: as head of the chain when there is no tail (the chain then starts anew), as first of its branch
/// when the tail is the innermost open fork, else behind the tail. It becomes the tail.
void attach(Chain& chain, ChainCursor& cursor, ChainElement element);

/// Appends a section.
void attachSection(Chain& chain, ChainCursor& cursor, const Sect& sect);

/// Appends a fork and opens it.
void openFork(Chain& chain, ChainCursor& cursor);

/// What is reported of the end of a fork.
struct ForkEndMessages {
    CheckedMessage<> none_open;
    CheckedMessage<> empty_branch;
};

/// Closes the innermost open fork, which becomes the tail. Reports at the line.
void closeFork(Diagnostics& diagnostics, const Chain& chain, ChainCursor& cursor, const ForkEndMessages& messages);

/// What is reported of a name that holds part of the section syntax.
struct NameWarnings {
    CheckedMessage<ArgKind::text> equals;
    CheckedMessage<ArgKind::text> slash;
    CheckedMessage<ArgKind::text> word;
};

/// Warns of a name of a pin or node that was probably meant to be something else: one with "=" or "/" in it, or one of
/// the words "Len", "Fork", "Endfork", "C", "R" and "L".
void warnOfName(Diagnostics& diagnostics, std::string_view name, const NameWarnings& warnings);

} // namespace kestrel

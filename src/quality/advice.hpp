#pragma once

#include "diagnostics/diagnostics.hpp"
#include "quality/catalog.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// One thing that an engineer would say of a file.
struct Advice {
    FindingCode code;
    std::uint32_t line;     ///< at least 1
    bool exact;             ///< it is about this very line, not about what begins there
    const Subject* subject; ///< the record that it is about, null for the whole file
    std::string text;
    TablePlaces at{}; ///< the voltages or times within its table, where the text does not say them
};

/// Where an advice belongs, and what its text begins with.
struct AdvicePlace {
    std::uint32_t line;
    const Subject* subject;
    bool of_file = false; ///< the text is about the whole file, whatever record gives the line
};

/// The place of an advice about a record, at the line where that begins.
[[nodiscard]] inline AdvicePlace adviceAt(const Subject& subject) { return {subject.line, &subject}; }
/// The same, at a line inside the record.
[[nodiscard]] inline AdvicePlace adviceAt(const Subject& subject, std::uint32_t line) { return {line, &subject}; }
/// The place of an advice about the file, at the line where a record begins.
[[nodiscard]] inline AdvicePlace adviceOnFile(const Subject& subject) { return {subject.line, &subject, true}; }

/// What the checks say of a file: `list.add(adviceAt(model), 204, amperes(i), volts(v))`. Texts begin with "Model 'x':
/// ", "Component 'x': " or "File: ", by their place. Code and arguments are checked when compiled.
class AdviceList {
public:
    template <class... Args> void add(AdvicePlace place, CheckedAdvice<argKind<Args>()...> text, const Args&... args) {
        const std::array<Arg, sizeof...(Args)> list{Arg(args)...};
        addRow(place, text.row, list);
    }

    /// Adds "; 2 more states and corners fall" to the text that was added last, or nothing for 0.
    void addMore(CheckedMore words, std::size_t count);

    /// Says which voltages or times of its table the advice is about that was added last.
    void setPlace(std::optional<double> at, std::optional<double> also = {}) { list_.back().at = {at, also}; }

    /// An advice with the text of a message, as it is.
    template <class... Args>
    void addMessage(AdvicePlace place, MessageCode code, CheckedMessage<argKind<Args>()...> message,
                    const Args&... args) {
        const std::array<Arg, sizeof...(Args)> list{Arg(args)...};
        addMessageRow(place, code, message.row, list);
    }

    /// Everything in the order of lines and codes; of equal ones in the order in which they came.
    [[nodiscard]] std::vector<Advice> takeSorted();

private:
    void addRow(AdvicePlace place, std::size_t row, std::span<const Arg> args);
    void addMessageRow(AdvicePlace place, MessageCode code, std::size_t row, std::span<const Arg> args);
    void keep(AdvicePlace place, MessageCode code, std::string text);

    std::vector<Advice> list_;
    std::string text_; // being formatted
};

} // namespace kestrel

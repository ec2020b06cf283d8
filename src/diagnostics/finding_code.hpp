#pragma once

#include "diagnostics/catalog.hpp"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// Where the texts of a finding's code are: in the catalog of messages, or in that of advice.
enum class CodeFamily : std::uint8_t { message, advice };

/// The code of a finding: the number of a message, such as 905, or that of an advice, such as 201 of Q201.
struct FindingCode {
    CodeFamily family = CodeFamily::message;
    MessageCode number = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the comparison with 0 is the compiler's
    friend constexpr auto operator<=>(const FindingCode&, const FindingCode&) = default;
};

/// A code as it is written everywhere, such as "905" or "Q201"; nothing for a text without one.
class CodeText {
public:
    explicit CodeText(std::optional<FindingCode> code);
    [[nodiscard]] std::string_view text() const { return {letters_.data(), length_}; }

private:
    std::array<char, 12> letters_{};
    std::size_t length_ = 0;
};

/// Reads a code as it is written, a small "q" too; nothing where the text is none. Whether it has a text is not asked.
[[nodiscard]] std::optional<FindingCode> readFindingCode(std::string_view text);

/// The text of a message that has one, on one line, with "..." for what each finding fills in.
[[nodiscard]] std::string generalText(FindingCode code);

} // namespace kestrel

#pragma once

// Every text of advice, in one table that the compiler checks.

#include "diagnostics/message.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrel {

/// One text of a check. A check that says different things has several texts, numbered from 0.
struct AdviceRow {
    MessageCode code;
    std::uint8_t form;
    std::string_view text;
};

// clang-format off
/// All texts by ascending code and form. What they are about ("Model 'x': ") is put in front of them. Numbers come as
/// texts with their units (number_text.hpp).
inline constexpr auto kAdviceCatalog = std::to_array<AdviceRow>({
    // magnitudes and order
    {101, 0, "C_comp is %s; die capacitances lie between 10 fF and 100 pF"},
    {101, 1, "the parts of C_comp make %s; die capacitances lie between 10 fF and 100 pF"},
    {102, 0, "%s is %s; packages lie below %s"},
    {103, 0, "%s; packages lie below %s, %s and %s"},
    {104, 0, "%s is out of order: typ %s, min %s, max %s"},
    {105, 0, "[Temperature Range] %s is %s; temperatures lie between %s and %s"},
    {105, 1, "[Temperature Range] typ %s lies outside min %s and max %s"},
    {106, 0, "Vcc is %s; supplies lie between %s and %s"},
    {107, 0, "Vinl %s is not below Vinh %s"},
    {107, 1, "%s %s lies outside the supplies of %s and %s"},
    {107, 2, "Vinl %s and Vinh %s lie outside the supplies of %s and %s"},
    {108, 0, "Vmeas %s is never crossed: the output moves between %s and %s"},
    // I-V tables
    {201, 0, "%s goes from %s to %s; reflections reach %s to %s"},
    {202, 0, "the %s-state current falls from %s at %s to %s at %s (%s)"},
    {203, 0, "%s runs the wrong way: %s at 0 V and %s at Vcc; its voltages count from the reference"},
    {203, 1, "%s carries %s at 0 V, %s at most up to Vcc; a driver carries nothing at its own rail"},
    {203, 2, "%s carries %s at 0 V in %s and %s in typ: the column does not count from its own supply"},
    {204, 0, "the clamps carry %s at %s, as %s to a rail would: a termination on the die, or a driver current"},
    {205, 0, "%s carries %s at %s and %s %s: a clamp is counted twice"},
    {205, 1, "at the pin voltage %s %s carries %s and %s %s: a clamp is counted twice"},
    {206, 0, "%s at %s: %s"},
    {206, 1, "%s: %s are the same"},
    {207, 0, "%s makes %s of the %s between 0 V and Vcc in one step from %s to %s"},
    {208, 0, "%s has %u stairs, the first of %s at %s: the currents are rounded"},
    {209, 0, "%s carries nothing between 0 V and %s: the output never drives %s"},
    {209, 1, "%s carries %s at %s, %s; drivers lie between 1 ohm and 2 kohm"},
    {209, 2, "%s carries nothing at %s; drivers lie between 1 ohm and 2 kohm"},
    // waveforms and ramps
    {301, 0, "%s %s at %s, the tables give %s (%s)"},
    {302, 0, "no two loads for %s: two are needed to tell pullup and pulldown apart"},
    {303, 0, "nothing moves in the first %s of %s of the %s waveforms (%s)"},
    {304, 0, "%s still moves by %s of its %s in the last %s of its time (%s)"},
    {305, 0, "%s makes %s of its %s in one step of %s"},
    {306, 0, "%s moves by %s only (%s)"},
    {307, 0, "with %s the %s level is %s in the rising and %s in the falling waveform (%s)"},
    {308, 0, "%s: %s rate %s"},
    {309, 0, "%s is %s, the waveform with %s has %s (%s)"},
    {310, 0, "dV of %s is %s; %s of the swing from %s to %s with %s is %s"},
    {311, 0, "%s: %s"},
    {312, 0, "%s is %s; edges lie between 100 uV/ns and 500 V/ns"},
    {313, 0, "%s goes back from %s at %s to %s at %s (%s)"},
    // structure
    {401, 0, "pins %s and %s are a pair of models '%s' (%s) and '%s' (%s)"},
    {403, 0, "%s missing or empty: nothing says where and when the model was made"},
    {404, 0, "[Date] '%s' is no date"},
    {404, 1, "[Date] '%s' is of the year %d; models are from %d to %d"},
    {405, 0, "[Comment Char] changes the comment character to '%c'"},
    {407, 0, "%u of %u driver models have a ramp only and no waveform: %s"},
    {407, 1, "1 of %u driver models has a ramp only and no waveform: %s"},
    {407, 2, "the only driver model has a ramp only and no waveform: %s"},
    {408, 0, "all package and pin values are 0 or missing: simulation sees the bare die"},
    {409, 0, "no pin and no selector leads to %s"},
    {410, 0, "the D_to_A line of %s goes from %s to %s"},
    {410, 1, "the A_to_D line of %s has vlow %s above vhigh %s"},
    {411, 0, "nothing drives %s, so %s %s model cannot be switched off"},
    {411, 1, "the Ports lack %s, which Model_type %s uses"},
});

/// What a check tells that has one finding for several places: "; 1 more end differs".
struct MoreWords {
    MessageCode code;
    std::string_view one;
    std::string_view several;
};

/// Those words by ascending code.
inline constexpr auto kMoreWords = std::to_array<MoreWords>({
    {202, "state or corner falls", "states and corners fall"},
    {205, "place", "places"},
    {301, "end differs", "ends differ"},
    {303, "edge or corner waits", "edges and corners wait"},
    {304, "waveform or corner moves", "waveforms and corners move"},
    {305, "waveform is coarse", "waveforms are coarse"},
    {306, "waveform or corner", "waveforms and corners"},
    {307, "level differs", "levels differ"},
    {308, "waveform", "waveforms"},
    {309, "waveform or corner differs", "waveforms and corners differ"},
    {310, "edge", "edges"},
    {311, "edge", "edges"},
    {312, "edge", "edges"},
    {313, "waveform or corner", "waveforms and corners"},
});
// clang-format on

namespace advice_check {

// Declared only: the compiler quotes the name where a text is wrong.
void noSuchAdvice();

consteval bool textsAscend() {
    for (std::size_t i = 1; i < kAdviceCatalog.size(); ++i) {
        const AdviceRow& before = kAdviceCatalog[i - 1];
        const AdviceRow& row = kAdviceCatalog[i];
        const bool is_next_form = row.code == before.code && row.form == before.form + 1;
        if (!is_next_form && (row.code <= before.code || row.form != 0)) return false;
    }
    return true;
}
static_assert(textsAscend());

consteval bool wordsAscend() {
    for (std::size_t i = 1; i < kMoreWords.size(); ++i)
        if (kMoreWords[i].code <= kMoreWords[i - 1].code) return false;
    return true;
}
static_assert(wordsAscend());

consteval bool allConversionsKnown() {
    for (const AdviceRow& row : kAdviceCatalog) {
        for (std::size_t i = 0; i < row.text.size(); ++i)
            if (row.text[i] == '%') message_check::kindOfConversion(row.text[++i]);
    }
    return true;
}
static_assert(allConversionsKnown());

consteval std::size_t placeOfText(MessageCode code, std::uint8_t form) {
    for (std::size_t i = 0; i < kAdviceCatalog.size(); ++i)
        if (kAdviceCatalog[i].code == code && kAdviceCatalog[i].form == form) return i;
    return kAdviceCatalog.size();
}

} // namespace advice_check

/// A text of the catalog proved to take arguments of `Kinds`; made from a code, or from a code and a form as `{203,
/// 1}`, when compiled. One that is not there, or that takes other arguments, does not compile.
template <ArgKind... Kinds> struct CheckedAdvice {
    consteval CheckedAdvice(MessageCode code, std::uint8_t form = 0)
        : row(static_cast<std::uint16_t>(advice_check::placeOfText(code, form))) {
        if (row == kAdviceCatalog.size()) advice_check::noSuchAdvice();
        message_check::checkText<Kinds...>(kAdviceCatalog[row].text);
    }
    std::uint16_t row;
};

/// A check with words for what there is more of; one without does not compile.
struct CheckedMore {
    consteval CheckedMore(MessageCode code) {
        while (place < kMoreWords.size() && kMoreWords[place].code != code)
            ++place;
        if (place == kMoreWords.size()) advice_check::noSuchAdvice();
    }
    std::size_t place = 0;
};

} // namespace kestrel

#include "main/advice_page.hpp"

#include "quality/checks.hpp"
#include "topics/topic.hpp"
#include "topics/topic_forms.hpp"

#include <array>

namespace kestrel {

namespace {

/// The checks of a hundred of codes.
struct Group {
    MessageCode hundred;
    std::string_view title;
};
constexpr std::array<Group, 4> kGroups{{
    {1, "Magnitudes and order"},
    {2, "I-V tables"},
    {3, "Waveforms and ramps"},
    {4, "Structure"},
}};

constexpr std::string_view kIntroduction = R"(# Advice

A file can be right in every line and still be a bad model. `verimark --advice` looks at the numbers as an engineer does who
receives the file and has to simulate with it: magnitudes, I-V tables, waveforms against tables, and how the file is put
together. Each finding names the numbers that it saw. Advice fails no file, unless `--fail-on=advice` asks for it;
`--ignore=Q304` leaves a check out, `--baseline=FILE` what is known. `verimark --explain=Q304` says why it matters and how the
file is mended, with an example, as [messages.md](messages.md#advice) does. Where data are missing, nothing is said. Files that
the named one leads to get no advice of their own.

## The words of the formulas

- Corner: typ, min or max. A corner without data of its own has none; typ does not stand in. A formula is about typ unless it
  names corners.
- The typical value of "[Model Spec]" counts ahead of the model's own Vinl, Vinh, Vmeas, Rref and Vref. A Vinh or Vmeas of 0 and
  an Rref of 0 or below count as missing.
- Vpu: "[Pullup Reference]", else "[Voltage Range]". Vpd: "[Pulldown Reference]", else 0. Vpc: "[POWER Clamp Reference]", else
  "[Voltage Range]". Vgc: "[GND Clamp Reference]", else 0. A keyword that is there with "NA" gives nothing. In models that do not
  drive, Vpc and Vgc stand in for a missing Vpu. Vcc is Vpu - Vpd, where that is above 0.
- Between the rows of an I-V table currents lie on straight lines, beyond them on the last ones, except that the last current of
  a clamp table stays what it is above its last row. "Nothing" is a current below 10 uA.
- The low state of an output is pulldown, clamps and terminators together, the high state pullup, clamps and terminators, the
  off state clamps and terminators. The state that an open type does not drive is its off state. Submodels are left out.
- Drivers are all types that drive but the ECL ones. Models with an "[External Model]" or a "[Driver Schedule]", and those that a
  schedule names, are left out where tables, waveforms and ramps are judged.
- The DC solution is the voltage at which the current of a state is that of the load. A state is at its rail when its level
  without load lies within 20 % of Vcc of Vpd (low) or Vpu (high).
- The far rail is the supply from which an edge starts: Vpd for rising, Vpu for falling edges; the supply that it does not drive
  for an output that drives one way only.
- The swing of a waveform is its last value minus its first; it moves when that is above 10 % of Vcc. Its rate is 60 % of the
  swing over the time from 20 % to 80 %. It is coarse when two neighboring rows are more than 60 % of the swing apart.

A check with one finding per model tells the worst and counts the others.
)";

/// A text in a cell of a table.
std::string cellText(std::string_view text) {
    std::string cell;
    for (const char c : escapedMarkdown(text))
        c == '\n' ? cell.push_back(' ') : cell.push_back(c);
    return cell;
}

} // namespace

std::string advicePage() {
    std::string page(kIntroduction);
    for (const Group& group : kGroups) {
        page.append("\n## ").append(group.title).append("\n\n| Code | What is told | When |\n|---|---|---|\n");
        for (const Check& check : adviceChecks()) {
            const FindingCode code{CodeFamily::advice, check.code};
            const Topic* const topic = topicOf(code);
            if (check.code / 100 != group.hundred || topic == nullptr) continue;
            page.append("| ").append(CodeText(code).text()).append(" | ").append(cellText(topic->title));
            page.append(" | ").append(cellText(topic->formula)).append(" |\n");
        }
    }
    return page.append("\nThe page is made from the files in `docs/messages`.\n");
}

} // namespace kestrel

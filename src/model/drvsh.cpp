#include "model/drvsh.hpp"

#include "reader/context.hpp"
#include "reader/line_form.hpp"
#include "reader/names.hpp"
#include "reader/plain_cells.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr int kDelays = 4;

/// Places of the delays on the line.
enum Delay : std::uint8_t { kRiseOn = 0, kRiseOff = 1, kFallOn = 2, kFallOff = 3 };

constexpr std::array<std::string_view, kDelays> kLabels{"Rise_on_dly", "Rise_off_dly", "Fall_on_dly", "Fall_off_dly"};

using Delays = std::array<Cell, kDelays>;

/// Reads all four, so that each unreadable one is reported; true when there was none.
bool readCells(Diagnostics& diagnostics, const ItemList& items, std::string_view model_name, Delays& delays) {
    bool all_read = true;
    for (int i = 0; i < kDelays; ++i) {
        const auto at = static_cast<std::size_t>(i);
        all_read &= readCell(diagnostics, items[i], items.has(i), model_name, kLabels[at], delays[at]);
    }
    return all_read;
}

/// A driver that turns on at one edge has to turn off by the same edge's delays or by none.
void checkTogether(Diagnostics& diagnostics, const Delays& delays) {
    if (delays[kRiseOn].isNumber() && delays[kFallOff].isNumber()) {
        errorAtLine(diagnostics, 4505, kLabels[kRiseOn], "Fall_off_delay");
    }
    if (delays[kRiseOff].isNumber() && delays[kFallOn].isNumber()) {
        errorAtLine(diagnostics, 4505, kLabels[kRiseOff], "Fall_on_delay");
    }
}

/// Of exactly two delays: a pair of one edge must differ.
void checkPair(Diagnostics& diagnostics, const Delays& delays) {
    const auto equal_pair = [&delays](Delay on, Delay off) {
        return delays[on].isNumber() && delays[off].isNumber() && delays[on].value() == delays[off].value();
    };
    if (equal_pair(kRiseOn, kRiseOff)) errorAtLine(diagnostics, 4507, kLabels[kRiseOn], kLabels[kRiseOff]);
    if (equal_pair(kFallOn, kFallOff)) errorAtLine(diagnostics, 4508, kLabels[kFallOn], kLabels[kFallOff]);
}

/// Of all four: the driver turns on before it turns off at the one edge and the other way round at the other.
void checkAllFour(Diagnostics& diagnostics, const Delays& delays) {
    const double rise_on = delays[kRiseOn].value();
    const double rise_off = delays[kRiseOff].value();
    const double fall_on = delays[kFallOn].value();
    const double fall_off = delays[kFallOff].value();
    if (rise_on < rise_off && fall_off < fall_on) return;
    if (rise_on > rise_off && fall_on < fall_off) return;
    errorAtLine(diagnostics, 4509, kLabels[kRiseOn], kLabels[kRiseOff], kLabels[kFallOn], kLabels[kFallOff],
                kLabels[kRiseOn], kLabels[kRiseOff], kLabels[kFallOn], kLabels[kFallOff]);
}

void checkDelays(Diagnostics& diagnostics, const Delays& delays) {
    const auto given = std::ranges::count_if(delays, &Cell::isNumber);
    if (given < 2) {
        errorAtLine(diagnostics, 4504);
    } else if (given < kDelays) {
        checkTogether(diagnostics, delays);
    }
    for (std::size_t i = 0; i < kDelays; ++i) {
        if (delays[i].isNumber() && delays[i].value() < 0.0) errorAtLine(diagnostics, 4506, kLabels[i]);
    }
    if (given == 2) {
        checkPair(diagnostics, delays);
    } else if (given == kDelays) {
        checkAllFour(diagnostics, delays);
    }
}

/// Reads the delays behind the name of a scheduled model; when every cell reads, checks which are given together and
/// how they lie to one another.
Dly readDly(Context& context, std::string_view text, std::string_view model_name) {
    Delays delays;
    bool all_read = readPlainCells(context, text, delays);
    if (!all_read) {
        const ItemList items = splitItems(context, text, kDelays);
        reportItemCount(context.diagnostics, items.count, kLabels, model_name, {4502, 4501}, MissingItems::first);
        all_read = readCells(context.diagnostics, items, model_name, delays);
    }
    if (all_read) checkDelays(context.diagnostics, delays);
    return {delays[kRiseOn], delays[kRiseOff], delays[kFallOn], delays[kFallOff]};
}

/// Stores the name, cut to its limit, and judges what is stored.
void setModelName(Context& context, std::string_view model, std::string_view name, DrvShEntry& entry) {
    Diagnostics& diagnostics = context.diagnostics;
    storeName(context, entry.model_name, name, modelNameLimit(context.parse.version), 4212);
    if (entry.model_name == model) {
        errorAtLine(diagnostics, 4213, entry.model_name);
    } else if (isReservedWord(entry.model_name)) {
        errorAtLine(diagnostics, 4214, entry.model_name);
    }
}

} // namespace

void openDrvSh(Context& context, DrvSh& schedule, std::string_view text) {
    if (schedule) errorAtLine(context.diagnostics, 4200);
    schedule = {.given = true, .entries = {}};
    expectNoText(context, text, "Driver Schedule", 4204);
}

void drvShLine(Context& context, DrvSh& schedule, std::string_view text, std::string_view model) {
    DrvShEntry& entry = context.rows.add(schedule.entries, {});
    const std::string_view name = takeItem(context, text);
    if (name.empty()) {
        errorAtLine(context.diagnostics, 4211);
        return;
    }
    setModelName(context, model, name, entry);
    entry.delays = readDly(context, text, entry.model_name);
}

void closeDrvSh(Context& context, const DrvSh& schedule, std::string_view model) {
    if (schedule.entries.empty()) {
        error(context.diagnostics, 4205, model);
    } else if (schedule.entries.size() == 1) {
        warning(context.diagnostics, 4206, model);
    }
}

} // namespace kestrel

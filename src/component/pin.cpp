#include "component/pin.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace kestrel {

namespace {

constexpr int kNameColumns = 3;  ///< pin name, signal name, model name
constexpr int kValueColumns = 3; ///< R_pin, L_pin, C_pin in any order
constexpr int kHeaderWords = 6;  ///< words of the header that are counted, one more than it may have
constexpr int kAllColumns = kNameColumns + kValueColumns;

constexpr std::array<std::string_view, 2> kNameHeaders{"signal_name", "model_name"};

struct ValueColumn {
    std::string_view header;
    PinColumn column;
    Cell Pin::*cell;
};

/// In the order of PinColumn.
constexpr std::array<ValueColumn, kValueColumns> kValues{{
    {"R_pin", PinColumn::rPin, &Pin::r_pin},
    {"L_pin", PinColumn::lPin, &Pin::l_pin},
    {"C_pin", PinColumn::cPin, &Pin::c_pin},
}};

const ValueColumn* findValueColumn(std::string_view header) {
    const auto* const at = std::ranges::find_if(
        kValues, [header](const ValueColumn& column) { return equalsNoCase(column.header, header); });
    return at == kValues.end() ? nullptr : at;
}

/// Reads the header of the value column at `place`; false when it was reported.
bool valueHeader(Diagnostics& diagnostics, Cmpnt& component, std::size_t place, std::string_view word) {
    const ValueColumn* const found = findValueColumn(word);
    if (found == nullptr) {
        errorAtLine(diagnostics, 530, word);
        return false;
    }
    if (std::ranges::find(component.value_columns, found->column) != component.value_columns.end()) {
        errorAtLine(diagnostics, 531, word);
        return false;
    }
    component.value_columns[place] = found->column;
    return true;
}

/// Stores a name cut to its limit; false when it was over it, which is reported.
bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit,
               CheckedMessage<ArgKind::text, ArgKind::integer> too_long) {
    const auto room = static_cast<std::size_t>(limit);
    name = text.substr(0, room);
    if (text.size() <= room) return true;
    errorAtLine(diagnostics, too_long, text, limit);
    return false;
}

void readValue(Diagnostics& diagnostics, Pin& pin, const ValueColumn& column, std::string_view text) {
    Cell& cell = pin.*column.cell;
    readCell(diagnostics, text, true, "Pin", column.header, cell);
    if (cell.isNumber() && cell.value < 0.0) warningAtLine(diagnostics, 608, column.header, pin.name);
}

void readValues(Diagnostics& diagnostics, const Cmpnt& component, Pin& pin, const ItemList& items) {
    for (int place = 0; place < kValueColumns && items.has(kNameColumns + place); ++place) {
        const auto column = component.value_columns[static_cast<std::size_t>(place)];
        if (!column) continue;
        readValue(diagnostics, pin, kValues[static_cast<std::size_t>(*column)], items[kNameColumns + place]);
    }
}

bool isSeriesEntry(const Ibis& root, const MSelEntry& entry) {
    const Mdl* const model = root.models.find(entry.model_name);
    return model != nullptr && isSeries(*model);
}

/// What `name` stands for in the whole file; a model found is marked as referenced.
PinModelKind resolveModelName(Run& run, const Ibis& root, std::string_view name) {
    if (const Mdl* const model = referenceMdl(run, name)) {
        if (isSeries(*model)) return PinModelKind::series;
        return isDifferential(*model) ? PinModelKind::differential : PinModelKind::single;
    }
    const MSel* const selector = root.model_selectors.find(name);
    if (selector == nullptr) return PinModelKind::undefined;
    const bool series =
        std::ranges::any_of(selector->entries, [&root](const MSelEntry& entry) { return isSeriesEntry(root, entry); });
    return series ? PinModelKind::series : PinModelKind::single;
}

/// False when there is nothing to report about this pin.
bool reportPin(Diagnostics& diagnostics, const Cmpnt& component, const Pin& pin, PinModelKind kind) {
    switch (kind) {
    case PinModelKind::undefined: error(diagnostics, 609, pin.model_name, pin.name, component.name); return true;
    case PinModelKind::series: error(diagnostics, 610, pin.name, component.name, pin.model_name); return true;
    case PinModelKind::differential:
        if (component.diff_pin_seen) return false;
        caution(diagnostics, 614, pin.model_name, pin.name, component.name);
        return true;
    case PinModelKind::single: return false;
    }
    return false;
}

/// True when no model or selector is meant. Rows under a faulty header may lack the model name; pins that a circuit
/// call connects are named there.
bool needsNoModel(const Pin& pin, IbisVersion version) {
    return pin.model_name.empty() || isUnmodeledPinName(pin.model_name) ||
           (version >= IbisVersion::v4 && equalsNoCase(pin.model_name, "CIRCUITCALL"));
}

std::uint32_t hashOf(std::string_view name) { return static_cast<std::uint32_t>(std::hash<std::string_view>{}(name)); }

} // namespace

const Pin* PinIndex::find(const std::vector<Pin>& pins, std::string_view name) const {
    if (slots_.empty()) return nullptr;
    const std::uint32_t place = slots_[slotOf(pins, name, hashOf(name))].place;
    return place == 0 ? nullptr : &pins[place - 1];
}

bool PinIndex::enterLast(const std::vector<Pin>& pins) {
    if (2 * (taken_ + 1) > slots_.size()) grow();
    const std::uint32_t hash = hashOf(pins.back().name);
    Slot& slot = slots_[slotOf(pins, pins.back().name, hash)];
    if (slot.place != 0) return false;
    slot = {hash, static_cast<std::uint32_t>(pins.size())};
    ++taken_;
    return true;
}

/// The slot that holds the name, or the free one where it belongs.
std::size_t PinIndex::slotOf(const std::vector<Pin>& pins, std::string_view name, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].place != 0 && (slots_[at].hash != hash || pins[slots_[at].place - 1].name != name)) {
        at = (at + 1) & mask;
    }
    return at;
}

void PinIndex::grow() {
    constexpr std::size_t kSmallest = 64;
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(std::max(kSmallest, 2 * slots_.size())));
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
        if (slot.place == 0) continue;
        std::size_t at = slot.hash & mask;
        while (slots_[at].place != 0) {
            at = (at + 1) & mask;
        }
        slots_[at] = slot;
    }
}

int pinNameLimit(IbisVersion version) { return version >= IbisVersion::v5 ? 8 : 5; }

const Pin* findPin(const Cmpnt& component, std::string_view name) {
    return component.pin_index.find(component.pins, name);
}

bool isUnmodeledPinName(std::string_view model_name) {
    return equalsNoCase(model_name, "POWER") || equalsNoCase(model_name, "GND") || equalsNoCase(model_name, "NC");
}

void pinHeader(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    if (component.pin_columns != 0) {
        errorAtLine(diagnostics, 523);
        return;
    }
    const ItemList words = splitItems(run, text, kHeaderWords);
    component.pin_columns = 1 + words.kept;
    if (words.kept == 0) {
        errorAtLine(diagnostics, 528, "Pin");
        component.pin_header_faulty = true;
        return;
    }
    if (component.pin_columns != kNameColumns && component.pin_columns != kAllColumns) {
        errorAtLine(diagnostics, 532, "Pin", kNameColumns, kAllColumns, component.pin_columns);
        component.pin_header_faulty = true;
    }
    for (int place = 0; place < kNameColumns - 1; ++place) {
        const std::string_view header = kNameHeaders[static_cast<std::size_t>(place)];
        if (equalsNoCase(words[place], header)) continue;
        errorAtLine(diagnostics, 529, header);
        component.pin_header_faulty = true;
    }
    for (int place = 0; place < kValueColumns && words.has(kNameColumns - 1 + place); ++place) {
        const std::string_view word = words[kNameColumns - 1 + place];
        if (!valueHeader(diagnostics, component, static_cast<std::size_t>(place), word)) {
            component.pin_header_faulty = true;
        }
    }
}

void pinLine(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, kAllColumns);
    const bool wrong_count = !component.pin_header_faulty && items.count != kNameColumns && items.count != kAllColumns;
    if (wrong_count) {
        errorAtLine(diagnostics, 602, items.count);
        if (items.count < kNameColumns) return;
    } else if (!component.pin_header_faulty && items.count > component.pin_columns) {
        errorAtLine(diagnostics, 603);
    }

    Pin& pin = component.pins.emplace_back();
    const IbisVersion version = run.parse.version;
    const bool name_fits = storeName(diagnostics, pin.name, items[0], pinNameLimit(version), 604);
    const int long_limit = modelNameLimit(version); // signal names have the same
    storeName(diagnostics, pin.signal_name, items[1], long_limit, 605);
    const bool model_fits = storeName(diagnostics, pin.model_name, items[2], long_limit, 606);
    const bool is_new = component.pin_index.enterLast(component.pins);
    if (!is_new && name_fits) errorAtLine(diagnostics, 607, pin.name, component.name);
    const bool is_na = equalsNoCase(pin.model_name, "NA");
    if (is_na) errorAtLine(diagnostics, 612, pin.model_name);
    pin.model_reported = !model_fits || is_na;
    if (!wrong_count) readValues(diagnostics, component, pin, items);
}

void checkPins(Run& run, const Cmpnt& component, PinModels& models) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Pin& pin : component.pins) {
        if (needsNoModel(pin, run.parse.version)) continue;
        const auto [at, is_new] = models.try_emplace(pin.model_name);
        PinModel& model = at->second;
        if (is_new) model.kind = resolveModelName(run, *root, pin.model_name);
        if (pin.model_reported || model.reported_for == &component) continue;
        if (reportPin(run.diagnostics, component, pin, model.kind)) model.reported_for = &component;
    }
}

} // namespace kestrel

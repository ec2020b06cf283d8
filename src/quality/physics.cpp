#include "quality/physics.hpp"

#include <algorithm>

namespace kestrel {

namespace {

/// A finite number, else nothing.
GivenValue givenNumber(const Cell& cell) {
    return cell.isNumber() && std::isfinite(cell.value()) ? GivenValue(cell.value()) : GivenValue();
}
GivenValue givenNumber(GivenValue value) { return value && std::isfinite(*value) ? value : GivenValue(); }

/// What the keyword gives in the corner; `otherwise` only where the keyword is not there.
GivenValue referenceOf(const Mdl& model, MdlRange keyword, Corner corner, GivenValue otherwise) {
    const Rng* const range = findRange(model, keyword);
    return range == nullptr ? otherwise : givenNumber((*range)[corner]);
}

/// The typical value of "[Model Spec]", else the model's.
GivenValue typicalOf(const Mdl& model, GivenRange MSpec::*in_spec, GivenValue own) {
    if (model.model_spec) {
        const GivenRange& range = (*model.model_spec).*in_spec;
        if (range && range->typ().isNumber()) return givenNumber(range->typ());
    }
    return givenNumber(own);
}

GivenValue withoutZero(GivenValue value) { return value && *value == 0.0 ? GivenValue() : value; }
GivenValue aboveZero(GivenValue value) { return value && *value > 0.0 ? value : GivenValue(); }

} // namespace

References referencesOf(const Mdl& model, Corner corner) {
    References found;
    const GivenValue range = referenceOf(model, MdlRange::voltageRange, corner, {});
    found.pullup = referenceOf(model, MdlRange::pullupReference, corner, range);
    found.pulldown = referenceOf(model, MdlRange::pulldownReference, corner, 0.0);
    found.power_clamp = referenceOf(model, MdlRange::powerClampReference, corner, range);
    found.gnd_clamp = referenceOf(model, MdlRange::gndClampReference, corner, 0.0);
    if (!found.pullup && !kTableDrivers.has(model.type())) {
        found.pullup = found.power_clamp;
        found.pulldown = found.gnd_clamp;
    }
    constexpr double kLeast = 1e-12; // a supply that is smaller is none, and nothing can be divided by it
    if (found.pullup && found.pulldown) found.vcc = givenNumber(*found.pullup - *found.pulldown);
    if (found.vcc && !(*found.vcc > kLeast)) found.vcc = GivenValue();
    return found;
}

TypicalValues typicalValuesOf(const Mdl& model) {
    const MdlValues& own = *model.values;
    return {
        .vinl = typicalOf(model, &MSpec::vinl, own.vinl),
        .vinh = withoutZero(typicalOf(model, &MSpec::vinh, own.vinh)),
        .vmeas = withoutZero(typicalOf(model, &MSpec::vmeas, own.vmeas)),
        .rref = aboveZero(typicalOf(model, &MSpec::rref, own.rref)),
        .vref = typicalOf(model, &MSpec::vref, own.vref),
    };
}

std::string_view tableKeyword(TableKind kind) {
    constexpr std::array<std::string_view, kTableKinds> kKeywords{"[Pulldown]", "[Pullup]", "[GND Clamp]",
                                                                  "[POWER Clamp]"};
    return kKeywords[static_cast<std::size_t>(kind)];
}

const Crv& tableOf(const Mdl& model, TableKind kind) {
    const MdlTables& tables = *model.tables;
    switch (kind) {
    case TableKind::pulldown: return tables.pulldown;
    case TableKind::pullup: return tables.pullup;
    case TableKind::gndClamp: return tables.gnd_clamp;
    case TableKind::powerClamp: break;
    }
    return tables.power_clamp;
}

std::string_view cornerWord(Corner corner) {
    constexpr std::array<std::string_view, kCornerCount> kWords{"typ", "min", "max"};
    return kWords[placeOf(corner)];
}

std::string_view stateWord(DriveState state) {
    constexpr std::array<std::string_view, kDriveStates> kWords{"low", "high", "off"};
    return kWords[static_cast<std::size_t>(state)];
}

double StateCurrent::at(double pin) const {
    double current = conductance_ * pin + offset_;
    for (std::size_t i = 0; i < count_; ++i)
        current += tables_[i].table->at(tables_[i].tableVoltage(pin));
    return current;
}

std::size_t StateCurrent::firstAbove(std::size_t table, double pin) const {
    const TableAtPin& at_pin = tables_[table];
    const std::size_t size = at_pin.table->points().size();
    const std::size_t piece = at_pin.table->pieceOf(at_pin.tableVoltage(pin), 0, size);
    std::size_t row = at_pin.downward ? size - piece : piece;
    while (row < size && breakAt(table, row, pin) <= pin) // a row at the voltage itself, or a rounding off it
        ++row;
    return row;
}

std::optional<double> StateCurrent::solve(double low, double high, const DcLoad* load) const {
    constexpr int kHalvings = 100;
    double conductance = conductance_;
    double offset = offset_;
    if (load != nullptr) {
        conductance += 1.0 / load->resistance;
        offset -= load->voltage / load->resistance;
    }
    // Of each table the pieces that the range still touches, so that the look-ups of all halvings cost as much as one.
    std::array<std::size_t, kMost> from{};
    std::array<std::size_t, kMost> to{};
    std::array<std::size_t, kMost> piece{};
    for (std::size_t i = 0; i < count_; ++i)
        to[i] = tables_[i].table->points().size();
    const auto current_at = [&](double pin) {
        double current = conductance * pin + offset;
        for (std::size_t i = 0; i < count_; ++i) {
            const double voltage = tables_[i].tableVoltage(pin);
            piece[i] = tables_[i].table->pieceOf(voltage, from[i], to[i]);
            current += tables_[i].table->currentIn(piece[i], voltage);
        }
        return current;
    };
    // What holds for the lower end is a lower bound of the pieces, unless the table runs downward at the pin.
    const auto keep = [&](bool is_low_end) {
        for (std::size_t i = 0; i < count_; ++i)
            (is_low_end != tables_[i].downward ? from : to)[i] = piece[i];
    };
    double low_current = current_at(low);
    keep(true);
    double high_current = current_at(high);
    keep(false);
    const bool changes = low_current <= 0.0 && high_current > 0.0;
    if (!changes || !std::isfinite(low_current) || !std::isfinite(high_current)) return std::nullopt;
    for (int i = 0; i < kHalvings; ++i) {
        if (std::equal(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count_), to.begin())) {
            // One straight line from here on: where it goes through zero needs no halving.
            return low + (high - low) * (-low_current / (high_current - low_current));
        }
        const double middle = low + (high - low) / 2.0;
        const double current = current_at(middle);
        const bool above = current > 0.0;
        (above ? high : low) = middle;
        (above ? high_current : low_current) = current;
        keep(!above);
    }
    return low + (high - low) / 2.0;
}

ModelPhysics::ModelPhysics(const Mdl& model, std::vector<Point>& room) : is_driver_(kTableDrivers.has(model.type())) {
    room.clear();
    std::size_t rows = 0;
    for (const TableKind kind : kAllTables)
        rows += tableOf(model, kind).rows.size();
    room.reserve(rows * kCornerCount); // so that it does not move
    for (const TableKind kind : kAllTables) {
        const bool is_clamp = kind == TableKind::gndClamp || kind == TableKind::powerClamp;
        for (const Corner corner : kCorners)
            tables_[static_cast<std::size_t>(kind)][corner] =
                IvTable(orderedPoints(tableOf(model, kind).rows, corner, EqualRows::keepLast, room),
                        is_clamp ? AboveTable::lastCurrent : AboveTable::lastSlope);
    }
    for (const Corner corner : kCorners) {
        references_[corner] = referencesOf(model, corner);
        makeStates(model, corner);
    }
    drives_low_ = is_driver_ && !kOpenHighTypes.has(model.type()) && carriesSomething(TableKind::pulldown);
    drives_high_ = is_driver_ && !kOpenLowTypes.has(model.type()) && carriesSomething(TableKind::pullup);
}

std::optional<TableAtPin> ModelPhysics::atPin(TableKind kind, Corner corner) const {
    const References& given = references_[corner];
    const std::array<GivenValue, kTableKinds> references{given.pulldown, given.pullup, given.gnd_clamp,
                                                         given.power_clamp};
    const GivenValue reference = references[static_cast<std::size_t>(kind)];
    const IvTable& found = table(kind, corner);
    if (!reference || !found.hasData()) return std::nullopt;
    return TableAtPin{&found, *reference, kind == TableKind::pullup || kind == TableKind::powerClamp};
}

void ModelPhysics::makeStates(const Mdl& model, Corner corner) {
    // A table or resistor that is not there adds nothing; one without data leaves no total.
    const auto add_table = [&](std::optional<StateCurrent>& state, TableKind kind) {
        if (!tableOf(model, kind).given || !state) return;
        const std::optional<TableAtPin> at_pin = atPin(kind, corner);
        if (at_pin) {
            state->add(*at_pin);
        } else {
            state.reset();
        }
    };
    const auto add_terminator = [&](std::optional<StateCurrent>& state, MdlRange which, GivenValue reference) {
        const Rng* const range = findRange(model, which);
        if (range == nullptr || !state) return;
        const GivenValue resistance = aboveZero(givenNumber((*range)[corner]));
        if (resistance && reference) {
            state->add(DcLoad{*resistance, *reference});
        } else {
            state.reset();
        }
    };
    std::optional<StateCurrent> off(std::in_place);
    add_table(off, TableKind::gndClamp);
    add_table(off, TableKind::powerClamp);
    add_terminator(off, MdlRange::rgnd, references_[corner].gnd_clamp);
    add_terminator(off, MdlRange::rpower, references_[corner].power_clamp);
    std::optional<StateCurrent> low = off;
    std::optional<StateCurrent> high = off;
    if (!kOpenHighTypes.has(model.type())) add_table(low, TableKind::pulldown);
    if (!kOpenLowTypes.has(model.type())) add_table(high, TableKind::pullup);
    states_[static_cast<std::size_t>(DriveState::low)][corner] = low;
    states_[static_cast<std::size_t>(DriveState::high)][corner] = high;
    states_[static_cast<std::size_t>(DriveState::off)][corner] = off;
}

std::optional<double> ModelPhysics::solve(DriveState state, Corner corner, const DcLoad* load) const {
    const StateCurrent* const total = current(state, corner);
    const References& given = references_[corner];
    if (total == nullptr || !given.vcc) return std::nullopt;
    double lowest = load != nullptr ? load->voltage : *given.pullup;
    double highest = lowest;
    for (const GivenValue reference : {given.pullup, given.pulldown, given.power_clamp, given.gnd_clamp}) {
        if (!reference) continue;
        lowest = std::fmin(lowest, *reference);
        highest = std::fmax(highest, *reference);
    }
    return total->solve(lowest - *given.vcc, highest + *given.vcc, load);
}

std::optional<double> ModelPhysics::level(DriveState state, Corner corner, const DcLoad& load) const {
    return solve(state, corner, &load);
}

std::optional<double> ModelPhysics::levelWithoutLoad(DriveState state, Corner corner) const {
    return solve(state, corner, nullptr);
}

bool ModelPhysics::carriesSomething(TableKind driver) const {
    const IvTable& found = table(driver);
    return found.hasData() && vcc() && found.largestBetween(0.0, *vcc()) >= kNoCurrent;
}

bool ModelPhysics::isAtRail(DriveState state) const {
    constexpr double kNear = 0.2; // of Vcc
    const std::optional<double> found = levelWithoutLoad(state);
    if (!found) return false;
    const double rail = state == DriveState::low ? *references().pulldown : *references().pullup;
    return std::fabs(*found - rail) <= kNear * *vcc();
}

GivenValue ModelPhysics::farRail(Edge edge, Corner corner) const {
    const References& given = references_[corner];
    const bool to_pullup = isPushPull() || drives_low_ == drives_high_ ? edge == Edge::falling : drives_low_;
    return to_pullup ? given.pullup : given.pulldown;
}

} // namespace kestrel

#include "quality/physics.hpp"

#include <algorithm>
#include <limits>

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

const Crv& tableOf(const Mdl& model, TableKind kind) { return tableOf(*model.tables, kind); }

const Crv& tableOf(const Tables& tables, TableKind kind) {
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

bool StateCurrent::neverFalls() const {
    return conductance_ >= 0.0 && std::all_of(tables_.begin(), tables_.begin() + static_cast<std::ptrdiff_t>(count_),
                                              [](const TableAtPin& at) {
                                                  return at.downward ? at.table->neverRises() : at.table->neverFalls();
                                              });
}

namespace {

/// The pin's voltage at which the piece of this number ends.
double endOfPiece(const TableAtPin& table, std::size_t number) {
    const std::span<const Point> points = table.table->points();
    const bool is_last = number == (table.downward ? 0 : points.size());
    if (is_last) return std::numeric_limits<double>::infinity();
    return table.pinVoltage(points[table.downward ? number - 1 : number].x);
}

} // namespace

void StateCurrent::advance(const TableAtPin& table, Cursor& cursor, double pin) {
    while (cursor.next <= pin) {
        cursor.number = table.downward ? cursor.number - 1 : cursor.number + 1;
        cursor.next = endOfPiece(table, cursor.number);
    }
    cursor.piece = table.table->piece(cursor.number);
}

StateCurrent::Cursor StateCurrent::cursorAt(const TableAtPin& table, double pin) {
    const std::size_t size = table.table->points().size();
    Cursor cursor;
    cursor.number = table.table->pieceOf(table.tableVoltage(pin), 0, size);
    cursor.next = endOfPiece(table, cursor.number);
    advance(table, cursor, pin); // a row at the voltage itself, or off it by a rounding
    return cursor;
}

std::optional<double> StateCurrent::solve(double low, double high, const DcLoad* load) const {
    constexpr int kHalvings = 100;
    double conductance = conductance_;
    double offset = offset_;
    if (load != nullptr) {
        conductance += 1.0 / load->resistance;
        offset -= load->voltage / load->resistance;
    }
    // With a load a current that never falls rises everywhere and has one zero: where the line through the present
    // place leads is a better guess than the middle, and the zero itself when that place is of the same line.
    const bool rises = load != nullptr && neverFalls();
    // Of each table the pieces that the range still touches, so that the look-ups of all halvings cost as much as one.
    std::array<std::size_t, kMost> from{};
    std::array<std::size_t, kMost> to{};
    std::array<std::size_t, kMost> piece{};
    for (std::size_t i = 0; i < count_; ++i)
        to[i] = tables_[i].table->points().size();
    double slope = 0.0; // of the line at the last place
    const auto current_at = [&](double pin) {
        double current = conductance * pin + offset;
        slope = conductance;
        for (std::size_t i = 0; i < count_; ++i) {
            const TableAtPin& table = tables_[i];
            const double voltage = table.tableVoltage(pin);
            piece[i] = table.table->pieceOf(voltage, from[i], to[i]);
            const IvTable::Piece line = table.table->piece(piece[i]);
            current += line.at(voltage);
            slope += table.downward ? -line.slope : line.slope;
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
    double guess = high; // outside of the range as long as there is none
    for (int i = 0; i < kHalvings; ++i) {
        if (std::equal(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count_), to.begin())) {
            // One straight line from here on: where it goes through zero needs no halving.
            const double found = low + (high - low) * (-low_current / (high_current - low_current));
            return low <= found && found <= high ? std::optional(found) : std::nullopt; // numbers may overflow
        }
        const bool is_guessed = low < guess && guess < high;
        const double place = is_guessed ? guess : low + (high - low) / 2.0;
        const std::array<std::size_t, kMost> before = piece;
        const double current = current_at(place);
        if (is_guessed && piece == before) return place;
        const bool above = current > 0.0;
        (above ? high : low) = place;
        (above ? high_current : low_current) = current;
        keep(!above);
        constexpr int kGuesses = 3; // in a row, so that the range is halved now and then whatever the guesses are worth
        guess = rises && i % (kGuesses + 1) != kGuesses ? place - current / slope : high;
    }
    return low + (high - low) / 2.0;
}

ModelPhysics::ModelPhysics(const Mdl& model, PointRoom& room) : is_driver_(kTableDrivers.has(model.type())) {
    std::size_t rows = 0;
    for (const TableKind kind : kAllTables)
        rows += tableOf(model, kind).rows.size();
    room.empty(rows * kCornerCount);
    for (const TableKind kind : kAllTables) {
        const bool is_clamp = kind == TableKind::gndClamp || kind == TableKind::powerClamp;
        const AboveTable above = is_clamp ? AboveTable::lastCurrent : AboveTable::lastSlope;
        const auto points = orderedCorners(tableOf(model, kind).rows, EqualRows::keepLast, room);
        for (const Corner corner : kCorners)
            tables_[static_cast<std::size_t>(kind)][corner] = IvTable(points[corner], above);
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
    return findLevel(state, corner, load);
}

std::optional<double> ModelPhysics::levelWithoutLoad(DriveState state, Corner corner) const {
    return findLevel(state, corner, std::nullopt);
}

std::optional<double> ModelPhysics::findLevel(DriveState state, Corner corner,
                                              const std::optional<DcLoad>& load) const {
    constexpr std::size_t kMost = 48; // what is looked through must not grow with a file's waveforms
    const auto known = std::ranges::find_if(known_levels_, [&](const KnownLevel& one) {
        return one.state == state && one.corner == corner && one.load == load;
    });
    if (known != known_levels_.end()) return known->level;
    const std::optional<double> level = solve(state, corner, load ? &*load : nullptr);
    if (known_levels_.size() < kMost) known_levels_.push_back({state, corner, load, level});
    return level;
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

#pragma once

#include "model/mdl.hpp"
#include "quality/iv_table.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

/// What the records of a model mean in volts and amperes at its pin: references, currents of its states, levels into a
/// load. Volts, amperes, ohms; currents flow into the pin. What the file does not give is not there.
namespace kestrel {

/// A current below this is none, in amperes.
inline constexpr double kNoCurrent = 10e-6;

/// Types that drive from their tables: all drivers but the ECL ones.
inline constexpr ModelTypeSet kTableDrivers{ModelType::output,     ModelType::io,          ModelType::threeState,
                                            ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                            ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                            ModelType::outputDiff, ModelType::ioDiff,      ModelType::threeStateDiff};

/// Types that pull down only, and those that pull up only.
inline constexpr ModelTypeSet kOpenLowTypes{ModelType::openDrain, ModelType::ioOpenDrain, ModelType::openSink,
                                            ModelType::ioOpenSink};
inline constexpr ModelTypeSet kOpenHighTypes{ModelType::openSource, ModelType::ioOpenSource};

/// The voltages from which the tables of a corner count.
struct References {
    GivenValue pullup;
    GivenValue pulldown;
    GivenValue power_clamp;
    GivenValue gnd_clamp;
    GivenValue vcc; ///< from pulldown to pullup; given where that is above 0
};

/// The references of a corner. "[Voltage Range]" and 0 stand in for keywords that are not there.
[[nodiscard]] References referencesOf(const Mdl& model, Corner corner);

/// Typical thresholds and timing load, those of "[Model Spec]" ahead of the model's. What could not be read, which
/// leaves a 0, is not given.
struct TypicalValues {
    GivenValue vinl;
    GivenValue vinh;
    GivenValue vmeas;
    GivenValue rref;
    GivenValue vref;
};
[[nodiscard]] TypicalValues typicalValuesOf(const Mdl& model);

/// The I-V tables of a model.
enum class TableKind : std::uint8_t { pulldown, pullup, gndClamp, powerClamp };
inline constexpr std::size_t kTableKinds = 4;
inline constexpr std::array<TableKind, kTableKinds> kAllTables{TableKind::pulldown, TableKind::pullup,
                                                               TableKind::gndClamp, TableKind::powerClamp};

/// A table's keyword as files write it, "[Pulldown]".
[[nodiscard]] std::string_view tableKeyword(TableKind kind);
/// The record of a table.
[[nodiscard]] const Crv& tableOf(const Tables& tables, TableKind kind);
[[nodiscard]] const Crv& tableOf(const Mdl& model, TableKind kind);

/// "typ", "min" and "max".
[[nodiscard]] std::string_view cornerWord(Corner corner);

/// What a model does.
enum class DriveState : std::uint8_t { low, high, off };
inline constexpr std::size_t kDriveStates = 3;
/// "low", "high" and "off".
[[nodiscard]] std::string_view stateWord(DriveState state);

/// A load at the pin: a resistor (ohms, above 0) to a voltage.
struct DcLoad {
    double resistance;
    double voltage;

    bool operator==(const DcLoad& other) const = default;
};

/// A line of a table at the pin: its voltage counts up or down from a reference.
struct TableAtPin {
    const IvTable* table = nullptr;
    double reference = 0.0;
    bool downward = false; ///< the table's voltage is the reference minus the pin's

    [[nodiscard]] double tableVoltage(double pin) const { return downward ? reference - pin : pin - reference; }
    [[nodiscard]] double pinVoltage(double table_voltage) const {
        return downward ? reference - table_voltage : reference + table_voltage;
    }
};

/// The total current of a state in a corner: up to three tables and the terminators.
class StateCurrent {
public:
    void add(const TableAtPin& table) { tables_[count_++] = table; }
    /// A resistor (ohms, not 0) to a voltage.
    void add(const DcLoad& resistor) {
        conductance_ += 1.0 / resistor.resistance;
        offset_ -= resistor.voltage / resistor.resistance;
    }

    [[nodiscard]] double at(double pin) const;
    /// None of its parts falls as the pin's voltage rises, so that it does not either.
    [[nodiscard]] bool neverFalls() const;
    /// Where the current, together with that of the load, is zero between two voltages, by halving the range; nothing
    /// where it is not below or at zero at the lower end and above at the upper one.
    [[nodiscard]] std::optional<double> solve(double low, double high, const DcLoad* load) const;

    /// Calls `visit` with the pin's voltage and the current at `low`, at every row between, and at `high`, in ascending
    /// order.
    template <class Visit> void sweep(double low, double high, Visit visit) const {
        std::array<Cursor, kMost> cursors;
        for (std::size_t i = 0; i < count_; ++i)
            cursors[i] = cursorAt(tables_[i], low);
        visit(low, at(low));
        for (;;) {
            double pin = high;
            for (std::size_t i = 0; i < count_; ++i)
                if (cursors[i].next < pin) pin = cursors[i].next;
            if (!(pin < high)) break;
            double current = conductance_ * pin + offset_;
            for (std::size_t i = 0; i < count_; ++i) {
                if (cursors[i].next <= pin) advance(tables_[i], cursors[i], pin);
                current += cursors[i].piece.at(tables_[i].tableVoltage(pin));
            }
            visit(pin, current);
        }
        visit(high, at(high));
    }

private:
    static constexpr std::size_t kMost = 3;

    /// A place in a table that goes up with the pin's voltage.
    struct Cursor {
        std::size_t number = 0; ///< of the piece of the table
        IvTable::Piece piece{};
        double next = 0.0; ///< the pin's voltage at which the next piece begins; infinite behind the last
    };
    [[nodiscard]] static Cursor cursorAt(const TableAtPin& table, double pin);
    static void advance(const TableAtPin& table, Cursor& cursor, double pin);

    std::array<TableAtPin, kMost> tables_{};
    std::size_t count_ = 0;
    double conductance_ = 0.0; // of the terminators, siemens
    double offset_ = 0.0;      // their current at 0 V
};

/// The edges that a driver makes.
enum class Edge : std::uint8_t { rising, falling };
inline constexpr std::array<Edge, 2> kEdges{Edge::rising, Edge::falling};

/// A model's references, tables and states in all corners.
class ModelPhysics {
public:
    /// The points of the tables are kept in `room`, whose content is thrown away.
    ModelPhysics(const Mdl& model, PointRoom& room);
    ModelPhysics(const ModelPhysics&) = delete;
    ModelPhysics& operator=(const ModelPhysics&) = delete;
    ~ModelPhysics() = default;

    [[nodiscard]] const References& references(Corner corner = Corner::typ) const { return references_[corner]; }
    [[nodiscard]] const GivenValue& vcc(Corner corner = Corner::typ) const { return references_[corner].vcc; }

    /// A table of a corner; without data where the keyword is missing.
    [[nodiscard]] const IvTable& table(TableKind kind, Corner corner = Corner::typ) const {
        return tables_[static_cast<std::size_t>(kind)][corner];
    }

    /// A table where it stands at the pin; nothing without its data or its reference.
    [[nodiscard]] std::optional<TableAtPin> atPin(TableKind kind, Corner corner) const;

    /// The total current of a state; null where something that belongs to it has no data.
    [[nodiscard]] const StateCurrent* current(DriveState state, Corner corner = Corner::typ) const {
        const std::optional<StateCurrent>& found = states_[static_cast<std::size_t>(state)][corner];
        return found ? &*found : nullptr;
    }

    /// The level of a state into a load, or without one, in a corner. Waveforms and ramps mostly go to the same few
    /// loads: each level is found once.
    [[nodiscard]] std::optional<double> level(DriveState state, Corner corner, const DcLoad& load) const;
    [[nodiscard]] std::optional<double> levelWithoutLoad(DriveState state, Corner corner = Corner::typ) const;

    /// The largest typical current of a pulldown or pullup between 0 and Vcc is not nothing.
    [[nodiscard]] bool carriesSomething(TableKind driver) const;
    /// It does, and the type lets the model drive that way.
    [[nodiscard]] bool drivesLow() const { return drives_low_; }
    [[nodiscard]] bool drivesHigh() const { return drives_high_; }
    [[nodiscard]] bool isPushPull() const { return drives_low_ && drives_high_; }
    [[nodiscard]] bool isDriver() const { return is_driver_; }

    /// The typical level of the low or high state without load lies near its own reference.
    [[nodiscard]] bool isAtRail(DriveState state) const;

    /// The supply to which the load of an edge goes, so that there is something to switch.
    [[nodiscard]] GivenValue farRail(Edge edge, Corner corner = Corner::typ) const;

private:
    struct KnownLevel {
        DriveState state;
        Corner corner;
        std::optional<DcLoad> load;
        std::optional<double> level;
    };

    [[nodiscard]] std::optional<double> findLevel(DriveState state, Corner corner,
                                                  const std::optional<DcLoad>& load) const;
    [[nodiscard]] std::optional<double> solve(DriveState state, Corner corner, const DcLoad* load) const;
    void makeStates(const Mdl& model, Corner corner);

    PerCorner<References> references_;
    std::array<PerCorner<IvTable>, kTableKinds> tables_;
    std::array<PerCorner<std::optional<StateCurrent>>, kDriveStates> states_;
    mutable std::vector<KnownLevel> known_levels_;
    bool is_driver_;
    bool drives_low_ = false;
    bool drives_high_ = false;
};

} // namespace kestrel

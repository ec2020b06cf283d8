#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#if defined(__GNUC__)
#define KESTREL_API __attribute__((visibility("default")))
#else
#define KESTREL_API
#endif

/// libkestrel: checks IBIS files and gives what is in them.
///
/// `read()` and `readText()` check a file and return a `File`: its findings, and its records to walk. The library
/// prints nothing, ends no process and keeps nothing between calls; calls may be made from several threads at once, and
/// one `File` may be read by several.
///
/// What a `File` hands out - texts, spans, lists and the records that hold them - refers to memory that belongs to it
/// and holds as long as the `File` or a copy of it lives. Copies of a `File` share what was read.
///
/// Values are in volts, amperes, ohms, henries, farads, seconds and degrees Celsius. A value that the file does not
/// give, or gives as "NA", is a NaN; one beyond the range of a double is infinite.
namespace kestrel::api {

/// The version of the library, such as "1.0.3".
[[nodiscard]] KESTREL_API std::string_view version() noexcept;

/// The value of what is not given: a NaN.
inline constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();

/// The class of a finding. Bugs and errors fail a file.
enum class Level : std::uint8_t { bug, error, warning, note, advice, caution };

/// The name of a class, such as "error".
[[nodiscard]] KESTREL_API std::string_view levelName(Level level) noexcept;

/// One finding of a check.
struct Finding {
    Level level = Level::error;
    std::string_view code;    ///< such as "905" or, of advice, "Q201"; empty for a text without one
    std::string_view file;    ///< the path of the file where its line is, which may be a companion
    std::uint32_t line = 1;   ///< counted from 1
    bool exact = false;       ///< the finding is about this line; otherwise its record begins there
    std::string_view kind;    ///< of the record that it is about, such as "model"; empty when it is about none
    std::string_view subject; ///< the name of that record
    std::string_view text;    ///< the message, without class and line
};

/// Findings by class.
struct Counts {
    std::size_t bugs = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
    std::size_t advice = 0;
    std::size_t cautions = 0;
};

/// Typical, minimum and maximum of one quantity.
struct Corners {
    double typ = kNotGiven;
    double min = kNotGiven;
    double max = kNotGiven;

    /// True when the file gives a number for one of them.
    [[nodiscard]] bool given() const noexcept { return typ == typ || min == min || max == max; }
};

/// Where the records of a List come from, as the library wants it.
struct ListSource {
    const void* records = nullptr;
    const void* owner = nullptr;
    std::size_t number = 0;
};

/// A sequence of records that are made as they are looked at. It is a view: small, copied at will.
template <class Record> class List {
public:
    using Make = Record (*)(const ListSource& source, std::size_t place);

    List() = default;
    /// Made by the library.
    List(const ListSource& source, std::size_t size, Make make) : source_(source), size_(size), make_(make) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    /// The record at a place, which must be below the size.
    [[nodiscard]] Record operator[](std::size_t place) const { return make_(source_, place); }

    class Iterator {
    public:
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::input_iterator_tag;
        using value_type = Record;
        using difference_type = std::ptrdiff_t;
        using reference = Record;
        using pointer = void;

        Iterator() = default;
        Iterator(const List& list, std::size_t place) : list_(list), place_(place) {}

        [[nodiscard]] Record operator*() const { return list_[place_]; }
        Iterator& operator++() {
            ++place_;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++place_;
            return before;
        }
        [[nodiscard]] bool operator==(const Iterator& other) const { return place_ == other.place_; }

    private:
        List list_;
        std::size_t place_ = 0;
    };

    [[nodiscard]] Iterator begin() const { return {*this, 0}; }
    [[nodiscard]] Iterator end() const { return {*this, size_}; }

private:
    ListSource source_;
    std::size_t size_ = 0;
    Make make_ = nullptr;
};

/// A table of four columns in the order of the file: of an I-V table volts, then typical, minimum and maximum amperes;
/// of a waveform seconds, then volts; of a composite current seconds, then amperes.
class Table {
public:
    static constexpr std::size_t kColumns = 4;

    Table() = default;
    explicit Table(std::span<const double> values) : values_(values) {}

    [[nodiscard]] std::size_t size() const noexcept { return values_.size() / kColumns; }
    [[nodiscard]] bool empty() const noexcept { return values_.empty(); }
    /// A row, whose place must be below the size.
    [[nodiscard]] std::span<const double, kColumns> operator[](std::size_t place) const {
        return values_.subspan(place * kColumns).first<kColumns>();
    }
    /// All values, row by row.
    [[nodiscard]] std::span<const double> values() const noexcept { return values_; }

private:
    std::span<const double> values_;
};

/// "[Ramp]": voltage steps and the times that they take.
struct Ramp {
    Corners dv_r; ///< of the rising edge
    Corners dt_r;
    Corners dv_f; ///< of the falling edge
    Corners dt_f;
    double r_load = kNotGiven;
};

/// A waveform with its test fixture.
struct Waveform {
    double r_fixture = kNotGiven;
    double v_fixture = kNotGiven;
    double v_fixture_min = kNotGiven;
    double v_fixture_max = kNotGiven;
    double c_fixture = kNotGiven;
    double l_fixture = kNotGiven;
    double r_dut = kNotGiven;
    double l_dut = kNotGiven;
    double c_dut = kNotGiven;
    Table table;
    Table composite_current; ///< empty where the file gives none
};

/// A value, and a range of values, with the name that the format has for it, such as "Vinh+".
struct NamedValue {
    std::string_view name;
    double value = kNotGiven;
};
struct NamedCorners {
    std::string_view name;
    Corners corners;
};

/// A submodel that a model adds.
struct AddedSubmodel {
    std::string_view name;
    std::string_view mode; ///< "Driving", "Non-Driving" or "All"; empty when the file names none of them
};

/// A line of "[Driver Schedule]".
struct ScheduledDriver {
    std::string_view model;
    double rise_on = kNotGiven;
    double rise_off = kNotGiven;
    double fall_on = kNotGiven;
    double fall_off = kNotGiven;
};

/// The executable of an algorithmic model.
struct Executable {
    std::string_view platform;
    std::string_view file;
    std::string_view parameter_file;
};

/// "[Model]".
struct Model {
    std::string_view name;
    std::uint32_t line = 0;    ///< at which it begins
    std::string_view type;     ///< as the format spells it, such as "I/O_open_drain"; empty when it is not given
    std::string_view polarity; ///< "Inverting" or "Non-Inverting"; empty when it is not given
    std::string_view enable;   ///< "Active-High" or "Active-Low"; empty when it is not given

    double vinl = kNotGiven;
    double vinh = kNotGiven;
    double vmeas = kNotGiven;
    double cref = kNotGiven;
    double rref = kNotGiven;
    double vref = kNotGiven;
    double cref_diff = kNotGiven;
    double rref_diff = kNotGiven;

    Corners c_comp;
    Corners c_comp_pullup;
    Corners c_comp_pulldown;
    Corners c_comp_power_clamp;
    Corners c_comp_gnd_clamp;
    Corners temperature_range;
    Corners voltage_range;
    Corners pullup_reference;
    Corners pulldown_reference;
    Corners power_clamp_reference;
    Corners gnd_clamp_reference;
    Corners external_reference;
    Corners ttgnd;
    Corners ttpower;
    Corners rgnd;
    Corners rpower;
    Corners rac;
    Corners cac;

    Table pulldown;
    Table pullup;
    Table gnd_clamp;
    Table power_clamp;
    Table isso_pu;
    Table isso_pd;
    Ramp ramp;
    List<Waveform> rising_waveforms;
    List<Waveform> falling_waveforms;

    List<NamedCorners> model_spec;         ///< what "[Model Spec]" gives
    List<NamedValue> receiver_thresholds;  ///< what "[Receiver Thresholds]" gives
    std::string_view reference_supply;     ///< of these, such as "Power_clamp_ref"
    List<AddedSubmodel> submodels;         ///< "[Add Submodel]"
    List<ScheduledDriver> driver_schedule; ///< "[Driver Schedule]"
    List<Executable> executables;          ///< of an algorithmic model
    bool has_external_model = false;
};

/// "[Submodel]".
struct Submodel {
    std::string_view name;
    std::uint32_t line = 0;
    std::string_view type; ///< such as "Dynamic_clamp"; empty when it is not given
    Table pulldown;
    Table pullup;
    Table gnd_clamp;
    Table power_clamp;
    Ramp ramp;
    List<Waveform> rising_waveforms;
    List<Waveform> falling_waveforms;
    Table gnd_pulse;   ///< seconds, then volts
    Table power_pulse; ///< seconds, then volts
};

/// An entry of a model selector.
struct SelectorEntry {
    std::string_view model;
    std::string_view description;
};

/// "[Model Selector]".
struct Selector {
    std::string_view name;
    std::uint32_t line = 0;
    List<SelectorEntry> entries; ///< the first is the default
};

/// A row of "[Pin]".
struct Pin {
    std::string_view name;
    std::string_view signal;
    std::string_view model; ///< of a model or selector, or "POWER", "GND", "NC", "CIRCUITCALL"
    double r_pin = kNotGiven;
    double l_pin = kNotGiven;
    double c_pin = kNotGiven;
};

/// A row of "[Pin Mapping]": the buses that a pin is connected to, "NC" for none, empty for a column that is not there.
struct PinMapping {
    std::string_view pin;
    std::string_view pulldown_ref;
    std::string_view pullup_ref;
    std::string_view gnd_clamp_ref;
    std::string_view power_clamp_ref;
    std::string_view ext_ref;
};

/// A row of "[Diff Pin]".
struct DiffPin {
    std::string_view pin; ///< the non-inverting one
    std::string_view inv_pin;
    double vdiff = kNotGiven;
    Corners tdelay;
};

/// A row of "[Series Pin Mapping]".
struct SeriesPin {
    std::string_view pin_1;
    std::string_view pin_2;
    std::string_view model;
    std::string_view group; ///< of switches; empty without one
};

/// "[Component]".
struct Component {
    std::string_view name;
    std::uint32_t line = 0;
    std::string_view manufacturer;
    std::string_view package_model;   ///< empty without "[Package Model]"
    std::string_view si_location;     ///< "Pin" or "Die"; empty when it is not given
    std::string_view timing_location; ///< likewise
    Corners r_pkg;
    Corners l_pkg;
    Corners c_pkg;
    List<Pin> pins;
    List<PinMapping> pin_mapping;
    List<DiffPin> diff_pins;
    List<SeriesPin> series_pins;
    List<std::string_view> alternate_package_models;
};

/// An entry of a matrix, by the place of its column among the pins of the package model, counted from 0.
struct MatrixEntry {
    std::size_t column = 0;
    double value = 0.0;
};

/// A row of a matrix.
struct MatrixRow {
    std::string_view pin;
    List<MatrixEntry> entries; ///< those that the file gives, in its order
};

/// A matrix of a package model, of which a file gives one half: what couples pin a to pin b couples b to a.
struct Matrix {
    std::string_view kind; ///< "Banded_matrix", "Sparse_matrix" or "Full_matrix"; empty for an unknown one
    std::size_t order = 0; ///< number of pins
    List<MatrixRow> rows;
};

/// "[Define Package Model]". Its sections, where it has such in place of matrices, are not given.
struct PackageModel {
    std::string_view name;
    std::string_view file; ///< the path of the file that it is in, which may be a companion
    std::uint32_t line = 0;
    std::string_view manufacturer;
    std::string_view oem;
    std::string_view description;
    List<std::string_view> pins;
    Matrix resistance; ///< of order 0 where the file gives none
    Matrix inductance;
    Matrix capacitance;
};

/// The header of a file. What it does not give is empty.
struct Header {
    std::string_view ibis_version;
    std::string_view file_name;
    std::string_view file_rev;
    std::string_view date;
    std::string_view source;
    std::string_view notes;
    std::string_view disclaimer;
    std::string_view copyright;
};

struct ReadFile;

/// A file that was checked, with everything that was found and read.
class KESTREL_API File {
public:
    /// The name as it was given.
    [[nodiscard]] std::string_view name() const noexcept;
    /// False when there is no such file or it holds nothing; a finding says so.
    [[nodiscard]] bool isRead() const noexcept;
    /// False when the file was refused ahead of its checks: it is not read, or its version is not known.
    [[nodiscard]] bool isChecked() const noexcept;
    /// True when it was checked and has neither errors nor bugs.
    [[nodiscard]] bool hasPassed() const noexcept;

    /// All findings in the order in which they were made; advice comes last.
    [[nodiscard]] std::span<const Finding> findings() const noexcept;
    [[nodiscard]] Counts counts() const noexcept;

    [[nodiscard]] Header header() const noexcept;

    // The records in the order of the file, as far as they could be read.
    [[nodiscard]] List<Component> components() const noexcept;
    [[nodiscard]] List<Model> models() const noexcept;
    [[nodiscard]] List<Submodel> submodels() const noexcept;
    [[nodiscard]] List<Selector> selectors() const noexcept;
    /// Those of the companions that the components led to come along.
    [[nodiscard]] List<PackageModel> packageModels() const noexcept;

    // The record of exactly this name, of several the last; nothing without one.
    [[nodiscard]] std::optional<Component> component(std::string_view name) const;
    [[nodiscard]] std::optional<Model> model(std::string_view name) const;
    [[nodiscard]] std::optional<Submodel> submodel(std::string_view name) const;
    [[nodiscard]] std::optional<Selector> selector(std::string_view name) const;
    [[nodiscard]] std::optional<PackageModel> packageModel(std::string_view name) const;

    // Made by read() and readText().
    explicit File(std::shared_ptr<const ReadFile> read) noexcept;
    File(const File& other) noexcept;
    File& operator=(const File& other) noexcept;
    ~File();

private:
    std::shared_ptr<const ReadFile> read_;
};

/// How a file is checked.
struct Options {
    /// Files of versions 6.0 to 7.x are read by the rules of 5.1: keywords that came later are passed over, and a note
    /// says so. Without it they are refused.
    bool later_versions = true;
    /// What was read is looked at as an engineer does, and gives findings of the class `advice`.
    bool advice = false;
    /// Findings of the class `caution` are made, too.
    bool cautions = false;

    /// Gives the content of a companion: a file that the checked one leads to, such as a .pkg file, a parameter file or
    /// a file of a board. The path is the folder of the checked file, as its name was given, with the name by which the
    /// companion is known behind it; other spellings of one path, in lower and upper case, may be asked for as well.
    /// Nothing means that there is no such file. Each path is asked for once. Without a function companions are looked
    /// for on the disk, with one they never are.
    std::function<std::optional<std::string>(std::string_view path)> companion{};
    /// Lists the names, without folder, of the files in a folder, which is given as its path with the separator at its
    /// end, or as an empty text; package models are looked for in those that end with ".pkg". It is asked only beside
    /// `companion`. Without it there are none.
    std::function<std::vector<std::string>(std::string_view folder)> list{};
};

/// Checks the file of this name. The ending of the name says what kind of file it is: ".ibs", ".pkg", ".ebd" or ".ami";
/// one without an ending is sought as an .ibs file. What is wrong with the file is a finding, also that there is none.
/// Memory that runs out while the file is read is a finding as well; what was read until then is there. Elsewhere
/// std::bad_alloc is thrown. What a function of the options throws is thrown on.
[[nodiscard]] KESTREL_API File read(std::string_view name, const Options& options = {});

/// The same for a content in memory. The name says what kind of file it is, and where its companions are.
[[nodiscard]] KESTREL_API File readText(std::string_view name, std::string text, const Options& options = {});

} // namespace kestrel::api

#include "record_text.hpp"

#include "component/cmpnt.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "package/pkgmdl.hpp"

#include <bit>
#include <charconv>
#include <string_view>
#include <variant>

namespace kestrel::bench {

namespace {

/// Gathers the text.
class RecordText {
public:
    void word(std::string_view text) { text_.append(text).push_back(' '); }
    void endLine() { text_.push_back('\n'); }

    void number(std::uint64_t value) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value, 16);
        word({digits, end.ptr});
    }
    void real(double value) { number(std::bit_cast<std::uint64_t>(value)); }

    void cell(const Cell& value) {
        number(static_cast<std::uint64_t>(value.state()));
        real(value.value());
    }

    void table(std::string_view title, std::span<const TableRow> rows) {
        if (rows.empty()) return;
        word(title);
        for (const TableRow& row : rows) {
            for (const Cell& value : row.cells)
                cell(value);
            endLine();
        }
    }

    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    std::string text_;
};

void addPins(RecordText& text, const Cmpnt& component) {
    text.word("component");
    text.word(component.name);
    for (const Pin& pin : component.pins) {
        for (const std::string_view name : {pin.name.view(), pin.signal_name.view(), pin.model_name.view()})
            text.word(name);
        for (const Cell& value : {pin.r_pin, pin.l_pin, pin.c_pin})
            text.cell(value);
        text.endLine();
    }
}

void addWaveform(RecordText& text, const Wvfrm& waveform) {
    for (const GivenValue& value :
         {waveform.r_fixture, waveform.v_fixture, waveform.v_fixture_min, waveform.v_fixture_max})
        text.real(value ? *value : -1.0);
    text.table("waveform", waveform.rows);
}

void addTables(RecordText& text, const Tables& tables) {
    for (const Crv* const curve : {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp})
        text.table("curve", curve->rows);
    for (const Rows<Wvfrm>* const list : {&tables.rising_waveforms, &tables.falling_waveforms}) {
        for (const Wvfrm& waveform : *list)
            addWaveform(text, waveform);
    }
}

void addModel(RecordText& text, const Mdl& model) {
    text.word("model");
    text.word(model.name);
    text.number(static_cast<std::uint64_t>(model.type()));
    for (const MdlRangeRow& row : model.ranges) {
        for (const Cell& value : row.range)
            text.cell(value);
    }
    addTables(text, *model.tables);
    for (const AddSubmodel& row : model.add_submodels)
        text.word(row.name);
    for (const DrvShEntry& entry : model.driver_schedule.entries) {
        text.word(entry.model_name);
        for (const Cell& value :
             {entry.delays.rise_on, entry.delays.rise_off, entry.delays.fall_on, entry.delays.fall_off})
            text.cell(value);
        text.endLine();
    }
}

void addMatrix(RecordText& text, const std::unique_ptr<Mtx>& mtx) {
    if (!mtx) return;
    for (const MtxRow& row : mtx->rows) {
        text.word(row.pin_name);
        if (const auto* const values = std::get_if<MtxValues>(&row.given)) {
            for (const double value : *values)
                text.real(value);
        } else {
            for (const MtxEntry& entry : std::get<MtxEntries>(row.given)) {
                text.number(entry.column());
                text.real(entry.value());
            }
        }
        text.endLine();
    }
}

} // namespace

std::string recordText(const Ibis& root) {
    RecordText text;
    for (const Cmpnt& component : root.components.newestFirst())
        addPins(text, component);
    for (const Mdl& model : root.models.newestFirst())
        addModel(text, model);
    for (const SubMdl& submodel : root.submodels.newestFirst()) {
        text.word(submodel.name);
        addTables(text, *submodel.tables);
        addWaveform(text, *submodel.gnd_pulse);
        addWaveform(text, *submodel.power_pulse);
    }
    for (const MSel& selector : root.model_selectors.newestFirst()) {
        text.word(selector.name);
        for (const MSelEntry& entry : selector.entries) {
            text.word(entry.model_name);
            text.word(entry.description);
            text.endLine();
        }
    }
    for (const PkgMdl& package : root.package_models.newestFirst()) {
        for (const std::string_view pin : package.pin_names)
            text.word(pin);
        for (const std::unique_ptr<Mtx>* const mtx : {&package.resistance, &package.inductance, &package.capacitance})
            addMatrix(text, *mtx);
    }
    return text.take();
}

} // namespace kestrel::bench

// The Python module: what libkestrel gives, as attributes of objects that keep the file they came from.

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kestrel/kestrel.hpp>
#include <pybind11/functional.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

namespace {

namespace py = pybind11;
namespace api = kestrel::api;

/// A record with the file that its texts and tables belong to.
template <class Record> struct Held {
    api::File file;
    Record record;
};

/// Names of files may be anything; what is no UTF-8 in them is kept as Python keeps it in names.
py::str textOf(std::string_view text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape"));
}

/// The values of a table where they are: rows of four numbers, which nobody can write to.
py::array tableOf(const api::File& file, const api::Table& table) {
    constexpr auto kColumns = static_cast<py::ssize_t>(api::Table::kColumns);
    const py::capsule keeper(new api::File(file), [](void* kept) { delete static_cast<api::File*>(kept); });
    py::array_t<double> array({static_cast<py::ssize_t>(table.size()), kColumns}, table.values().data(), keeper);
    array.attr("setflags")(py::arg("write") = false);
    return array;
}

// What a member is in Python goes by its type.
py::object made(const api::File& /*file*/, double value) { return py::float_(value); }
py::object made(const api::File& /*file*/, bool value) { return py::bool_(value); }
py::object made(const api::File& /*file*/, std::uint32_t value) { return py::int_(value); }
py::object made(const api::File& /*file*/, std::size_t value) { return py::int_(value); }
py::object made(const api::File& /*file*/, std::string_view text) { return textOf(text); }
py::object made(const api::File& /*file*/, api::Level level) { return textOf(api::levelName(level)); }
py::object made(const api::File& /*file*/, const api::Corners& corners) { return py::cast(corners); }
py::object made(const api::File& file, const api::Table& table) { return tableOf(file, table); }
template <class Record> py::object made(const api::File& file, const Record& record) {
    return py::cast(Held<Record>{file, record});
}
template <class Record> py::object made(const api::File& file, const api::List<Record>& list) {
    py::list records(list.size());
    for (std::size_t place = 0; place < list.size(); ++place)
        records[place] = made(file, list[place]);
    return records;
}

/// A class of records, whose members become attributes.
template <class Record> class RecordClass {
public:
    RecordClass(py::module_& module, const char* name) : class_(module, name) {
        class_.def("__repr__", [name = std::string(name)](const Held<Record>& held) {
            if constexpr (requires { held.record.name; }) {
                return py::str("<kestrel.{} {!r}>").format(name, textOf(held.record.name));
            } else {
                return py::str("<kestrel.{}>").format(name);
            }
        });
    }
    template <class Member, class Base> RecordClass& member(const char* name, Member Base::*at) {
        class_.def_property_readonly(name, [at](const Held<Record>& held) { return made(held.file, held.record.*at); });
        return *this;
    }

private:
    py::class_<Held<Record>> class_;
};

void addCorners(py::module_& module) {
    py::class_<api::Corners>(module, "Corners")
        .def_readonly("typ", &api::Corners::typ)
        .def_readonly("min", &api::Corners::min)
        .def_readonly("max", &api::Corners::max)
        .def("__bool__", &api::Corners::given)
        .def(
            "__iter__",
            [](const api::Corners& corners) { return py::iter(py::make_tuple(corners.typ, corners.min, corners.max)); })
        .def("__repr__", [](const api::Corners& corners) {
            return py::str("Corners(typ={}, min={}, max={})").format(corners.typ, corners.min, corners.max);
        });
}

void addFindings(py::module_& module) {
    RecordClass<api::Finding>(module, "Finding")
        .member("level", &api::Finding::level)
        .member("code", &api::Finding::code)
        .member("file", &api::Finding::file)
        .member("line", &api::Finding::line)
        .member("exact", &api::Finding::exact)
        .member("kind", &api::Finding::kind)
        .member("subject", &api::Finding::subject)
        .member("text", &api::Finding::text);
    RecordClass<api::Header>(module, "Header")
        .member("ibis_version", &api::Header::ibis_version)
        .member("file_name", &api::Header::file_name)
        .member("file_rev", &api::Header::file_rev)
        .member("date", &api::Header::date)
        .member("source", &api::Header::source)
        .member("notes", &api::Header::notes)
        .member("disclaimer", &api::Header::disclaimer)
        .member("copyright", &api::Header::copyright);
}

/// What models and submodels have alike.
template <class Record> RecordClass<Record> tablesClass(py::module_& module, const char* name) {
    RecordClass<Record> records(module, name);
    records.member("name", &Record::name)
        .member("line", &Record::line)
        .member("type", &Record::type)
        .member("pulldown", &Record::pulldown)
        .member("pullup", &Record::pullup)
        .member("gnd_clamp", &Record::gnd_clamp)
        .member("power_clamp", &Record::power_clamp)
        .member("ramp", &Record::ramp)
        .member("rising_waveforms", &Record::rising_waveforms)
        .member("falling_waveforms", &Record::falling_waveforms);
    return records;
}

void addModels(py::module_& module) {
    RecordClass<api::Ramp>(module, "Ramp")
        .member("dv_r", &api::Ramp::dv_r)
        .member("dt_r", &api::Ramp::dt_r)
        .member("dv_f", &api::Ramp::dv_f)
        .member("dt_f", &api::Ramp::dt_f)
        .member("r_load", &api::Ramp::r_load);
    RecordClass<api::Waveform>(module, "Waveform")
        .member("r_fixture", &api::Waveform::r_fixture)
        .member("v_fixture", &api::Waveform::v_fixture)
        .member("v_fixture_min", &api::Waveform::v_fixture_min)
        .member("v_fixture_max", &api::Waveform::v_fixture_max)
        .member("c_fixture", &api::Waveform::c_fixture)
        .member("l_fixture", &api::Waveform::l_fixture)
        .member("r_dut", &api::Waveform::r_dut)
        .member("l_dut", &api::Waveform::l_dut)
        .member("c_dut", &api::Waveform::c_dut)
        .member("table", &api::Waveform::table)
        .member("composite_current", &api::Waveform::composite_current);
    RecordClass<api::NamedValue>(module, "NamedValue")
        .member("name", &api::NamedValue::name)
        .member("value", &api::NamedValue::value);
    RecordClass<api::NamedCorners>(module, "NamedCorners")
        .member("name", &api::NamedCorners::name)
        .member("corners", &api::NamedCorners::corners);
    RecordClass<api::AddedSubmodel>(module, "AddedSubmodel")
        .member("name", &api::AddedSubmodel::name)
        .member("mode", &api::AddedSubmodel::mode);
    RecordClass<api::ScheduledDriver>(module, "ScheduledDriver")
        .member("model", &api::ScheduledDriver::model)
        .member("rise_on", &api::ScheduledDriver::rise_on)
        .member("rise_off", &api::ScheduledDriver::rise_off)
        .member("fall_on", &api::ScheduledDriver::fall_on)
        .member("fall_off", &api::ScheduledDriver::fall_off);
    RecordClass<api::Executable>(module, "Executable")
        .member("platform", &api::Executable::platform)
        .member("file", &api::Executable::file)
        .member("parameter_file", &api::Executable::parameter_file);
    tablesClass<api::Model>(module, "Model")
        .member("polarity", &api::Model::polarity)
        .member("enable", &api::Model::enable)
        .member("vinl", &api::Model::vinl)
        .member("vinh", &api::Model::vinh)
        .member("vmeas", &api::Model::vmeas)
        .member("cref", &api::Model::cref)
        .member("rref", &api::Model::rref)
        .member("vref", &api::Model::vref)
        .member("cref_diff", &api::Model::cref_diff)
        .member("rref_diff", &api::Model::rref_diff)
        .member("c_comp", &api::Model::c_comp)
        .member("c_comp_pullup", &api::Model::c_comp_pullup)
        .member("c_comp_pulldown", &api::Model::c_comp_pulldown)
        .member("c_comp_power_clamp", &api::Model::c_comp_power_clamp)
        .member("c_comp_gnd_clamp", &api::Model::c_comp_gnd_clamp)
        .member("temperature_range", &api::Model::temperature_range)
        .member("voltage_range", &api::Model::voltage_range)
        .member("pullup_reference", &api::Model::pullup_reference)
        .member("pulldown_reference", &api::Model::pulldown_reference)
        .member("power_clamp_reference", &api::Model::power_clamp_reference)
        .member("gnd_clamp_reference", &api::Model::gnd_clamp_reference)
        .member("external_reference", &api::Model::external_reference)
        .member("ttgnd", &api::Model::ttgnd)
        .member("ttpower", &api::Model::ttpower)
        .member("rgnd", &api::Model::rgnd)
        .member("rpower", &api::Model::rpower)
        .member("rac", &api::Model::rac)
        .member("cac", &api::Model::cac)
        .member("isso_pu", &api::Model::isso_pu)
        .member("isso_pd", &api::Model::isso_pd)
        .member("model_spec", &api::Model::model_spec)
        .member("receiver_thresholds", &api::Model::receiver_thresholds)
        .member("reference_supply", &api::Model::reference_supply)
        .member("submodels", &api::Model::submodels)
        .member("driver_schedule", &api::Model::driver_schedule)
        .member("executables", &api::Model::executables)
        .member("has_external_model", &api::Model::has_external_model);
    tablesClass<api::Submodel>(module, "Submodel")
        .member("gnd_pulse", &api::Submodel::gnd_pulse)
        .member("power_pulse", &api::Submodel::power_pulse);
    RecordClass<api::SelectorEntry>(module, "SelectorEntry")
        .member("model", &api::SelectorEntry::model)
        .member("description", &api::SelectorEntry::description);
    RecordClass<api::Selector>(module, "Selector")
        .member("name", &api::Selector::name)
        .member("line", &api::Selector::line)
        .member("entries", &api::Selector::entries);
}

void addComponents(py::module_& module) {
    RecordClass<api::Pin>(module, "Pin")
        .member("name", &api::Pin::name)
        .member("signal", &api::Pin::signal)
        .member("model", &api::Pin::model)
        .member("r_pin", &api::Pin::r_pin)
        .member("l_pin", &api::Pin::l_pin)
        .member("c_pin", &api::Pin::c_pin);
    RecordClass<api::PinMapping>(module, "PinMapping")
        .member("pin", &api::PinMapping::pin)
        .member("pulldown_ref", &api::PinMapping::pulldown_ref)
        .member("pullup_ref", &api::PinMapping::pullup_ref)
        .member("gnd_clamp_ref", &api::PinMapping::gnd_clamp_ref)
        .member("power_clamp_ref", &api::PinMapping::power_clamp_ref)
        .member("ext_ref", &api::PinMapping::ext_ref);
    RecordClass<api::DiffPin>(module, "DiffPin")
        .member("pin", &api::DiffPin::pin)
        .member("inv_pin", &api::DiffPin::inv_pin)
        .member("vdiff", &api::DiffPin::vdiff)
        .member("tdelay", &api::DiffPin::tdelay);
    RecordClass<api::SeriesPin>(module, "SeriesPin")
        .member("pin_1", &api::SeriesPin::pin_1)
        .member("pin_2", &api::SeriesPin::pin_2)
        .member("model", &api::SeriesPin::model)
        .member("group", &api::SeriesPin::group);
    RecordClass<api::Component>(module, "Component")
        .member("name", &api::Component::name)
        .member("line", &api::Component::line)
        .member("manufacturer", &api::Component::manufacturer)
        .member("package_model", &api::Component::package_model)
        .member("si_location", &api::Component::si_location)
        .member("timing_location", &api::Component::timing_location)
        .member("r_pkg", &api::Component::r_pkg)
        .member("l_pkg", &api::Component::l_pkg)
        .member("c_pkg", &api::Component::c_pkg)
        .member("pins", &api::Component::pins)
        .member("pin_mapping", &api::Component::pin_mapping)
        .member("diff_pins", &api::Component::diff_pins)
        .member("series_pins", &api::Component::series_pins)
        .member("alternate_package_models", &api::Component::alternate_package_models);
    RecordClass<api::MatrixEntry>(module, "MatrixEntry")
        .member("column", &api::MatrixEntry::column)
        .member("value", &api::MatrixEntry::value);
    RecordClass<api::MatrixRow>(module, "MatrixRow")
        .member("pin", &api::MatrixRow::pin)
        .member("entries", &api::MatrixRow::entries);
    RecordClass<api::Matrix>(module, "Matrix")
        .member("kind", &api::Matrix::kind)
        .member("order", &api::Matrix::order)
        .member("rows", &api::Matrix::rows);
    RecordClass<api::PackageModel>(module, "PackageModel")
        .member("name", &api::PackageModel::name)
        .member("file", &api::PackageModel::file)
        .member("line", &api::PackageModel::line)
        .member("manufacturer", &api::PackageModel::manufacturer)
        .member("oem", &api::PackageModel::oem)
        .member("description", &api::PackageModel::description)
        .member("pins", &api::PackageModel::pins)
        .member("resistance", &api::PackageModel::resistance)
        .member("inductance", &api::PackageModel::inductance)
        .member("capacitance", &api::PackageModel::capacitance);
}

/// A property of a file, and the record of a name, which raises a KeyError without one.
template <auto Get> py::object property(const api::File& file) { return made(file, (file.*Get)()); }
template <auto Find> py::object named(const api::File& file, std::string_view name) {
    const auto record = (file.*Find)(name);
    if (!record) throw py::key_error(std::string(name));
    return made(file, *record);
}

void addFile(py::module_& module) {
    using api::File;
    py::class_<File>(module, "File")
        .def_property_readonly("name", property<&File::name>)
        .def_property_readonly("is_read", property<&File::isRead>)
        .def_property_readonly("is_checked", property<&File::isChecked>)
        .def_property_readonly("passed", property<&File::hasPassed>)
        .def_property_readonly("findings",
                               [](const File& file) {
                                   py::list findings;
                                   for (const api::Finding& finding : file.findings())
                                       findings.append(made(file, finding));
                                   return findings;
                               })
        .def_property_readonly("header", property<&File::header>)
        .def_property_readonly("components", property<&File::components>)
        .def_property_readonly("models", property<&File::models>)
        .def_property_readonly("submodels", property<&File::submodels>)
        .def_property_readonly("selectors", property<&File::selectors>)
        .def_property_readonly("package_models", property<&File::packageModels>)
        .def("component", named<&File::component>, py::arg("name"))
        .def("model", named<&File::model>, py::arg("name"))
        .def("submodel", named<&File::submodel>, py::arg("name"))
        .def("selector", named<&File::selector>, py::arg("name"))
        .def("package_model", named<&File::packageModel>, py::arg("name"))
        .def("__repr__", [](const File& file) { return py::str("<kestrel.File {!r}>").format(textOf(file.name())); });
}

/// What a function of the caller has returned, as a C++ value.
template <class Value> Value returned(const py::object& value, const char* wanted) {
    try {
        return value.cast<Value>();
    } catch (const py::cast_error&) {
        throw py::type_error(wanted);
    }
}

/// Options whose functions are those of Python, which are called with the lock of the interpreter.
api::Options optionsOf(bool later_versions, bool advice, bool cautions, const py::object& companion,
                       const py::object& list) {
    api::Options options{.later_versions = later_versions, .advice = advice, .cautions = cautions};
    if (!companion.is_none()) {
        options.companion = [&companion](std::string_view path) {
            const py::gil_scoped_acquire lock;
            return returned<std::optional<std::string>>(companion(textOf(path)),
                                                        "companion() gives bytes, str or None");
        };
    }
    if (!list.is_none()) {
        options.list = [&list](std::string_view folder) {
            const py::gil_scoped_acquire lock;
            return returned<std::vector<std::string>>(list(textOf(folder)), "list_folder() gives a list of names");
        };
    }
    return options;
}

} // namespace

PYBIND11_MODULE(_kestrel, module) {
    addCorners(module);
    addFindings(module);
    addModels(module);
    addComponents(module);
    addFile(module);
    module.attr("__version__") = textOf(api::version());
    module.def("read", [](const std::string& name, bool later_versions, bool advice, bool cautions,
                          const py::object& companion, const py::object& list) {
        const api::Options options = optionsOf(later_versions, advice, cautions, companion, list);
        const py::gil_scoped_release unlocked;
        return api::read(name, options);
    });
    module.def("read_text", [](const std::string& name, std::string text, bool later_versions, bool advice,
                               bool cautions, const py::object& companion, const py::object& list) {
        const api::Options options = optionsOf(later_versions, advice, cautions, companion, list);
        const py::gil_scoped_release unlocked;
        return api::readText(name, std::move(text), options);
    });
}

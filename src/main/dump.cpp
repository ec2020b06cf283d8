#include "main/dump.hpp"

#include "base/text_hash.hpp"
#include "ibis/run.hpp"

namespace kestrel {

namespace {

struct PinCounts {
    std::size_t total = 0;
    std::size_t modeled = 0;
    std::size_t supply = 0;
    std::size_t other = 0;
};

PinCounts classifyPins(const Cmpnt& component) {
    PinCounts counts;
    for (const Pin& pin : component.pins) {
        ++counts.total;
        if (!isUnmodeledPinName(pin.model_name)) {
            ++counts.modeled;
        } else if (equalsNoCase(pin.model_name, "NC")) {
            ++counts.other;
        } else {
            ++counts.supply;
        }
    }
    return counts;
}

/// The distinct model names of a component's pins, in the order in which the pins first name them.
std::vector<std::string_view> usedModels(const Cmpnt& component) {
    std::vector<std::string_view> names;
    ViewSet seen;
    for (const Pin& pin : component.pins) {
        if (!isUnmodeledPinName(pin.model_name) && seen.insert(pin.model_name).second) names.push_back(pin.model_name);
    }
    return names;
}

void appendLine(std::string& text, std::string_view label, std::string_view value) {
    text.append(label).append(value).push_back('\n');
}

void appendCount(std::string& text, std::string_view label, std::size_t number) {
    text.append(label);
    appendInteger(text, static_cast<std::int64_t>(number));
    text.push_back('\n');
}

bool reportComponent(Run& run, const Cmpnt& component) {
    std::string text;
    appendLine(text, "    Component: ", component.name);
    appendLine(text, " Manufacturer: ", component.manufacturer);
    if (component.pins.empty()) {
        run.out.write(text.append("Unable to get pin pointer!\n"));
        return false;
    }
    const PinCounts counts = classifyPins(component);
    appendCount(text, "        #Pins: ", counts.total);
    appendCount(text, "#Modeled Pins: ", counts.modeled);
    appendCount(text, " #Supply Pins: ", counts.supply);
    appendCount(text, "  #Other Pins: ", counts.other);
    const std::vector<std::string_view> names = usedModels(component);
    appendCount(text, "      #Models: ", names.size());
    const ObjectList<Mdl>& models = currentRoot(run).models;
    for (const std::string_view name : names) {
        const Mdl* const model = models.find(name);
        text.append("        Model: ").append(name).append("\t\t(");
        text.append(reportedType(model != nullptr ? model->type() : ModelType::notGiven)).append(")\n");
    }
    appendLine(text,
               "      Package: ", component.package_model.empty() ? std::string_view("-") : component.package_model);
    run.out.write(text.append("\n"));
    return true;
}

/// Reports the newest component of this name.
bool reportNamedComponent(Run& run, std::string_view name) {
    if (run.roots.empty()) {
        run.out.write("Unable to get IBIS pointer!\n");
        return false;
    }
    const ObjectList<Cmpnt>& components = currentRoot(run).components;
    if (components.empty()) {
        run.out.write("Unable to get components pointer!\n");
        return false;
    }
    if (const Cmpnt* const component = components.find(name)) return reportComponent(run, *component);
    std::string text("Unable to find component ");
    run.out.write(text.append(name).append("!\n"));
    return false;
}

} // namespace

std::string_view reportedType(ModelType type) {
    constexpr std::array<std::string_view, 19> kNames{
        "Type not set", "No type",        "Input",         "Output",         "IO",
        "Three State",  "Open Srain",     "IO Open Drain", "Open Sink",      "IO Open Sink",
        "Open Source",  "IO Open Source", "Input ECL",     "Output ECL",     "IO ECL",
        "Terminator",   "Series",         "Series Switch", "Three State ECL"};
    const auto code = static_cast<std::size_t>(type);
    return code < kNames.size() ? kNames[code] : "Unknown";
}

std::optional<std::string_view> takePiece(std::string_view& list) {
    list.remove_prefix(std::min(list.find_first_not_of(','), list.size()));
    if (list.empty()) return std::nullopt;
    const std::string_view piece = list.substr(0, list.find(','));
    list.remove_prefix(piece.size());
    return piece;
}

bool reportComponents(Run& run, std::string_view selection) {
    if (!selection.empty()) {
        while (const std::optional<std::string_view> name = takePiece(selection)) {
            if (!reportNamedComponent(run, *name)) return false;
        }
        return true;
    }
    if (run.roots.empty()) return true;
    for (const Cmpnt& component : currentRoot(run).components.newestFirst()) {
        // By name, so that of components with equal names the newest is reported each time.
        if (!reportNamedComponent(run, component.name)) return false;
    }
    return true;
}

} // namespace kestrel

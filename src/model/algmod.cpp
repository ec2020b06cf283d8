#include "model/algmod.hpp"

#include "reader/line_form.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Algorithmic_Model";
constexpr std::string_view kEnd = "End_Algorithmic_Model";
constexpr std::string_view kExecutable = "Executable";

constexpr ModelTypeSet kUseless{ModelType::series, ModelType::seriesSwitch, ModelType::terminator};

/// True of "Linux_gcc3.2.3_32" and the like: platform, compiler and bits. A compiler may hold underscores itself.
bool isPlatform(std::string_view text) {
    const std::size_t first = text.find('_');
    const std::size_t last = text.rfind('_');
    if (first == last) return false;
    const std::string_view bits = text.substr(last + 1);
    return bits == "32" || bits == "64";
}

/// True of the first word of a line that names an executable; in later versions there may be one for each direction.
bool isExecutable(std::string_view word, IbisVersion version) {
    return word == kExecutable ||
           (version == IbisVersion::later && (word == "Executable_Tx" || word == "Executable_Rx"));
}

void doNotMatch(Context& context) { errorAtLine(context.diagnostics, 4607); }

} // namespace

void openAlgMod(Context& context, std::unique_ptr<AlgMod>& algorithmic, std::string_view text) {
    if (algorithmic) {
        errorAtLine(context.diagnostics, 4601);
    } else {
        algorithmic = std::make_unique<AlgMod>();
    }
    expectNoText(context, text, kBegin, 4602);
}

void algModLine(Context& context, AlgMod& algorithmic, std::string_view text) {
    constexpr int kItems = 4; // name, platform, file, parameter file
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, kItems);
    if (!isExecutable(items[0], context.parse.version)) {
        errorAtLine(diagnostics, 4603);
        return;
    }
    if (items.count != kItems) errorAtLine(diagnostics, 4602, items.count, kExecutable, kItems);
    if (items.count < kItems) {
        algorithmic.reported = true;
        return;
    }
    if (!isPlatform(items[1])) warningAtLine(diagnostics, 4604, items[1]);
    if (!algorithmic.platforms.insert(std::string(items[0]).append(" ").append(items[1])).second)
        warningAtLine(diagnostics, 4605, items[1]);
    if (kindOfName(items[3]) != FileKind::ami) errorAtLine(diagnostics, 4606, items[3]);
    algorithmic.executables.push_back(
        {.platform = std::string(items[1]), .file = std::string(items[2]), .parameter_file = std::string(items[3])});
}

void closeAlgMod(Context& context, AlgMod& algorithmic, std::string_view model) {
    if (!algorithmic.executables.empty() || std::exchange(algorithmic.reported, true)) return;
    error(context.diagnostics, 4608, model);
}

const BlockEnd kAlgModEnd{
    .name = kEnd,
    .text_behind = [](Context& context, std::string_view text) { expectNoText(context, text, kEnd, 4602); },
    .not_ended = doNotMatch,
    .no_begin = doNotMatch,
};

void checkAlgModType(Context& context, std::string_view model, ModelType type) {
    if (kUseless.has(type)) warning(context.diagnostics, 4609, model, modelTypeText(type));
}

} // namespace kestrel

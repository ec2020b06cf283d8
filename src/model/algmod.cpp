#include "model/algmod.hpp"

#include "ami/check.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "reader/line_form.hpp"

#include <filesystem>
#include <memory>
#include <utility>

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Algorithmic_Model";
constexpr std::string_view kEnd = "End_Algorithmic_Model";
constexpr std::string_view kExecutable = "Executable";

constexpr ModelTypeSet kUseless{ModelType::series, ModelType::seriesSwitch, ModelType::terminator};

void open(Run& run, Mdl& model, std::string_view text) {
    if (model.algorithmic_model) {
        errorAtLine(run.diagnostics, 4601);
    } else {
        model.algorithmic_model = std::make_unique<AlgMod>();
    }
    expectNoText(run, text, kBegin, 4602);
}

/// True of "Linux_gcc3.2.3_32" and the like: platform, compiler and bits. A compiler may hold underscores itself.
bool isPlatform(std::string_view text) {
    const std::size_t first = text.find('_');
    const std::size_t last = text.rfind('_');
    if (first == last) return false;
    const std::string_view bits = text.substr(last + 1);
    return bits == "32" || bits == "64";
}

void line(Run& run, Mdl& model, std::string_view text) {
    constexpr int kItems = 4; // name, platform, file, parameter file
    const ItemList items = splitItems(run, text, kItems);
    if (items[0] != kExecutable) {
        errorAtLine(run.diagnostics, 4603);
        return;
    }
    AlgMod& algorithmic = *model.algorithmic_model;
    if (items.count != kItems) errorAtLine(run.diagnostics, 4602, items.count, kExecutable, kItems);
    if (items.count < kItems) {
        algorithmic.reported = true;
        return;
    }
    if (!isPlatform(items[1])) warningAtLine(run.diagnostics, 4604, items[1]);
    if (!algorithmic.platforms.emplace(items[1]).second) warningAtLine(run.diagnostics, 4605, items[1]);
    if (kindOfName(items[3]) != FileKind::ami) errorAtLine(run.diagnostics, 4606, items[3]);
    algorithmic.executables.push_back(
        {.platform = std::string(items[1]), .file = std::string(items[2]), .parameter_file = std::string(items[3])});
}

void close(Run& run, Mdl& model) {
    AlgMod& algorithmic = *model.algorithmic_model;
    if (!algorithmic.executables.empty() || std::exchange(algorithmic.reported, true)) return;
    error(run.diagnostics, 4608, model.name);
}

void doNotMatch(Run& run) { errorAtLine(run.diagnostics, 4607); }

/// The name under which a parameter file is opened: one in a folder is sought from where the .ibs file is.
std::string pathOf(const Run& run, const std::string& name) {
    constexpr std::string_view kSeparators = "/\\";
    const bool in_folder = name.find_first_of(kSeparators) != std::string::npos;
    const bool is_absolute = kSeparators.find(name.front()) != std::string_view::npos;
    return in_folder && !is_absolute ? run.parse.directory + name : name;
}

void checkParameterFile(Run& run, const Mdl& model, const std::string& name) {
    const KeptParse kept(run.parse);
    const std::string path = pathOf(run, name);
    const std::int64_t errors = run.diagnostics.errors;
    std::optional<Source> source;
    if (path.size() < kMaxPath) source = openSource(run, path, FileKind::ami, WhenAbsent::leave);
    if (!source) {
        if (run.diagnostics.errors == errors) warning(run.diagnostics, 4610, name, model.name);
        return;
    }
    const std::string found = std::filesystem::path(source->path).lexically_normal().string();
    if (!run.algmod.paths.insert(found).second) return;
    if (collectAmi(run, path, &*source)) checkAmi(run);
}

} // namespace

const Block<Mdl> kAlgorithmicModel{
    .begin = KeywordCode::algorithmicModel,
    .end = KeywordCode::endAlgorithmicModel,
    .end_name = kEnd,
    .open = open,
    .line = line,
    .close = close,
    .text_behind_end = [](Run& run, std::string_view text) { expectNoText(run, text, kEnd, 4602); },
    .not_ended = doNotMatch,
    .no_begin = doNotMatch,
};

void checkAlgModType(Run& run, const Mdl& model) {
    if (!model.algorithmic_model || !kUseless.has(model.model_type)) return;
    warning(run.diagnostics, 4609, model.name, modelTypeText(model.model_type));
}

void checkAlgMods(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (!model.algorithmic_model) continue;
        for (const AlgExecutable& executable : model.algorithmic_model->executables) {
            const std::string& name = executable.parameter_file;
            // One of another kind was reported with its line.
            if (kindOfName(name) != FileKind::ami || !run.algmod.names.insert(name).second) continue;
            checkParameterFile(run, model, name);
        }
    }
}

} // namespace kestrel

#include "ibis/amifiles.hpp"

#include "ami/check.hpp"
#include "ibis/ibis.hpp"
#include "ibis/parse.hpp"
#include "model/mdl.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <filesystem>
#include <string>

namespace kestrel {

namespace {

std::string normal(const std::filesystem::path& path) { return path.lexically_normal().string(); }

/// True when the path leads to a file that was found under another spelling. Behind a folder that is not there ".."
/// leads nowhere.
bool wasFound(const AmiFiles& files, const SourceStore& sources, const std::filesystem::path& path) {
    if (!files.paths.contains(normal(path))) return false;
    if (sources.give) return true; // there are no folders but on the disk
    std::error_code failure;
    return path.string().find("..") == std::string::npos || std::filesystem::is_directory(path.parent_path(), failure);
}

/// True for the name of a file that is not in the folder of the file that names it, nor in a folder in it.
bool leadsOut(std::string name) {
    std::ranges::replace(name, '\\', '/');
    const std::filesystem::path path = std::filesystem::path(name).lexically_normal();
    return path.is_absolute() || *path.begin() == "..";
}

void checkAmiFile(Context& context, AmiFiles& files, const Mdl& model, const std::string& name) {
    constexpr std::string_view kSeparators = "/\\";
    const KeptParse kept(context.parse);
    const OtherFile other(context.diagnostics);
    const bool is_absolute = kSeparators.find(name.front()) != std::string_view::npos;
    const std::string path = is_absolute ? name : context.parse.directory + name;
    if (files.stay_in_folder && leadsOut(name)) {
        const About about(context.diagnostics, model);
        warningText(context.diagnostics,
                    "Parameter file '%s' of Model '%s' is outside of the folder and is not checked", name, model.name);
        return;
    }
    if (wasFound(files, context.sources, path)) return;
    // One in a folder is sought from where the .ibs file is; a bare name is sought there anyhow.
    const std::string& opened = name.find_first_of(kSeparators) == std::string::npos ? name : path;
    std::optional<Source> source;
    {
        const About about(context.diagnostics, model); // what the file holds is not about the model
        const std::int64_t errors = context.diagnostics.errors;
        if (opened.size() < kMaxPath) source = openSource(context, opened, FileKind::ami, WhenAbsent::leave);
        if (!source && context.diagnostics.errors == errors) warning(context.diagnostics, 4610, name, model.name);
    }
    if (!source) return;
    const bool is_new = files.paths.insert(normal(source->path)).second;
    files.paths.insert(normal(path));
    if (!is_new) return;
    nameFile(context.diagnostics, source->path);
    announce(context, opened, kAmiVersion);
    checkAmi(context, collectAmi(context, *source));
}

} // namespace

void checkAmiFiles(Context& context, AmiFiles& files, const Ibis& root) {
    for (const Mdl& model : root.models.newestFirst()) {
        if (!model.algorithmic_model) continue;
        for (const AlgExecutable& executable : model.algorithmic_model->executables) {
            const std::string& name = executable.parameter_file;
            // One of another kind was reported with its line.
            if (kindOfName(name) != FileKind::ami || !files.names.insert(name).second) continue;
            checkAmiFile(context, files, model, name);
        }
    }
}

} // namespace kestrel

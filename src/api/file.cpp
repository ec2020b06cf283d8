#include "api/read_file.hpp"
#include "api/records.hpp"

#include <utility>

namespace kestrel::api {

namespace {

/// The record that an exact name finds.
template <auto MakeOne, class Record>
auto found(const Ibis* root, ObjectList<Record> Ibis::*list, std::string_view name)
    -> std::optional<std::invoke_result_t<decltype(MakeOne), const Record&>> {
    const Record* const record = root != nullptr ? (root->*list).find(name) : nullptr;
    return record == nullptr ? std::nullopt : std::optional(MakeOne(*record));
}

std::string_view textOf(const std::optional<std::string>& text) { return text ? std::string_view(*text) : ""; }

} // namespace

std::string_view version() noexcept { return KESTREL_LIBRARY_VERSION; }

std::string_view levelName(Level level) noexcept {
    constexpr std::array<std::string_view, 6> kNames{"bug", "error", "warning", "note", "advice", "caution"};
    return wordAt(kNames, level);
}

File::File(std::shared_ptr<const ReadFile> read) noexcept : read_(std::move(read)) {}
File::File(const File& other) noexcept = default;
File& File::operator=(const File& other) noexcept = default;
File::~File() = default;

std::string_view File::name() const noexcept { return read_->name; }
bool File::isRead() const noexcept { return read_->outcome.read; }
bool File::isChecked() const noexcept { return read_->outcome.checked && read_->outcome.read; }
bool File::hasPassed() const noexcept {
    return isChecked() && !read_->outcome.refused && read_->counts.bugs == 0 && read_->counts.errors == 0;
}

std::span<const Finding> File::findings() const noexcept { return read_->findings; }
Counts File::counts() const noexcept { return read_->counts; }

Header File::header() const noexcept {
    if (read_->header == nullptr) return {};
    const Hdr& header = *read_->header;
    return {.ibis_version = header.ibis_version,
            .file_name = header.file_name,
            .file_rev = header.file_rev,
            .date = header.date,
            .source = textOf(header.source),
            .notes = textOf(header.notes),
            .disclaimer = textOf(header.disclaimer),
            .copyright = textOf(header.copyright)};
}

List<Component> File::components() const noexcept { return listOfPointed<componentOf>(read_->components); }
List<Model> File::models() const noexcept { return listOfPointed<modelOf>(read_->models); }
List<Submodel> File::submodels() const noexcept { return listOfPointed<submodelOf>(read_->submodels); }
List<Selector> File::selectors() const noexcept { return listOfPointed<selectorOf>(read_->selectors); }
List<PackageModel> File::packageModels() const noexcept { return listOfPointed<packageModelOf>(read_->package_models); }

std::optional<Component> File::component(std::string_view name) const {
    return found<componentOf>(read_->root(), &Ibis::components, name);
}
std::optional<Model> File::model(std::string_view name) const {
    return found<modelOf>(read_->root(), &Ibis::models, name);
}
std::optional<Submodel> File::submodel(std::string_view name) const {
    return found<submodelOf>(read_->root(), &Ibis::submodels, name);
}
std::optional<Selector> File::selector(std::string_view name) const {
    return found<selectorOf>(read_->root(), &Ibis::model_selectors, name);
}
std::optional<PackageModel> File::packageModel(std::string_view name) const {
    return found<packageModelOf>(read_->root(), &Ibis::package_models, name);
}

} // namespace kestrel::api

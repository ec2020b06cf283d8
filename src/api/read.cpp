#include "api/read_file.hpp"
#include "check/file_check.hpp"

#include <exception>
#include <memory>
#include <utility>

namespace kestrel::api {

namespace {

/// Ends a check in which a function of the caller has thrown.
struct CallerThrew {};

/// Calls a function of the caller. What it throws is kept, so that nothing on the way takes it for its own.
template <class Call> auto callOut(std::exception_ptr& thrown, const Call& call) {
    try {
        return call();
    } catch (...) {
        thrown = std::current_exception();
        throw CallerThrew{};
    }
}

/// Looks for companions where the caller has them.
class Companions {
public:
    /// The file of this name is on the disk, whatever spelling it is looked for under; an empty name means that none
    /// is.
    Companions(const Options& options, std::string_view on_disk) : options_(options), on_disk_(on_disk) {}
    Companions(const Companions&) = delete;
    Companions& operator=(const Companions&) = delete;
    ~Companions() = default;

    /// Has the sources of the run come from the caller.
    void provide(SourceStore& sources) {
        sources.give = [this](const std::string& path) { return give(path); };
        sources.list = [this](const std::string& folder) { return list(folder); };
    }

    [[noreturn]] void rethrow() const { std::rethrow_exception(thrown_); }

private:
    std::optional<SourceText> give(const std::string& path) {
        if (isOnDisk(path)) return std::nullopt;
        if (const auto known = given_.find(path); known != given_.end()) return known->second;
        std::optional<std::string> text = callOut(thrown_, [&] { return options_.companion(path); });
        SourceText given = text ? std::make_shared<const std::string>(std::move(*text)) : nullptr;
        return given_.emplace(path, std::move(given)).first->second;
    }

    std::vector<std::string> list(const std::string& folder) {
        if (!options_.list) return {};
        return callOut(thrown_, [&] { return options_.list(folder); });
    }

    [[nodiscard]] bool isOnDisk(std::string_view path) const {
        if (on_disk_.empty() || !equalsNoCase(path.substr(0, on_disk_.size()), on_disk_)) return false;
        const std::string_view rest = path.substr(on_disk_.size());
        return rest.empty() || equalsNoCase(rest, extensionOf(kindOrIbs(on_disk_)));
    }

    const Options& options_;
    std::string_view on_disk_;
    TextMap<SourceText> given_;
    std::exception_ptr thrown_;
};

File check(std::string_view name, const SourceText& text, const Options& options) {
    const auto file = std::make_shared<ReadFile>(name);
    Run& run = file->run;
    Companions companions(options, text == nullptr ? std::string_view(file->name) : std::string_view());
    if (options.companion) companions.provide(run.sources);
    if (text != nullptr) {
        for (const std::string_view extension : {std::string_view(), extensionOf(kindOrIbs(name))})
            run.sources.texts.emplace(std::string(name).append(extension), text);
    }
    run.diagnostics.silence_cautions = !options.cautions;
    run.diagnostics.sink = [&file = *file](const kestrel::Finding& finding) { file.add(finding); };
    const ContainedCheck wanted{
        .takes_later = options.later_versions, .advises = options.advice, .empty_is_found = true};
    try {
        checkContained(run, file->name, wanted, file->outcome);
    } catch (const CallerThrew&) {
        companions.rethrow();
    }
    run.diagnostics.sink = nullptr;
    run.sources = {};
    file->listRecords();
    return File(file);
}

} // namespace

File read(std::string_view name, const Options& options) { return check(name, nullptr, options); }

File readText(std::string_view name, std::string text, const Options& options) {
    return check(name, std::make_shared<const std::string>(std::move(text)), options);
}

} // namespace kestrel::api

#include "main/comparing.hpp"

#include "base/text.hpp"
#include "base/text_hash.hpp"
#include "compare/compare.hpp"
#include "ibis/run.hpp"
#include "main/checking.hpp"
#include "reader/source.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrel {

namespace {

namespace fs = std::filesystem;

/// True for the kinds of files whose records are compared.
bool isCompared(std::string_view name) {
    const FileKind kind = kindOrIbs(name);
    return kind == FileKind::ibs || kind == FileKind::pkg;
}

/// The files of a folder by their names in it.
struct Folder {
    std::vector<std::pair<std::string, std::size_t>> files; ///< and their places in the list, sorted
    std::size_t passed_over = 0;                            ///< files of kinds that are not compared
};

Folder listFolder(FileList& files, std::string_view path, const Complaint& complain, bool& all_well) {
    Folder folder;
    const std::size_t before = files.size();
    const std::string_view arguments[] = {path};
    all_well = listFiles(files, arguments, nullptr, complain) && all_well;
    for (std::size_t place = before; place < files.size(); ++place) {
        if (!isCompared(files[place])) {
            ++folder.passed_over;
            continue;
        }
        std::string_view name = files[place].substr(path.size());
        while (name.starts_with('/'))
            name.remove_prefix(1);
        folder.files.emplace_back(name, place);
    }
    std::ranges::sort(folder.files);
    return folder;
}

/// Files of equal names, and those that only one folder has, by their names.
std::vector<FilePair> pairByName(const Folder& was, const Folder& is) {
    std::vector<FilePair> pairs;
    auto before = was.files.begin();
    auto now = is.files.begin();
    while (before != was.files.end() || now != is.files.end()) {
        FilePair pair;
        const bool takes_old = before != was.files.end() && (now == is.files.end() || before->first <= now->first);
        const bool takes_new = now != is.files.end() && (before == was.files.end() || now->first <= before->first);
        if (takes_old) pair.was = (before++)->second;
        if (takes_new) pair.is = (now++)->second;
        pairs.push_back(pair);
    }
    return pairs;
}

/// What is left of both folders and only differs in the case of letters belongs together, where that is clear: names of
/// files are often put into lower case from one edition to the next.
void pairWithoutCase(std::vector<FilePair>& pairs, const Folder& was, const Folder& is) {
    struct Lonely {
        std::vector<std::size_t> was; ///< places of pairs
        std::vector<std::size_t> is;
    };
    TextMap<Lonely> by_name;
    const auto lonely_of = [&by_name](std::string name) -> Lonely& {
        lowerCase(name);
        return by_name[std::move(name)];
    };
    std::size_t old_file = 0;
    std::size_t new_file = 0;
    for (std::size_t place = 0; place < pairs.size(); ++place) {
        const FilePair& pair = pairs[place];
        const bool has_old = pair.was != FilePair::kNone;
        const bool has_new = pair.is != FilePair::kNone;
        if (has_old && !has_new) lonely_of(was.files[old_file].first).was.push_back(place);
        if (has_new && !has_old) lonely_of(is.files[new_file].first).is.push_back(place);
        if (has_old) ++old_file;
        if (has_new) ++new_file;
    }
    for (const auto& [name, lonely] : by_name) {
        if (lonely.was.size() != 1 || lonely.is.size() != 1) continue;
        FilePair& gone = pairs[lonely.was.front()];
        pairs[lonely.is.front()].was = gone.was;
        gone.was = FilePair::kNone;
    }
    std::erase_if(pairs,
                  [](const FilePair& pair) { return pair.was == FilePair::kNone && pair.is == FilePair::kNone; });
}

/// The memory of a pair: what is read of both files, and what the comparison takes beside that.
struct PairMemory {
    const MemoryLimit* limit; ///< null for none
    MemoryBudget budget{.limit = limit != nullptr ? limit->bytes : 0};
    const std::atomic<std::size_t> turn = 0;

    /// Counts a part of it, where memory is limited. No part goes first: they are not done again.
    void open(std::optional<MemoryAccount>& account) {
        if (limit != nullptr) account.emplace(budget, turn, 1);
    }
};

/// Does a part of the work on a pair. Why there is nothing to compare is returned; an empty text when there is.
template <class Work>
std::string problemOf(const MemoryLimit* limit, std::optional<MemoryAccount>& account, const Work& work) {
    const auto has_enough = [&] {
        return !account || account->end() == MemoryEnd::none || account->end() == MemoryEnd::refused;
    };
    try {
        const Charged charged(limit != nullptr ? limit->charge_to : chargeNone, account ? &*account : nullptr);
        work();
        if (has_enough()) return {};
    } catch (const std::bad_alloc&) {
        if (has_enough()) return ": out of memory; not compared";
    } catch (const std::exception& failure) {
        return std::string(": ").append(failure.what()).append("; not compared");
    }
    const std::string_view shown = limit != nullptr ? limit->shown : std::string_view(); // one that is over has a limit
    return std::string(": more memory than --max-memory=").append(shown).append(" is needed; not compared");
}

/// A file that is read to be compared.
struct ReadFile {
    std::string_view name;
    Output nowhere = Output::nowhere();
    std::optional<MemoryAccount> account{};
    std::unique_ptr<Run> run{};
    FileOutcome outcome{};
    bool is_cut_off = false;                      ///< it has no end
    bool lacked_memory = false;                   ///< it was not read to its end for lack of memory
    std::map<MessageCode, std::int64_t> errors{}; ///< how many of each kind, of those that may lose something
    std::string problem{};                        ///< why it cannot be compared; empty when it can
};

std::int64_t errorCount(const ReadFile& file) {
    return file.run == nullptr ? 0 : failureCount(diagnosticCounts(file.run->diagnostics));
}

/// True when there is nothing to be compared but the header.
bool hasNoRecord(const Ibis& root) {
    return root.components.empty() && root.models.empty() && root.model_selectors.empty() && root.submodels.empty() &&
           root.package_models.empty() && root.external_circuits.empty() && root.test_loads.empty() &&
           root.test_data.empty();
}

void readInRun(ReadFile& file) {
    file.run = std::make_unique<Run>(file.nowhere);
    Run& run = *file.run;
    constexpr MessageCode kNoEnd = 903;
    constexpr MessageCode kNoMemory = 1908;
    constexpr MessageCode kLongLine = 905; // of which nothing is lost
    run.diagnostics.sink = [&file](const Finding& finding) {
        if (!finding.code) return;
        if (levelOf(finding.severity) == Level::error && finding.code->number != kLongLine)
            ++file.errors[finding.code->number];
        if (finding.code->number == kNoEnd) file.is_cut_off = true;
        if (finding.code->number == kNoMemory) file.lacked_memory = true;
    };
    checkContained(run, file.name, {}, file.outcome);
}

void readFile(ReadFile& file, PairMemory& memory) {
    memory.open(file.account);
    file.problem = problemOf(memory.limit, file.account, [&] { readInRun(file); });
    if (file.problem.empty() && file.lacked_memory) file.problem = ": out of memory; not compared";
    if (!file.problem.empty()) {
        file.run.reset();
        file.account.reset();
    } else if (!file.outcome.read) {
        file.problem = ": cannot be read, or is empty; not compared";
    } else if (!file.outcome.checked || file.run->roots.empty() || currentRoot(*file.run).headers.empty()) {
        file.problem = ": its version is not checked; not compared";
    } else if (file.is_cut_off && hasNoRecord(currentRoot(*file.run))) {
        file.problem = ": nothing but its header could be read; not compared";
    }
}

/// Reads both, at the same time where that is wanted and there is a thread for it.
void readBoth(ReadFile& was, ReadFile& is, PairMemory& memory, bool together) {
    std::thread helper;
    if (together) {
        try {
            helper = std::thread([&] { readFile(was, memory); });
        } catch (const std::system_error&) { // then one after the other
        }
    }
    readFile(is, memory);
    helper.joinable() ? helper.join() : readFile(was, memory);
}

ComparedPath pathOf(const ReadFile& file) {
    return {
        .path = file.name, .version = file.outcome.version, .errors = errorCount(file), .read = file.problem.empty()};
}

/// The keywords of later versions that one of the files has.
std::vector<std::string_view> passedOver(const ReadFile& was, const ReadFile& is) {
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < kLaterKeywordCount; ++i) {
        const auto keyword = static_cast<LaterKeyword>(i);
        const std::string_view name = laterKeywordName(keyword);
        if (name.starts_with("End_")) continue; // of a block that is named
        if (wasPassedOver(was.run->parse, keyword) || wasPassedOver(is.run->parse, keyword)) names.push_back(name);
    }
    return names;
}

/// True for files that can be read again and hold the same bytes.
bool haveSameBytes(std::string_view was, std::string_view is) {
    std::error_code failure;
    if (!fs::is_regular_file(was, failure) || !fs::is_regular_file(is, failure)) return false;
    std::ifstream before{std::string(was), std::ios::binary};
    std::ifstream now{std::string(is), std::ios::binary};
    std::array<char, std::size_t{64} << 10> old_bytes;
    std::array<char, old_bytes.size()> new_bytes;
    while (before && now) {
        before.read(old_bytes.data(), old_bytes.size());
        now.read(new_bytes.data(), new_bytes.size());
        const std::streamsize count = before.gcount();
        if (count != now.gcount() || !std::equal(old_bytes.begin(), old_bytes.begin() + count, new_bytes.begin()))
            return false;
    }
    return before.eof() && now.eof();
}

/// The root of a file; null where nothing is left of it.
const Ibis* rootOf(const ReadFile& file) {
    return file.run == nullptr || file.run->roots.empty() ? nullptr : &currentRoot(*file.run);
}

ComparedFile comparedFile(const ReadFile& file) {
    return {.root = currentRoot(*file.run), .path = file.run->diagnostics.file};
}

/// Compares the pairs of a call.
class Comparing {
public:
    Comparing(const ComparedOutputs& outputs, const CompareSettings& settings, bool together)
        : outputs_(outputs), settings_(settings), together_(together) {}

    void compare(std::string_view old_name, std::string_view new_name) {
        PairMemory memory{outputs_.memory};
        ReadFile was{.name = old_name};
        ReadFile is{.name = new_name};
        readBoth(was, is, memory, together_);
        ComparedPair pair{.was = pathOf(was), .is = pathOf(is)};
        ++totals_.pairs;
        FileChanges changes;
        if (was.problem.empty() && is.problem.empty()) {
            std::optional<MemoryAccount> account;
            memory.open(account);
            is.problem = problemOf(memory.limit, account, [&] {
                changes = compareFiles(comparedFile(was), comparedFile(is), settings_);
                pair.passed_over = passedOver(was, is);
            });
            if (is.problem.empty()) pair.changes = &changes;
        }
        pair.same_errors = was.errors == is.errors;
        if (verdictOf(pair) == CompareVerdict::notWhole) pair.same_bytes = haveSameBytes(was.name, is.name);
        outputs_.format.pair(pair);
        if (outputs_.page != nullptr) outputs_.page->pair(pair, rootOf(was), rootOf(is));
        for (const ReadFile* const file : {&was, &is})
            if (!file->problem.empty()) tell(outputs_.out, outputs_.errors, file->name, file->problem);
        switch (verdictOf(pair)) {
        case CompareVerdict::same: break;
        case CompareVerdict::different:
            ++totals_.different;
            status_ = std::max(status_, kSomeFailed);
            break;
        case CompareVerdict::notWhole:
            ++totals_.not_whole;
            status_ = kTrouble;
            break;
        case CompareVerdict::notCompared:
            ++totals_.not_compared;
            status_ = kTrouble;
            break;
        }
    }

    void lonely(std::string_view name, bool is_new) {
        ++(is_new ? totals_.only_new : totals_.only_old);
        outputs_.format.lonely(name, is_new);
        if (outputs_.page != nullptr) outputs_.page->lonely(name, is_new);
        status_ = std::max(status_, kSomeFailed);
    }

    VerimarkStatus end() {
        outputs_.format.ends(totals_);
        return status_;
    }

private:
    const ComparedOutputs& outputs_;
    const CompareSettings& settings_;
    bool together_;
    CompareTotals totals_;
    VerimarkStatus status_ = kAllPassed;
};

} // namespace

bool listPairs(FilePairs& pairs, FileList& files, std::string_view was, std::string_view is,
               const Complaint& complain) {
    pairs.files = &files;
    std::error_code failure;
    const bool old_is_folder = fs::is_directory(was, failure);
    const bool new_is_folder = fs::is_directory(is, failure);
    bool all_well = true;
    if (old_is_folder && new_is_folder) {
        const Folder before = listFolder(files, was, complain, all_well);
        const Folder now = listFolder(files, is, complain, all_well);
        pairs.pairs = pairByName(before, now);
        pairWithoutCase(pairs.pairs, before, now);
        if (const std::size_t count = std::max(before.passed_over, now.passed_over); count > 0)
            complain(std::to_string(count), " .ebd and .ami files are not compared");
        return all_well;
    }
    const auto file_in = [&](std::string_view folder, std::string_view file) {
        return (fs::path(folder) / fs::path(file).filename()).string();
    };
    const std::string old_name = old_is_folder ? file_in(was, is) : std::string(was);
    const std::string new_name = new_is_folder ? file_in(is, was) : std::string(is);
    for (const std::string* const name : {&old_name, &new_name}) {
        if (!isCompared(*name)) {
            complain(*name, ": only .ibs and .pkg files are compared");
            all_well = false;
        }
        files.add(*name);
    }
    if (all_well) pairs.pairs.push_back({0, 1});
    return all_well;
}

bool worksTogether(const MemoryLimit* memory, unsigned jobs) {
    return memory == nullptr && jobs != 1 && (jobs > 1 || std::thread::hardware_concurrency() > 1);
}

VerimarkStatus compareAll(const ComparedOutputs& outputs, const FilePairs& pairs, const CompareSettings& settings,
                          bool together) {
    Comparing comparing(outputs, settings, together);
    for (const FilePair& pair : pairs.pairs) {
        if (pair.was == FilePair::kNone) {
            comparing.lonely((*pairs.files)[pair.is], true);
        } else if (pair.is == FilePair::kNone) {
            comparing.lonely((*pairs.files)[pair.was], false);
        } else {
            comparing.compare((*pairs.files)[pair.was], (*pairs.files)[pair.is]);
        }
        if (outputs.out.failed()) break;
    }
    return comparing.end();
}

} // namespace kestrel

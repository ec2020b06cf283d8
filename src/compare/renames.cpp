#include "compare/renames.hpp"

#include "compare/models.hpp"
#include "model/mdl.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <compare>
#include <cstdint>
#include <limits>
#include <set>

namespace kestrel {

namespace {

/// By what models are sorted: those that may be the same are near each other.
struct Fingerprint {
    ModelType type = ModelType::notGiven;
    std::uint32_t tables = 0; ///< which there are, a bit each
    std::size_t rising = 0;   ///< how many waveforms
    std::size_t falling = 0;
    double measure = 0.0; ///< the sum of the largest currents of the tables and the largest voltages of the waveforms

    [[nodiscard]] bool hasTables() const { return tables != 0 || rising + falling > 0; }
    auto operator<=>(const Fingerprint& other) const = default;
};

double largestOf(std::span<const TableRow> rows) {
    double most = 0.0;
    for (const TableRow& row : rows)
        if (std::isfinite(row[kTyp].value())) most = std::max(most, std::abs(row[kTyp].value()));
    return most;
}

Fingerprint fingerprintOf(const Mdl& model) {
    const MdlTables& tables = *model.tables;
    Fingerprint print{
        .type = model.type(), .rising = tables.rising_waveforms.size(), .falling = tables.falling_waveforms.size()};
    std::uint32_t bit = 1;
    for (const Crv* const curve :
         {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp, &tables.isso_pu, &tables.isso_pd}) {
        if (curve->given) {
            print.tables |= bit;
            print.measure += largestOf({curve->rows.data(), curve->rows.size()});
        }
        bit <<= 1U;
    }
    if (tables.ramp) print.tables |= bit;
    for (const Rows<Wvfrm>* const list : {&tables.rising_waveforms, &tables.falling_waveforms})
        for (const Wvfrm& waveform : *list)
            print.measure += largestOf({waveform.rows.data(), waveform.rows.size()});
    if (!std::isfinite(print.measure)) print.measure = 0.0;
    return print;
}

/// A model of OLD that may still get a partner.
struct Candidate {
    Fingerprint print;
    std::size_t place;

    auto operator<=>(const Candidate& other) const = default;
};

constexpr std::size_t kNoMatch = std::numeric_limits<std::size_t>::max();

/// How many other changes make the one model of the other; kNoMatch where the tables differ.
std::size_t changesBetween(const Mdl& was, const Mdl& is, bool has_tables, const CompareSettings& settings) {
    ChangeList changes;
    const ViewMap<std::string_view> none;
    Comparison comparison{.settings = settings,
                          .changes = changes,
                          .renamed = none,
                          .record = {.kind = SubjectKind::model, .name = is.name}};
    compareModelTables(comparison, was, is);
    if (changes.additions() > 0) return kNoMatch;
    compareModelFields(comparison, was, is);
    // Models without tables are only the same when all of them is.
    return has_tables || changes.additions() == 0 ? changes.additions() : kNoMatch;
}

} // namespace

std::vector<std::pair<const Mdl*, const Mdl*>> findRenamed(const std::vector<const Mdl*>& gone,
                                                           const std::vector<const Mdl*>& fresh,
                                                           const CompareSettings& settings) {
    constexpr int kMostTried = 8;
    std::vector<std::pair<const Mdl*, const Mdl*>> renamed;
    if (gone.empty() || fresh.empty()) return renamed;
    std::set<Candidate> left;
    for (std::size_t place = 0; place < gone.size(); ++place)
        left.insert({fingerprintOf(*gone[place]), place});
    for (const Mdl* const model : fresh) {
        const Fingerprint print = fingerprintOf(*model);
        // The largest values differ by no more than each value may.
        const double width = 2 * std::max(settings.tolerance / 100, 1e-9) * print.measure;
        Fingerprint lowest = print;
        lowest.measure -= width;
        Fingerprint highest = print;
        highest.measure += width;
        auto best = left.end();
        std::size_t fewest = kNoMatch;
        int tried = 0;
        for (auto at = left.lower_bound({lowest, 0}); at != left.end() && tried < kMostTried && fewest > 0; ++at) {
            if (at->print > highest) break;
            ++tried;
            const std::size_t changes = changesBetween(*gone[at->place], *model, print.hasTables(), settings);
            if (changes >= fewest) continue;
            fewest = changes;
            best = at;
        }
        if (best == left.end()) continue;
        renamed.emplace_back(gone[best->place], model);
        left.erase(best);
    }
    return renamed;
}

} // namespace kestrel

#include "compare/renames.hpp"

#include "compare/models.hpp"
#include "model/mdl.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <compare>
#include <cstdint>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace kestrel {

namespace {

/// By what models are sorted: those that may be the same are near each other, and those that are the same are next to
/// each other.
struct Fingerprint {
    ModelType type = ModelType::notGiven;
    std::uint32_t tables = 0; ///< which there are, a bit each
    std::size_t rising = 0;   ///< how many waveforms
    std::size_t falling = 0;
    double tables_sum = 0.0; ///< of the largest values of the tables, each with a weight of its own
    double values_sum = 0.0; ///< of other numbers

    [[nodiscard]] bool hasTables() const { return tables != 0 || rising + falling > 0; }
    auto operator<=>(const Fingerprint& other) const = default;
};

/// Sums of numbers, in which the first does not count as much as the second.
class WeightedSum {
public:
    void add(double value) {
        weight_ *= kStep;
        if (std::isfinite(value)) sum_ += weight_ * std::abs(value);
    }
    void add(const Rng& range, double scale) {
        for (const Corner corner : kCorners)
            add(scale * range[corner].value());
    }
    [[nodiscard]] double value() const { return sum_; }

private:
    static constexpr double kStep = 1.0625;
    double weight_ = 1.0;
    double sum_ = 0.0;
};

double largestOf(const Rows<TableRow>& rows, Corner corner) {
    double most = 0.0;
    for (const TableRow& row : rows)
        if (const double size = std::abs(row[columnOf(corner)].value()); std::isfinite(size))
            most = std::max(most, size);
    return most;
}

double tablesSum(const MdlTables& tables) {
    WeightedSum sum;
    for (const Crv* const curve :
         {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp, &tables.isso_pu, &tables.isso_pd}) {
        for (const Corner corner : kCorners)
            sum.add(largestOf(curve->rows, corner));
    }
    for (const Rows<Wvfrm>* const list : {&tables.rising_waveforms, &tables.falling_waveforms}) {
        for (const Corner corner : kCorners) {
            double of_all = 0.0; // in whatever order they come
            for (const Wvfrm& waveform : *list)
                of_all += largestOf(waveform.rows, corner);
            sum.add(of_all);
        }
    }
    return sum.value();
}

double valuesSum(const Mdl& model) {
    constexpr double kPico = 1e12;
    WeightedSum sum;
    const MdlValues& values = *model.values;
    for (const GivenValue value : {values.vinl, values.vinh, values.vmeas, values.vref})
        sum.add(value.value_or(0.0));
    sum.add(values.cref.value_or(0.0) * kPico);
    sum.add(values.rref.value_or(0.0));
    sum.add(values.c_comp ? *values.c_comp : Rng(), kPico);
    for (const MdlRange which : {MdlRange::voltageRange, MdlRange::temperatureRange})
        if (const Rng* const range = findRange(model, which)) sum.add(*range, 1.0);
    return sum.value();
}

Fingerprint fingerprintOf(const Mdl& model) {
    const MdlTables& tables = *model.tables;
    Fingerprint print{.type = model.type(),
                      .rising = tables.rising_waveforms.size(),
                      .falling = tables.falling_waveforms.size(),
                      .tables_sum = tablesSum(tables),
                      .values_sum = valuesSum(model)};
    std::uint32_t bit = 1;
    for (const Crv* const curve :
         {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp, &tables.isso_pu, &tables.isso_pd}) {
        if (curve->given) print.tables |= bit;
        bit <<= 1U;
    }
    if (tables.ramp) print.tables |= bit;
    return print;
}

/// A model of OLD that may still get a partner.
struct Candidate {
    Fingerprint print;
    std::size_t place;

    auto operator<=>(const Candidate& other) const = default;
};
using Candidates = std::set<Candidate>;

/// Up to where two models may be the same.
class Neighbourhood {
public:
    Neighbourhood(const Fingerprint& print, double share) : print_(print) {
        // The largest values differ by no more than each value may.
        constexpr double kSmallCurrents = 1e-3;
        const double width = 2 * std::max(share, 1e-9);
        tables_width_ = width * print.tables_sum + kSmallCurrents;
        values_width_ = print.hasTables() ? HUGE_VAL : width * print.values_sum;
    }

    [[nodiscard]] bool has(const Fingerprint& other) const {
        return other.type == print_.type && other.tables == print_.tables && other.rising == print_.rising &&
               other.falling == print_.falling && std::abs(other.tables_sum - print_.tables_sum) <= tables_width_ &&
               std::abs(other.values_sum - print_.values_sum) <= values_width_;
    }

    /// True when the first is nearer than the second.
    [[nodiscard]] bool isNearer(const Fingerprint& a, const Fingerprint& b) const {
        const auto distance = [this](const Fingerprint& other) {
            return std::pair(std::abs(other.tables_sum - print_.tables_sum),
                             std::abs(other.values_sum - print_.values_sum));
        };
        return distance(a) < distance(b);
    }

private:
    Fingerprint print_;
    double tables_width_;
    double values_width_;
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

/// The model of OLD that is most alike, and how many other changes it has.
struct Likest {
    Candidates::iterator at;
    std::size_t changes = kNoMatch;
};

/// Looks for it outwards from where the model itself would be, while there are tries left: the first that is tried is
/// nearly always the one.
Likest likest(const Candidates& left, const std::vector<const Mdl*>& gone, const Mdl& model,
              const CompareSettings& settings, std::size_t& tries) {
    const Fingerprint print = fingerprintOf(model);
    const Neighbourhood near(print, settings.tolerance / 100);
    Likest found{left.end()};
    auto above = left.lower_bound({print, 0});
    auto below = above;
    while (found.changes > 0) {
        const bool has_above = above != left.end() && near.has(above->print);
        const bool has_below = below != left.begin() && near.has(std::prev(below)->print);
        if (!has_above && !has_below) break;
        const bool takes_above = has_above && (!has_below || !near.isNearer(std::prev(below)->print, above->print));
        const auto tried = takes_above ? above++ : --below;
        const std::size_t changes = changesBetween(*gone[tried->place], model, print.hasTables(), settings);
        if (changes < found.changes) found = {tried, changes};
        if (tries == 0) break;
        --tries;
    }
    return found;
}

} // namespace

std::vector<std::pair<const Mdl*, const Mdl*>> findRenamed(const std::vector<const Mdl*>& gone,
                                                           const std::vector<const Mdl*>& fresh,
                                                           const CompareSettings& settings) {
    std::vector<std::pair<const Mdl*, const Mdl*>> renamed;
    if (gone.empty() || fresh.empty()) return renamed;
    Candidates left;
    for (std::size_t place = 0; place < gone.size(); ++place)
        left.insert({fingerprintOf(*gone[place]), place});
    // Whoever is the same comes before whoever is only alike.
    std::vector<const Mdl*> lonely = fresh;
    for (const std::size_t most : {std::size_t{0}, kNoMatch - 1}) {
        std::size_t tries = std::size_t{4096} + 4 * lonely.size();
        std::vector<const Mdl*> remaining;
        for (const Mdl* const model : lonely) {
            const Likest found = likest(left, gone, *model, settings, tries);
            if (found.at == left.end() || found.changes > most) {
                remaining.push_back(model);
                continue;
            }
            renamed.emplace_back(gone[found.at->place], model);
            left.erase(found.at);
        }
        lonely = std::move(remaining);
    }
    return renamed;
}

} // namespace kestrel

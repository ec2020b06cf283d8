#pragma once

#include "base/row_store.hpp"
#include "reader/rng.hpp"
#include "reader/rngp.hpp"

#include <type_traits>
#include <vector>

#include <kestrel/kestrel.hpp>

/// How the records of a run become those that the library hands out.
namespace kestrel {

struct Cmpnt;
struct Mdl;
struct MSel;
struct PkgMdl;
struct SubMdl;

namespace api {

[[nodiscard]] inline double valueOf(Cell cell) { return cell.isNumber() ? cell.value() : kNotGiven; }
[[nodiscard]] inline double valueOf(GivenValue value) { return value.value_or(kNotGiven); }
[[nodiscard]] inline Corners cornersOf(const Rng& range) {
    return {.typ = valueOf(range.typ()), .min = valueOf(range.min()), .max = valueOf(range.max())};
}
[[nodiscard]] inline Corners cornersOf(const GivenRange& range) { return range ? cornersOf(*range) : Corners{}; }

/// The cells of a table as numbers, where they are: those that are none are NaNs.
[[nodiscard]] inline Table tableOf(const Rows<TableRow>& rows) {
    static_assert(std::is_standard_layout_v<Cell> && sizeof(TableRow) == Table::kColumns * sizeof(double));
    const auto* const first = reinterpret_cast<const double*>(rows.data());
    return Table(std::span(first, rows.size() * Table::kColumns));
}

/// The word of a code that is a place among words.
template <class Words, class Code> [[nodiscard]] constexpr std::string_view wordAt(const Words& words, Code code) {
    const auto place = static_cast<std::size_t>(code);
    return place < words.size() ? words[place] : std::string_view();
}

/// A list over records next to each other, each made by `MakeOne`.
template <auto MakeOne, class Record> [[nodiscard]] auto listOf(const Record* first, std::size_t size) {
    using Made = std::invoke_result_t<decltype(MakeOne), const Record&>;
    return List<Made>({.records = first}, size, [](const ListSource& source, std::size_t place) -> Made {
        return MakeOne(static_cast<const Record*>(source.records)[place]);
    });
}
template <auto MakeOne, class Records> [[nodiscard]] auto listOf(const Records& records) {
    return listOf<MakeOne>(records.data(), records.size());
}

/// A list over records that are kept by their addresses.
template <auto MakeOne, class Record> [[nodiscard]] auto listOfPointed(const std::vector<const Record*>& records) {
    return listOf<[](const Record* const& record) { return MakeOne(*record); }>(records);
}

[[nodiscard]] Component componentOf(const Cmpnt& record);
[[nodiscard]] Model modelOf(const Mdl& record);
[[nodiscard]] Submodel submodelOf(const SubMdl& record);
[[nodiscard]] Selector selectorOf(const MSel& record);
[[nodiscard]] PackageModel packageModelOf(const PkgMdl& record);

} // namespace api
} // namespace kestrel

#pragma once

#include "base/name_table.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

/// The kinds of records that a diagnostic may be about.
enum class SubjectKind : std::uint8_t {
    header,
    component,
    model,
    externalCircuit,
    submodel,
    modelSelector,
    testData,
    testLoad,
    packageModel,
    board
};

/// The name of a kind in machine-readable forms, such as "model".
[[nodiscard]] std::string_view subjectKindName(SubjectKind kind);

/// What every record of a file begins with: enough to say what a diagnostic is about.
struct Subject {
    SubjectKind kind;
    std::uint32_t line = 0;            ///< at which the record began
    Name name;                         ///< as the record keeps it; empty when the file gives none
    const std::string* file = nullptr; ///< the path of the file that it is in, kept by the diagnostics of the run
};

/// The base of the records of one kind.
template <SubjectKind Kind> struct RecordOf : Subject {
    RecordOf() : Subject{Kind, 0, {}, nullptr} {}
};

} // namespace kestrel

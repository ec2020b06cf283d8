#pragma once

#include "base/name_table.hpp"

#include <cstdint>

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

/// What every record of a file begins with: enough to say what a diagnostic is about.
struct Subject {
    SubjectKind kind;
    std::uint32_t line = 0; ///< at which the record began
    Name name;              ///< as the record keeps it; empty when the file gives none
};

/// The base of the records of one kind.
template <SubjectKind Kind> struct RecordOf : Subject {
    RecordOf() : Subject{Kind, 0, {}} {}
};

} // namespace kestrel

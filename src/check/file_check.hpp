#pragma once

#include "diagnostics/file_outcome.hpp"
#include "reader/parse_state.hpp"

#include <string_view>

/// The check of one file in a run of its own.
namespace kestrel {

struct Run;

/// The kind of a file by its name. One without an extension that gives a kind is handled as that of an .ibs file, as
/// kestrel does.
[[nodiscard]] FileKind kindOrIbs(std::string_view name);

/// Checks one file. What has become of it is right at any time, whatever ends the check.
void checkInRun(Run& run, std::string_view name, FileKind kind, FileOutcome& outcome);

/// Hands what the checks of advice say of the file that was read to the sink of the run.
void giveAdvice(const Run& run, std::string_view name);

/// How a file is checked that must not end the program.
struct ContainedCheck {
    bool takes_later = true;     ///< versions later than 5.1 are read
    bool advises = false;        ///< what was read gets advice
    bool empty_is_found = false; ///< a file that cannot be read gives a finding in any case
};

/// Checks one file whose findings go to the sink of the run. Where the check gives the file up, it ends with an error
/// of that place. Parameter files outside of the file's folder are not read.
void checkContained(Run& run, std::string_view name, const ContainedCheck& wanted, FileOutcome& outcome);

} // namespace kestrel

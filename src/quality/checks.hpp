#pragma once

#include "quality/advice.hpp"

#include <span>
#include <string_view>
#include <variant>
#include <vector>

/// Advice: what an engineer checks by hand in a file that is right in every line. The numbers of the records are looked
/// at, never the text of the file; where data are missing nothing is said.
namespace kestrel {

struct AdvisedFile;
struct AdvisedModel;

/// A check of the whole file, and one of a model.
using CheckOfFile = void (*)(const AdvisedFile& file, AdviceList& list);
using CheckOfModel = void (*)(const AdvisedModel& model, AdviceList& list);

/// One check: the number of its code, what it finds in a few words, and the function.
struct Check {
    MessageCode code;
    std::string_view title;
    std::variant<CheckOfFile, CheckOfModel> run;
};

/// All checks by ascending code.
[[nodiscard]] std::span<const Check> adviceChecks();

/// The check of a code, or null.
[[nodiscard]] const Check* adviceCheck(MessageCode code);

/// What all checks say of a file that was read, in the order of lines and codes. The texts are their own, the subjects
/// are those of the records.
[[nodiscard]] std::vector<Advice> adviseOn(const AdvisedFile& file);

} // namespace kestrel

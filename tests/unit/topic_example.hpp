#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// A file of an example and those beside it, by name.
struct ExampleFiles {
    std::string name; ///< of the one to check
    std::map<std::string, std::string> texts;
};

/// Puts the lines of an example into the frame that `frame` describes, such as "model without [Ramp]". The frames come
/// from a folder; all of them are beside the file. What is wrong with `frame` is added to `faults`.
[[nodiscard]] ExampleFiles expandExample(const std::string& folder, std::string_view frame, std::string_view lines,
                                         std::vector<std::string>& faults);

/// The whole of a text file.
[[nodiscard]] std::string readWhole(const std::string& path);

} // namespace kestrel

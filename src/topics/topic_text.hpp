#pragma once

#include "diagnostics/finding_code.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// A topic as its text file gives it. The parts in prose have one line for each paragraph, with empty lines between
/// them; lines that begin with a blank are as in the file.
struct TopicText {
    std::string slug; ///< the file's name without its extension
    std::string title;
    std::vector<FindingCode> codes;
    std::string meaning;
    std::string why;
    std::string mend;
    std::string formula; ///< empty for most
    std::string frame;   ///< what the lines of the example are put into; empty without an example
    std::string bad;     ///< lines that raise a message of the topic
    std::string mended;  ///< the same lines as they should be
    std::string reason;  ///< why there is no example; empty with one
};

/// Reads the text of a topic. What is wrong with its form is added to `faults`, each as a text behind a line number.
[[nodiscard]] TopicText readTopicText(std::string_view slug, std::string_view text, std::vector<std::string>& faults);

/// The number of words of a text.
[[nodiscard]] std::size_t countWords(std::string_view text);

} // namespace kestrel

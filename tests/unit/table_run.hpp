#pragma once

#include "ibis/run.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace kestrel {

/// Drives a section of a model as the reader does, line by line; messages come with their codes.
struct TableRun {
    TableRun() {
        run.parse.version = IbisVersion::v5;
        run.diagnostics.coded_form = true;
    }

    /// Calls `read` with every line of `text`, the line counter going up before each.
    template <class Read> void lines(std::string_view text, Read&& read) {
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            ++run.parse.line;
            read(line);
            text.remove_prefix(std::min(text.size(), line.size() + 1));
        }
    }

    /// What was printed, messages that were broken over two lines joined again and the padding of the line number gone.
    [[nodiscard]] std::string printed() const {
        std::string text = out.text();
        for (std::size_t at = text.find("\n    "); at != std::string::npos; at = text.find("\n    ")) {
            text.erase(at, 4);
            text[at] = ' ';
        }
        for (std::size_t at = text.find("(line  "); at != std::string::npos; at = text.find("(line  ")) {
            text.erase(at + 5, 1);
        }
        return text;
    }

    Output out;
    Run run{out};
};

} // namespace kestrel

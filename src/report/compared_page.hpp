#pragma once

#include "compare/output.hpp"
#include "report/page.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Ibis;

/// The page of a comparison: for each pair of files what changed, with the curves of both on each other. It is begun
/// when it is made.
class ComparedPage {
public:
    /// `title` is what the page is about, `program` what made it.
    ComparedPage(Output& out, std::string_view title, std::string_view program) : page_(out, title, program) {}

    /// Writes the part of a pair. The roots are those of the files; they are only asked for where the pair has changes.
    void pair(const ComparedPair& pair, const Ibis* was, const Ibis* is);
    /// Notes a file that only one of two folders has.
    void lonely(std::string_view path, bool is_new);
    /// Ends the page; of several pairs it lists them.
    void end();

private:
    enum class Outcome : std::uint8_t { same, different, notWhole, notCompared, onlyOld, onlyNew };
    struct Row {
        std::uint32_t number; ///< of the pair; 0 of a file that is alone
        std::string path;     ///< of the new file where there is one
        Outcome outcome;
        std::string summary;
    };

    static void writeOutcome(Html& html, Outcome outcome);
    void writeHead(Html& html, const ComparedPair& pair, const Row& row, const Ibis* was, const Ibis* is) const;

    Page page_;
    std::uint32_t pairs_ = 0;
    std::vector<Row> rows_;
};

} // namespace kestrel

// Writes the dictionary of an entry from the tables of the programs: keywords, reserved parameters, options.

#include "ami/reserved.hpp"
#include "main/verimark_options.hpp"
#include "reader/keyword.hpp"

#include <cstdio>
#include <string>
#include <string_view>

namespace {

using namespace kestrel;

/// Text that is to be put into inputs; a line feed in it is written as "\n" in an input.
void write(std::string_view text) {
    std::string line("\"");
    for (const char c : text) {
        if (c == '\n') {
            line.append("\\x0a");
            continue;
        }
        if (c == '"' || c == '\\') line.push_back('\\');
        line.push_back(c);
    }
    std::printf("%s\"\n", line.c_str());
}

void writeKeyword(std::string_view name) { write(std::string("\n[").append(name).append("] ")); }

void writeKeywords() {
    for (std::size_t code = 0; code + 1 < kKeywordCodes; ++code)
        writeKeyword(tableName(static_cast<KeywordCode>(code)));
    for (std::size_t keyword = 0; keyword < kLaterKeywordCount; ++keyword)
        writeKeyword(laterKeywordName(static_cast<LaterKeyword>(keyword)));
    for (const std::string_view version : {"2.1", "3.2", "4.2", "5.1", "6.1", "7.2"})
        write(std::string("[IBIS Ver] ").append(version).append("\n"));
}

void writeReserved() {
    for (const ReservedRow& row : kReserved)
        write(std::string("(").append(row.text).append(" "));
}

void writeOptions() {
    for (const OptionRow& row : optionRows()) {
        write(std::string("\n--").append(row.name).append(row.value.empty() ? "\n" : "="));
        for (const std::string_view choice : row.choices)
            write(choice);
    }
}

} // namespace

int main(int count, char** values) {
    const std::string_view entry = count > 1 ? values[1] : "";
    if (entry == "ami") {
        writeReserved();
    } else if (entry == "calls") {
        writeOptions();
    } else if (entry != "texts") {
        writeKeywords();
    }
    if (entry != "texts" && entry != "ami")
        for (const std::string_view extension : {"ibs", "pkg", "ebd", "ami"})
            write(std::string("\n--- chip.").append(extension).append("\n"));
    return 0;
}

// No keyword of any version takes the lines under it without a word: each is stored or reported.

#include "files.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using K = KeywordCode;

std::string_view versionText(IbisVersion version) {
    constexpr std::array<std::string_view, 4> kTexts{"2.1", "3.2", "4.2", "5.1"};
    return kTexts[static_cast<std::size_t>(version) - 2];
}

/// The lines that a keyword has to follow to mean something.
std::string_view contextOf(K code) {
    switch (ownerOf(code)) {
    case Owner::cmpnt:
        return isBetween(code, K::pinEmi, K::pinDomainEmi) ? "[Component] C\n[Begin EMI Component]\n"
                                                           : "[Component] C\n";
    case Owner::mdl:
        if (isBetween(code, K::rSeries, K::seriesMosfet)) return "[Model] M\nModel_type Series_switch\n[On]\n";
        if (code == K::compositeCurrent) return "[Model] M\n[Rising Waveform]\n";
        return "[Model] M\n";
    case Owner::pkgmdl:
        if (isBetween(code, K::resistanceMatrix, K::row)) {
            return "[Define Package Model] P\n[Number Of Pins] 2\n[Pin Numbers]\nA\nB\n[Model Data]\n"
                   "[Resistance Matrix] Full_matrix\n[Inductance Matrix] Full_matrix\n[Row] A\n";
        }
        return "[Define Package Model] P\n";
    case Owner::ebdmdl: return "[Begin Board Description] B\n";
    case Owner::submdl: return "[Submodel] S\n";
    case Owner::testdata: return "[Test Data] T\n";
    case Owner::testload: return "[Test Load] L\n";
    default: return "";
    }
}

/// The free texts of the file's header, one after the other.
std::string headerTexts(const Ibis& root) {
    const Hdr& header = *root.headers.newestFirst().begin();
    return header.source.value_or("") + header.notes.value_or("") + header.disclaimer.value_or("") +
           header.copyright.value_or("");
}

bool reports(std::string_view printed, std::int64_t line) {
    std::string number = std::to_string(line);
    number.insert(0, 4 - number.size(), ' ');
    return printed.find("(line " + number + ")") != std::string_view::npos;
}

/// True when one of two equal lines of nonsense under the keyword is reported or kept. Where any name is welcome, the
/// second is one too many.
bool answersItsLines(K code, IbisVersion version) {
    constexpr std::string_view kNonsense = "%%% %%%\n";
    std::string text = "[IBIS Ver] " + std::string(versionText(version)) + "\n";
    text.append(contextOf(code)).append("[").append(tableName(code)).append("] X\n");
    const auto line = std::ranges::count(text, '\n') + 1;
    text.append(kNonsense).append(kNonsense).append("[End]\n");

    Files files;
    const std::string name =
        "walk" + std::string(extensionOf(ownerOf(code) == Owner::ebdmdl ? FileKind::ebd : FileKind::ibs));
    const std::string& printed = files.put(name, text).check(name);
    EXPECT_EQ(printed.find("BUG"), std::string::npos) << text << printed;
    return reports(printed, line) || reports(printed, line + 1) ||
           headerTexts(files.root()).find("%%%") != std::string::npos;
}

TEST(KeywordTables, noKeywordTakesItsLinesSilently) {
    int keywords = 0;
    for (const IbisVersion version : {IbisVersion::v2, IbisVersion::v3, IbisVersion::v4, IbisVersion::v5}) {
        for (int number = 0; number < static_cast<int>(K::notKey); ++number) {
            const auto code = static_cast<K>(number);
            // The lines under a change of the comment character belong to the keyword before it.
            if (!isKeywordOf(code, version) || code == K::commentChar) continue;
            ++keywords;
            EXPECT_TRUE(answersItsLines(code, version)) << tableName(code) << " of " << versionText(version);
        }
    }
    EXPECT_EQ(keywords, 50 + 88 + 109 + 121 - 4 * 2); // two of each table are no keywords with lines
}

} // namespace
} // namespace kestrel

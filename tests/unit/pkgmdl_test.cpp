// Package models: keywords, pin lines in both forms, completion, and the search of the .pkg files beside a file.

#include "lines.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

struct Row {
    std::string text;
    std::string codes;
};

/// Package models read line by line.
struct PackageLines : Lines {
    explicit PackageLines(IbisVersion version = IbisVersion::v3) : Lines(KeywordCode::definePackageModel, version) {}
    [[nodiscard]] const PkgMdl& newest() const { return *root.package_models.newestFirst().begin(); }
};

/// The codes of lines fed behind an opened package model.
void expectCodes(std::string_view before, std::initializer_list<Row> rows, IbisVersion version = IbisVersion::v3) {
    for (const Row& row : rows) {
        PackageLines lines(version);
        lines.read("[Define Package Model] P");
        lines.read(before);
        lines.codes();
        lines.read(row.text);
        EXPECT_EQ(lines.codes(), row.codes) << row.text;
    }
}

TEST(PackageModel, keywordsAndLinesOutsideOfOne) {
    PackageLines lines;
    lines.read("[OEM] x\nline\n[Define Package Model]\nline\n[OEM] x\nline\n[OEM] y\n[End]\n[Row]\nline");
    EXPECT_EQ(lines.codes(),
              "E3401@ E3402@ E1913@ E3404@ E3404@ E1911@ E3417 E3467 E3419 E3431 E3452 E3455 E3413 "
              "E3415 E3457 E3459 E3401@ E3402@");
}

TEST(PackageModel, numbers) {
    for (const std::string keyword : {"[Number Of Pins]", "[Number Of Sections]"}) {
        PackageLines lines;
        lines.read("[Define Package Model] P");
        for (const std::string_view value : {"", " abc", " 0", " 0x10", " 12abc", " 3", "", " 99999999999"})
            lines.read(keyword + std::string(value));
        // Zero, and what does not read as a number, may be given again.
        EXPECT_EQ(lines.codes(), keyword == "[Number Of Pins]"
                                     ? "E3420@ E3423@ E3424@ W3422@ E3424@ W3422@ E3421@ E3420@ E3421@"
                                     : "E3425@ E3429@ E3430@ W3428@ E3430@ W3428@ E3426@ E3425@ E3426@");
        const PkgMdl& package = lines.newest();
        EXPECT_EQ(package.number_of_pins + package.number_of_sections, 12U);
    }
}

TEST(PackageModel, sectionsAreDeclaredByAnyValue) {
    expectCodes("[Number Of Pins] 2",
                {{"[Number Of Sections]\n[Pin Numbers]\nR", "E3425@"},
                 {"[Number Of Sections] abc\n[Pin Numbers]\nR", "E3429@ W3447@ E3449@"},
                 {"[Number Of Sections] 0\n[Pin Numbers]\nR", "E3430@ W3447@ E3449@"},
                 {"[Pin Numbers]\nR\n[Number Of Sections]\n[Pin Numbers]\nL", "E3427@ E3425@ E3468@"},
                 {"[Pin Numbers]\nR\n[Number Of Sections] 1\n[Pin Numbers]\nFork\nLen=0/\nEndfork\nL Len=0/",
                  "E3427@ E3468@ W3447@"}});
    expectCodes("[Number Of Pins] 2\n[Number Of Sections] 1", {{"[Pin Numbers]\nR", ""}}, IbisVersion::v2);
}

TEST(PackageModel, marksAndPlacesOfKeywords) {
    const std::string matrix = "[Resistance Matrix] Banded_matrix\n";
    expectCodes(
        "[Number Of Pins] 1\n[Pin Numbers]\nA\n[OEM]",
        {{"[Model Data] x\n[Model Data]", "E3469@ E3468@"},
         {"[Pin Numbers] x", "E3468@ E3469@"},
         {"[End Model Data]\n[End Model Data] x\n[End Package Model]\n[End Package Model]", "E3468@ E3469@ E3468@"},
         {"[Bandwidth] 0", "E3465@"},
         {matrix + "[Bandwidth] 0\n[Bandwidth] 0\n[Row] A\n[Bandwidth] 0", "E3464@ E3465@"},
         {matrix + "1\n[Bandwidth] 0", "E3404@"},
         {"[Row] A\n1", "E3466@ E3404@"},
         // What is said of the mark's line stands before the close of the matrix.
         {matrix + "[End Model Data] x\n[Row] A\n1", "E3469@ E3717@ E3466@ E3404@"},
         {matrix + "[End Package Model]\n[Row] A\n1", "E3717@"},
         {matrix + "[Inductance Matrix] Full_matrix\n[Resistance Matrix] x\n[Row] A\n1\n[End Model Data]",
          "E3717@ E3460@ E3717@"},
         {"[Inductance Matrix] Full_matrix\n[Inductance Matrix] Full_matrix\n[Row] A\n1\n[End Model Data]", "E3461@"}});
}

TEST(PackageModel, plainPins) {
    expectCodes("[Pin Numbers]", {{"A", "E3433@"}});
    expectCodes("[Number Of Pins] 3\n[Pin Numbers]",
                {{"A\n  B\nR", ""},
                 {"A\nB\nA", "E3437@"},
                 {"A\nB\nC\nABCDEF", "E3432@ E3435@"},
                 {"ABCDE\nABCDEF", "E3432@ E3437@"},
                 {"Fork\nLen=0/\na=b/c", "E3432@"}}); // "Len=0/" has six characters
    PackageLines lines;
    lines.read("[Define Package Model] P\n[Number Of Pins] 4\n[Pin Numbers]\nA\nABCDEF\nA");
    const PackagePins& pins = lines.newest().pin_names;
    EXPECT_EQ((std::vector<std::string_view>(pins.begin(), pins.end())),
              (std::vector<std::string_view>{"A", "ABCDE", "A"}));
    EXPECT_EQ(lines.newest().odd_pins, (std::vector<std::uint32_t>{1, 2}));
    EXPECT_EQ(pinPlace(pins, "A", 9), 1U);
    EXPECT_EQ(pinPlace(pins, "ABCDEF", 1), 0U);
}

TEST(PackageModel, pinsWithSections) {
    expectCodes("[Number Of Sections] 9\n[Pin Numbers]", {{"A=C Len=0/\nLen=0/", "W3445@ E3433@ E3438@"}});
    expectCodes("[Number Of Pins] 2\n[Number Of Sections] 9\n[Pin Numbers]",
                {{"A Len=0/\nLen=0/\n  Len = 0 /", ""},
                 {"A /", "E3011@"},
                 {"A\nLen=0/", "E3449@ E3438@"},
                 {"A x", "E1919@ E3449@"},
                 {"A Len=0/ x\nLen=0/", "E1919@"},
                 {"Len=0/", "E3438@"},
                 {"A Len=0/\nB Len=0/\nC Len=x/", "W3447@ E3435@"},
                 {"A Len=0/\nA Len=0/", "E3437@"},
                 {"ABCDEF Len=0/\nABCDEG Len=0/", "E3432@ E3432@ E3437@"},
                 {"Len Len=0/\nLengthy/= Len=0/", "W3447@ E3432@ W3445@ W3446@"},
                 {"Fork\nEndfork", "E3440@ E3441@"},
                 {"A\nFork\nLen=0/\nEndfork", "E3449@"},
                 {"A Len=0/\nFork\nEndfork\nEndfork", "E3442@ E3443@"},
                 {"A Len=0/\nFork\nFork\nLen=0/\nEndfork\nEndfork\nEndfork", "E3439@ E3443@"},
                 {"A Len=0/\nFork\nB=1234 Len=0/\nEndfork", "E3444@ E3432@ W3445@ E3443@"},
                 {"Fork Len=0/\nfork", "W3447@ E3449@"}});
}

TEST(PackageModel, completion) {
    const std::string texts = "[Manufacturer] m\n[OEM] o\n[Description] d\n";
    const std::string data =
        "[Model Data]\n[Inductance Matrix] Full_matrix\n[Row] A\n1\n"
        "[Capacitance Matrix] Full_matrix\n[Row] A\n1\n[End Model Data]\n";
    const std::string pin = "[Number Of Pins] 1\n[Pin Numbers]\nA\n";
    const std::string end = "[End Package Model]\n[Component]";
    expectCodes(texts, {{pin + data + end, ""},
                        {pin + data + "[End]", "E3459"},
                        {"[Pin Numbers]\n" + end, "E3431 E3455 E3413 E3415 E3457"},
                        {"[Number Of Pins] 1\n" + end, "E3452 E3455 E3413 E3415 E3457"},
                        {"[Number Of Pins] 1\n[Pin Numbers]\n" + data + end, "E3100@ E3100@ E3453"},
                        {"[Number Of Pins] 2\n[Pin Numbers]\nA\n" + data + end, "E3717@ E3116@ E3717@ E3116@ E3454"},
                        {pin + "[Resistance Matrix] Banded_matrix\n[Row] A\n1\n" + data + end, "E3716"},
                        {"[Number Of Sections] 1\n[Number Of Pins] 1\n[Pin Numbers]\nA Len=0/\n" + end, ""},
                        {"[Number Of Sections] 1\n[Number Of Pins] 1\n[Pin Numbers]\nA Len=0/\n"
                         "[Resistance Matrix] Banded_matrix\n[Row] A\n1\n" +
                             data + end,
                         "E3456 E3411 E3412 E3414 E3458"},
                        // The close of an open matrix comes first, at the line that ends the package model.
                        {pin + "[Model Data]\n[Capacitance Matrix] Full_matrix\n[Define Package Model] Q",
                         "E3717@ E3413 E3457 E3459"}});
}

TEST(PackageModel, pairsOfOneName) {
    PackageLines lines;
    for (const std::string name : {"A", "B", "A", "C", "B", "A"})
        lines.read("[Define Package Model] " + name);
    lines.codes();
    finalPackageChecks(lines.run, lines.root);
    EXPECT_EQ(lines.codes(), "E3410 E3410 E3410 E3410");
}

/// A .pkg file that reads without errors.
std::string pkgFile(const std::string& file, const std::string& definitions) {
    return "[IBIS Ver] 3.2\n[File Name] " + file + "\n[File Rev] 1\n" + definitions + "[End]\n";
}

std::string definition(const std::string& name) {
    return "[Define Package Model] " + name +
           "\n[Manufacturer] m\n[OEM] o\n[Description] d\n[Number Of Pins] 1\n[Number Of Sections] 1\n"
           "[Pin Numbers]\n1 Len=0/\n[End Package Model]\n";
}

/// A search among files in memory for one component after the other. "+" and "-" tell whether a name was found, what
/// stands before them are the announcements and codes of that look-up.
struct Search : Files {
    explicit Search(const std::map<std::string, std::string>& files) : Files(true), root(createRoot(run)) {
        for (const auto& [path, text] : files)
            put(path, text);
        run.parse.directory = "nowhere/";
        run.parse.version = IbisVersion::v4;
        run.parse.line = 77;
        run.parse.comment = '#';
    }

    std::string find(const std::string& name) {
        const std::size_t shown = out.text().size();
        const bool found = findPackageModel(run, name, "U1");
        std::string_view printed = std::string_view(out.text()).substr(shown);
        std::string result;
        const std::string codes = codesOf(printed);
        constexpr std::string_view kAnnounced = "\nChecking ";
        for (std::size_t at = 0; (at = printed.find(kAnnounced)) != std::string_view::npos;) {
            printed.remove_prefix(at + kAnnounced.size());
            result.append(printed.substr(0, printed.find(' '))).push_back(' ');
        }
        return result + codes + (found ? "+" : "-");
    }

    Ibis& root;
};

TEST(PackageSearch, readsEveryFileThatMatches) {
    Search search({{"nowhere/b.pkg", pkgFile("b.pkg", definition("QFN16"))},
                   {"nowhere/B2.PKG", pkgFile("b2.pkg", "|\n" + definition("SOIC") + definition("SOICX"))},
                   {"nowhere/a.pkg", pkgFile("a.pkg", "[define_package model]\tQFN1 | the small one\n")},
                   {"nowhere/deeper/c.pkg", pkgFile("c.pkg", definition("QFN1"))},
                   {"nowhere/.pkg", pkgFile("d.pkg", definition("QFN1"))},
                   {"elsewhere.pkg", pkgFile("e.pkg", definition("QFN1"))}});
    EXPECT_EQ(search.find("BGA"), "E0516-");
    EXPECT_EQ(search.find("SOI"), "B2.PKG E0516-");
    EXPECT_EQ(search.find("SOICX"), "+");
    EXPECT_EQ(search.find("SOI"), "B2.PKG E0516-"); // each look-up that fails reads for itself
    EXPECT_EQ(search.find("qfn1"), "E0516-");
    // The comment belongs to the name that the search sees, not to the one that the file defines.
    EXPECT_EQ(search.find("QFN1"), "a.pkg b.pkg W0921@ E3467 E3418 E3419 E3431 E3452 E3455 E3413 E3415 E3457 E3459+");
    EXPECT_EQ(search.find("QFN16"), "+");
    EXPECT_EQ(search.root.package_models.size(), 6U);
    EXPECT_EQ(search.run.parse.version, IbisVersion::v4);
    EXPECT_EQ(search.run.parse.line, 77U);
    EXPECT_EQ(search.run.parse.comment, '#');
    EXPECT_EQ(search.run.parse.directory, "nowhere/");
    EXPECT_FALSE(search.run.diagnostics.silence_errors);
}

TEST(PackageSearch, aRefusedFileCountsAsMatch) {
    const std::string refused = "[IBIS Ver] 1.1\n[Define Package Model] X\n";
    Search alone({{"nowhere/x.pkg", refused}});
    EXPECT_EQ(alone.find("X"), "E0900+");
    EXPECT_EQ(alone.find("X"), "E0900+");
    Search beside({{"nowhere/x.pkg", refused}, {"nowhere/y.pkg", pkgFile("y.pkg", definition("Y"))}});
    EXPECT_EQ(beside.find("Y"), "y.pkg +");
    EXPECT_EQ(beside.find("X"), "E0900 E0516-");
}

TEST(PackageSearch, whatIsReadAgainIsDefinedAgain) {
    const auto component = [](const std::string& name) {
        return "[Component] " + name +
               "\n[Manufacturer] m\n[Package Model] X\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
               "[Pin] signal_name model_name\n1 A NC\n";
    };
    Files files(true);
    files.add("x1.pkg", definition("X1")).add("x2.pkg", definition("X2") + definition("X3"));
    files.add("c.ibs", component("A") + component("B") + component("C"));
    // Each of three look-ups reads both files: three pairs of each of three names.
    EXPECT_EQ(codesOf(files.check("c.ibs")), "E0516 E0516 E0516 E3410 E3410 E3410 E3410 E3410 E3410 E3410 E3410 E3410");
    EXPECT_EQ(files.timesRead("x1.pkg"), 3);
    EXPECT_EQ(files.timesRead("x2.pkg"), 3);
}

/// A folder of its own, removed at the end.
struct Folder {
    Folder() {
        std::string name = ::testing::TempDir() + "kestrelXXXXXX";
        path = ::mkdtemp(name.data());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path); }
    std::filesystem::path path;
};

TEST(PackageSearch, passesOverWhatIsNoFile) {
    const Folder folder;
    std::filesystem::create_directory(folder.path / "a.pkg");
    ASSERT_EQ(::mkfifo((folder.path / "b.pkg").c_str(), 0600), 0);
    std::filesystem::create_symlink("missing", folder.path / "c.pkg");
    std::filesystem::create_symlink("/dev/zero", folder.path / "d.pkg");
    std::ofstream(folder.path / "my parts.pkg") << pkgFile("my parts.pkg", definition("X"));
    Search search({});
    search.run.parse.directory = folder.path.string() + "/";
    EXPECT_EQ(search.find("X"), "my E1011@+"); // a blank is no character for "[File Name]"
    Search none({});
    none.run.parse.directory = (folder.path / "none").string() + "/";
    EXPECT_EQ(none.find("X"), "E0516-");
}

TEST(PackageSearch, scansFilesInPieces) {
    constexpr std::size_t kPiece = 65536;
    const std::string header = "[IBIS Ver] 3.2\n[File Name] x.pkg\n[File Rev] 1\n";
    // The name's line lies across the end of a piece at each of its places, or begins behind a long line without end.
    for (std::size_t cut = 0; cut <= 24; ++cut) {
        const Folder folder;
        std::string padding;
        for (std::size_t left = kPiece - header.size() - cut; left > 0; left -= std::min<std::size_t>(left, 64))
            padding += std::string(std::min<std::size_t>(left, 64) - 1, '|') + '\n';
        std::ofstream(folder.path / "x.pkg") << header << padding << definition("X") << "[End]\n";
        std::ofstream(folder.path / "y.pkg") << std::string(3 * kPiece, '|') << "[Define Package Model] X\n"
                                             << std::string(120, ' ') << "[Define Package Model] X";
        Search search({});
        search.run.parse.directory = folder.path.string() + "/";
        EXPECT_EQ(search.find("X"), "x.pkg +") << cut;
    }
}

TEST(PackageModel, forksWithoutEnd) {
    PackageLines lines;
    std::string text =
        "[Define Package Model] P\n[Number Of Pins] 4294967295\n[Number Of Sections] 1\n[Pin Numbers]\n"
        "A Len=0/\n";
    lines.run.diagnostics.silence_errors = true; // one for each fork inside another
    for (int i = 0; i < 100'000; ++i)
        text += "Fork\nLen=0/\n";
    lines.read(text);
    EXPECT_EQ(lines.newest().pin_sections[0].sections.size(), 100'001U);
    lines.run.diagnostics.silence_errors = false;
    lines.read("[End]");
    EXPECT_EQ(lines.codes(), "E3467 E3418 E3419 E3454 E3450 E3451 E3459");
}

} // namespace
} // namespace kestrel

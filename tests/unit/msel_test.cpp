// The lines of model selectors: what is stored and the limits by version.

#include "model/msel.hpp"

#include "ibis/checks.hpp"
#include "ibis/model_marks.hpp"
#include "lines.hpp"

#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

const MSel& newest(const Lines& lines) { return *lines.root.model_selectors.newestFirst().begin(); }

TEST(ModelSelector, nameLines) {
    struct Row {
        IbisVersion version;
        std::string name;
        std::string codes;
        std::string stored;
    };
    const Row rows[] = {
        {IbisVersion::v3, std::string(20, 's'), "", std::string(20, 's')},
        {IbisVersion::v3, std::string(21, 's'), "E4012@", std::string(20, 's')},
        {IbisVersion::v4, std::string(40, 's'), "", std::string(40, 's')},
        {IbisVersion::v5, std::string(41, 's'), "E4012@", std::string(40, 's')},
        {IbisVersion::v5, "", "E4010@", ""},
        {IbisVersion::v5, "Bus Keeper", "E4011@", "Bus"},
        {IbisVersion::v5, "Power", "E4013@", "Power"},
        {IbisVersion::v5, "First", "E4014@", "First"},
        {IbisVersion::v5, "first", "", "first"},
        {IbisVersion::v5, std::string(41, 'F'), "E4012@ E4014@", std::string(40, 'F')},
    };
    for (const Row& row : rows) {
        Lines test(KeywordCode::modelSelector, IbisVersion::v5);
        test.read("[Model Selector] First\na x\nb y\n[Model Selector] " + std::string(40, 'F') + "\na x\nb y");
        test.run.parse.version = row.version;
        test.read("[Model Selector] " + row.name);
        EXPECT_EQ(test.codes(), row.codes) << row.name;
        EXPECT_EQ(newest(test).name, row.stored);
    }
}

TEST(ModelSelector, entryLines) {
    const std::string twenty(20, 'm');
    const std::string hundred(100, 'd');
    struct Row {
        std::string line;
        std::string codes;
        std::string name;
        std::string description;
    };
    const Row rows[] = {
        {"  Slow   slow edge, 2 mA  ", "", "Slow", "slow edge, 2 mA"},
        {"Slow\tslow", "", "Slow", "slow"},
        {"Slow", "E4011@", "Slow", ""},
        {"nA nothing", "E4018@", "nA", "nothing"},
        {"GND ground", "", "GND", "ground"},
        {"fast again", "", "fast", "again"},
        {"Fast again", "E4025@", "Fast", "again"},
        {twenty + " " + hundred, "", twenty, hundred},
        {twenty + " " + hundred + "e", "E4019@", twenty, hundred},
        {twenty + "x " + hundred + "e", "E4017@ E4019@", twenty, hundred},
    };
    for (const Row& row : rows) {
        Lines test(KeywordCode::modelSelector, IbisVersion::v3);
        test.read("[Model Selector] S\nFast fast edge\n" + row.line);
        EXPECT_EQ(test.codes(), row.codes) << row.line;
        ASSERT_EQ(newest(test).entries.size(), 2U);
        EXPECT_EQ(newest(test).entries[1].model_name, row.name);
        EXPECT_EQ(newest(test).entries[1].description, row.description);
    }
}

TEST(ModelSelector, repeatedEntriesAreSeenHoweverManyThereAre) {
    const auto entries = [](int first, int last) {
        std::string lines;
        for (int i = first; i <= last; ++i)
            lines.append("m").append(std::to_string(i)).append(" text\n");
        return lines;
    };
    Lines test(KeywordCode::modelSelector);
    // Around the number from which on names are no longer compared one by one; the next selector begins anew.
    test.read("[Model Selector] S\n" + entries(1, 31));
    EXPECT_EQ(test.read(entries(31, 32)).codes(), "E4025@");
    EXPECT_EQ(test.read(entries(1, 1) + entries(32, 33) + entries(33, 33)).codes(), "E4025@ E4025@ E4025@");
    EXPECT_EQ(test.read(entries(34, 90)).codes(), "");
    EXPECT_EQ(test.read(entries(2, 2) + entries(50, 50)).codes(), "E4025@ E4025@");
    EXPECT_EQ(test.read("[Model Selector] T\n" + entries(1, 60)).codes(), "");
}

TEST(ModelSelector, namesOfModels) {
    const std::pair<std::string, std::string> rows[] = {{"Same", "E4021"}, {"same", ""}, {"", "E4010@ E4021"}};
    for (const auto& [name, codes] : rows) {
        Lines test(KeywordCode::modelSelector, IbisVersion::v5);
        for (const std::string_view model_name : {"Same", ""}) {
            Mdl& model = test.root.models.add(std::make_unique<Mdl>());
            model.name = test.run.names.enter(model_name);
            test.root.models.enterNewest(test.run.names);
        }
        test.read("[Model Selector] " + name + "\nGND ground");
        ModelMarks models(test.root);
        checkMSels(test.run, test.root, models);
        EXPECT_EQ(test.codes(), codes) << name;
    }
}

} // namespace
} // namespace kestrel

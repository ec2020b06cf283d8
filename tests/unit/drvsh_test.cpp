// The names of a driver schedule by version; its delays and whole-file checks are covered by files.

#include "lines.hpp"

#include <string>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

TEST(DriverSchedule, namesByVersion) {
    const std::string twenty(20, 'n');
    const std::string forty(40, 'n');
    struct Row {
        std::string model;
        IbisVersion version;
        std::string name;
        std::string codes;
        std::string stored;
    };
    const Row rows[] = {
        {"Top", IbisVersion::v3, twenty, "", twenty},
        {"Top", IbisVersion::v3, twenty + "x", "E4212@", twenty},
        {twenty, IbisVersion::v3, twenty + "x", "E4212@ E4213@", twenty},
        {"Top", IbisVersion::v4, forty, "", forty},
        {"Top", IbisVersion::v5, forty + "x", "E4212@", forty},
        {"Top", IbisVersion::v3, "top", "", "top"},
        {"Top", IbisVersion::v3, "Gnd", "E4214@", "Gnd"},
        {"nc", IbisVersion::v3, "nc", "E4213@", "nc"},
    };
    for (const Row& row : rows) {
        Lines lines(KeywordCode::model, row.version);
        lines.read("[Model] " + row.model + "\nModel_type Output").codes();
        lines.read("[Driver Schedule]\n  " + row.name + " 1n 2n NA NA");
        EXPECT_EQ(lines.codes(), row.codes) << row.name;
        const Mdl& model = *lines.root.models.newestFirst().begin();
        const DrvShEntry& entry = model.driver_schedule.entries.back();
        EXPECT_EQ(entry.model_name, row.stored);
        EXPECT_EQ(entry.delays.rise_off.value(), 2e-9);
        EXPECT_EQ(entry.delays.fall_on.state(), CellState::na);
    }
}

} // namespace
} // namespace kestrel

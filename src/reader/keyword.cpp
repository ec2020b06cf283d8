#include "reader/keyword.hpp"

#include "base/rows.hpp"
#include "base/text.hpp"
#include "diagnostics/diagnostics.hpp"
#include "reader/parse_state.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

/// Sets of language versions: one bit for each of the four keyword tables, 2.x first.
using VersionSet = std::uint8_t;
constexpr VersionSet kAll = 0b1111;
constexpr VersionSet kFrom3 = 0b1110;
constexpr VersionSet kFrom4 = 0b1100;
constexpr VersionSet kFrom5 = 0b1000;
constexpr std::size_t kTables = 4;

struct KeywordRow {
    std::string_view name;
    KeywordCode code;
    VersionSet versions;
    Owner owner;
};

constexpr std::array<KeywordRow, 121> kKeywords{{
    {"IBIS_VER", KeywordCode::ibisVer, kAll, Owner::hdr},
    {"COMMENT_CHAR", KeywordCode::commentChar, kAll, Owner::commentChar},
    {"FILE_NAME", KeywordCode::fileName, kAll, Owner::hdr},
    {"FILE_REV", KeywordCode::fileRev, kAll, Owner::hdr},
    {"DATE", KeywordCode::date, kAll, Owner::hdr},
    {"SOURCE", KeywordCode::source, kAll, Owner::hdr},
    {"NOTES", KeywordCode::notes, kAll, Owner::hdr},
    {"DISCLAIMER", KeywordCode::disclaimer, kAll, Owner::hdr},
    {"COPYRIGHT", KeywordCode::copyright, kAll, Owner::hdr},
    {"COMPONENT", KeywordCode::component, kAll, Owner::cmpnt},
    {"MANUFACTURER", KeywordCode::manufacturer, kAll, Owner::cmpnt},
    {"PACKAGE", KeywordCode::package, kAll, Owner::cmpnt},
    {"PIN", KeywordCode::pin, kAll, Owner::cmpnt},
    {"PACKAGE_MODEL", KeywordCode::packageModel, kAll, Owner::cmpnt},
    {"PIN_MAPPING", KeywordCode::pinMapping, kAll, Owner::cmpnt},
    {"DIFF_PIN", KeywordCode::diffPin, kAll, Owner::cmpnt},
    {"SERIES_SWITCH_GROUPS", KeywordCode::seriesSwitchGroups, kFrom3, Owner::cmpnt},
    {"SERIES_PIN_MAPPING", KeywordCode::seriesPinMapping, kFrom3, Owner::cmpnt},
    {"ALTERNATE_PACKAGE_MODELS", KeywordCode::alternatePackageModels, kFrom4, Owner::cmpnt},
    {"END_ALTERNATE_PACKAGE_MODELS", KeywordCode::endAlternatePackageModels, kFrom4, Owner::cmpnt},
    {"NODE_DECLARATIONS", KeywordCode::nodeDeclarations, kFrom4, Owner::cmpnt},
    {"END_NODE_DECLARATIONS", KeywordCode::endNodeDeclarations, kFrom4, Owner::cmpnt},
    {"CIRCUIT_CALL", KeywordCode::circuitCall, kFrom4, Owner::cmpnt},
    {"END_CIRCUIT_CALL", KeywordCode::endCircuitCall, kFrom4, Owner::cmpnt},
    {"EXTERNAL_CIRCUIT", KeywordCode::externalCircuit, kFrom4, Owner::circuit},
    {"END_EXTERNAL_CIRCUIT", KeywordCode::endExternalCircuit, kFrom4, Owner::circuit},
    {"BEGIN_EMI_COMPONENT", KeywordCode::beginEmiComponent, kFrom5, Owner::cmpnt},
    {"END_EMI_COMPONENT", KeywordCode::endEmiComponent, kFrom5, Owner::cmpnt},
    {"PIN_EMI", KeywordCode::pinEmi, kFrom5, Owner::cmpnt},
    {"PIN_DOMAIN_EMI", KeywordCode::pinDomainEmi, kFrom5, Owner::cmpnt},
    {"EXTERNAL_MODEL", KeywordCode::externalModel, kFrom4, Owner::mdl},
    {"END_EXTERNAL_MODEL", KeywordCode::endExternalModel, kFrom4, Owner::mdl},
    {"MODEL", KeywordCode::model, kAll, Owner::mdl},
    {"TEMPERATURE_RANGE", KeywordCode::temperatureRange, kAll, Owner::mdl},
    {"VOLTAGE_RANGE", KeywordCode::voltageRange, kAll, Owner::mdl},
    {"PULLUP_REFERENCE", KeywordCode::pullupReference, kAll, Owner::mdl},
    {"PULLDOWN_REFERENCE", KeywordCode::pulldownReference, kAll, Owner::mdl},
    {"POWER_CLAMP_REFERENCE", KeywordCode::powerClampReference, kAll, Owner::mdl},
    {"GND_CLAMP_REFERENCE", KeywordCode::gndClampReference, kAll, Owner::mdl},
    {"EXTERNAL_REFERENCE", KeywordCode::externalReference, kFrom3, Owner::mdl},
    {"PULLDOWN", KeywordCode::pulldown, kAll, Owner::mdl},
    {"PULLUP", KeywordCode::pullup, kAll, Owner::mdl},
    {"GND_CLAMP", KeywordCode::gndClamp, kAll, Owner::mdl},
    {"POWER_CLAMP", KeywordCode::powerClamp, kAll, Owner::mdl},
    {"RGND", KeywordCode::rgnd, kAll, Owner::mdl},
    {"RPOWER", KeywordCode::rpower, kAll, Owner::mdl},
    {"RAC", KeywordCode::rac, kAll, Owner::mdl},
    {"CAC", KeywordCode::cac, kAll, Owner::mdl},
    {"RAMP", KeywordCode::ramp, kAll, Owner::mdl},
    {"RISING_WAVEFORM", KeywordCode::risingWaveform, kAll, Owner::mdl},
    {"FALLING_WAVEFORM", KeywordCode::fallingWaveform, kAll, Owner::mdl},
    {"TTGND", KeywordCode::ttgnd, kFrom3, Owner::mdl},
    {"TTPOWER", KeywordCode::ttpower, kFrom3, Owner::mdl},
    {"MODEL_SPEC", KeywordCode::modelSpec, kFrom3, Owner::mdl},
    {"RECEIVER_THRESHOLDS", KeywordCode::receiverThresholds, kFrom4, Owner::mdl},
    {"DRIVER_SCHEDULE", KeywordCode::driverSchedule, kFrom3, Owner::mdl},
    {"ON", KeywordCode::on, kFrom3, Owner::mdl},
    {"OFF", KeywordCode::off, kFrom3, Owner::mdl},
    {"R_SERIES", KeywordCode::rSeries, kFrom3, Owner::mdl},
    {"L_SERIES", KeywordCode::lSeries, kFrom3, Owner::mdl},
    {"RL_SERIES", KeywordCode::rlSeries, kFrom3, Owner::mdl},
    {"C_SERIES", KeywordCode::cSeries, kFrom3, Owner::mdl},
    {"LC_SERIES", KeywordCode::lcSeries, kFrom3, Owner::mdl},
    {"RC_SERIES", KeywordCode::rcSeries, kFrom3, Owner::mdl},
    {"SERIES_CURRENT", KeywordCode::seriesCurrent, kFrom3, Owner::mdl},
    {"SERIES_MOSFET", KeywordCode::seriesMosfet, kFrom3, Owner::mdl},
    {"ADD_SUBMODEL", KeywordCode::addSubmodel, kFrom3, Owner::mdl},
    {"ALGORITHMIC_MODEL", KeywordCode::algorithmicModel, kFrom5, Owner::mdl},
    {"END_ALGORITHMIC_MODEL", KeywordCode::endAlgorithmicModel, kFrom5, Owner::mdl},
    {"ISSO_PD", KeywordCode::issoPd, kFrom5, Owner::mdl},
    {"ISSO_PU", KeywordCode::issoPu, kFrom5, Owner::mdl},
    {"COMPOSITE_CURRENT", KeywordCode::compositeCurrent, kFrom5, Owner::mdl},
    {"BEGIN_EMI_MODEL", KeywordCode::beginEmiModel, kFrom5, Owner::mdl},
    {"END_EMI_MODEL", KeywordCode::endEmiModel, kFrom5, Owner::mdl},
    {"C_COMP_CORNER", KeywordCode::cCompCorner, kFrom5, Owner::mdl},
    {"DEFINE_PACKAGE_MODEL", KeywordCode::definePackageModel, kAll, Owner::pkgmdl},
    {"MANUFACTURER", KeywordCode::packageManufacturer, kAll, Owner::pkgmdl},
    {"OEM", KeywordCode::oem, kAll, Owner::pkgmdl},
    {"DESCRIPTION", KeywordCode::description, kAll, Owner::pkgmdl},
    {"NUMBER_OF_PINS", KeywordCode::numberOfPins, kAll, Owner::pkgmdl},
    {"PIN_NUMBERS", KeywordCode::pinNumbers, kAll, Owner::pkgmdl},
    {"MODEL_DATA", KeywordCode::modelData, kAll, Owner::pkgmdl},
    {"RESISTANCE_MATRIX", KeywordCode::resistanceMatrix, kAll, Owner::pkgmdl},
    {"INDUCTANCE_MATRIX", KeywordCode::inductanceMatrix, kAll, Owner::pkgmdl},
    {"CAPACITANCE_MATRIX", KeywordCode::capacitanceMatrix, kAll, Owner::pkgmdl},
    {"BANDWIDTH", KeywordCode::bandwidth, kAll, Owner::pkgmdl},
    {"ROW", KeywordCode::row, kAll, Owner::pkgmdl},
    {"END_MODEL_DATA", KeywordCode::endModelData, kAll, Owner::pkgmdl},
    {"END_PACKAGE_MODEL", KeywordCode::endPackageModel, kAll, Owner::pkgmdl},
    {"NUMBER_OF_SECTIONS", KeywordCode::numberOfSections, kFrom3, Owner::pkgmdl},
    {"BEGIN_BOARD_DESCRIPTION", KeywordCode::beginBoardDescription, kFrom3, Owner::ebdmdl},
    {"MANUFACTURER", KeywordCode::boardManufacturer, kFrom3, Owner::ebdmdl},
    {"NUMBER_OF_PINS", KeywordCode::boardNumberOfPins, kFrom3, Owner::ebdmdl},
    {"PIN_LIST", KeywordCode::pinList, kFrom3, Owner::ebdmdl},
    {"PATH_DESCRIPTION", KeywordCode::pathDescription, kFrom3, Owner::ebdmdl},
    {"REFERENCE_DESIGNATOR_MAP", KeywordCode::referenceDesignatorMap, kFrom3, Owner::ebdmdl},
    {"END_BOARD_DESCRIPTION", KeywordCode::endBoardDescription, kFrom3, Owner::ebdmdl},
    {"MODEL_SELECTOR", KeywordCode::modelSelector, kFrom3, Owner::msel},
    {"SUBMODEL", KeywordCode::submodel, kFrom3, Owner::submdl},
    {"SUBMODEL_SPEC", KeywordCode::submodelSpec, kFrom3, Owner::submdl},
    {"GND_PULSE_TABLE", KeywordCode::gndPulseTable, kFrom3, Owner::submdl},
    {"POWER_PULSE_TABLE", KeywordCode::powerPulseTable, kFrom3, Owner::submdl},
    {"PULLDOWN", KeywordCode::submodelPulldown, kFrom3, Owner::submdl},
    {"PULLUP", KeywordCode::submodelPullup, kFrom3, Owner::submdl},
    {"GND_CLAMP", KeywordCode::submodelGndClamp, kFrom3, Owner::submdl},
    {"POWER_CLAMP", KeywordCode::submodelPowerClamp, kFrom3, Owner::submdl},
    {"RAMP", KeywordCode::submodelRamp, kFrom3, Owner::submdl},
    {"RISING_WAVEFORM", KeywordCode::submodelRisingWaveform, kFrom3, Owner::submdl},
    {"FALLING_WAVEFORM", KeywordCode::submodelFallingWaveform, kFrom3, Owner::submdl},
    {"TEST_DATA", KeywordCode::testData, kFrom4, Owner::testdata},
    {"RISING_WAVEFORM_NEAR", KeywordCode::risingWaveformNear, kFrom4, Owner::testdata},
    {"RISING_WAVEFORM_FAR", KeywordCode::risingWaveformFar, kFrom4, Owner::testdata},
    {"FALLING_WAVEFORM_NEAR", KeywordCode::fallingWaveformNear, kFrom4, Owner::testdata},
    {"FALLING_WAVEFORM_FAR", KeywordCode::fallingWaveformFar, kFrom4, Owner::testdata},
    {"DIFF_RISING_WAVEFORM_NEAR", KeywordCode::diffRisingWaveformNear, kFrom4, Owner::testdata},
    {"DIFF_RISING_WAVEFORM_FAR", KeywordCode::diffRisingWaveformFar, kFrom4, Owner::testdata},
    {"DIFF_FALLING_WAVEFORM_NEAR", KeywordCode::diffFallingWaveformNear, kFrom4, Owner::testdata},
    {"DIFF_FALLING_WAVEFORM_FAR", KeywordCode::diffFallingWaveformFar, kFrom4, Owner::testdata},
    {"TEST_LOAD", KeywordCode::testLoad, kFrom4, Owner::testload},
    {"END", KeywordCode::end, kAll, Owner::end},
    {"NOT_KEY", KeywordCode::notKey, kAll, Owner::none},
}};

static_assert(rowsInOrder(kKeywords, &KeywordRow::code));

struct LaterRow {
    std::string_view name;
    LaterKeyword code;
};

constexpr std::array<LaterRow, kLaterKeywordCount> kLaterRows{{
    {"Begin_interconnect_model_set", LaterKeyword::beginInterconnectModelSet},
    {"Bus_label", LaterKeyword::busLabel},
    {"C_comp_model", LaterKeyword::cCompModel},
    {"Clock_pins", LaterKeyword::clockPins},
    {"Die_supply_pads", LaterKeyword::dieSupplyPads},
    {"End_C_comp_model", LaterKeyword::endCCompModel},
    {"End_interconnect_model", LaterKeyword::endInterconnectModel},
    {"End_interconnect_model_group", LaterKeyword::endInterconnectModelGroup},
    {"End_interconnect_model_set", LaterKeyword::endInterconnectModelSet},
    {"Initial_delay", LaterKeyword::initialDelay},
    {"Interconnect_model", LaterKeyword::interconnectModel},
    {"Interconnect_model_group", LaterKeyword::interconnectModelGroup},
    {"Interconnect_model_set", LaterKeyword::interconnectModelSet},
    {"PSIJ_sensitivity", LaterKeyword::psijSensitivity},
    {"PSIJ_sensitivity_algebraic", LaterKeyword::psijSensitivityAlgebraic},
    {"PSIJ_sensitivity_numeric", LaterKeyword::psijSensitivityNumeric},
    {"Repeater_pin", LaterKeyword::repeaterPin},
}};

static_assert(rowsInOrder(kLaterRows, &LaterRow::code));

/// What a character of a name counts as: names are written in any case, with blanks or underscores.
constexpr std::array<char, 256> kFolded = [] {
    std::array<char, 256> folded{};
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const auto c = static_cast<char>(i);
        folded[i] = c == ' ' ? '_' : toUpper(c);
    }
    return folded;
}();
constexpr char foldedCharacter(char c) { return kFolded[static_cast<unsigned char>(c)]; }

/// Places in a table of one version's names.
constexpr std::size_t kPlaces = 256;

/// Where a name, which is not empty, belongs in such a table. Its length and three characters tell nearly all names
/// apart.
constexpr std::size_t placeOf(std::string_view name) {
    const auto at = [name](std::size_t place) {
        return static_cast<std::size_t>(static_cast<unsigned char>(foldedCharacter(name[place])));
    };
    return (name.size() * 94 + at(0) * 157 + at(name.size() / 2) * 74 + at(name.size() - 1) * 169) % kPlaces;
}

/// The rows of one version's keywords by the hashes of their names, so that a look-up is one compare; of equal names
/// the first is entered.
struct KeywordIndex {
    static constexpr std::uint8_t kFree = 0xFF;
    static_assert(kKeywords.size() < kFree);

    std::array<std::uint8_t, kPlaces> rows{};
    std::size_t size = 0;  ///< keywords of the version
    std::size_t moved = 0; ///< names whose place was taken
};

consteval KeywordIndex indexOf(std::size_t table) {
    KeywordIndex index;
    index.rows.fill(KeywordIndex::kFree);
    for (std::size_t i = 0; i < kKeywords.size(); ++i) {
        if ((kKeywords[i].versions >> table & 1) == 0) continue;
        ++index.size;
        std::size_t place = placeOf(kKeywords[i].name);
        const std::size_t wanted = place;
        while (index.rows[place] != KeywordIndex::kFree && kKeywords[index.rows[place]].name != kKeywords[i].name) {
            place = (place + 1) % kPlaces;
        }
        if (index.rows[place] == KeywordIndex::kFree) index.rows[place] = static_cast<std::uint8_t>(i);
        if (place != wanted) ++index.moved;
    }
    return index;
}

constexpr std::array<KeywordIndex, kTables> kIndexes{indexOf(0), indexOf(1), indexOf(2), indexOf(3)};
static_assert(kIndexes[0].size == 50 && kIndexes[1].size == 88 && kIndexes[2].size == 109 && kIndexes[3].size == 121);
static_assert(kIndexes[3].moved <= 10); // of more than a hundred

constexpr std::size_t tableOf(IbisVersion version) {
    if (version < IbisVersion::v3) return 0;
    return std::min(static_cast<std::size_t>(version) - 2, kTables - 1);
}

/// `folded` is a name of a table.
constexpr bool isWritten(std::string_view name, std::string_view folded) {
    return std::ranges::equal(name, folded, {}, foldedCharacter);
}

constexpr std::optional<KeywordCode> findInTable(std::string_view name, std::size_t table) {
    const KeywordIndex& index = kIndexes[table];
    if (name.empty()) return std::nullopt;
    for (std::size_t place = placeOf(name); index.rows[place] != KeywordIndex::kFree; place = (place + 1) % kPlaces) {
        const KeywordRow& row = kKeywords[index.rows[place]];
        if (!isWritten(name, row.name)) continue;
        // The closing row of every table names the state without a keyword; a file cannot write it.
        if (row.code == KeywordCode::notKey) return std::nullopt;
        return row.code;
    }
    return std::nullopt;
}
static_assert(findInTable("Pin Mapping", 0) == KeywordCode::pinMapping);
static_assert(findInTable("manufacturer", 3) == KeywordCode::manufacturer);
static_assert(findInTable("NUMBER_OF_PINS", 1) == KeywordCode::numberOfPins);
static_assert(findInTable("Ramp", 2) == KeywordCode::ramp);
static_assert(!findInTable("Receiver Thresholds", 1) && findInTable("Receiver Thresholds", 2));
static_assert(!findInTable("Not Key", 3));

} // namespace

std::optional<KeywordCode> findKeyword(std::string_view name, IbisVersion version) {
    return findInTable(name, tableOf(version));
}

std::optional<LaterKeyword> findLaterKeyword(std::string_view name) {
    for (const LaterRow& row : kLaterRows) {
        if (std::ranges::equal(name, row.name, {}, foldedCharacter, foldedCharacter)) return row.code;
    }
    return std::nullopt;
}

std::string_view laterKeywordName(LaterKeyword keyword) { return kLaterRows[static_cast<std::size_t>(keyword)].name; }

Owner ownerOf(KeywordCode code) { return kKeywords[static_cast<std::size_t>(code)].owner; }

std::string_view tableName(KeywordCode code) { return kKeywords[static_cast<std::size_t>(code)].name; }

std::string_view keywordName(Diagnostics& diagnostics, KeywordCode code) {
    const KeywordRow& row = kKeywords[static_cast<std::size_t>(code)];
    if ((row.versions & 1) != 0) return tableName(code);
    programBugAtLine(diagnostics, 904);
    return "Unknown enumerated keyword code";
}

bool isKeywordOf(KeywordCode code, IbisVersion version) {
    return (kKeywords[static_cast<std::size_t>(code)].versions >> tableOf(version) & 1) != 0;
}

} // namespace kestrel

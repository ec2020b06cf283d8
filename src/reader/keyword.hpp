#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel {

struct Diagnostics;
enum class IbisVersion : std::uint8_t;

/// Number of a keyword; the same number means the same keyword in every version's table.
enum class KeywordCode : std::uint8_t {
    ibisVer = 0,
    commentChar = 1,
    fileName = 2,
    fileRev = 3,
    date = 4,
    source = 5,
    notes = 6,
    disclaimer = 7,
    copyright = 8,
    component = 9,
    manufacturer = 10,
    package = 11,
    pin = 12,
    packageModel = 13,
    pinMapping = 14,
    diffPin = 15,
    seriesSwitchGroups = 16,
    seriesPinMapping = 17,
    alternatePackageModels = 18,
    endAlternatePackageModels = 19,
    nodeDeclarations = 20,
    endNodeDeclarations = 21,
    circuitCall = 22,
    endCircuitCall = 23,
    externalCircuit = 24,
    endExternalCircuit = 25,
    beginEmiComponent = 26,
    endEmiComponent = 27,
    pinEmi = 28,
    pinDomainEmi = 29,
    externalModel = 30,
    endExternalModel = 31,
    model = 32,
    temperatureRange = 33,
    voltageRange = 34,
    pullupReference = 35,
    pulldownReference = 36,
    powerClampReference = 37,
    gndClampReference = 38,
    externalReference = 39,
    pulldown = 40,
    pullup = 41,
    gndClamp = 42,
    powerClamp = 43,
    rgnd = 44,
    rpower = 45,
    rac = 46,
    cac = 47,
    ramp = 48,
    risingWaveform = 49,
    fallingWaveform = 50,
    ttgnd = 51,
    ttpower = 52,
    modelSpec = 53,
    receiverThresholds = 54,
    driverSchedule = 55,
    on = 56,
    off = 57,
    rSeries = 58,
    lSeries = 59,
    rlSeries = 60,
    cSeries = 61,
    lcSeries = 62,
    rcSeries = 63,
    seriesCurrent = 64,
    seriesMosfet = 65,
    addSubmodel = 66,
    algorithmicModel = 67,
    endAlgorithmicModel = 68,
    issoPd = 69,
    issoPu = 70,
    compositeCurrent = 71,
    beginEmiModel = 72,
    endEmiModel = 73,
    cCompCorner = 74,
    definePackageModel = 75,
    packageManufacturer = 76,
    oem = 77,
    description = 78,
    numberOfPins = 79,
    pinNumbers = 80,
    modelData = 81,
    resistanceMatrix = 82,
    inductanceMatrix = 83,
    capacitanceMatrix = 84,
    bandwidth = 85,
    row = 86,
    endModelData = 87,
    endPackageModel = 88,
    numberOfSections = 89,
    beginBoardDescription = 90,
    boardManufacturer = 91,
    boardNumberOfPins = 92,
    pinList = 93,
    pathDescription = 94,
    referenceDesignatorMap = 95,
    endBoardDescription = 96,
    modelSelector = 97,
    submodel = 98,
    submodelSpec = 99,
    gndPulseTable = 100,
    powerPulseTable = 101,
    submodelPulldown = 102,
    submodelPullup = 103,
    submodelGndClamp = 104,
    submodelPowerClamp = 105,
    submodelRamp = 106,
    submodelRisingWaveform = 107,
    submodelFallingWaveform = 108,
    testData = 109,
    risingWaveformNear = 110,
    risingWaveformFar = 111,
    fallingWaveformNear = 112,
    fallingWaveformFar = 113,
    diffRisingWaveformNear = 114,
    diffRisingWaveformFar = 115,
    diffFallingWaveformNear = 116,
    diffFallingWaveformFar = 117,
    testLoad = 118,
    end = 119,
    notKey = 120
};

/// How many codes there are, the one for no keyword included.
inline constexpr std::size_t kKeywordCodes = static_cast<std::size_t>(KeywordCode::notKey) + 1;

/// A keyword that only versions after 5.1 have, in the order of the names.
enum class LaterKeyword : std::uint8_t {
    beginInterconnectModelSet,
    busLabel,
    cCompModel,
    clockPins,
    dieSupplyPads,
    endCCompModel,
    endInterconnectModel,
    endInterconnectModelGroup,
    endInterconnectModelSet,
    initialDelay,
    interconnectModel,
    interconnectModelGroup,
    interconnectModelSet,
    psijSensitivity,
    psijSensitivityAlgebraic,
    psijSensitivityNumeric,
    repeaterPin
};
inline constexpr std::size_t kLaterKeywordCount = 17;

/// The module that receives a keyword and its data lines.
enum class Owner : std::uint8_t {
    hdr,
    commentChar,
    cmpnt,
    circuit,
    mdl,
    pkgmdl,
    ebdmdl,
    msel,
    submdl,
    testdata,
    testload,
    end,
    none
};

/// What a line is to the dispatcher and to every module.
enum class LineKind : std::uint8_t { blank = 0, keyword = 1, data = 4 };

/// A line as a module gets it: a keyword line's text is what follows the "]" and its white space, a data line's text
/// is the whole line, leading blanks included. Comment and trailing white space are gone in both.
struct Line {
    LineKind kind;
    KeywordCode key; ///< of a data line: the keyword that it lies under
    std::string_view text;
};

/// Longest keyword name between brackets, in characters.
inline constexpr std::size_t kMaxKeywordName = 117;

/// Finds a keyword name, blanks or underscores and any case, in the table of the language version; of names that are
/// there more than once the first is found. Nothing for a name that the version does not have.
[[nodiscard]] std::optional<KeywordCode> findKeyword(std::string_view name, IbisVersion version);

/// Finds a keyword name, written as freely, among those of later versions.
[[nodiscard]] std::optional<LaterKeyword> findLaterKeyword(std::string_view name);

/// The name of a keyword of later versions for messages ("Bus_label").
[[nodiscard]] std::string_view laterKeywordName(LaterKeyword keyword);

/// The module that owns `code`.
[[nodiscard]] Owner ownerOf(KeywordCode code);

/// The name of `code` in the tables that hold it ("PIN_MAPPING").
[[nodiscard]] std::string_view tableName(KeywordCode code);

/// The same for messages; a code that the oldest table does not hold is reported as a program bug
/// and named "Unknown enumerated keyword code".
[[nodiscard]] std::string_view keywordName(Diagnostics& diagnostics, KeywordCode code);

/// Whether the table of the language version holds `code`.
[[nodiscard]] bool isKeywordOf(KeywordCode code, IbisVersion version);

/// True when `code` lies from `first` to `last`, both included.
constexpr bool isBetween(KeywordCode code, KeywordCode first, KeywordCode last) {
    return first <= code && code <= last;
}

} // namespace kestrel

#include "ami/reserved.hpp"

#include "ami/words.hpp"
#include "reader/context.hpp"
#include "reader/values.hpp"

namespace kestrel {

namespace {

constexpr AmiFormatSet kStatistical{AmiFormat::table, AmiFormat::gaussian, AmiFormat::dualDirac, AmiFormat::djRj};
constexpr AmiFormatSet kPlain = kStatistical.others();
constexpr AmiFormatSet kValueOnly{AmiFormat::value};
constexpr AmiUsageSet kInfo{AmiUsage::info};
constexpr AmiUsageSet kInfoOrOut{AmiUsage::info, AmiUsage::out};
constexpr AmiTypeSet kTimes{AmiType::real, AmiType::unitInterval};

constexpr EnumSet<Reserved> kNotNegative{Reserved::ignoreBits, Reserved::maxInitAggressors};

/// Names that later versions of the language define.
constexpr auto kLaterReserved = std::to_array<std::string_view>({
    "Tx_Rj",
    "Tx_Dj",
    "Tx_Sj",
    "Tx_Sj_Frequency",
    "Rx_Rj",
    "Rx_Dj",
    "Rx_Sj",
    "Rx_DCD",
    "Rx_Noise",
    "Rx_Clock_Recovery_Mean",
    "Rx_Clock_Recovery_Rj",
    "Rx_Clock_Recovery_Dj",
    "Rx_Clock_Recovery_Sj",
    "Rx_Clock_Recovery_DCD",
    "Repeater_Type",
    "Supporting_Files",
    "DLL_Path",
    "DLL_ID",
});

constexpr std::string_view kNewestVersion = "5.1";

bool isLater(std::string_view version) {
    constexpr double kNewest = 5.1;
    double number = 0.0;
    const ReadResult result = readDouble(trim(version), number);
    // "5.1.1" is later than "5.1".
    const bool goes_on = result == ReadResult::numberAndText && number == kNewest;
    return result != ReadResult::noNumber && (number > kNewest || goes_on);
}

void checkReservedTypes(AmiCheck& check, const ReservedRow& row, const AmiLeaf& leaf) {
    const auto unfit = firstTypeOutside(leaf, row.types);
    if (unfit) errorAtLine(at(check, *unfit->word), 4654, row.text, unfit->word->text);
}

/// A parameter that has only a default counts as one with a value.
void checkReservedFormat(AmiCheck& check, const ReservedRow& row, const AmiLeaf& leaf) {
    const AmiItem* const initial = leaf[AmiPart::initial].word;
    const AmiLeaf::Given& format = leaf[AmiPart::format];
    if (leaf.format) {
        const AmiItem& word = *format.word;
        if (leaf.format_fits && !row.formats.has(*leaf.format)) {
            warningAtLine(at(check, word), 4655, row.text, word.text);
        }
    } else if (initial != nullptr && !format.met && !format.reported && !row.formats.has(AmiFormat::value)) {
        warningAtLine(at(check, *initial), 4655, row.text, kAmiFormats.front().text);
    }
}

bool isNegative(const AmiItem& value) {
    double number = 0.0;
    return readDouble(value.text, number) == ReadResult::number && number < 0.0;
}

/// Looks at the single value and at the default, as far as they are of their type.
void checkNotNegative(AmiCheck& check, const ReservedRow& row, const AmiLeaf& leaf) {
    // A warning about a default must not hide the error.
    const AmiItem* const initial = leaf.good_default ? leaf[AmiPart::initial].word : nullptr;
    for (const AmiItem* const value : {firstValue(leaf), initial}) {
        if (value == nullptr || !isNegative(*value)) continue;
        errorAtLine(at(check, *value), 4661, row.text);
        return;
    }
}

void checkVersion(AmiCheck& check, const AmiLeaf& leaf) {
    constexpr std::array<std::string_view, 2> kKnown{"5.0", kNewestVersion};
    const AmiItem* const value = singleValue(leaf);
    if (value == nullptr || contains(kKnown, value->text)) return;
    if (check.context.parse.takes_later && isLaterVersion(value->text)) {
        noteLaterVersion(at(check, *value), value->text);
    } else {
        warningAtLine(at(check, *value), 4657, shown(value->text));
    }
}

} // namespace

constexpr std::array<ReservedRow, kReservedCount> kReserved{{
    {{"AMI_Version", Reserved::amiVersion}, kInfo, {AmiType::text}, kValueOnly},
    {{"Init_Returns_Impulse", Reserved::initReturnsImpulse}, kInfo, {AmiType::boolean}, kValueOnly},
    {{"GetWave_Exists", Reserved::getWaveExists}, kInfo, {AmiType::boolean}, kValueOnly},
    {{"Use_Init_Output", Reserved::useInitOutput}, kInfo, {AmiType::boolean}, kValueOnly},
    {{"Max_Init_Aggressors", Reserved::maxInitAggressors}, kInfo, {AmiType::integer}, kValueOnly},
    {{"Ignore_Bits", Reserved::ignoreBits}, kInfoOrOut, {AmiType::integer}, kPlain},
    {{"Tx_Jitter", Reserved::txJitter}, kInfoOrOut, kTimes, kStatistical},
    {{"Tx_DCD", Reserved::txDcd}, kInfoOrOut, kTimes, kPlain},
    {{"Rx_Receiver_Sensitivity", Reserved::rxReceiverSensitivity}, kInfoOrOut, {AmiType::real}, kPlain},
    {{"Rx_Clock_PDF", Reserved::rxClockPdf}, kInfoOrOut, kTimes, kStatistical},
}};
static_assert(standAtCodes(kReserved));

const ReservedRow* reservedRow(std::string_view name) {
    const auto hit = lookUpAmiWord<kReserved>(name);
    return hit.row == nullptr ? nullptr : &kReserved[static_cast<std::size_t>(hit.row->code)];
}

const ReservedRow* readReservedName(AmiCheck& check, const AmiItem& node) {
    const ReservedRow* const row = reservedRow(node.text);
    if (row != nullptr) {
        if (row->text != node.text) errorAtLine(at(check, node), 4662, shown(node.text), row->text);
    } else if (!check.rules.later) { // which may have the name
        if (contains(kLaterReserved, node.text)) {
            warningAtLine(at(check, node), 4651, shown(node.text));
        } else {
            errorAtLine(at(check, node), 4650, shown(node.text));
        }
    }
    return row;
}

AmiRules readAmiVersion(AmiCheck& check, const AmiItem& node) {
    // Whatever is wrong with it is reported in its turn.
    const Silence silence(check.context.diagnostics);
    const AmiItem* const value = singleValue(checkAmiLeaf(check, node));
    const std::string_view version = value == nullptr ? kNewestVersion : value->text;
    return {.version = version, .later = isLater(version)};
}

void checkReserved(AmiCheck& check, const ReservedRow& row, const AmiLeaf& leaf) {
    if (leaf.usage && !row.usages.has(*leaf.usage)) {
        const AmiItem& word = *leaf[AmiPart::usage].word;
        errorAtLine(at(check, word), 4653, row.text, word.text);
    }
    checkReservedTypes(check, row, leaf);
    checkReservedFormat(check, row, leaf);
    if (kNotNegative.has(row.code)) checkNotNegative(check, row, leaf);
    if (row.code == Reserved::amiVersion) checkVersion(check, leaf);
    if (row.code == Reserved::useInitOutput && !check.rules.first_version) {
        warningAtLine(at(check, *leaf.node), 4658, shown(check.rules.version));
    }
}

} // namespace kestrel

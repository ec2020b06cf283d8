#pragma once

#include "ami/leaf.hpp"

namespace kestrel {

/// The parameters that the language defines.
enum class Reserved : std::uint8_t {
    amiVersion,
    initReturnsImpulse,
    getWaveExists,
    useInitOutput,
    maxInitAggressors,
    ignoreBits,
    txJitter,
    txDcd,
    rxReceiverSensitivity,
    rxClockPdf
};

/// One of them, and what it may be.
struct ReservedRow : EnumerationRow<Reserved> {
    AmiUsageSet usages;
    AmiTypeSet types;
    AmiFormatSet formats;
};

inline constexpr std::size_t kReservedCount = 10;

/// By Reserved.
extern const std::array<ReservedRow, kReservedCount> kReserved;

/// The row that a name means, but for its case; null for other names.
[[nodiscard]] const ReservedRow* reservedRow(std::string_view name);

/// Looks up a name in "Reserved_Parameters". One in the wrong case, of a later version than the file's or of none is
/// reported; the last two have no row.
const ReservedRow* readReservedName(AmiCheck& check, const AmiItem& node);

/// The rules that "AMI_Version" chooses.
[[nodiscard]] AmiRules readAmiVersion(AmiCheck& check, const AmiItem& node);

/// Checks a reserved parameter beyond what holds for every one.
void checkReserved(AmiCheck& check, const ReservedRow& row, const AmiLeaf& leaf);

} // namespace kestrel

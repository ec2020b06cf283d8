#include "model/submdl.hpp"
#include "reader/context.hpp"
#include "reader/values.hpp"

#include <array>

namespace kestrel {

namespace {

bool hasTriggerR(const SubMdl& submodel) { return submodel.tables->spec && submodel.tables->spec->v_trigger_r; }
bool hasTriggerF(const SubMdl& submodel) { return submodel.tables->spec && submodel.tables->spec->v_trigger_f; }
bool hasOffDelay(const SubMdl& submodel) { return submodel.tables->spec && submodel.tables->spec->off_delay; }
bool hasBothPulls(const SubMdl& submodel) { return submodel.tables->pullup && submodel.tables->pulldown; }

bool lacksSpec(const SubMdl& submodel) { return !submodel.tables->spec; }
bool specLacksTriggerR(const SubMdl& submodel) { return submodel.tables->spec && !submodel.tables->spec->v_trigger_r; }
bool specLacksTriggerF(const SubMdl& submodel) { return submodel.tables->spec && !submodel.tables->spec->v_trigger_f; }
bool lacksRamp(const SubMdl& submodel) { return !submodel.tables->ramp; }
bool lacksPulls(const SubMdl& submodel) { return !submodel.tables->pullup && !submodel.tables->pulldown; }
bool delaysBothPulls(const SubMdl& submodel) { return hasOffDelay(submodel) && hasBothPulls(submodel); }
bool gndPulseLacksTrigger(const SubMdl& submodel) { return submodel.gnd_pulse && !hasTriggerF(submodel); }
bool powerPulseLacksTrigger(const SubMdl& submodel) { return submodel.power_pulse && !hasTriggerR(submodel); }
bool lacksClampTables(const SubMdl& submodel) {
    return !submodel.gnd_pulse && !submodel.power_pulse && !submodel.tables->gnd_clamp && !submodel.tables->power_clamp;
}

/// A fault that a submodel of one type may have.
struct TypeRule {
    SubmodelType type;
    bool (*is_broken)(const SubMdl&);
    CheckedMessage<ArgKind::text> message;
};

constexpr auto kTypeRules = std::to_array({
    TypeRule{SubmodelType::busHold, lacksSpec, 2424},
    TypeRule{SubmodelType::busHold, specLacksTriggerR, 2425},
    TypeRule{SubmodelType::busHold, specLacksTriggerF, 2426},
    TypeRule{SubmodelType::busHold, delaysBothPulls, 2427},
    TypeRule{SubmodelType::busHold, lacksRamp, 2428},
    TypeRule{SubmodelType::busHold, lacksPulls, 2429},
    TypeRule{SubmodelType::dynamicClamp, gndPulseLacksTrigger, 2430},
    TypeRule{SubmodelType::dynamicClamp, powerPulseLacksTrigger, 2431},
    TypeRule{SubmodelType::dynamicClamp, lacksClampTables, 2432},
    TypeRule{SubmodelType::dynamicClamp, hasOffDelay, 2433},
    TypeRule{SubmodelType::fallBack, lacksSpec, 2434},
    TypeRule{SubmodelType::fallBack, specLacksTriggerR, 2435},
    TypeRule{SubmodelType::fallBack, specLacksTriggerF, 2436},
    TypeRule{SubmodelType::fallBack, lacksPulls, 2437},
    TypeRule{SubmodelType::fallBack, hasBothPulls, 2438},
    TypeRule{SubmodelType::fallBack, lacksRamp, 2439},
    TypeRule{SubmodelType::fallBack, hasOffDelay, 2440},
});

/// On which side of the trigger an end of a waveform is at fault.
enum class Side : bool { below, above };

/// How one end of a waveform is held against the trigger.
struct EndRule {
    Side fault;
    CheckedMessage<ArgKind::text, ArgKind::text> message; ///< submodel, corner
};

/// The two ends of the waveforms of one direction.
struct TriggerRule {
    EndRule start;
    EndRule end;
};

constexpr TriggerRule kRisingRule{{Side::above, 2441}, {Side::below, 2442}};
constexpr TriggerRule kFallingRule{{Side::below, 2443}, {Side::above, 2444}};

/// Of a corner that only one side gives, the other side's typical value takes the place of its "NA".
bool isFaulty(Cell waveform, Cell waveform_typ, Cell trigger, Cell trigger_typ, Side fault) {
    const bool waveform_na = waveform.isNa();
    const bool trigger_na = trigger.isNa();
    if (waveform_na && trigger_na) return false;
    if (waveform_na) waveform = waveform_typ;
    if (trigger_na) trigger = trigger_typ;
    if (!waveform.isNumber() || !trigger.isNumber()) return false;
    return fault == Side::above ? waveform.value() > trigger.value() : waveform.value() < trigger.value();
}

void checkEnd(Context& context, std::string_view submodel, const TableRow& row, const Rng& trigger,
              const EndRule& rule) {
    for (const Corner corner : kCorners) {
        if (isFaulty(row[columnOf(corner)], row[kTyp], trigger[corner], trigger.typ(), rule.fault)) {
            warning(context.diagnostics, rule.message, submodel, kShortCornerWords[placeOf(corner)]);
        }
    }
}

void checkTrigger(Context& context, std::string_view submodel, const Rows<Wvfrm>& waveforms, const GivenRange& trigger,
                  const TriggerRule& rule) {
    if (!trigger || !trigger->typ().isNumber()) return;
    for (const Wvfrm& waveform : waveforms) {
        const Rows<TableRow>& rows = waveform.rows;
        if (rows.empty() || !rows.front()[kTyp].isNumber()) continue;
        checkEnd(context, submodel, rows.front(), *trigger, rule.start);
        checkEnd(context, submodel, rows.back(), *trigger, rule.end);
    }
}

} // namespace

void checkSubMdl(Context& context, const SubMdl& submodel) {
    for (const TypeRule& rule : kTypeRules) {
        if (rule.type == submodel.type && rule.is_broken(submodel)) {
            error(context.diagnostics, rule.message, submodel.name);
        }
    }
    const OnDemand<SmSpec>& spec = submodel.tables->spec;
    if (!spec) return;
    checkTrigger(context, submodel.name, submodel.tables->rising_waveforms, spec->v_trigger_r, kRisingRule);
    checkTrigger(context, submodel.name, submodel.tables->falling_waveforms, spec->v_trigger_f, kFallingRule);
}

} // namespace kestrel

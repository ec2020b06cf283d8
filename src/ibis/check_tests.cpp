#include "ibis/checks.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/testdata.hpp"
#include "model/testload.hpp"
#include "reader/context.hpp"

namespace kestrel {

namespace {

/// Types that a load cannot end at; a model without a type has been reported.
constexpr ModelTypeSet kNoReceivers =
    kReceivingTypes.with({ModelType::terminator, ModelType::notGiven, ModelType::noType}).others();

using NamedMessage = CheckedMessage<ArgKind::text, ArgKind::text>;

/// Looks up the models that a test names for its sides; one that serves both is reported once.
template <NamedMessage Missing, NamedMessage WrongType, class Test>
void checkModels(Context& context, const Ibis& root, const Test& test, std::array<std::string Test::*, 2> sides,
                 const ModelTypeSet& wrong_types) {
    for (const auto side : sides) {
        const std::string& name = test.*side;
        if (name.empty() || (side != sides[0] && name == test.*sides[0])) continue;
        const Mdl* const model = root.models.find(name);
        if (model == nullptr) {
            if (!isRefused(test, side)) error(context.diagnostics, Missing, name, test.name);
        } else if (wrong_types.has(model->type())) {
            warning(context.diagnostics, WrongType, name, test.name);
        }
    }
}

void checkLoad(Context& context, Ibis& root, const TestData& data) {
    if (data.test_load.empty()) return;
    TestLoad* const load = root.test_loads.find(data.test_load);
    if (load == nullptr) {
        if (!isRefused(data, &TestData::test_load)) error(context.diagnostics, 2327, data.test_load, data.name);
        return;
    }
    load->used = true;
    if (load->type == TestType::notGiven || data.type == TestType::notGiven || load->type == data.type) return;
    error(context.diagnostics, 2328, data.test_load, data.name);
}

} // namespace

void checkTestData(Context& context, Ibis& root) {
    for (const TestData& data : root.test_data.newestFirst()) {
        const About about(context.diagnostics, data);
        checkModels<2325, 2326>(context, root, data, {&TestData::driver_model, &TestData::driver_model_inv},
                                kNoTestLoadTypes);
        checkLoad(context, root, data);
    }
}

void checkTestLoads(Context& context, Ibis& root) {
    for (const TestLoad& load : root.test_loads.newestFirst()) {
        const About about(context.diagnostics, load);
        checkModels<2228, 2229>(context, root, load, {&TestLoad::receiver_model, &TestLoad::receiver_model_inv},
                                kNoReceivers);
        // Of loads of one name, which has been reported, only the newest can be used.
        if (load.used || root.test_loads.find(load.name) != &load) continue;
        warning(context.diagnostics, 2230, load.name);
    }
}

} // namespace kestrel

#include "ibis/check_tests.hpp"

#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/testdata.hpp"
#include "model/testload.hpp"
#include "reader/context.hpp"

namespace kestrel {

namespace {

/// Types that a load may end at; a model without a type has been reported.
constexpr ModelTypeSet kReceivers =
    kReceivingTypes.with({ModelType::terminator, ModelType::notGiven, ModelType::noType});

void checkDriver(Context& context, const Ibis& root, const TestData& data, std::string TestData::*field) {
    const std::string& name = data.*field;
    if (name.empty()) return;
    const Mdl* const model = root.models.find(name);
    if (model == nullptr) {
        if (!isRefused(data, field)) error(context.diagnostics, 2325, name, data.name);
    } else if (kNoTestLoadTypes.has(model->type())) {
        warning(context.diagnostics, 2326, name, data.name);
    }
}

void checkLoad(Context& context, const Ibis& root, const TestData& data) {
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

void checkReceiver(Context& context, const Ibis& root, const TestLoad& load, std::string TestLoad::*field) {
    const std::string& name = load.*field;
    if (name.empty()) return;
    const Mdl* const model = root.models.find(name);
    if (model == nullptr) {
        if (!isRefused(load, field)) error(context.diagnostics, 2228, name, load.name);
    } else if (!kReceivers.has(model->type())) {
        warning(context.diagnostics, 2229, name, load.name);
    }
}

} // namespace

void checkTestData(Context& context, Ibis& root) {
    for (const TestData& data : root.test_data.newestFirst()) {
        const About about(context.diagnostics, data);
        checkDriver(context, root, data, &TestData::driver_model);
        // A model that drives both sides is reported once.
        if (data.driver_model_inv != data.driver_model) {
            checkDriver(context, root, data, &TestData::driver_model_inv);
        }
        checkLoad(context, root, data);
    }
}

void checkTestLoads(Context& context, Ibis& root) {
    for (const TestLoad& load : root.test_loads.newestFirst()) {
        const About about(context.diagnostics, load);
        checkReceiver(context, root, load, &TestLoad::receiver_model);
        // A model that receives both sides is reported once.
        if (load.receiver_model_inv != load.receiver_model) {
            checkReceiver(context, root, load, &TestLoad::receiver_model_inv);
        }
        // Of loads of one name, which has been reported, only the newest can be used.
        if (load.used || root.test_loads.find(load.name) != &load) continue;
        warning(context.diagnostics, 2230, load.name);
    }
}

} // namespace kestrel

#pragma once

#include "reader/values.hpp"

#include <string_view>

namespace kestrel {

struct Context;

/// The four delays (seconds) of a scheduled driver; "NA" where not given.
struct Dly {
    Cell rise_on;
    Cell rise_off;
    Cell fall_on;
    Cell fall_off;
};

/// Reads the delays behind the name of a scheduled model; when every cell reads, checks which are given together and
/// how they lie to one another.
[[nodiscard]] Dly readDly(Context& context, std::string_view text, std::string_view model_name);

} // namespace kestrel

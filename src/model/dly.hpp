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

/// Reads the delays behind the name of a scheduled model. Reports 4501, 4502 and what the cell reader reports; then,
/// when every cell reads, which delays stand together and how they lie to one another (4504 to 4509).
[[nodiscard]] Dly readDly(Context& context, std::string_view text, std::string_view model_name);

} // namespace kestrel

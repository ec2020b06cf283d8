#pragma once

#include "base/name_table.hpp"
#include "base/row_store.hpp"
#include "base/text_store.hpp"
#include "reader/columns.hpp"

#include <string_view>

namespace kestrel {

/// One row of "[Series Pin Mapping]". A row that was dropped keeps nothing but its model name and its group, so that
/// the model counts as used and the group as mapped.
struct SPin {
    StoredText pin_1;
    StoredText pin_2;
    Name model_name;
    Name group; ///< function table group, empty when the column is absent
    bool pin_1_reported = false;
    bool pin_2_reported = false;
    bool model_reported = false;
    bool group_reported = false;
};

/// "[Series Pin Mapping]".
struct SeriesPins {
    TableColumns columns;
    Rows<SPin> rows; ///< in file order
};

/// Reads the header words behind "[Series Pin Mapping]".
void seriesPinHeader(Context& context, SeriesPins& series_pins, std::string_view text);

/// Reads one row.
void seriesPinLine(Context& context, SeriesPins& series_pins, std::string_view text);

} // namespace kestrel

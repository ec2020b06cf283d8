#pragma once

#include <string_view>

namespace kestrel {

/// A subparameter by its name, for whoever lists what a record gives.
template <class Record, class Value> struct NamedMember {
    std::string_view name;
    Value Record::*member;
};

} // namespace kestrel

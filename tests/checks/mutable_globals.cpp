// Every kind of state that must not be in the library. no_mutable_globals has to count six symbols here: five variables
// and the guard of the one that is made at run time. The constants at the end are none of them.
#include <array>
#include <string>
#include <string_view>

namespace kestrel {

int shown = 1;
inline int shared = 0;
thread_local int per_thread = 0;

struct Row {
    int code;
    std::string_view text;
};
inline constexpr std::array<Row, 2> kRows{Row{1, "one"}, Row{2, "two"}};

struct Base {
    virtual ~Base() = default;
    virtual int value() const { return 1; }
};

int use(const Base& base, std::size_t row) {
    static int calls = 0;
    static const std::string made_at_run_time(row, 'x');
    calls += base.value() + kRows.at(row).code;
    return calls + shown + shared++ + per_thread + static_cast<int>(made_at_run_time.size());
}

int useOwn(std::size_t row) { return use(Base{}, row); }

} // namespace kestrel

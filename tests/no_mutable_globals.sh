#!/bin/sh
# usage: no_mutable_globals.sh [--expect COUNT] OBJDUMP ARCHIVE...
#
# Lists the variables that live in writable sections of the archives and fails when there are any (or not COUNT).
# Sections are what counts here, not the letters of nm: tables that hold addresses (.data.rel.ro) become read-only when
# the program is loaded but get the letter of writable data, and inline variables get letters of their own. (A constant
# under .data.rel.local: spell its type out; g++ puts an inline constexpr std::array{...} with deduced type there.)
set -eu

expect=0
if [ "$1" = --expect ]; then
    expect=$2
    shift 2
fi
objdump=$1
shift

listing=$(mktemp)
trap 'rm -f "$listing"' EXIT
"$objdump" -t -C "$@" > "$listing"

# Columns: address, seven flag characters, section, size, name. Left out are the symbols of the sections themselves
# (flag d), pointers made for the unwinder and the markers of AddressSanitizer.
awk -v expect="$expect" '
    / \.text/ { code = 1 }
    {
        flags = substr($0, 18, 7)
        split(substr($0, 26), column, /[ \t]+/)
        section = column[1]
        if (flags ~ /d/ || section !~ /^\.(data|bss|tdata|tbss)/ || section ~ /^\.data\.rel\.ro/) next
        if ($0 ~ /DW\.ref\.|__odr_asan/) next
        name = $0
        sub(/^[^\t]*\t[0-9a-f]+ +/, "", name)
        print section ": " name
        found++
    }
    END {
        if (!code) { print "no code in the archives: nothing was checked"; exit 1 }
        if (found != expect) { print found + 0 " writable variables, expected " expect; exit 1 }
    }
' "$listing"

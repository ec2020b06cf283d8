#!/bin/bash
# Lets vim read the lines of the gcc form as its list of errors and looks where it jumps to:
# check_quickfix.sh PROGRAM FOLDER, where FOLDER has six.ebd. Ends with status 77 when vim is not there.
set -euo pipefail
program=$1
cd "$2"
if ! command -v vim > /dev/null; then
    echo "vim is left out: it is not at hand."
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
"$program" --format=gcc --output="$work/errors" six.ebd || status=$?
[[ $status == 1 ]]

# Jumps to each entry in turn and writes down where it is, and the type that vim sees.
cat > "$work/jumps.vim" <<EOF
set nomore nocompatible hidden
execute 'cfile' '$work/errors'
let places = []
for i in range(1, len(getqflist()))
    execute 'cc' i
    call add(places, expand('%:t') . ':' . line('.') . ': ' . getline('.'))
endfor
call writefile(places, '$work/places')
qall!
EOF
vim -es -u NONE -i NONE -n -S "$work/jumps.vim" < /dev/null

diff "$work/places" - <<'EOF'
six.ebd:8: A1	CLK
six.ebd:17: 100% "odd", <b>: & co
six.ebd:4: [Begin Board Description] Bd
parts.ibs:20: 1 -1 NA NA
parts.ibs:22: [No Such Keyword]
parts.ibs:23: 50% of <"it">, a:b & more
parts.ibs:12: [Model] buf
EOF
echo "vim jumps to the seven lines."

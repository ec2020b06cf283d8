#!/bin/bash
# Loads the completions that verimark writes in the shells that are there and looks at what they offer:
# check_completions.sh FOLDER. Ends with status 77 when a shell had to be left out and the others passed.
set -euo pipefail
folder=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
touch board.ibs PINS.PKG notes.txt known.txt 'two words.ebd'
mkdir parts.d
left_out=0

fail() { echo "FAILED: $*" >&2; exit 1; }

# expect WHAT WANTED GOT: both are lists, one word a line, in any order.
expect() {
    [[ $(sort <<< "$2") == $(sort <<< "$3") ]] || fail "$1: offered $(tr '\n' ' ' <<< "$3")"
}

formats=$'text\ngcc\njson\njsonl\nsarif\ngithub\njunit'

in_bash() {  # WORD... : what is offered for the last of them
    bash --norc -c '
        source "$1"; shift
        compopt() { :; }
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
        _verimark
        printf "%s\n" "${COMPREPLY[@]}"' bash "$folder/verimark" "$@"
}
expect "bash, format" "$formats" "$(in_bash verimark -f '')"
expect "bash, format=" "$formats" "$(in_bash verimark --format =)"
expect "bash, format=js" $'json\njsonl' "$(in_bash verimark --format = js)"
expect "bash, joined" $'-fjson\n-fjsonl' "$(in_bash verimark -fjs)"
expect "bash, names" $'--format=\n--fail-on=' "$(in_bash verimark --f)"
expect "bash, values" $'error\nwarning\nadvice' "$(in_bash verimark --fail-on = '')"
expect "bash, files" $'board.ibs\nPINS.PKG\nparts.d\ntwo words.ebd' "$(in_bash verimark '')"
expect "bash, any file" 'notes.txt' "$(in_bash verimark -o n)"
expect "bash, a file behind =" 'known.txt' "$(in_bash verimark --baseline = kn)"
expect "bash, none" '' "$(in_bash verimark --ignore = '')"
# Bash itself takes it for what completes the command.
[[ $(bash --norc -c 'source "$1"; complete -p verimark' bash "$folder/verimark") == "complete -F _verimark verimark" ]] ||
    fail "bash does not know the function"

if command -v fish > /dev/null; then
    in_fish() { fish --no-config -c "source '$folder/verimark.fish'; complete -C '$1'" | cut -f1; }
    expect "fish, format" "$formats" "$(in_fish 'verimark -f ')"
    expect "fish, format=js" $'--format=json\n--format=jsonl' "$(in_fish 'verimark --format=js')"
    expect "fish, names" $'--fail-on\n--format' "$(in_fish 'verimark --f' | tr -d =)"
    expect "fish, a file" 'known.txt' "$(in_fish 'verimark --baseline kn')"
else
    echo "fish is left out: it is not at hand."
    left_out=77
fi

if command -v zsh > /dev/null; then
    # A shell at a pseudo-terminal, where TAB writes what is offered.
    cat > "$work/asked.zsh" <<'EOF'
zmodload zsh/zpty
zpty -b shell zsh -f -i
zpty -w shell "PS1=; fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -D; LISTMAX=1000; bindkey '^I' list-choices; stty columns 200"
zpty -w shell 'print BEGIN''NING'
text=
collect() {  # until it has been still for some time
    local piece still=0
    while (( still < $1 )); do
        if zpty -r -t shell piece; then text+=$piece; still=0; else sleep 0.1; (( still += 1 )); fi
    done
}
for (( i = 0; i < 100; ++i )) do
    collect 1
    [[ $text == *BEGINNING* ]] && break
done
text=
zpty -n -w shell "$2"$'\t'
collect 15
print -r -- "$text"
EOF
    in_zsh() { timeout 60 zsh -f "$work/asked.zsh" "$folder" "$1" < /dev/null; }
    offered=$(in_zsh 'verimark --format=')
    for word in $formats; do [[ $offered == *$word* ]] || fail "zsh, format=: offered $offered"; done
    offered=$(in_zsh 'verimark --f')
    [[ $offered == *--fail-on* && $offered == *--format* && $offered != *--output* ]] || fail "zsh, names: offered $offered"
    offered=$(in_zsh 'verimark ')
    [[ $offered == *board.ibs* && $offered == *PINS.PKG* && $offered != *notes.txt* ]] || fail "zsh, files: offered $offered"
else
    echo "zsh is left out: it is not at hand."
    left_out=77
fi

((left_out)) || echo "bash, zsh and fish offer what they should."
exit $left_out

#!/usr/bin/env bash
# The manual pages and completion scripts of a build name every command and every option that --help
# names, and man, groff, bash, zsh and fish take them without a warning.
#
#   manual_test.sh TARVO FOLDER
set -euo pipefail
shopt -s inherit_errexit
tarvo=$1 share=$2
here=$(dirname "$0")
export LC_ALL=C.UTF-8 MANWIDTH=100
failed=0

fail() {
  echo "$*" >&2
  failed=1
}

# expect NAME EXPECTED GIVEN
expect() { [[ $2 == "$3" ]] || fail "$1: expected \"$2\", got \"$3\""; }

commands() { "$tarvo" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'; }

# options [COMMAND]: every name in the list of options.
options() { "$tarvo" "$@" --help | grep -oE '^  -[^ ]+' | tr -d ' ' | tr ',' '\n' | sort; }

# in_bash WORD...: what bash offers for the last word.
in_bash() {
  bash -uc 'source "$0"
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _tarvo
    echo "${COMPREPLY[@]}"' "$share/bash-completion/completions/tarvo" "$@"
}

# in_fish LINE: what fish offers for its last word, without the descriptions.
in_fish() {
  fish --no-config -c 'source $argv[1]; complete -C $argv[2] | string split -f1 \t' \
    "$share/fish/vendor_completions.d/tarvo.fish" "$1" | sort | tr '\n' ' ' | sed 's/ $//'
}

# in_zsh LINE: the line after zsh has completed its last word.
in_zsh() { zsh -f "$here/complete.zsh" "$share/zsh/site-functions" "$1"; }

check_page() {  # PAGE [COMMAND]
  local page=$share/man/man1/$1.1 text option
  expect "$1 in groff" "" "$(groff -man -ww -Tutf8 -z "$page" 2>&1)"
  expect "$1 in man" "" "$(man --warnings -l "$page" 2>&1 >/dev/null)"
  text=$(man -l "$page")
  for option in $(options "${@:2}"); do
    grep -qE "^ {7}(-., )?$option( |,|\$)" <<<"$text" || fail "$1(1) does not describe $option"
  done
}

check_options() {  # COMMAND
  local names option
  names=$(options "$1" | tr '\n' ' ' | sed 's/ $//')
  expect "options of $1 in bash" "$names" "$(in_bash tarvo "$1" - | tr ' ' '\n' | sort | tr '\n' ' ' | sed 's/ $//')"
  expect "options of $1 in fish" "$names" "$(in_fish "tarvo $1 -")"
  for option in $names; do
    sed -n "/^_tarvo_$1()/,/^}/p" "$share/zsh/site-functions/_tarvo" | grep -q -- "[)*]$option[=+]*\[" ||
      fail "zsh does not complete $option of $1"
  done
}

# Every value that is offered is one that the command takes.
check_values() {  # COMMAND OPTION
  local value
  for value in $(in_bash tarvo "$1" "$2" ''); do
    "$tarvo" "$1" no-such-scene.json -o picture.png "$2" "$value" 2>&1 | grep -q -- "$2" &&
      fail "$1 $2 $value is offered, but not taken"
  done
  [[ -n ${value-} ]] || fail "$1 $2: no values are offered"
}

commands=$(commands)
expect "commands in bash" "$commands" "$(in_bash tarvo '' | tr ' ' '\n' | grep -v '^-')"
expect "commands in fish" "$(sort <<<"$commands" | xargs)" "$(in_fish 'tarvo ')"
check_page tarvo
for command in $commands; do
  check_page "tarvo-$command" "$command"
  check_options "$command"
done
expect "pages" "$(wc -w <<<"tarvo $commands")" "$(find "$share/man" -type f | wc -l)"

check_values render --background
check_values render --show
check_values render --progress
check_values sheet --background

expect bash "--background" "$(in_bash tarvo render --ba)"
expect bash "render" "$(in_bash tarvo ren)"
expect bash "auto json" "$(in_bash tarvo render --progress '')"
expect bash "grey green" "$(in_bash tarvo watch a.json --background = gr)"
expect "bash, where files follow" "" "$(in_bash tarvo render '')$(in_bash tarvo render --plugin '')"
expect bash "complete -o default -F _tarvo tarvo" "$(bash -c 'source "$0"; complete -p tarvo' "$share/bash-completion/completions/tarvo")"

expect fish "--background" "$(in_fish 'tarvo render --ba')"
expect fish "bones depth owner pieces" "$(in_fish 'tarvo render --show ')"
fish --no-execute "$share/fish/vendor_completions.d/tarvo.fish" || fail "fish finds errors"

zsh -n "$share/zsh/site-functions/_tarvo" || fail "zsh finds errors"
expect zsh "tarvo render " "$(in_zsh 'tarvo ren')"
expect zsh "tarvo render --background=" "$(in_zsh 'tarvo render --ba')"
expect zsh "tarvo render --progress json " "$(in_zsh 'tarvo render --progress j')"

exit "$failed"

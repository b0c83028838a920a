#!/usr/bin/env bash
# What Windows sees of the library before it runs: one export; imports from libraries that every
# 64-bit Windows has; addresses chosen anew at each load, from all 64 bits; no section that can be
# both written and run.
#
#   library_file.sh OBJDUMP LIBRARY
set -euo pipefail
facts=$("$1" -p "$2")
expect() {
  [ "$2" = "$3" ] || { printf '%s: expected\n%s\nfound\n%s\n' "$1" "$2" "$3" >&2; exit 1; }
}
expect exports EntryPointFunc "$(sed -n '/^\[Ordinal.Name Pointer/,/^$/s/^\t\[ *[0-9]*\] //p' <<<"$facts")"
expect imports 'gdi32.dll glu32.dll kernel32.dll msvcrt.dll opengl32.dll user32.dll' \
  "$(sed -n 's/.*DLL Name: //p' <<<"$facts" | tr '[:upper:]' '[:lower:]' | sort | paste -sd' ')"
for flag in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
  grep -q "$flag" <<<"$facts" || { echo "the flag $flag is not set" >&2; exit 1; }
done
if "$1" -h "$2" | grep CODE | grep -v READONLY; then
  echo 'the section above can be written and run' >&2
  exit 1
fi

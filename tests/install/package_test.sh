#!/usr/bin/env bash
# Installs a Debian package into a bare system of the machine's own release, where only its
# dependencies are, renders a sample there to the bytes of the build, and removes the package without
# leaving anything. Ends with 77, and says why, where no such system can be made.
#
#   package_test.sh PACKAGE TARVO      TARVO: the command of the build that the package is made from
set -euo pipefail
package=$(realpath "$1")
tarvo=$(realpath "$2")
cd "$(dirname "$0")/../.."

skip() { echo "package_test: skipped: $1" >&2; exit 77; }
fail() { echo "package_test: $1" >&2; exit 1; }

# As lines of a sources.list, whichever form the machine's own have.
debian_sources() {
  apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u
}

[ "$(id -u)" -eq 0 ] || skip "a bare system is made by root only"
command -v mmdebstrap >/dev/null || skip "mmdebstrap is not installed"
sources=$(debian_sources)
[ -n "$sources" ] || skip "apt knows no Debian archive here (apt-get update fetches its lists)"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TARVO_TEST_WORK=$work
cp "$package" "$work/tarvo.deb"
cp tests/install/package_in_bare_system.sh "$work/"

# Leaves the system in a temporary folder, which mmdebstrap removes; the hooks get its path as $1.
mmdebstrap --quiet --mode=root --variant=minbase --format=null --dpkgopt=force-unsafe-io \
  --customize-hook='cp "$TARVO_TEST_WORK/tarvo.deb" "$TARVO_TEST_WORK/package_in_bare_system.sh" "$1/tmp/"' \
  --customize-hook='chroot "$1" bash /tmp/package_in_bare_system.sh /tmp/tarvo.deb /tmp/wave.png' \
  --customize-hook='cp "$1/tmp/wave.png" "$TARVO_TEST_WORK/"' \
  '' /dev/null - <<<"$sources" >"$work/log" 2>&1 ||
  { cat "$work/log" >&2; fail "the package failed in a bare system, or none could be made"; }

"$tarvo" render examples/wave/wave.json -o "$work/expected.png" --quiet
cmp "$work/expected.png" "$work/wave.png" || fail "the installed command renders another picture than the build"
echo "package_test: $(basename "$package") installs, renders the picture of the build and is removed"

#!/usr/bin/env bash
# The part of package_test.sh that runs, as root, in the bare system.
#
#   package_in_bare_system.sh PACKAGE PICTURE      PICTURE: written there
set -euo pipefail
package=$1 picture=$2
export DEBIAN_FRONTEND=noninteractive LC_ALL=C
work=$(mktemp -d)

fail() { echo "package_test: $1" >&2; exit 1; }

# Every file with its owner, mode, size and time, but for what a running system changes, dpkg's own
# records, and the loader's cache, which dpkg has written anew.
list_files() {
  find / -xdev \( -path /dev -o -path /proc -o -path /sys -o -path /tmp -o -path /var/log \
    -o -path '/var/lib/dpkg/[!i]*' -o -path /etc/ld.so.cache -o -path /var/cache/ldconfig \) -prune \
    -o -type d -printf 'd %m %u:%g %p\n' -o -printf '%y %m %u:%g %s %T@ %p %l\n' | sort
}

# As a user without rights, who must be able to read everything.
as_user() {
  setpriv --reuid=65534 --regid=65534 --clear-groups env HOME="$work/home" "$@"
}

install_dependencies() {
  apt-get -qq satisfy --no-install-recommends -y "$(dpkg-deb -f "$package" Depends)"
  apt-get clean
}

# dpkg installs no package whose dependencies are not all there.
install_package() {
  dpkg -i "$package"
  local changed
  changed=$(dpkg -V tarvo)
  [ -z "$changed" ] || fail "dpkg -V reports: $changed"
}

use_package() {
  chmod 755 "$work"
  mkdir -m 777 "$work/home"
  cd "$work/home"
  local version
  version=$(dpkg-query -W -f '${Version}' tarvo)
  as_user tarvo --version | grep -qF "$version" || fail "tarvo --version does not say $version"
  as_user tarvo render /usr/share/doc/tarvo/examples/wave/wave.json -o wave.png --quiet
  as_user tarvo check --only Commands.AboutShowsNameAndVersion
  test -s /usr/share/doc/tarvo/copyright || fail "no copyright file"
  mv wave.png "$picture"
  cd /
}

remove_package() {
  dpkg --purge tarvo
  list_files >"$work/after"
  diff "$work/before" "$work/after" || fail "files differ (above) from before the package was installed"
}

install_dependencies
list_files >"$work/before"
install_package
use_package
remove_package

# Sourced by the other scripts: goes to the repository's root and installs what is missing there.
# A package is asked for by name and only when dpkg does not know it, so that a machine that has
# everything needs no network.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

packages=(
  g++ cmake ninja-build git
  libegl-dev libgl-dev libopengl-dev libglu1-mesa-dev libegl-mesa0 libgl1-mesa-dri  # no screen needed
  nlohmann-json3-dev libcli11-dev libstb-dev zlib1g-dev ffmpeg       # the stand-in host
  libgtest-dev googletest python3 python3-jsonschema                 # tests
  libbenchmark-dev libcairo2-dev pkg-config                          # scripts/bench
  clang-format clang-tidy binutils
  clang libclang-rt-dev llvm                                         # the fuzzers
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 libz-mingw-w64-dev zip  # the Windows build, archives
  wine wine64 xvfb xauth                                             # its tests
)

have() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q ' installed$'; }

install_missing() {
  local missing=() package
  for package in "${packages[@]}"; do have "$package" || missing+=("$package"); done
  [ ${#missing[@]} -eq 0 ] && return
  command -v apt-get >/dev/null || { echo "missing, and no apt-get here: ${missing[*]}" >&2; exit 1; }
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}

# build PRESET: configures and builds one preset.
build() {
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1"
}

install_missing

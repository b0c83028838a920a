# Sourced by the other scripts: goes to the repository's root, and defines how they install what is
# missing and build. A package is asked for by name and only when dpkg does not know it, so that a
# machine that has everything needs no network.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

packages_of() {
  case "$1" in
    product)  # the plug-in and tarvo, and what OpenGL needs without a screen
      echo g++ cmake ninja-build nlohmann-json3-dev libcli11-dev libstb-dev zlib1g-dev \
        libegl-dev libgl-dev libopengl-dev libglu1-mesa-dev libegl-mesa0 libgl1-mesa-dri
      ;;
    tests) echo libgtest-dev python3 python3-jsonschema ffmpeg git groff-base man-db zsh fish ;;
    bench) echo libbenchmark-dev libcairo2-dev pkg-config ;;
    lint) echo clang-format clang-tidy ;;
    docs) echo doxygen ;;
    fuzz) echo clang libclang-rt-dev llvm ;;
    windows)
      echo g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 libz-mingw-w64-dev googletest \
        wine wine64 xvfb xauth
      ;;
    archives) echo binutils git zip ;;
    debian) echo binutils dpkg-dev file gzip mmdebstrap ;;
  esac
}

have() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q ' installed$'; }

# install_missing GROUP...: the packages of these groups that are missing.
install_missing() {
  local missing=() group package
  for group in "$@"; do
    for package in $(packages_of "$group"); do have "$package" || missing+=("$package"); done
  done
  [ ${#missing[@]} -eq 0 ] && return
  command -v apt-get >/dev/null || { echo "missing, and no apt-get here: ${missing[*]}" >&2; exit 1; }
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}

# build PRESET [CONFIGURED]: configures and builds one preset, in the folder of the other one if given.
build() {
  cmake --preset "${2:-$1}" >/dev/null
  cmake --build --preset "$1"
}

# make_package FOLDER: the Debian package of a build folder, in its folder package.
make_package() {
  cpack --config "$1/CPackConfig.cmake" -B "$1/package" >"$1/package.log" 2>&1 ||
    { cat "$1/package.log" >&2; return 1; }
}

# What a test ends with that cannot run here; it has said why.
skipped=77

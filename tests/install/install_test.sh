#!/bin/sh
# What cmake --install puts into a folder works from there: the command by its link, through a link of
# the user's own, the checks' worker, and the package for makers of companions, in C and in C++.
#
#   install_test.sh CMAKE BUILD_FOLDER EMPTY_FOLDER
set -eu
cmake=$1 build=$2 work=$3
rm -rf "$work"
mkdir -p "$work/maker"
"$cmake" --install "$build" --prefix "$work/usr" >/dev/null

cd "$work"
ln -s usr/bin/tarvo mine
./mine render usr/share/doc/tarvo/examples/wave/wave.json --scale 1/8 -o wave.png --quiet
test -s wave.png
for file in man/man1/tarvo.1 man/man1/tarvo-render.1 bash-completion/completions/tarvo \
  zsh/site-functions/_tarvo fish/vendor_completions.d/tarvo.fish; do
  test -s "usr/share/$file"
done
grep -q '^- `Commands.AboutShowsNameAndVersion`: About shows ' usr/share/doc/tarvo/requirements.md
usr/bin/tarvo check --only Commands.AboutShowsNameAndVersion | grep -q '^conformant: 1 check passed'

cat >maker/CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(maker LANGUAGES C CXX)
find_package(tarvo-companion 2.0 REQUIRED)
foreach(language c cpp)
  file(WRITE ${CMAKE_BINARY_DIR}/maker.${language} "#include <tarvo/companion.h>\n")
  add_library(maker_${language} OBJECT ${CMAKE_BINARY_DIR}/maker.${language})
  target_link_libraries(maker_${language} PRIVATE tarvo::companion)
endforeach()
END
"$cmake" -S maker -B maker/build -D CMAKE_PREFIX_PATH="$work/usr" >/dev/null
"$cmake" --build maker/build

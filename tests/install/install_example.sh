#!/usr/bin/env bash
# install_example.sh BUILD SOURCE BUILD_ID LIBDIR PLUGINDIR
# Installs BUILD into a temporary prefix, checks the layout, and builds and runs examples/hello-display
# against the installed files: once with find_package, once with pkg-config.
set -euo pipefail
build=$1 source=$2 build_id=$3 libdir=$4 plugindir=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "install_example: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >"$work/install.log" || { cat "$work/install.log"; fail "install failed"; }

for f in "bin/nexaro-page" "$libdir/libNexaroControls.so" "$libdir/pkgconfig/NexaroControls.pc" \
         "$libdir/cmake/NexaroControls/NexaroControlsConfig.cmake" \
         "include/NexaroControls/frame/ClassRegistry.h" "include/NexaroControls/frame/NXRInfo.h" \
         "share/nexarocontrols/sim/controller_sim.py"; do
  [ -e "$prefix/$f" ] || fail "missing $f"
done
if [ -n "$plugindir" ]; then
  plugin="$prefix/$plugindir/libnexarocontrols_designer.so"
  [ -e "$plugin" ] || fail "missing the Designer plugin in $plugindir"
  grep -q "libNexaroControls.* => $prefix/" <<<"$(ldd "$plugin")" ||
    fail "the Designer plugin does not find the installed library"
fi

# The installed host runs from its prefix (it finds the installed library, not the build's).
# (Outputs are read whole before grep -q looks at them: under pipefail an early grep exit fails the pipe.)
grep -qF "$build_id" <<<"$("$prefix/bin/nexaro-page" --version)" || fail "nexaro-page --version lacks $build_id"
grep -q "libNexaroControls.* => $prefix/" <<<"$(ldd "$prefix/bin/nexaro-page")" ||
  fail "installed nexaro-page does not use the installed library"

launcher=()
if command -v ccache >/dev/null; then
  launcher=(ccache)
  # Paths inside the temporary folder are made relative, so repeated runs hit the cache.
  export CCACHE_BASEDIR="$work" CCACHE_NOHASHDIR=1
fi
cd "$work"
expect="NexaroControls for controller software $build_id"
# The example is built with the flags the library was built with: a library built with the
# sanitizers needs their runtime in the program too.
cxxflags=$(sed -n 's/^CMAKE_CXX_FLAGS:STRING=//p' "$build/CMakeCache.txt")
ldflags=$(sed -n 's/^CMAKE_EXE_LINKER_FLAGS:STRING=//p' "$build/CMakeCache.txt")

# find_package
cmake -S "$source/examples/hello-display" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS="$cxxflags" -DCMAKE_EXE_LINKER_FLAGS="$ldflags" \
  ${launcher:+-DCMAKE_CXX_COMPILER_LAUNCHER=ccache} >"$work/cmake.log" 2>&1 ||
  { cat "$work/cmake.log"; fail "configuring the example failed"; }
cmake --build "$work/cmake" >>"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; fail "building the example failed"; }
out=$("$work/cmake/hello-display")
grep -qF "$expect" <<<"$out" || fail "find_package build printed: $out"
grep -qF "NXRImageDisplay" <<<"$out" || fail "find_package build made no display: $out"

# pkg-config
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
pkg-config --exists NexaroControls || fail "pkg-config does not know NexaroControls"
# Every public class header compiles from the installed tree alone (nothing it includes was left out).
(cd "$prefix/include/NexaroControls" && find . -name 'NXR*.h' | sort | sed 's|^\./\(.*\)|#include <\1>|') >all.cpp
[ -s all.cpp ] || fail "no public class headers installed"
c++ -std=c++20 $cxxflags -fsyntax-only all.cpp $(pkg-config --cflags NexaroControls) ||
  fail "an installed header does not compile on its own: $(tr '\n' ' ' <all.cpp)"
cp "$source/examples/hello-display/main.cpp" "$work/main.cpp"
# shellcheck disable=SC2086 # flag lists
"${launcher[@]}" c++ -std=c++20 $cxxflags -c main.cpp $(pkg-config --cflags NexaroControls) -o main.o &&
  c++ $ldflags main.o $(pkg-config --libs NexaroControls) -Wl,-rpath,"$prefix/$libdir" -o hello-pc ||
  fail "building the example with pkg-config failed"
out=$("$work/hello-pc")
grep -qF "$expect" <<<"$out" || fail "pkg-config build printed: $out"
echo "installed into $prefix; example built with find_package and pkg-config: $out"

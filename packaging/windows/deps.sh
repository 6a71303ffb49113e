#!/usr/bin/env bash
# Build the Windows (MinGW-w64, x86_64) dependencies of Velmora from Debian's own
# source packages into a cache folder, and print the prefix:
#   Qt 6 qtbase (Core, Gui, Widgets, PrintSupport + the windows platform plugin),
#   qpdf (shared), libjpeg-turbo (shared), zlib (Debian's libz-mingw-w64-dev),
#   expat (static, for velmora-import).
#
#   packaging/windows/deps.sh            build what is missing, print the prefix
#   packaging/windows/deps.sh --key      print the cache key and exit
#   packaging/windows/deps.sh STAGE...   only these stages (zlib expat qtbase jpeg qpdf),
#                                        e.g. to run qpdf beside a long qtbase build, or
#                                        expat alone for the Qt-free build
#
# Environment:
#   VELMORA_WIN_CACHE      cache folder (default ~/.cache/velmora)
#   VELMORA_WIN_CACHE_KEY  use this key instead of the hash of the recipe files
#                          (for working on the recipe without rebuilding every time)
#   VELMORA_WIN_JOBS       parallel compile jobs (default 2)
# See README.md beside this file.
set -euo pipefail

HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
TOOLCHAIN=$HERE/mingw-w64.cmake
# Every file the recipe reads: its hash is the cache key.
RECIPE_FILES=("$HERE/deps.sh" "$TOOLCHAIN")

CACHE=${VELMORA_WIN_CACHE:-$HOME/.cache/velmora}
KEY=${VELMORA_WIN_CACHE_KEY:-$(cat "${RECIPE_FILES[@]}" | sha256sum | cut -c1-12)}
ROOT=$CACHE/$KEY
PREFIX=$ROOT/prefix
SRC=$ROOT/src
BUILD=$ROOT/build
STAMPS=$ROOT/stamps
DONE=$ROOT/complete
JOBS=${VELMORA_WIN_JOBS:-2}
ALL_STAGES=(zlib expat qtbase jpeg qpdf)

if [ "${1:-}" = --key ]; then
  echo "$KEY"
  exit 0
fi
if [ -e "$DONE" ]; then
  echo "$PREFIX"
  exit 0
fi

if [ $# -gt 0 ]; then STAGES=("$@"); else STAGES=("${ALL_STAGES[@]}"); fi
for s in "${STAGES[@]}"; do
  case " ${ALL_STAGES[*]} " in *" $s "*) ;; *) echo "unknown stage: $s" >&2; exit 2 ;; esac
done

mkdir -p "$PREFIX" "$SRC" "$BUILD" "$STAMPS"
log() { echo "== $(date +%H:%M:%S) $*" >&2; }
heavy() { nice -n 19 "$@"; }
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO=sudo

# Only the target's .pc files, for every stage.
export PKG_CONFIG_LIBDIR=$PREFIX/lib/pkgconfig
unset PKG_CONFIG_PATH
export VELMORA_WIN_PREFIX=$PREFIX

# ---------------------------------------------------------------- packages
PACKAGES=(cmake ninja-build perl pkg-config dpkg-dev
  gcc-mingw-w64-x86-64-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64
  mingw-w64-x86-64-dev libz-mingw-w64-dev
  qt6-base-dev qt6-base-dev-tools)

apt_updated=no
apt_update() {
  $SUDO apt-get update -qq
  apt_updated=yes
}

install_packages() {
  local missing=()
  for p in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return
  log "installing: ${missing[*]}"
  apt_update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
}

# deb-src entry in deb822 form, copied from the machine's debian.sources
# (same URIs, Suites, Components, Signed-By).
SRC_LIST=/etc/apt/sources.list.d/velmora-src.sources
add_deb_src() {
  if [ -e "$SRC_LIST" ]; then return; fi
  local base=/etc/apt/sources.list.d/debian.sources
  [ -e "$base" ] || { echo "no $base to copy the archive from" >&2; exit 1; }
  log "adding $SRC_LIST"
  # Keep the stanzas whose Types include deb; turn them into deb-src.
  awk '
    BEGIN { RS=""; ORS="\n\n" }
    /(^|\n)Types:[^\n]*deb([ \n]|$)/ {
      out=""
      n=split($0, lines, "\n")
      for (i=1; i<=n; i++) {
        if (lines[i] ~ /^#/) continue
        if (lines[i] ~ /^Types:/) lines[i]="Types: deb-src"
        out = out lines[i] "\n"
      }
      sub(/\n$/, "", out)
      print out
    }' "$base" | $SUDO tee "$SRC_LIST.tmp" >/dev/null
  $SUDO mv "$SRC_LIST.tmp" "$SRC_LIST"
  apt_update
}

# apt-get source PKG into $SRC/PKG, once: the newest version the archive serves (a mirror
# may list a security update whose source it doesn't hold), refreshing the lists once if none.
fetch_source() {
  local pkg=$1 dir=$SRC/$1 v
  if [ -e "$dir/.fetched" ]; then return; fi
  add_deb_src
  log "apt-get source $pkg"
  for attempt in 1 2; do
    for v in $(apt-cache showsrc "$pkg" | sed -n 's/^Version: //p' | sort -rV | uniq); do
      rm -rf "$dir"; mkdir -p "$dir"
      if (cd "$dir" && apt-get source -qq "$pkg=$v" >/dev/null 2>&1); then
        echo "$v" >"$dir/.fetched"
        return
      fi
    done
    [ "$attempt" = 1 ] && [ "$apt_updated" = no ] && apt_update
  done
  echo "apt-get source $pkg: no version of it could be fetched" >&2
  exit 1
}
# Fetches PKG's source on first use and sets SOURCE to its unpacked tree. One fetch at a
# time, so two runs side by side don't unpack into the same folder.
use_source() {
  (
    flock 9
    fetch_source "$1"
  ) 9>"$ROOT/sources.lock"
  SOURCE=$(find "$SRC/$1" -mindepth 1 -maxdepth 1 -type d | head -n1)
}

# ---------------------------------------------------------------- stages
# CPU_NOW = CPU seconds (user+sys) of this shell's finished children, from the builtin
# `times` (not in a $(...) subshell: that one has no children yet).
children_cpu() {
  local f=$ROOT/.times.$$
  times >"$f"
  CPU_NOW=$(awk 'NR==2 { t=0; for (i=1; i<=2; i++) { split($i, a, /[ms]/); t += a[1]*60 + a[2] } printf "%.0f\n", t }' "$f")
  rm -f "$f"
}

run_stage() {
  local stage=$1
  if [ -e "$STAMPS/$stage.done" ]; then
    log "$stage: done already"
    return
  fi
  # Two runs at once (e.g. qtbase and qpdf side by side) must not build the same stage.
  local lock
  exec {lock}>"$STAMPS/$stage.lock"
  flock "$lock"
  if [ -e "$STAMPS/$stage.done" ]; then flock -u "$lock"; return; fi
  log "$stage: start"
  local t0=$SECONDS c0 c1
  children_cpu; c0=$CPU_NOW
  "stage_$stage"
  relocate_pc_files
  local dt=$((SECONDS - t0))
  children_cpu; c1=$CPU_NOW
  echo "$stage wall=${dt}s cpu=$((c1 - c0))s" >>"$ROOT/timings.txt"
  touch "$STAMPS/$stage.done"
  log "$stage: done in ${dt}s (cpu $((c1 - c0))s)"
  flock -u "$lock"
}

# .pc files name their folder relative to themselves, so the prefix can be moved
# (e.g. a cache folder built under VELMORA_WIN_CACHE_KEY renamed to the real key).
relocate_pc_files() {
  local f
  for f in "$PREFIX"/lib/pkgconfig/*.pc; do
    [ -e "$f" ] || continue
    sed -i -e 's|^prefix=.*|prefix=${pcfiledir}/../..|' \
      -e "s|$PREFIX|\${prefix}|g" "$f"
  done
}

# zlib: Debian's MinGW build (libz-mingw-w64-dev), copied into the prefix so the
# prefix holds every DLL and .pc file the program and qpdf need.
stage_zlib() {
  local sys=/usr/x86_64-w64-mingw32
  mkdir -p "$PREFIX/bin" "$PREFIX/lib/pkgconfig" "$PREFIX/include"
  cp -f "$sys/include/zlib.h" "$sys/include/zconf.h" "$PREFIX/include/"
  cp -f "$sys/lib/libz.dll.a" "$PREFIX/lib/"
  cp -f "$(find "$sys" -name zlib1.dll | head -n1)" "$PREFIX/bin/"
  local ver
  ver=$(sed -n 's/^#define ZLIB_VERSION "\(.*\)"/\1/p' "$sys/include/zlib.h")
  cat >"$PREFIX/lib/pkgconfig/zlib.pc" <<EOF
prefix=$PREFIX
exec_prefix=\${prefix}
libdir=\${prefix}/lib
includedir=\${prefix}/include

Name: zlib
Description: zlib compression library
Version: $ver
Libs: -L\${libdir} -lz
Cflags: -I\${includedir}
EOF
}

# expat, static: velmora-import links it in, so no DLL ships for it.
stage_expat() {
  local src b=$BUILD/expat
  use_source expat
  src=$SOURCE/expat
  # Debian's security patches test "XML_DTD == 1", as its autotools config defines it;
  # the CMake config defines it empty.
  sed -i 's/^#cmakedefine XML_DTD$/#cmakedefine XML_DTD 1/' "$src/expat_config.h.cmake"
  rm -rf "$b"
  heavy cmake -S "$src" -B "$b" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" -DCMAKE_INSTALL_LIBDIR=lib \
    -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF \
    -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_BUILD_FUZZERS=OFF
  heavy cmake --build "$b" --parallel "$JOBS"
  cmake --install "$b"
}

# libjpeg-turbo (for qpdf's DCT filter), shared, without SIMD (no nasm needed).
stage_jpeg() {
  local src b=$BUILD/jpeg
  use_source libjpeg-turbo
  src=$SOURCE
  rm -rf "$b"
  heavy cmake -S "$src" -B "$b" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" \
    -DENABLE_SHARED=ON -DENABLE_STATIC=OFF -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF \
    -DWITH_JAVA=OFF
  heavy cmake --build "$b" --parallel "$JOBS"
  cmake --install "$b"
}

# Qt 6 qtbase, host tools (moc, rcc, uic, ...) from Debian's qt6 packages.
stage_qtbase() {
  local src b=$BUILD/qtbase
  use_source qt6-base
  src=$SOURCE
  rm -rf "$b"; mkdir -p "$b"
  (cd "$b" && heavy "$src/configure" \
    -prefix "$PREFIX" \
    -xplatform win32-g++ -device-option CROSS_COMPILE=x86_64-w64-mingw32- \
    -qt-host-path /usr \
    -release -shared \
    -no-opengl -no-dbus -no-icu -no-glib -no-libjpeg -no-zstd \
    -qt-zlib -qt-libpng -qt-freetype -qt-harfbuzz -qt-pcre \
    -no-feature-network -no-feature-sql -no-feature-xml -no-feature-concurrent \
    -no-feature-testlib -no-feature-tabletevent \
    -nomake examples -nomake tests \
    -- -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" \
    -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake)
  heavy cmake --build "$b" --parallel "$JOBS"
  cmake --install "$b"
}

# qpdf, shared, native crypto, no tests/examples/docs.
stage_qpdf() {
  run_stage zlib
  run_stage jpeg
  local src b=$BUILD/qpdf
  use_source qpdf
  src=$SOURCE
  # Windows import libraries are lower-case on MinGW; the file system is case-sensitive.
  find "$src" \( -name CMakeLists.txt -o -name '*.cmake' \) -exec sed -i 's/Advapi32/advapi32/g' {} +
  rm -rf "$b"
  heavy cmake -S "$src" -B "$b" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" -DCMAKE_INSTALL_LIBDIR=lib \
    -DBUILD_SHARED_LIBS=ON -DBUILD_STATIC_LIBS=OFF \
    -DREQUIRE_CRYPTO_NATIVE=ON -DUSE_IMPLICIT_CRYPTO=OFF \
    -DBUILD_DOC=OFF -DINSTALL_EXAMPLES=OFF -DINSTALL_MANUAL=OFF
  # "all" holds the CLI, ~60 test programs, examples and fuzzers: build the library only
  # and install its runtime (lib) and development (dev) components.
  heavy cmake --build "$b" --parallel "$JOBS" --target libqpdf
  # The lib component also installs qpdf/extra-dlls (MinGW runtime DLLs that
  # qpdf's copy_dlls collects next to qpdf.exe, which is not built here): leave it empty.
  mkdir -p "$b/qpdf/extra-dlls"
  # The DLL, its import library and the CMake package files have no component
  # ("Unspecified"); headers and libqpdf.pc are "dev".
  local c
  for c in Unspecified lib dev; do cmake --install "$b" --component "$c"; done
}

# ---------------------------------------------------------------- main
install_packages
for s in "${STAGES[@]}"; do run_stage "$s"; done

for s in "${ALL_STAGES[@]}"; do
  if [ ! -e "$STAMPS/$s.done" ]; then
    log "stages still to build: $s ..."
    echo "$PREFIX"
    exit 0
  fi
done
# The MinGW runtime that every DLL and .exe here needs, so bin/ is complete.
for dll in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
  cp -f "$(x86_64-w64-mingw32-g++-posix -print-file-name=$dll)" "$PREFIX/bin/"
done
touch "$DONE"
log "all stages done (timings in $ROOT/timings.txt)"
echo "$PREFIX"

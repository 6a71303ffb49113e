#!/usr/bin/env bash
# One entry point for people and CI:
#   ./build.sh run    install what is missing, build, open the window on the sample data
#                     (without a display: render the sample chart to a PNG and say where)
#   ./build.sh test   install what is missing, build, run the benchmarks and every test
#   ./build.sh shot   screenshots of the window under Xvfb into build/screenshots/
#   ./build.sh package   build and make a Debian package (velmora_*.deb) in build/
#   ./build.sh sanitize       build into build-asan under the address and undefined-behaviour
#                             sanitizers and run every test there
#   ./build.sh fuzz [SECONDS] build the fuzz targets with clang into build-fuzz and run each
#                             for SECONDS (default 60)
#   ./build.sh windows-core   cross-build the Qt-free part for Windows (MinGW-w64) into
#                             build-win-core and run its tests under Wine
#   ./build.sh windows        cross-build everything for Windows into build-win (Qt and qpdf
#                             built once into ~/.cache/velmora), make the zip and the installer
#   ./build.sh windows-test   the same, then the core tests, velmora-chart.exe's golden road,
#                             the window's road and the installer under Wine
set -euo pipefail
cd "$(dirname "$0")"
BUILD=${BUILD:-build}

packages=(cmake ninja-build g++ qt6-base-dev libgl-dev libgtest-dev libbenchmark-dev poppler-utils
  fonts-dejavu-core xvfb xauth x11-apps imagemagick pkg-config libqpdf-dev libexpat1-dev clang libclang-rt-14-dev
  time)

install_missing() {
  [ $# -gt 0 ] && packages=("$@")
  local missing=()
  for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo=sudo
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
}

build() {
  cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$BUILD"
}

# The Windows cross build into DIR against the dependencies that deps.sh builds once into the
# cache: all of them, or only the STAGEs named, for the Qt-free part alone.
windows_build() {
  local dir=$1 prefix
  shift
  install_missing cmake ninja-build wine64 googletest
  prefix=$(packaging/windows/deps.sh "$@" | tail -n 1)
  local qt=ON
  [ $# -gt 0 ] && qt=OFF
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMORA_QT=$qt \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/packaging/windows/mingw-w64.cmake" \
    -DVELMORA_WIN_PREFIX="$prefix" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
  cmake --build "$dir"
  # Wine with a prefix of its own, so no state of $HOME counts; the first start sets it up.
  export WINEPREFIX="$PWD/$dir/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
  export WINE=$(command -v wine64 || echo /usr/lib/wine/wine64)
  [ -d "$WINEPREFIX" ] || "$WINE" wineboot -i </dev/null >/dev/null 2>&1
}

# The zip (portable: the sample beside the programs, so it charts at once) and the installer
# (the sample in sample\, the data in %APPDATA%\velmora) from one installed folder.
windows_package() {
  install_missing nsis
  local name
  name=$(sed -n 's/^set(CPACK_PACKAGE_FILE_NAME "\(.*\)")$/\1/p' build-win/CPackConfig.cmake)
  rm -rf build-win/stage build-win/"$name".zip
  cmake --install build-win --prefix "build-win/stage/$name" --strip >build-win/install.log
  sed -n 's/^-- From Windows: /DLLs from Windows: /p' build-win/install.log
  (cd build-win && cpack -G NSIS >/dev/null)
  local app=build-win/stage/$name
  mv "$app/sample/README.txt" "$app/Sample data.txt"
  mv "$app/sample"/* "$app/" && rmdir "$app/sample"
  (cd build-win/stage && cmake -E tar cf "../$name.zip" --format=zip "$name")
  echo "Windows: build-win/$name.zip ($(du -sh "build-win/stage/$name" | cut -f1) unpacked)," \
    "build-win/$name.exe"
}

case "${1:-}" in
  run)
    install_missing
    build
    if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
      exec "$BUILD/velmora"
    fi
    out="$PWD/$BUILD/sample-chart.png"
    "$BUILD/velmora-chart" --airport XWHL --approach "ILS 16L" --out "$out"
    echo "No display here: the sample chart (XWHL, ILS 16L) is in $out"
    ;;
  test)
    install_missing
    build
    # Benchmarks first, so the test summary closes the output.
    "$BUILD/bench/velmora_bench"
    (cd "$BUILD" && ctest --output-on-failure)
    ;;
  shot)
    install_missing
    build
    mkdir -p "$BUILD/screenshots"
    xvfb-run -a -s "-screen 0 1280x800x24" bash -c "
      '$BUILD/velmora' XWHL & pid=\$!; sleep 3
      xwd -root -silent | convert xwd:- '$BUILD/screenshots/window.png'
      kill \$pid"
    echo "Screenshot: $BUILD/screenshots/window.png"
    ;;
  package)
    install_missing
    build
    (cd "$BUILD" && cpack -G DEB >/dev/null)
    deb=$(ls -t "$BUILD"/velmora_*.deb | head -1)
    echo "Package: $deb"
    ;;
  sanitize)
    install_missing
    cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMORA_SANITIZE=ON \
      >/dev/null
    cmake --build build-asan
    (cd build-asan && ctest --output-on-failure)
    ;;
  fuzz)
    install_missing
    CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DVELMORA_FUZZ=ON >/dev/null
    cmake --build build-fuzz
    tests/fuzz/run.sh build-fuzz "${2:-60}"
    ;;
  windows-core)
    windows_build build-win-core expat
    (cd build-win-core && ctest --output-on-failure </dev/null)
    # The sample's index by the Windows program, byte for byte the Linux program's.
    if [ -x "$BUILD/velmora-index" ]; then
      "$BUILD/velmora-index" --data sample --out - 2>/dev/null >build-win-core/sample-index.linux
      "$WINE" build-win-core/velmora-index.exe --data sample --out - </dev/null 2>/dev/null \
        >build-win-core/sample-index.windows
      cmp build-win-core/sample-index.linux build-win-core/sample-index.windows
      echo "velmora-index.exe under Wine indexes the sample as velmora-index on Linux does"
    fi
    ;;
  windows)
    windows_build build-win
    windows_package
    ;;
  windows-test)
    windows_build build-win
    windows_package
    install_missing xvfb xauth openbox xdotool x11-apps imagemagick
    (cd build-win && ctest --output-on-failure </dev/null)
    tests/windows/road.sh build-win
    ;;
  *)
    echo "usage: $0 run|test|shot|package|sanitize|fuzz [SECONDS]|windows-core|windows|windows-test" >&2
    exit 2
    ;;
esac

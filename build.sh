#!/usr/bin/env bash
# One entry point for people and CI:
#   ./build.sh run    install what is missing, build, open the window on the sample data
#                     (without a display: render the sample chart to a PNG and say where)
#   ./build.sh test   install what is missing, build, run the benchmarks and every test
#   ./build.sh shot   screenshots of the window under Xvfb into build/screenshots/
#   ./build.sh package   build and make a Debian package (velmora_*.deb) in build/
set -euo pipefail
cd "$(dirname "$0")"
BUILD=${BUILD:-build}

packages=(cmake ninja-build g++ qt6-base-dev libgl-dev libgtest-dev libbenchmark-dev poppler-utils
  fonts-dejavu-core xvfb xauth x11-apps imagemagick pkg-config libqpdf-dev)

install_missing() {
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
    "$BUILD/bench/velmora_bench" --benchmark_color=false
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
  *)
    echo "usage: $0 run|test|shot|package" >&2
    exit 2
    ;;
esac

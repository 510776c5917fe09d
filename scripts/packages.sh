# Sourced by the other scripts: installs the packages that they need, configures and builds.
# shellcheck shell=bash

# ccache needs this sloppiness to keep what is compiled with a precompiled header.
if command -v ccache >/dev/null; then
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
  export CCACHE_SLOPPINESS=pch_defines,time_macros
fi

# The packages that a job needs. macOS comes with SQLite and curl.
apt_packages() {
  case $1 in
    build)
      echo g++ cmake ninja-build libasio-dev libcli11-dev libcurl4-openssl-dev libre2-dev \
        libsimdjson-dev libsqlite3-dev libsystemd-dev libtomlplusplus-dev libwayland-dev \
        libxcb-screensaver0-dev libxcb-sync-dev libxcb1-dev plasma-wayland-protocols \
        wayland-protocols
      ;;
    test)
      echo clang curl dbus-daemon fish libgtest-dev libssl-dev openbox openssl strace x11-utils \
        xdotool xterm xvfb zenity zsh
      ;;
    desktops) echo dbus-bin foot gnome-shell i3-wm kwin-wayland layer-shell-qt qtwayland5 sway swaylock xterm xwayland zenity ;;
    package) echo dpkg-dev file ;;
    lint) echo lintian ;;
    install) echo binutils cmake debootstrap ;;
    benchmark) echo libbenchmark-dev ;;
    sanitize) echo clang ;;
    format) echo clang-format git ;;
    tidy) echo clang clang-tidy ;;
  esac
}
brew_packages() {
  case $1 in
    build) echo asio cli11 cmake ninja re2 simdjson tomlplusplus ;;
    test) echo googletest node openssl ;;
    benchmark) echo google-benchmark ;;
    sanitize | tidy) echo llvm ;;
    format) echo clang-format ;;
  esac
}

say() {
  printf 'tessum: %s\n' "$*" >&2
}

die() {
  say "$*"
  exit 1
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "run this as root, or install sudo: needed for: $*"
  fi
}

# Installs those of the named Debian packages that are missing.
install_apt() {
  local package missing=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "installing ${missing[*]}"
  as_root apt-get update -qq </dev/null >&2
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -qq -y --no-install-recommends "${missing[@]}" </dev/null >&2
}

install_brew() {
  local formula missing=()
  for formula in "$@"; do
    brew list --formula "$formula" >/dev/null 2>&1 || missing+=("$formula")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "installing ${missing[*]}"
  HOMEBREW_NO_AUTO_UPDATE=1 brew install --quiet "${missing[@]}" </dev/null >&2
}

# need JOB...: installs what these jobs need and the machine lacks.
need() {
  local job
  for job in "$@"; do
    # The lists are to be split into words.
    # shellcheck disable=SC2046
    if command -v apt-get >/dev/null; then
      install_apt $(apt_packages "$job")
      # Node.js may come from elsewhere, with its own npm.
      [[ $job != @(test|install) ]] || command -v npm >/dev/null || install_apt nodejs npm
      # Ubuntu has Chromium only as a snap; without it the browser's tests are skipped.
      [ "$job" != test ] || ! apt-cache show chromium >/dev/null 2>&1 || install_apt chromium
      # The package of the sanitizers' runtime has the compiler's version in its name.
      ! command -v clang >/dev/null || install_apt "libclang-rt-$(clang -dumpversion | cut -d. -f1)-dev"
    elif command -v brew >/dev/null; then
      install_brew $(brew_packages "$job")
    else
      die 'this needs apt-get (Debian, Ubuntu) or Homebrew (macOS)'
    fi
  done
}

# configure FOLDER [cmake arguments]: prepares a build folder; prints CMake's output only if it fails.
configure() {
  local folder=$1 log
  shift
  mkdir -p "$folder"
  log=$folder/configure.log
  say "preparing $folder"
  cmake -S . -B "$folder" -G Ninja "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    die "cmake could not prepare $folder"
  }
}

# build FOLDER [targets]: builds, and shows progress on a terminal. Ninja itself would start two more
# compilers than there are processors, which take longer than they would one after the other.
build() {
  local folder=$1 log
  shift
  local -x CMAKE_BUILD_PARALLEL_LEVEL
  CMAKE_BUILD_PARALLEL_LEVEL=$(getconf _NPROCESSORS_ONLN)
  log=$folder/build.log
  say "building in $folder"
  if [ -t 2 ]; then
    cmake --build "$folder" ${1:+--target "$@"} >&2
  else
    cmake --build "$folder" ${1:+--target "$@"} >"$log" 2>&1 || {
      tail -n 100 "$log" >&2
      die "the build in $folder failed"
    }
  fi
}

# build_quickly TARGETS...: builds in build/run, without optimization and with few calls of the compiler,
# so that newcomers wait as little as possible. What is installed for good comes from build/release.
# Newer compilers may know warnings that ours do not.
build_quickly() {
  configure build/run -DCMAKE_BUILD_TYPE=Quick -DCMAKE_CXX_FLAGS_QUICK=-w -DCMAKE_UNITY_BUILD=ON \
    -DBUILD_TESTING=OFF -DTESSUM_BENCHMARKS=OFF
  build build/run "$@"
}

# configure_release [cmake arguments]: prepares build/release, the build that is installed for good and
# measured. Read together, the sources also make smaller programs.
configure_release() {
  configure build/release -DCMAKE_BUILD_TYPE=Release -DCMAKE_UNITY_BUILD=ON "$@"
}

# Builds the tests in build/test, with few calls of the compiler, too.
build_tests() {
  configure build/test -DCMAKE_BUILD_TYPE=Debug -DCMAKE_UNITY_BUILD=ON
  build build/test
}

# run_tests FOLDER [ctest arguments]: runs the tests that were built there. They spend half of their time
# waiting, so there are two for each processor.
run_tests() {
  local folder=$1
  shift
  ctest --test-dir "$folder" --output-on-failure --progress \
    -j $((2 * $(getconf _NPROCESSORS_ONLN))) "$@"
}

#!/bin/bash
# Installs the Debian packages that are missing. Needs no network when there are none.
#
#   tools/setup.sh run     what building and running the workbench takes
#   tools/setup.sh test    that, and what the tests take
#   tools/setup.sh hosts   that, and programs that play plug-ins (half a gigabyte)
#   tools/setup.sh windows what building the libraries for Windows takes
#   tools/setup.sh tidy    what the tests take, and clang-tidy
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

run_packages=(
    g++ cmake ninja-build pkg-config
    libboost-dev libcairo2-dev libpango1.0-dev libpugixml-dev libsdl2-dev libsndfile1-dev libfmt-dev libcli11-dev
    libkissfft-dev libhwy-dev nlohmann-json3-dev lv2-dev libx11-dev libxext-dev
    fonts-dejavu-core
)
test_packages=(
    libgtest-dev libgmock-dev libbenchmark-dev
    python3 xvfb xdotool imagemagick liblilv-dev lilv-utils sordi
)
host_packages=(valgrind ffmpeg jackd2 jalv ardour openbox)
windows_packages=(g++-mingw-w64-x86-64-posix cmake ninja-build make pkg-config quilt bzip2 xz-utils
    libboost-dev libfmt-dev libcli11-dev nlohmann-json3-dev)
tidy_packages=(clang-tidy-14)

case ${1:-} in
    run) wanted=("${run_packages[@]}") ;;
    test) wanted=("${run_packages[@]}" "${test_packages[@]}") ;;
    hosts) wanted=("${run_packages[@]}" "${test_packages[@]}" "${host_packages[@]}") ;;
    windows) wanted=("${windows_packages[@]}") ;;
    tidy) wanted=("${run_packages[@]}" "${test_packages[@]}" "${tidy_packages[@]}") ;;
    *)
        echo "usage: tools/setup.sh run|test|hosts|windows|tidy" >&2
        exit 2
        ;;
esac

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    say "not a Debian system: taking the packages for granted (${wanted[*]})"
    exit 0
fi

installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null |
    sed -n 's/^installed //p' || true)
missing=()
for package in "${wanted[@]}"; do
    grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "these packages are missing and only root can install them: ${missing[*]}"
    as_root=(sudo)
fi
apt() {
    local command=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600
        -o Dpkg::Use-Pty=0 "$@")
    if [[ -t 1 ]]; then "${command[@]}"; else quietly "${command[@]}"; fi
}

say "install ${missing[*]}"
apt update || say "the package lists could not be updated; trying with those at hand"
apt install -y --no-install-recommends "${missing[@]}" || fail "installing packages failed"

#!/bin/bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that are missing; says and does nothing when none is.
#
#   scripts/install-packages.sh GROUP...
#
# Groups: build (the library), test, examples, bench, clang, targets (other machines and compilers),
# format, fuzz, coverage, lint (shellcheck and clang-tidy), bare-machine.
set -euo pipefail

packages=()
for group in "$@"; do
    case $group in
        build) packages+=(g++ binutils cmake ninja-build pkg-config libfreetype-dev libicu-dev) ;;
        test)
            packages+=(libgtest-dev googletest valgrind g++-i686-linux-gnu qemu-user
                xvfb xdotool imagemagick
                fonts-dejavu-core fonts-wqy-microhei fonts-tlwg-garuda-ttf) ;;
        examples)
            packages+=(libpugixml-dev libpng-dev libjpeg62-turbo-dev libgif-dev libwebp-dev
                zlib1g-dev libsdl2-dev
                librsvg2-bin librsvg2-tests openclipart-svg
                fonts-dejavu-core fonts-wqy-microhei fonts-tlwg-garuda-ttf) ;;
        bench)
            packages+=(libbenchmark-dev libcairo2-dev libagg-dev libpugixml-dev libpng-dev
                libjpeg62-turbo-dev zlib1g-dev
                fonts-dejavu-core) ;;
        clang) packages+=(clang libclang-rt-14-dev) ;;
        fuzz) packages+=(clang libclang-rt-14-dev fonts-dejavu-core) ;;
        coverage) packages+=(gcovr) ;;
        targets)
            packages+=(clang libclang-rt-14-dev
                g++-arm-linux-gnueabihf g++-aarch64-linux-gnu) ;;
        format) packages+=(clang-format-14) ;;
        lint) packages+=(shellcheck clang-tidy-14) ;;
        bare-machine) packages+=(debootstrap) ;;
        *)
            echo "$0: unknown group $group" >&2
            exit 2 ;;
    esac
done

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null || true)
    [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} = 0 ] && exit 0

echo "installing ${missing[*]}"
as_root=()
if [ "$(id -u)" != 0 ]; then
    command -v sudo > /dev/null || { echo "needs root or sudo to install packages" >&2; exit 1; }
    as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" > /dev/null

#!/bin/bash
# SPDX-License-Identifier: MIT
# Runs scripts/demo.sh and scripts/test.sh from a fresh clone of HEAD on a bare Debian 12, where
# nothing is installed but what every machine has, and says how long each took.
#
#   scripts/check-bare-machine.sh            demo.sh, then test.sh
#   scripts/check-bare-machine.sh SCRIPT...  these alone, in this order (demo test)
#
# Needs root: it makes a root directory of its own with debootstrap and changes into it. Packages
# come from where this machine's apt gets them. The root is in build/bare-machine while it is used;
# the logs of what failed stay there.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" = 0 ] || { echo "$0: needs root" >&2; exit 2; }
commands=("$@")
[ ${#commands[@]} != 0 ] || commands=(demo test)
for command in "${commands[@]}"; do
    case $command in
        demo | test) ;;
        *) sed -n '3,/^set/p' "$0" | grep '^#' | cut -c3-; exit 2 ;;
    esac
done
scripts/install-packages.sh bare-machine

release=bookworm
logs=$PWD/build/bare-machine
root=$logs/root

clean_up() {
    local mounted
    for mounted in "$root/proc" "$root/dev"; do
        # Processes that outlive a signal may still hold it.
        ! mountpoint -q "$mounted" || umount "$mounted" 2> /dev/null || umount --lazy "$mounted" ||
            return
    done
    rm -rf --one-file-system "$root"
}
clean_up # what a run that was killed has left
trap clean_up EXIT
trap 'exit 1' INT TERM
mkdir -p "$logs"
rm -f "$logs"/*.log

# What fails shows the end of its log.
logged() {
    local log=$logs/$1.log start=$SECONDS
    shift
    "$@" > "$log" 2>&1 || { tail -n 30 "$log"; return 1; }
    echo "   $((SECONDS - start)) s"
    rm "$log"
}

echo "== a bare $release"
# shellcheck disable=SC2016 # apt-get expands it
source=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
    awk -v release=$release '$1 == release && $2 == "main" && !found++ { print $3 }')
[ -n "$source" ] || { echo "apt has no source for $release" >&2; exit 1; }
proxy=$(apt-config shell proxy Acquire::http::Proxy)
eval "$proxy"
http_proxy=${proxy:-${http_proxy:-}} \
    logged debootstrap debootstrap --variant=minbase $release "$root" "$source"
rm -rf "$root/etc/apt"
cp -r /etc/apt "$root/etc/apt"
cp -Lf /etc/resolv.conf /etc/hosts "$root/etc"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
git clone --quiet --no-local . "$root/mm2d"

failed=false
for command in "${commands[@]}"; do
    echo "== scripts/$command.sh"
    logged "$command" chroot "$root" /usr/bin/env -i HOME=/root LANG=C.UTF-8 \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
        "/mm2d/scripts/$command.sh" || failed=true
done
if $failed; then
    echo "FAILED"
    exit 1
fi
echo "a bare machine builds, draws and tests"

#!/bin/bash
# Proves that the commands work on a bare Debian 12: makes a minimal system in a folder, copies the tree into it and
# runs a command there. As root, with debootstrap installed.
#
#   tools/bare_debian.sh [--root DIRECTORY] [--fresh] [--offline] [command]
#
#   --root      where the system is (default /tmp/bare-debian); made when it is not there yet
#   --fresh     make it anew
#   --offline   run without network, as on a machine that has all packages
#   command     default ./test
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

system=/tmp/bare-debian
fresh=false
isolate=()
while (($#)); do
    case $1 in
        --root) system=$2; shift 2 ;;
        --fresh) fresh=true; shift ;;
        --offline) isolate=(unshare --net); shift ;;
        --*)
            echo "usage: tools/bare_debian.sh [--root DIRECTORY] [--fresh] [--offline] [command]" >&2
            exit 2
            ;;
        *) break ;;
    esac
done
command=("$@")
((${#command[@]})) || command=(./test)

((EUID == 0)) || fail "only root can do this"
command -v debootstrap >/dev/null || fail "debootstrap is not installed"

mounted() { awk -v path="$1" '$2 == path' /proc/mounts | grep -q .; }
unmount() {
    local place
    for place in "$system/dev" "$system/proc"; do
        if mounted "$place"; then umount -R "$place"; fi
    done
}

make_system() {
    local mirror
    # This machine's mirror, in either format of the sources.
    mirror=$(sed -nE 's/^URIs: *([^ ]*debian\/?)$/\1/p; s/^deb (\[[^]]*\] )?([^ ]*debian\/?) bookworm .*/\2/p' \
        /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null | head -n 1 || true)
    if [[ -e $system && ! -e $system/.bare-debian ]]; then
        fail "$system exists and was not made by this command"
    fi
    say "make a system in $system"
    rm -rf --one-file-system "$system"
    quietly debootstrap --variant=minbase bookworm "$system" "${mirror:-http://deb.debian.org/debian}" ||
        fail "debootstrap failed"
    touch "$system/.bare-debian"
    # A proxy is this machine's matter, not that of the commands under test.
    apt-config dump | grep -E '^Acquire::https?::Proxy ' >"$system/etc/apt/apt.conf.d/90proxy" || true
}

# What was built there stays, so that a second run builds only what has changed.
copy_tree() {
    mkdir -p "$system/src"
    find "$system/src" -mindepth 1 -maxdepth 1 -not -name 'build*' -exec rm -rf {} +
    (cd "$root" && git ls-files -z --cached --others --exclude-standard |
        tar -c --null -T - --ignore-failed-read --warning=no-failed-read) | tar -x -C "$system/src" --no-same-owner
}

trap unmount EXIT
unmount
if $fresh || [[ ! -e $system/.bare-debian ]]; then make_system; fi
copy_tree
if [[ -e /etc/resolv.conf ]]; then cp /etc/resolv.conf "$system/etc/resolv.conf"; fi
mount -t proc proc "$system/proc"
mount --rbind /dev "$system/dev"
mount --make-rslave "$system/dev"

say "${command[*]} in $system"
"${isolate[@]}" env -i HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb \
    chroot "$system" /bin/bash -c 'cd /src && exec "$@"' bash "${command[@]}"

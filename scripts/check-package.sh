#!/bin/sh
# Checks the Debian package as a station meets it: makes it, installs it with apt into a fresh root, runs the
# programs there, upgrades it under the running server, and removes it. As root, on Debian 12.
#
#   scripts/check-package.sh [FOLDER]
#
# FOLDER (build/package-check by default) gets the root, new each time, and keeps the base system for the next
# time. The packages come from where this machine's apt gets its own.
set -eu
cd "$(dirname "$0")/.."

[ "$(id -u)" -eq 0 ] || {
    echo "check-package.sh: needs root, to make a root" >&2
    exit 1
}
folder=${1:-build/package-check}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)

scripts/setup.sh package
if [ ! -e "$folder/base.done" ]; then
    # shellcheck disable=SC2016  # apt's own variables
    mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' |
        awk '$2 == "bookworm" { print $1; exit }')
    rm -rf "$folder/base"
    debootstrap --variant=minbase bookworm "$folder/base" "${mirror:?apt has no bookworm}" >"$folder/base.log"
    touch "$folder/base.done"
fi
root=$folder/root
rm -rf "$root"
cp -a "$folder/base" "$root"
cp /etc/resolv.conf "$root/etc/"
for release in 1 2; do
    mkdir "$root/root/release$release"
    scripts/package.sh "$release" >"$folder/package.log" || {
        cat "$folder/package.log"
        exit 1
    }
    cp build/package/vesk_*.deb "$root/root/release$release/"
done
cp package/check-installed.sh package/check-links.sh "$root/root/"

# shellcheck disable=SC2016  # expanded by the inner shell
# A namespace of its own for mounts and processes: whatever is started there ends with it.
exec unshare --mount --pid --fork --kill-child sh -eu -c '
    root=$1
    mount -t proc proc "$root/proc"
    mount -t tmpfs -o mode=0755 tmpfs "$root/dev"
    for device in null zero full random urandom tty; do
        touch "$root/dev/$device"
        mount --bind "/dev/$device" "$root/dev/$device"
    done
    mkdir "$root/dev/pts" "$root/dev/shm"
    mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$root/dev/pts"
    mount -t tmpfs tmpfs "$root/dev/shm"
    ln -s pts/ptmx "$root/dev/ptmx"
    ln -s /proc/self/fd "$root/dev/fd"
    exec chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb \
        sh /root/check-installed.sh
' sh "$root" </dev/null

#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# usage: packages.sh PACKAGE_DIR
# Installs the Debian packages into a root folder that holds what they depend on and the essential packages, taken from
# this machine, and nothing else; a service and its caller then run there.
set -euo pipefail
if [[ ${2-} != isolated ]]; then
    # Root, mounts and processes of its own; these end with it.
    exec unshare --map-root-user --mount --pid --fork --kill-child bash "$0" "$1" isolated
fi

cd "$1"
root=$(mktemp -d)
trap 'umount -l "$root/dev" "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$root"' EXIT

mapfile -t needed < <(
    dpkg-query -W -f '${Essential} ${Package}\n' | sed -n 's/^yes //p'
    for package in *.deb; do
        # Their own names are followed by the version: "(= ".
        dpkg-deb -f "$package" Depends | tr ',' '\n' | sed -n '/(= /d; s/^ *\([^ ]*\).*/\1/p'
    done
)
apt-cache depends --recurse --installed --no-recommends --no-suggests --no-conflicts --no-breaks --no-replaces \
    --no-enhances "${needed[@]}" | grep '^[a-z]' >"$root/packages"
mapfile -t needed < <(
    xargs dpkg-query -W -f '${db:Status-Abbrev} ${binary:Package}\n' 2>/dev/null <"$root/packages" | sed -n 's/^ii *//p'
)
dpkg -L "${needed[@]}" | grep '^/' | sort -u | while IFS= read -r file; do
    [[ ! -e $file || (-d $file && -L $file) ]] || printf '%s\n' "$file"
done | tar -C / --no-recursion -T - -c 2>/dev/null | tar -C "$root" --no-same-owner -x
mkdir -p "$root"/{dev,proc,tmp,etc,var/lib/dpkg/info,var/lib/dpkg/updates}
dpkg-query -s "${needed[@]}" >"$root/var/lib/dpkg/status"
echo "root:x:0:0:root:/:/bin/sh" >"$root/etc/passwd"
echo "root:x:0:" >"$root/etc/group"
mount --rbind /dev "$root/dev"
mount --rbind /proc "$root/proc"

dpkg --root="$root" --log=/dev/null --install ./*.deb >"$root/log" 2>&1 || {
    cat "$root/log" >&2
    exit 1
}
# shellcheck disable=SC2016
chroot "$root" env -i PATH=/usr/bin:/bin HILOG_LEVEL=E ohos_bus sh -euc '
    mkfifo /tmp/said
    indicator_service </dev/null >/tmp/said &
    trap "kill $!" EXIT
    trap "exit 1" HUP INT TERM
    read -r ready </tmp/said
    indicator_ctl on camera
    indicator_ctl active
    trap - EXIT
    kill $!
    wait $!' >"$root/output"
diff - "$root/output" <<'END'
SENSOR  STATE  POSITION  SIZE   COLOUR   ANIMATION
camera  on     0, 0      0 x 0  #00ff00  0
END

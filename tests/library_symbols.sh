#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: library_symbols.sh LIBRARY BUILD_TYPE [no-rtti]
# The library exports what abi/exported_symbols.txt says and nothing else, needs the five platform libraries by name,
# leaves no symbol open, and is hardened.
set -eu
library=$1
build_type=$2
here=$(dirname "$0")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM # By default, sh ends without its exit trap.
failed=0
complain()
{
    printf '%s:\n' "$1" >&2
    sed 's/^/    /' "$2" >&2
    failed=1
}

# The kept list, of which a library without type information lacks that. A weak function is of a template or inline:
# whether it is there depends on the optimiser.
nm -D --defined-only "$library" | awk '$2 != "W" { print $3 }' | LC_ALL=C sort >"$work/exported"
kept=$here/../abi/exported_symbols.txt
if [ "${QNL_ABI_UPDATE-}" ] && [ -z "${3-}" ]; then
    { echo "# SPDX-License-Identifier: Apache-2.0" && cat "$work/exported"; } >"$kept"
fi
if [ "${3-}" = no-rtti ]; then
    without='^#|^_ZT[IS]'
else
    without='^#'
fi
grep -vE "$without" "$kept" | diff - "$work/exported" >"$work/changed" ||
    complain "exports that differ from abi/exported_symbols.txt, see docs/abi.md" "$work/changed"

readelf -d "$library" | sed -nE 's/.*\((NEEDED|SONAME)\).*\[(.*)\]/\1 \2/p' >"$work/dynamic"
for line in "SONAME libqnl_privacy_indicator_service_intf.so" "NEEDED libutils.so" "NEEDED libipc_single.so" \
    "NEEDED libsamgr_proxy.so" "NEEDED libhilog.so" "NEEDED libqnl_infrastructure.so"; do
    grep -qxF "$line" "$work/dynamic" || complain "no $line in the dynamic section, which has" "$work/dynamic"
done

ldd -r "$library" >"$work/ldd" 2>&1
grep -E 'not found|undefined symbol' "$work/ldd" >"$work/open" && complain "open symbols" "$work/open"

readelf -W -l -d "$library" >"$work/elf"
for mark in GNU_RELRO BIND_NOW NODELETE; do
    grep -q "$mark" "$work/elf" || complain "no $mark in the library, which has" "$work/elf"
done
if [ "$build_type" = Release ]; then
    nm -D "$library" >"$work/symbols"
    grep -q __stack_chk_fail "$work/symbols" || complain "no stack protector in the library, which has" "$work/symbols"
fi

exit $failed

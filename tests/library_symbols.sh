#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: library_symbols.sh LIBRARY BUILD_TYPE [no-rtti]
# The library exports the classes of its public headers and nothing else, needs the five platform libraries by name,
# leaves no symbol open, and is hardened.
set -eu
library=$1
build_type=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
complain()
{
    printf '%s:\n' "$1" >&2
    sed 's/^/    /' "$2" >&2
    failed=1
}

cat >"$work/contract" <<'END'
PrivacyIndicatorClient
PrivacyIndicatorServiceIntf
PrivacyIndicatorServiceIntfProxy
PrivacyIndicatorServiceIntfStub
Indicator::IndicatorData
Indicator::IndicatorPosition
Indicator::IndicatorSize
Indicator::IndicatorSwitchListenerIntf
Indicator::IndicatorSwitchListenerProxy
Indicator::IndicatorSwitchListenerStub
Indicator::IndicatorSwitchListenerStubImpl
Privacy::PrivacyEventDetail
Privacy::PrivacyEventListenerIntf
Privacy::PrivacyEventListenerProxy
Privacy::PrivacyEventListenerStub
Privacy::PrivacyEventListenerStubImpl
Privacy::PrivacyEventRemindInfo
Record::PermissionUsageDuration
Record::PermissionUsageDurationQuery
END
# Of an interface nothing but its type information is exported.
[ "${3-}" != no-rtti ] || sed -i '/Intf$/d' "$work/contract"

# A symbol belongs to the class that its mangled name begins with, as do a vtable, a type's description and a thunk.
nm -D --defined-only "$library" | cut -d ' ' -f 3 >"$work/exported"
awk '{
    count = split("OHOS::Korvane::Quenlar::PrivacyIndicator::" $0, names, "::")
    mangled = ""
    for (i = 1; i <= count; i++) mangled = mangled length(names[i]) names[i]
    print "^_Z(T[CISTV]|T[hv][^N]*_)?NK?" mangled
}' "$work/contract" >"$work/patterns"
echo '^NotifyPowerEvent$' >>"$work/patterns"
while read -r pattern; do
    grep -qE "$pattern" "$work/exported" || echo "$pattern"
done <"$work/patterns" >"$work/lacking"
grep -vEf "$work/patterns" "$work/exported" | c++filt >"$work/strange"
[ ! -s "$work/lacking" ] || complain "classes that are not exported" "$work/lacking"
[ ! -s "$work/strange" ] || complain "exports that belong to no class of the contract" "$work/strange"

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

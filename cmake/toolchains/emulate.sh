#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: emulate.sh QEMU SYSROOT PROGRAM [ARGUMENT...]
# Runs a program of another processor. A test that runs its own program anew does so by the program's argument 0; as the
# kernel itself may run no such program, that argument is a script which comes back here.
set -eu
qemu=$1 sysroot=$2 program=$3
shift 3
again=$program.sh
printf '#!/bin/sh\nexec "%s" "%s" "%s" "%s" "$@"\n' "$0" "$qemu" "$sysroot" "$program" >"$again.$$"
chmod +x "$again.$$"
mv "$again.$$" "$again"
exec "$qemu" -L "$sysroot" -0 "$again" "$program" "$@"

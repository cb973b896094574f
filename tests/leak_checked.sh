#!/usr/bin/env bash
# Runs a test program under AddressSanitizer; once more if all its tests passed and nothing but the leak check broke
# down. That check stops all threads at the program's end and reads their memory, and now and then dies of one that is
# parked or just ending.
set -uo pipefail
output=$(mktemp)
trap 'rm -f "$output"' EXIT

"$@" 2>&1 | tee "$output"
code=${PIPESTATUS[0]}
tells() { grep -qF -e "$1" "$output"; }
if [ "$code" -ne 0 ] && tells 'LeakSanitizer has encountered a fatal error' && tells '[  PASSED  ]' &&
    ! tells '[  FAILED  ]' && ! tells 'ERROR: AddressSanitizer' && ! tells 'runtime error:'; then
    echo "The leak check broke down; once more:"
    "$@"
    code=$?
fi
exit "$code"

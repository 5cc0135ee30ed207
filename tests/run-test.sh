#!/usr/bin/env bash
# run-test.sh PROGRAM [ARG...]
# Runs a test program; with VTEST_MEMCHECK=1 in the environment, under
# Valgrind's memcheck, where any memory error, or any byte definitely or
# indirectly lost at exit, fails the test (exit status 99). ctest starts the
# GoogleTest programs through this script (their CROSSCOMPILING_EMULATOR), so
#   VTEST_MEMCHECK=1 ctest --test-dir build ...
# runs them under memcheck without another build.
if [ "${VTEST_MEMCHECK:-0}" = 1 ]; then
    exec valgrind --quiet --tool=memcheck --error-exitcode=99 --leak-check=full \
        --errors-for-leak-kinds=definite,indirect --show-leak-kinds=definite,indirect \
        --num-callers=30 "$@"
fi
exec "$@"

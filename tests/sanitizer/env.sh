# Settings for running the suites of a -DOPM_SANITIZE=ON build (bash: source this file).
# Programs a suite starts, the power reader and the shell stand-in, inherit them.

# Any finding aborts the program, so the suite fails. Stack addresses used after their
# function returned are caught too: only our own frames pay for it, Qt is not instrumented.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_string_checks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/lsan.supp:print_suppressions=0

/* Sanitizer defaults for the example host in sanitizer builds: it runs under
 * the simulator's path redirection, which is preloaded ahead of the
 * AddressSanitizer run-time on purpose, so the link-order check is off. */
const char *__asan_default_options(void);
const char *__ubsan_default_options(void);

__attribute__((used)) const char *__asan_default_options(void) {
    return "verify_asan_link_order=0:detect_leaks=1";
}

__attribute__((used)) const char *__ubsan_default_options(void) {
    return "print_stacktrace=1:halt_on_error=1";
}

// Sanitizer defaults for programs that run under the path redirection in
// sanitizer builds (the tests, voractl). The redirection is preloaded ahead
// of the AddressSanitizer run-time on purpose (it must see every dlopen
// first), so the run-time's link-order check is turned off.
extern "C" {

__attribute__((used)) const char* __asan_default_options() {
    return "verify_asan_link_order=0:detect_leaks=1";
}

__attribute__((used)) const char* __ubsan_default_options() {
    return "print_stacktrace=1:halt_on_error=1";
}

}  // extern "C"

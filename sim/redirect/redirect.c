/*
 * Path redirection for the board simulator, loaded with LD_PRELOAD.
 *
 * The module probes fixed paths under /usr/lib and /usr/lib64 with stat and
 * opens them with dlopen. This library maps exactly the paths listed in
 *
 *     VORA_REDIRECT=probed=replacement:probed=replacement:...
 *
 * to their replacements; an empty replacement makes the probed path absent.
 * Every other path is passed on untouched. It also hides the symbols named in
 *
 *     VORA_HIDE_SYMBOLS=Name,Name,...
 *
 * from dlsym, to simulate a library that lacks a function.
 *
 * Both variables are read on every call, so a process may change them
 * between calls; nothing is cached and nothing is allocated, which keeps the
 * library usable before sanitizer run-times are set up. dlopen and dlsym
 * reach this code through trampolines (trampoline.S) that jump to the real
 * functions with the caller's return address intact, so RTLD_NEXT lookups
 * and caller-relative library searches keep working.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#define HIDDEN __attribute__((visibility("hidden")))

/* dlopen of this path fails: it stands for an absent file. */
static const char kAbsent[] = "/nonexistent/voraredirect-absent.so";

/* The replacement of a dlopen path lives here until the real dlopen is done. */
static __thread char replacement[4096];

typedef void* (*dlsym_fn)(void*, const char*);

static dlsym_fn real_dlsym(void) {
    static dlsym_fn real;
    if (real == NULL) {
        real = (dlsym_fn)dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
        if (real == NULL) {
            real = (dlsym_fn)dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5");
        }
    }
    return real;
}

/*
 * Looks `path` up in VORA_REDIRECT. Returns 0 when it is not listed; else 1,
 * with its replacement copied into `out` (empty when the path is absent).
 */
static int lookup(const char* path, char* out, size_t size) {
    const char* list = getenv("VORA_REDIRECT");
    if (path == NULL || list == NULL) {
        return 0;
    }
    const size_t length = strlen(path);
    const char* entry = list;
    while (*entry != '\0') {
        const char* end = strchr(entry, ':');
        if (end == NULL) {
            end = entry + strlen(entry);
        }
        const char* equals = memchr(entry, '=', (size_t)(end - entry));
        if (equals != NULL && (size_t)(equals - entry) == length &&
            memcmp(entry, path, length) == 0) {
            const size_t n = (size_t)(end - equals - 1);
            if (n >= size) {
                return 0;
            }
            memcpy(out, equals + 1, n);
            out[n] = '\0';
            return 1;
        }
        entry = *end == ':' ? end + 1 : end;
    }
    return 0;
}

static int hidden(const char* name) {
    const char* list = getenv("VORA_HIDE_SYMBOLS");
    if (name == NULL || list == NULL) {
        return 0;
    }
    const size_t length = strlen(name);
    const char* entry = list;
    while (*entry != '\0') {
        const char* end = strchr(entry, ',');
        if (end == NULL) {
            end = entry + strlen(entry);
        }
        if ((size_t)(end - entry) == length && memcmp(entry, name, length) == 0) {
            return 1;
        }
        entry = *end == ',' ? end + 1 : end;
    }
    return 0;
}

/* Called by the dlopen trampoline: rewrites *file when it is redirected and
 * returns the real dlopen to jump to. */
HIDDEN void* vora_redirect_dlopen_target(const char** file) {
    if (lookup(*file, replacement, sizeof replacement)) {
        *file = replacement[0] == '\0' ? kAbsent : replacement;
    }
    return real_dlsym()(RTLD_NEXT, "dlopen");
}

/* Called by the dlsym trampoline: the real dlsym to jump to, or null when
 * `name` is hidden (dlsym then answers null). */
HIDDEN void* vora_redirect_dlsym_target(void* handle, const char* name) {
    (void)handle;
    return hidden(name) ? NULL : (void*)real_dlsym();
}

typedef int (*stat_fn)(const char*, struct stat*);

static int redirected_stat(const char* symbol, const char* path, struct stat* status) {
    char target[4096];
    stat_fn real = (stat_fn)real_dlsym()(RTLD_NEXT, symbol);
    if (lookup(path, target, sizeof target)) {
        if (target[0] == '\0') {
            errno = ENOENT;
            return -1;
        }
        return real(target, status);
    }
    return real(path, status);
}

int stat(const char* path, struct stat* status) {
    return redirected_stat("stat", path, status);
}

int stat64(const char* path, struct stat64* status) {
    return redirected_stat("stat64", path, (struct stat*)status);
}

#if !defined(__x86_64__)
/* Without a trampoline for this architecture, calls reach the real functions
 * from here: RTLD_NEXT lookups made through them are relative to this
 * library instead of their caller. */
void* dlopen(const char* file, int mode) {
    void* (*real)(const char*, int) = (void* (*)(const char*, int))vora_redirect_dlopen_target(&file);
    return real(file, mode);
}

void* dlsym(void* handle, const char* name) {
    dlsym_fn real = (dlsym_fn)vora_redirect_dlsym_target(handle, name);
    return real == NULL ? NULL : real(handle, name);
}
#endif

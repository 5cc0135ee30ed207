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
 * from dlsym, to simulate a library that lacks a function. With
 *
 *     VORA_TRACE=1, VORA_RECORD=FILE or VORA_RECORD_FD=N
 *
 * a board library opened at one of the six probed paths comes through its
 * stand-in instead (standin/<file> beside this library, see sim/standin/),
 * which asks voraredirect_standin_target() where the real one is and opens
 * it with voraredirect_dlopen_real(), past the redirection.
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
#include <unistd.h>

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

static const char* const kLibraries[] = {"libVORA-4.00", "libVORA-3.02", "libEApi"};

/* The real file behind each library's stand-in, and the stand-in's path. */
static char standin_targets[3][4096];
static char standin[4096];

/* Which library `path` is the probed file of (/usr/lib or /usr/lib64 and
 * the library's name with ".so"), or -1. */
static int probed(const char* path) {
    const char* name = NULL;
    if (path != NULL && strncmp(path, "/usr/lib/", 9) == 0) {
        name = path + 9;
    } else if (path != NULL && strncmp(path, "/usr/lib64/", 11) == 0) {
        name = path + 11;
    }
    for (int i = 0; name != NULL && i < 3; ++i) {
        const size_t length = strlen(kLibraries[i]);
        if (strncmp(name, kLibraries[i], length) == 0 && strcmp(name + length, ".so") == 0) {
            return i;
        }
    }
    return -1;
}

/* Points `file` at the stand-in of library `index`, remembering `target`,
 * when tracing or recording is asked for and the stand-in is there. */
static void through_standin(const char** file, int index, const char* target) {
    const char* trace = getenv("VORA_TRACE");
    const char* record = getenv("VORA_RECORD");
    const char* handed = getenv("VORA_RECORD_FD");
    Dl_info self;
    if (((trace == NULL || strcmp(trace, "1") != 0) && (record == NULL || *record == '\0') &&
         (handed == NULL || *handed == '\0')) ||
        access(target, F_OK) != 0 || dladdr((void*)probed, &self) == 0) {
        return;
    }
    const char* slash = strrchr(self.dli_fname, '/');
    const size_t dir = slash == NULL ? 0 : (size_t)(slash - self.dli_fname + 1);
    if (dir + 8 + strlen(kLibraries[index]) + 4 > sizeof standin || strlen(target) >= sizeof standin_targets[0]) {
        return;
    }
    memcpy(standin, self.dli_fname, dir);
    strcpy(standin + dir, "standin/");
    strcat(standin, kLibraries[index]);
    strcat(standin, ".so");
    if (access(standin, F_OK) == 0) {
        strcpy(standin_targets[index], target);
        *file = standin;
    }
}

/* Called by the dlopen trampoline: rewrites *file when it is redirected and
 * returns the real dlopen to jump to. */
HIDDEN void* vora_redirect_dlopen_target(const char** file) {
    const int index = probed(*file);
    if (lookup(*file, replacement, sizeof replacement)) {
        *file = replacement[0] == '\0' ? kAbsent : replacement;
    }
    if (index >= 0 && *file != kAbsent) {
        through_standin(file, index, *file);
    }
    return real_dlsym()(RTLD_NEXT, "dlopen");
}

/* Where the stand-in of the library `name` ("libVORA-4.00") should find the
 * real library, or null. */
const char* voraredirect_standin_target(const char* name) {
    for (int i = 0; i < 3; ++i) {
        if (strcmp(name, kLibraries[i]) == 0 && standin_targets[i][0] != '\0') {
            return standin_targets[i];
        }
    }
    return NULL;
}

/* dlopen without the redirection, for the stand-ins. */
void* voraredirect_dlopen_real(const char* path, int flags) {
    void* (*real)(const char*, int) = (void* (*)(const char*, int))real_dlsym()(RTLD_NEXT, "dlopen");
    return real(path, flags);
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

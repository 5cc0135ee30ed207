/*
 * A stand-in module for tests of hosts (voractl): it loads the real module
 * (the file named by VTEST_REAL_MODULE) and forwards the seven entry points
 * to it, with two additions a test sets up through the environment:
 *
 * - VTEST_MODULE_LOG names a file to which every initialise and
 *   uninitialise appends a line with its status ("VoraIoTUninitialize 0x0"),
 *   so a test can see whether the host shut the module down;
 * - VTEST_FAIL_READ names an item id ("0x1020201") whose reads fail with
 *   VORADRV_STATUS_READ_ERROR, an item that is published but cannot be read.
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include "voradrv.h"

static void *real(const char *name) {
    static void *module;
    if (module == NULL) {
        const char *path = getenv("VTEST_REAL_MODULE");
        module = dlopen(path != NULL ? path : "", RTLD_NOW | RTLD_LOCAL);
        if (module == NULL) {
            fprintf(stderr, "recording module: %s\n", dlerror());
            abort();
        }
    }
    return dlsym(module, name);
}

static uint32_t record(const char *name, uint32_t status) {
    const char *path = getenv("VTEST_MODULE_LOG");
    FILE *log = path != NULL ? fopen(path, "a") : NULL;
    if (log != NULL) {
        fprintf(log, "%s 0x%X\n", name, (unsigned)status);
        fclose(log);
    }
    return status;
}

#define FORWARD(type, name) ((type)real(#name))

__attribute__((visibility("default"))) uint32_t VoraIoTInitialize(void) {
    return record("VoraIoTInitialize", FORWARD(VoraIoTInitialize_fn, VoraIoTInitialize)());
}

__attribute__((visibility("default"))) uint32_t VoraIoTUninitialize(void) {
    return record("VoraIoTUninitialize", FORWARD(VoraIoTUninitialize_fn, VoraIoTUninitialize)());
}

__attribute__((visibility("default"))) uint32_t VoraIoTGetModuleID(void) {
    return FORWARD(VoraIoTGetModuleID_fn, VoraIoTGetModuleID)();
}

__attribute__((visibility("default"))) uint32_t VoraIoTGetMDCapability(json_t *capability) {
    return FORWARD(VoraIoTGetMDCapability_fn, VoraIoTGetMDCapability)(capability);
}

__attribute__((visibility("default"))) uint32_t VoraIoTGetMDValue(uint32_t id, json_t *value) {
    const char *failing = getenv("VTEST_FAIL_READ");
    if (failing != NULL && strtoul(failing, NULL, 16) == id) {
        return VORADRV_STATUS_READ_ERROR;
    }
    return FORWARD(VoraIoTGetMDValue_fn, VoraIoTGetMDValue)(id, value);
}

__attribute__((visibility("default"))) uint32_t VoraIoTSetMDValue(uint32_t id, json_t *value) {
    return FORWARD(VoraIoTSetMDValue_fn, VoraIoTSetMDValue)(id, value);
}

__attribute__((visibility("default"))) uint32_t VoraIoTSetMDEventHandler(
    VoraIoTEventHandler handler) {
    return FORWARD(VoraIoTSetMDEventHandler_fn, VoraIoTSetMDEventHandler)(handler);
}

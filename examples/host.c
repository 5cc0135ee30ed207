/*
 * host.c - a minimal host of the VORADrv module.
 *
 * It loads the module the way a host framework does (dlopen, the seven entry
 * points looked up by name), prints the capability document and the value of
 * one hardware-monitor sensor, and shuts the module down.
 *
 *   voradrv-host [MODULE]          (default: the module it was built against)
 *
 * Without a board, run it under the board simulator:
 *
 *   run-simulated -- voradrv-host
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include <jansson.h>

#include "voradrv.h"

struct entry_points {
    VoraIoTInitialize_fn initialize;
    VoraIoTUninitialize_fn uninitialize;
    VoraIoTGetModuleID_fn get_module_id;
    VoraIoTGetMDCapability_fn get_capability;
    VoraIoTGetMDValue_fn get_value;
    VoraIoTSetMDValue_fn set_value;
    VoraIoTSetMDEventHandler_fn set_event_handler;
};

/* Looks up one entry point; prints what is missing. */
static void *entry(void *module, const char *name) {
    void *symbol = dlsym(module, name);
    if (symbol == NULL) {
        fprintf(stderr, "voradrv-host: the module lacks %s\n", name);
    }
    return symbol;
}

static int bind(void *module, struct entry_points *vora) {
    /* POSIX lets a data pointer from dlsym be turned into a function pointer. */
    *(void **)&vora->initialize = entry(module, "VoraIoTInitialize");
    *(void **)&vora->uninitialize = entry(module, "VoraIoTUninitialize");
    *(void **)&vora->get_module_id = entry(module, "VoraIoTGetModuleID");
    *(void **)&vora->get_capability = entry(module, "VoraIoTGetMDCapability");
    *(void **)&vora->get_value = entry(module, "VoraIoTGetMDValue");
    *(void **)&vora->set_value = entry(module, "VoraIoTSetMDValue");
    *(void **)&vora->set_event_handler = entry(module, "VoraIoTSetMDEventHandler");
    return vora->initialize && vora->uninitialize && vora->get_module_id &&
           vora->get_capability && vora->get_value && vora->set_value &&
           vora->set_event_handler;
}

/* The module raises no events today; a host registers its handler anyway. */
static void on_event(uint32_t id, char *text) {
    printf("event 0x%X: %s\n", (unsigned)id, text);
}

/* The first element of the first group of the hardware monitor, or NULL;
 * `group` receives the group object. */
static json_t *first_sensor(json_t *capability, json_t **group) {
    json_t *monitor = json_object_get(capability, "Hardware Monitor");
    const char *key;
    json_t *member;
    json_object_foreach(monitor, key, member) {
        json_t *element = json_array_get(json_object_get(member, "e"), 0);
        if (element != NULL) {
            *group = member;
            return element;
        }
    }
    return NULL;
}

/* Reads the sensor by the id its element carries, with a JSON value of the
 * element's type, and prints it with the group's unit. */
static uint32_t print_sensor(const struct entry_points *vora, json_t *group, json_t *element) {
    const uint32_t id = (uint32_t)json_integer_value(json_object_get(element, "id"));
    /* The host owns the value; the module sets it in place. */
    json_t *value = json_is_real(json_object_get(element, "v")) ? json_real(0.0)
                                                                : json_integer(0);
    const uint32_t status = vora->get_value(id, value);
    if (status == VORADRV_STATUS_SUCCESS) {
        printf("%s/%s (0x%X): %g %s\n", json_string_value(json_object_get(group, "bn")),
               json_string_value(json_object_get(element, "n")), (unsigned)id,
               json_number_value(value), json_string_value(json_object_get(group, "bu")));
    } else {
        fprintf(stderr, "voradrv-host: reading 0x%X failed: 0x%08X\n", (unsigned)id,
                (unsigned)status);
    }
    json_decref(value);
    return status;
}

int main(int argc, char **argv) {
    const char *path = argc > 1 ? argv[1] : VORADRV_MODULE_PATH;
    void *module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (module == NULL) {
        fprintf(stderr, "voradrv-host: %s\n", dlerror());
        return 1;
    }
    struct entry_points vora;
    if (!bind(module, &vora)) {
        dlclose(module);
        return 1;
    }

    uint32_t status = vora.initialize();
    if (status != VORADRV_STATUS_SUCCESS) {
        fprintf(stderr, "voradrv-host: no board (initialise: 0x%08X)\n", (unsigned)status);
        dlclose(module);
        return 1;
    }
    printf("module %u\n", (unsigned)vora.get_module_id());
    vora.set_event_handler(on_event);

    /* The host owns the object; the module copies its blocks into it. */
    json_t *capability = json_object();
    status = vora.get_capability(capability);
    if (status == VORADRV_STATUS_SUCCESS) {
        char *text = json_dumps(capability, JSON_INDENT(2));
        if (text != NULL) {
            puts(text);
            free(text);
        }
        json_t *group = NULL;
        json_t *sensor = first_sensor(capability, &group);
        if (sensor != NULL) {
            status = print_sensor(&vora, group, sensor);
        }
    } else {
        fprintf(stderr, "voradrv-host: capability: 0x%08X\n", (unsigned)status);
    }
    json_decref(capability);

    vora.uninitialize();
    dlclose(module);
    return status == VORADRV_STATUS_SUCCESS ? 0 : 1;
}

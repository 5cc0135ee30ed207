/*
 * voradrv.h - host interface of the board driver module libVORADrv.so.
 *
 * A host loads libVORADrv.so at run time (dlopen) and drives it through the
 * seven entry points below. The module finds the board maker's support
 * library by itself, publishes the board's function blocks as one JSON
 * capability document (jansson json_t values) and reads and writes single
 * items by their 32-bit id.
 *
 * Typical use:
 *
 *     if (VoraIoTInitialize() != VORADRV_STATUS_SUCCESS) ... no board ...
 *     json_t *caps = json_object();
 *     VoraIoTGetMDCapability(caps);          // caps now holds every block
 *     json_t *v = json_real(0.0);
 *     VoraIoTGetMDValue(0x1020201, v);       // first voltage, in volts
 *     json_decref(v);
 *     json_decref(caps);
 *     VoraIoTUninitialize();
 *
 * Threads: the module starts none and takes no locks. The host calls the
 * entry points from one thread at a time.
 *
 * Output: the module writes its diagnostics as single lines to standard
 * output and nothing else.
 */
#ifndef VORADRV_H
#define VORADRV_H

#include <stdint.h>
#include <jansson.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Status codes. Every entry point returns one of these, or a status of the
 * board library passed through unchanged.
 * ------------------------------------------------------------------------ */

/** The call succeeded. */
#define VORADRV_STATUS_SUCCESS             0x00000000u
/** No board library, no block for the id's class, nothing to offer, or a
 *  read-only item was written. */
#define VORADRV_STATUS_UNSUPPORTED         0xFFFFFCFFu
/** The id is not an item of the block it was routed to. */
#define VORADRV_STATUS_NOT_FOUND           0xFFFFFBFFu
/** A text could not be read from the board library. */
#define VORADRV_STATUS_READ_ERROR          0xFFFFFAFFu
/** The board library's answer that a buffer was too small. The module turns
 *  it into a cut text and never returns it itself. */
#define VORADRV_STATUS_MORE_DATA           0xFFFFF9FFu
/** The JSON value passed by the host has the wrong type for the item. */
#define VORADRV_STATUS_INVALID_VALUE       0xFFFFF8FFu
/** Building or merging JSON failed, a board read failed, or a written value
 *  was refused. */
#define VORADRV_STATUS_ERROR               0xFFFFF0FFu
/** The board library reports that it is already initialised. */
#define VORADRV_STATUS_ALREADY_INITIALIZED 0xFFFFFFFEu
/** A board library function the module needed is missing from the library. */
#define VORADRV_STATUS_SYMBOL_MISSING      0xF0000000u

/* ------------------------------------------------------------------------
 * Item ids.
 *
 *   bits 31..24  module, always VORADRV_MODULE_ID
 *   bits 23..20  always 0
 *   bits 19..16  class: which block (VORADRV_CLASS_*)
 *   bits 15..8   group within the block, from 1
 *   bits  7..0   item within the group, from 1
 *
 * The capability document carries the id of every item in its "id" member;
 * hosts normally take ids from there rather than composing them.
 * ------------------------------------------------------------------------ */

/** The module number, returned by VoraIoTGetModuleID and found in the top
 *  byte of every item id. */
#define VORADRV_MODULE_ID      0x01u

#define VORADRV_ID_MODULE_MASK 0xFF000000u
#define VORADRV_ID_CLASS_MASK  0x000F0000u
#define VORADRV_ID_GROUP_MASK  0x0000FF00u
#define VORADRV_ID_ITEM_MASK   0x000000FFu

#define VORADRV_CLASS_INFO     0x00010000u /* "Platform Information" */
#define VORADRV_CLASS_HWM      0x00020000u /* "Hardware Monitor" */
#define VORADRV_CLASS_GPIO     0x00040000u /* "GPIO" */
#define VORADRV_CLASS_BKL      0x00050000u /* "Backlight" */
#define VORADRV_CLASS_NETWORK  0x000B0000u /* "OOB-Network" */

/** Compose an item id from its class, group (from 1) and item (from 1). */
#define VORADRV_ITEM_ID(cls, group, item)                                  \
    ((VORADRV_MODULE_ID << 24) | ((uint32_t)(cls) & VORADRV_ID_CLASS_MASK) \
     | (((uint32_t)(group) & 0xFFu) << 8) | ((uint32_t)(item) & 0xFFu))

/* ------------------------------------------------------------------------
 * Entry points, exported with C linkage.
 * ------------------------------------------------------------------------ */

/** Handler a host may register for block events. It is accepted and kept by
 *  no block: the module raises no events. */
typedef void (*VoraIoTEventHandler)(uint32_t id, char *text);

/**
 * Find the board library, bring it up, create and initialise the function
 * blocks and build the capability document.
 *
 * Returns VORADRV_STATUS_SUCCESS when a library is up and the document has
 * at least one block; VORADRV_STATUS_UNSUPPORTED when no board library file
 * exists; otherwise the failing library's or block's status.
 *
 * Calling it again without VoraIoTUninitialize probes the library again; when
 * that succeeds five more blocks are created and every block is initialised
 * again, and the document is rebuilt from all of them (the newest block of a
 * kind answers). Capability objects the host already holds stay whole. When
 * the probe or a block fails, the previous document stays in use and the
 * status is returned. VoraIoTUninitialize releases every block.
 */
uint32_t VoraIoTInitialize(void);

/**
 * Release the capability document and the blocks and shut the board library
 * down. Returns the library's shut-down status, or VORADRV_STATUS_UNSUPPORTED
 * when no library was up. Capability objects the host still holds stay valid
 * (they share the blocks' objects by reference) but their groups are emptied.
 */
uint32_t VoraIoTUninitialize(void);

/** Always VORADRV_MODULE_ID (1), initialised or not. */
uint32_t VoraIoTGetModuleID(void);

/**
 * Copy every member of the capability document into @p capability, a JSON
 * object owned by the host; members of the same name are replaced. The host
 * keeps ownership of its object and releases it with json_decref; the block
 * objects inside are shared by reference and must not be modified.
 *
 * Returns VORADRV_STATUS_UNSUPPORTED when the module is not initialised and
 * VORADRV_STATUS_ERROR when @p capability is null or not an object.
 */
uint32_t VoraIoTGetMDCapability(json_t *capability);

/**
 * Read the current value of item @p id into @p value, a JSON scalar owned by
 * the host whose type selects the form of the answer (real for sensors,
 * integer for pins and controls, string for texts; the capability document
 * shows each item's type in its "v", "bv" or "sv" member). The value is set in
 * place and left unchanged on failure.
 */
uint32_t VoraIoTGetMDValue(uint32_t id, json_t *value);

/**
 * Write @p value, a JSON scalar owned by the host, to item @p id. Only items
 * whose "asm" is "rw" are meant to be written; the board library decides
 * whether a value is accepted.
 */
uint32_t VoraIoTSetMDValue(uint32_t id, json_t *value);

/**
 * Offer an event handler to every block (no block raises events). Returns
 * VORADRV_STATUS_SUCCESS, or VORADRV_STATUS_UNSUPPORTED after
 * VoraIoTUninitialize until the next VoraIoTInitialize.
 */
uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler handler);

/* Pointer types for hosts that bind the entry points with dlsym. */
typedef uint32_t (*VoraIoTInitialize_fn)(void);
typedef uint32_t (*VoraIoTUninitialize_fn)(void);
typedef uint32_t (*VoraIoTGetModuleID_fn)(void);
typedef uint32_t (*VoraIoTGetMDCapability_fn)(json_t *);
typedef uint32_t (*VoraIoTGetMDValue_fn)(uint32_t, json_t *);
typedef uint32_t (*VoraIoTSetMDValue_fn)(uint32_t, json_t *);
typedef uint32_t (*VoraIoTSetMDEventHandler_fn)(VoraIoTEventHandler);

#ifdef __cplusplus
}
#endif

#endif /* VORADRV_H */

/*
 * vorasim.h - control interface of the board simulator.
 *
 * Each simulated board library (libVORA-4.00.so, libVORA-3.02.so, libEApi.so)
 * exports, besides the functions of the real library, these control
 * functions. They set the stage for a test or a demonstration; the module
 * itself only ever calls the library's own functions. Look them up with
 * dlsym on the handle of the simulated library you mean: every simulated
 * library has its own board, faults and call log.
 *
 * Without any control call a simulated library reads the board profile named
 * by the environment variable VORA_SIM_BOARD, or uses its built-in default
 * board, the first time one of its functions is called.
 */
#ifndef VORASIM_H
#define VORASIM_H

#ifdef __cplusplus
extern "C" {
#endif

/** Replace the board with the profile in @p json_text (the format of a
 *  profile file). Faults listed in the profile replace the current faults.
 *  Returns 0, or -1 with the board unchanged and vorasim_last_error() set. */
int vorasim_load_profile(const char *json_text);

/** As vorasim_load_profile, reading the profile from the file @p path. */
int vorasim_load_profile_file(const char *path);

/** Text of the last error of a control call or of the profile load, or "". */
const char *vorasim_last_error(void);

/** Add one fault, given as the JSON text of one entry of a profile's
 *  "faults" list. Returns 0, or -1 with vorasim_last_error() set. */
int vorasim_add_fault(const char *json_fault);

/** Remove every fault. */
void vorasim_clear_faults(void);

/** Start (non-zero) or stop (0) recording calls. Recording also starts when
 *  the environment variable VORA_SIM_LOG is set to 1. */
void vorasim_log_enable(int on);

/** The recorded calls, one line each, oldest first: the function's name,
 *  then its key argument (id, pin, panel) in hexadecimal when it has one,
 *  then name=value pairs of the other arguments worth knowing. The text
 *  stays valid until the next call of this function. */
const char *vorasim_call_log(void);

/** Forget the recorded calls. */
void vorasim_clear_log(void);

/** When the library replays a recording rather than simulating a board:
 *  the recording's library, date and redaction as a JSON object
 *  ({"name", "generation", "path", "recorded", "redacted"}); "" otherwise.
 *  The text lives as long as the library. */
const char *vorasim_replay(void);

#ifdef __cplusplus
}
#endif

#endif /* VORASIM_H */

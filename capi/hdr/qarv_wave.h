/* The C interface of the waveform library: definitions in, waveforms, findings and verdicts out. */
#ifndef QARV_WAVE_H
#define QARV_WAVE_H

#include <stddef.h>
#include <stdint.h>

/* Only who builds the library marks what it exports; who uses it needs no mark. */
#if !defined(QARV_WAVE_C_BUILDING)
#define QARV_WAVE_API
#elif defined(_WIN32)
#define QARV_WAVE_API __declspec(dllexport)
#else
#define QARV_WAVE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @file
 * Everything goes through a handle, which holds at most one waveform and the error of the last
 * call.
 *
 *     qarv_wave* shock = qarv_wave_new();
 *     if (qarv_wave_define_json(shock, text, strlen(text)) != QARV_WAVE_OK) {
 *       puts(qarv_wave_error(shock));
 *     }
 *     draw(qarv_wave_samples(shock), qarv_wave_size(shock), qarv_wave_sample_rate(shock));
 *     qarv_wave_free(shock);
 *
 * **Status.**  A function that can fail returns one of the QARV_WAVE_ numbers below and replaces
 * the handle's error by its own, success included.  Functions that return a number, a text or
 * samples cannot fail and leave the error as it is.  With a null handle the former do nothing but
 * return QARV_WAVE_WRONG_CALL, and the latter tell the same as of a new handle.
 *
 * **Texts** are UTF-8.  They go in as bytes with their length and need no 0 at their end; null with
 * length 0 is an empty one.  Texts that come out end in 0.
 *
 * **Output buffers** belong to the caller, and `needed` says how many bytes the output has, that 0
 * of a text included.  With buffer null and capacity 0 nothing is written, and the call succeeds:
 * it is how to ask for the size.  A buffer that is too small is left as it is, with
 * QARV_WAVE_TOO_SMALL.  `needed` may be null where there is a buffer; it is 0 where there is no
 * output.  Both calls do the whole work: a first call with a buffer of some 64 KiB mostly saves the
 * second.
 *
 * **Borrowed pointers** (samples, bands, texts of errors) stay the handle's.  Each function says up
 * to when what it points to stays as it is.
 *
 * **Threads.**  A handle is used by one thread at a time; handles do not know of each other.
 *
 * No function throws, prints, or touches a file.
 */

/** A handle; what is in it is nobody else's business. */
typedef struct qarv_wave qarv_wave;

/** What a call has come to.  The numbers never change; later versions may add others. */
enum {
  /** Done. */
  QARV_WAVE_OK = 0,
  /** Parameters of which there is no waveform, or none that fits into memory. */
  QARV_WAVE_REFUSED = 1,
  /** A text, a record or samples that cannot be used. */
  QARV_WAVE_BAD_INPUT = 2,
  /** No memory for the work on it. */
  QARV_WAVE_OUT_OF_MEMORY = 3,
  /** A null pointer, or something asked of a handle whose waveform has none of it. */
  QARV_WAVE_WRONG_CALL = 4,
  /** The buffer is; nothing was written to it. */
  QARV_WAVE_TOO_SMALL = 5,
  /** A callback has ended the work. */
  QARV_WAVE_CANCELLED = 6
};

/**
 * Is told how far a long call is, many times a second, on the thread of the call.  It may not use
 * the handle of that call.
 * @param share    done, from 0 to 1
 * @param context  what the caller handed over for it
 * @return 0 to go on; anything else ends the call with QARV_WAVE_CANCELLED
 */
typedef int32_t (*qarv_wave_progress)(double share, void* context);

/* ---- The handle ---- */

/** The version of the library, such as "1.0.0".  Stays as it is for ever. */
QARV_WAVE_API const char* qarv_wave_version(void);

/** A handle without a waveform; null if there is no memory for it. */
QARV_WAVE_API qarv_wave* qarv_wave_new(void);

/** Ends a handle and all that was borrowed from it.  Null is left alone. */
QARV_WAVE_API void qarv_wave_free(qarv_wave* handle);

/**
 * Why the last call that returned a status failed: one line, "KEY: what is wrong" where a key is to
 * blame, in the words of the command.  Empty if it succeeded.  Stays until the next call with a
 * status.
 */
QARV_WAVE_API const char* qarv_wave_error(const qarv_wave* handle);

/** The key that is to blame ("Classical.MainWidth"), or empty.  Stays as the text does. */
QARV_WAVE_API const char* qarv_wave_error_key(const qarv_wave* handle);

/** The line of the text where the error is, from 1; 0 if it is not in a line. */
QARV_WAVE_API size_t qarv_wave_error_line(const qarv_wave* handle);

/* ---- Definitions ---- */

/**
 * Defines the waveform of a definition and drops the one before, also where it fails: the handle
 * has none then.
 * @param text    JSON: settings and one waveform family, as the command has them in a file; samples
 *                of a measured waveform stand in it ("Samples": [0, 0.5, ..])
 * @param length  of the text [byte]
 * @return QARV_WAVE_OK, _REFUSED, _BAD_INPUT, _OUT_OF_MEMORY, _WRONG_CALL
 */
QARV_WAVE_API int32_t qarv_wave_define_json(qarv_wave* handle, const char* text, size_t length);

/**
 * Restores a waveform from its record and drops the one before, also where it fails.
 * @param bytes   one whole record, as qarv_wave_save_record and the command write it
 * @param length  of the record [byte]
 * @return QARV_WAVE_OK, _BAD_INPUT, _OUT_OF_MEMORY, _WRONG_CALL
 */
QARV_WAVE_API int32_t qarv_wave_load_record(qarv_wave* handle, const uint8_t* bytes, size_t length);

/**
 * The waveform's record: definition, samples and bands, in bytes that are the same on every
 * machine.
 * @return QARV_WAVE_OK, _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_save_record(qarv_wave* handle, uint8_t* buffer, size_t capacity,
                                            size_t* needed);

/**
 * The waveform's definition as JSON, with every field: qarv_wave_define_json makes the same of it.
 * @return QARV_WAVE_OK, _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_definition_json(qarv_wave* handle, char* buffer, size_t capacity,
                                                size_t* needed);

/**
 * What is wrong with a definition, as a JSON list of {"Severity": "fails" | "warns", "Text",
 * "Remedies": [{"Key", "Value"}]}: those by which it fails first, [] if nothing is.  The handle's
 * own waveform stays.
 * @param text    JSON as for qarv_wave_define_json
 * @param length  of the text [byte]
 * @return QARV_WAVE_OK also where there are findings, _BAD_INPUT (no definition), _TOO_SMALL,
 *         _OUT_OF_MEMORY, _WRONG_CALL
 */
QARV_WAVE_API int32_t qarv_wave_check_json(qarv_wave* handle, const char* text, size_t length,
                                           char* buffer, size_t capacity, size_t* needed);

/**
 * A JSON Schema (draft 2020-12) of definitions: every family, key, unit, range and default.
 * @return QARV_WAVE_OK, _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL
 */
QARV_WAVE_API int32_t qarv_wave_schema(qarv_wave* handle, char* buffer, size_t capacity,
                                       size_t* needed);

/**
 * Finds a waveform that has a required shock response spectrum, and drops the one before, also
 * where it fails.  It takes about a second.  What was found of it is in qarv_wave_synthesis_json,
 * its definition in qarv_wave_definition_json.
 * @param requirement  JSON, as `qarv-wave synthesize` has it in a file
 * @param length       of the requirement [byte]
 * @param machine      JSON of a machine, whose limits hold beside those of the requirement; empty
 *                     for none
 * @param machine_length   of it [byte]
 * @param settings     JSON, an object with any of the command's options
 *                     "shape" ("shock", "sweep" or "random"),
 *                     "method" ("wavelet", "damped" or "modified"),
 *                     "minimize" ("displacement", "velocity" or "acceleration"),
 *                     "within" [dB], "seed" (1), "quick" (false), and
 *                     "force", to take the best waveform if none meets the requirement (false);
 *                     empty for the defaults
 * @param settings_length  of them [byte]
 * @param progress     is told how far it is and may end it; null for none
 * @param context      handed to it
 * @return QARV_WAVE_OK, _REFUSED (no waveform meets the requirement), _BAD_INPUT, _CANCELLED,
 *         _OUT_OF_MEMORY, _WRONG_CALL
 */
QARV_WAVE_API int32_t qarv_wave_synthesize(qarv_wave* handle, const char* requirement,
                                           size_t length, const char* machine,
                                           size_t machine_length, const char* settings,
                                           size_t settings_length, qarv_wave_progress progress,
                                           void* context);

/**
 * How close the waveform of qarv_wave_synthesize comes to its requirement, as JSON: an object with
 * {"value", "unit"} under each key, the deviations "gridWorst" and "betweenWorst" [dB] among them;
 * "warnings" is a list.
 * @return QARV_WAVE_OK, _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL (the waveform is of no synthesis)
 */
QARV_WAVE_API int32_t qarv_wave_synthesis_json(qarv_wave* handle, char* buffer, size_t capacity,
                                               size_t* needed);

/* ---- The waveform ---- */

/** The key of the waveform's family ("Classical", "Damping", ..), or "none".  Stays for ever. */
QARV_WAVE_API const char* qarv_wave_family(const qarv_wave* handle);

/** The number of samples of the waveform; 0 without one. */
QARV_WAVE_API size_t qarv_wave_size(const qarv_wave* handle);

/** The sampling frequency of the samples [Hz]; 0 without a waveform. */
QARV_WAVE_API double qarv_wave_sample_rate(const qarv_wave* handle);

/**
 * The waveform, its upper and its lower tolerance band: qarv_wave_size samples each [amplitude
 * unit, which is "UnitAmpl" of the definition].  Borrowed until the next qarv_wave_define_json,
 * qarv_wave_load_record or qarv_wave_free of the handle.
 * @return null without a waveform; of a band also where a record has none as long as the waveform
 */
QARV_WAVE_API const double* qarv_wave_samples(const qarv_wave* handle);
QARV_WAVE_API const double* qarv_wave_upper(const qarv_wave* handle);
QARV_WAVE_API const double* qarv_wave_lower(const qarv_wave* handle);

/**
 * Where the main pulse of a classical waveform lies: the drawn pulse with a sample to each side, a
 * shift by its compensation included, within the frame.
 * @param first,last  [sample] from 0; not written unless the call succeeds
 * @return QARV_WAVE_OK, _WRONG_CALL (null, or no classical waveform with samples)
 */
QARV_WAVE_API int32_t qarv_wave_main_pulse(qarv_wave* handle, size_t* first, size_t* last);

/* ---- What is assessed of it ---- */

/**
 * Velocity and displacement of a waveform that is an acceleration, from rest, by the trapezoidal
 * rule: in m/s and mm, where the amplitude unit is known as an acceleration, otherwise in that unit
 * times s and s^2; the report names both.  All 0 where the sampling frequency is not above 0.
 * @param velocity, displacement  `capacity` places each; qarv_wave_size of them are written.  Null
 *                                where it is not wanted
 * @return QARV_WAVE_OK, _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_motion(qarv_wave* handle, double* velocity, double* displacement,
                                       size_t capacity);

/**
 * What the waveform asks of the shaker and how it lies in its bands, as JSON: an object with
 * {"value", "unit"} under each key ("peak", "peak_velocity", "upper_margin", ...).  What is no
 * finite number is a text there ("nan", "inf").
 * @return QARV_WAVE_OK, _BAD_INPUT (a waveform without bands), _TOO_SMALL, _OUT_OF_MEMORY,
 *         _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_report_json(qarv_wave* handle, char* buffer, size_t capacity,
                                            size_t* needed);

/**
 * The same beside a machine: with its limits and the margins to them ("machine_velocity",
 * "machine_velocity_limit", "machine_velocity_margin", ...) and "machine_fits", "yes" or "no".
 * @param machine  JSON, as `qarv-wave report --machine` has it in a file
 * @param length   of it [byte]
 * @return as qarv_wave_report_json; _BAD_INPUT also where the text is no machine, or the amplitude
 *         unit none of an acceleration
 */
QARV_WAVE_API int32_t qarv_wave_machine_report_json(qarv_wave* handle, const char* machine,
                                                    size_t length, char* buffer, size_t capacity,
                                                    size_t* needed);

/**
 * The shock response spectrum of the waveform, as a JSON object with "response", "unit", "damping"
 * [ratio], "warnings" (a list of texts), "frequency" (a list [Hz]), and lists of the same length in
 * that unit: "maximax", "positive", "negative", "primary_positive", "primary_negative",
 * "residual_positive", "residual_negative".  The input is what `qarv-wave srs` takes as options:
 * @param settings  JSON, an object with any of
 *                  "response" ("acceleration", "displacement" or "pseudo-velocity"),
 *                  "q" (10) or, in its place, "damping" [ratio],
 *                  "from" (5) and "to" (a tenth of the sampling frequency) [Hz],
 *                  "per-octave" [lines] (12) or, in its place, "points" [lines];
 *                  empty for the defaults
 * @param length    of the settings [byte]
 * @return QARV_WAVE_OK, _BAD_INPUT (settings, or a sample that is no number), _TOO_SMALL,
 *         _OUT_OF_MEMORY, _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_spectrum_json(qarv_wave* handle, const char* settings,
                                              size_t length, char* buffer, size_t capacity,
                                              size_t* needed);

/**
 * The same of a measured record.  The handle's waveform takes no part and need not be there.
 * @param samples   `count` samples of the record; read during the call only
 * @param fsamp     sampling frequency of the record [Hz]
 * @param settings  as for qarv_wave_spectrum_json, and "unit", which the samples have
 * @return as qarv_wave_spectrum_json
 */
QARV_WAVE_API int32_t qarv_wave_record_spectrum_json(qarv_wave* handle, const double* samples,
                                                     size_t count, double fsamp,
                                                     const char* settings, size_t length,
                                                     char* buffer, size_t capacity, size_t* needed);

/**
 * Whether a measured record keeps within the bands of the waveform, as JSON: an object with
 * {"value", "unit"} under each key.  "verdict" is "pass" or "fail"; "failed" says by what;
 * "warnings" is a list.
 * @param samples   `count` samples of the record; read during the call only
 * @param fsamp     sampling frequency of the record [Hz]
 * @param settings  JSON, an object with any of
 *                  "dv-tol", the tolerance of the velocity change [%] (10),
 *                  "force", to judge also what is sampled too coarsely (false),
 *                  "unit" of the samples (the waveform's),
 *                  "begin", the record's own time of its first sample [s] (0);
 *                  empty for the defaults
 * @param length    of the settings [byte]
 * @return QARV_WAVE_OK for both verdicts; _BAD_INPUT where there is none, because a setting is
 *         wrong, the record does not show the waveform or is sampled too coarsely, or the waveform
 *         has no bands; _TOO_SMALL, _OUT_OF_MEMORY, _WRONG_CALL (no waveform)
 */
QARV_WAVE_API int32_t qarv_wave_judge_json(qarv_wave* handle, const double* samples, size_t count,
                                           double fsamp, const char* settings, size_t length,
                                           char* buffer, size_t capacity, size_t* needed);

#ifdef __cplusplus
}
#endif

#endif

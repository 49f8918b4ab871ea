/* A half-sine pulse in C: defined, drawn as numbers, assessed, and a record judged by it. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qarv_wave.h"

static const char definition[] =
    "{ \"UnitAmpl\": \"g\","
    "  \"Classical\": { \"WaveKind\": \"HALF_SINE\", \"MainAmpl\": 50, \"MainWidth\": 0.011,"
    "                 \"Fmax\": 1000, \"Nsamp\": 512, \"TolKind\": \"TOL_FIXED_4\" } }";

/* Says what the last call has failed by. */
static int failed(const qarv_wave* wave) {
  fprintf(stderr, "%s (line %lu)\n", qarv_wave_error(wave),
          (unsigned long)qarv_wave_error_line(wave));
  return EXIT_FAILURE;
}

/* The waveform between its bands, at the peak. */
static int print_peak(qarv_wave* wave) {
  const double* x = qarv_wave_samples(wave); /* borrowed, until the next definition */
  size_t first, last, i, peak;
  if (qarv_wave_main_pulse(wave, &first, &last) != QARV_WAVE_OK) return failed(wave);
  for (peak = i = first; i <= last; ++i) {
    if (x[i] > x[peak]) peak = i;
  }
  printf("%s: %.1f < %.1f < %.1f g at %g s\n", qarv_wave_family(wave), qarv_wave_lower(wave)[peak],
         x[peak], qarv_wave_upper(wave)[peak], (double)peak / qarv_wave_sample_rate(wave));
  return EXIT_SUCCESS;
}

/* What the shaker has to do: asked for its size first, as every output. */
static int print_report(qarv_wave* wave) {
  size_t needed;
  char* report;
  int result = EXIT_SUCCESS;
  if (qarv_wave_report_json(wave, NULL, 0, &needed) != QARV_WAVE_OK) return failed(wave);
  report = malloc(needed);
  if (report == NULL) return EXIT_FAILURE;
  if (qarv_wave_report_json(wave, report, needed, NULL) == QARV_WAVE_OK) {
    fputs(report, stdout);
  } else {
    result = failed(wave);
  }
  free(report);
  return result;
}

/* Whether a record passes that is a little lower than the definition. */
static int print_verdict(qarv_wave* wave) {
  char verdict[8192];
  const char* settings = "{ \"dv-tol\": 5 }";
  size_t n = qarv_wave_size(wave), i;
  double* record = malloc(n * sizeof *record);
  int32_t status;
  if (record == NULL) return EXIT_FAILURE;
  for (i = 0; i < n; ++i) record[i] = 0.97 * qarv_wave_samples(wave)[i];
  status = qarv_wave_judge_json(wave, record, n, qarv_wave_sample_rate(wave), settings,
                                strlen(settings), verdict, sizeof verdict, NULL);
  free(record);
  if (status != QARV_WAVE_OK) return failed(wave);
  fputs(verdict, stdout);
  return EXIT_SUCCESS;
}

int main(void) {
  int result = EXIT_FAILURE;
  qarv_wave* wave = qarv_wave_new();
  if (wave == NULL) return result;
  if (qarv_wave_define_json(wave, definition, strlen(definition)) != QARV_WAVE_OK) {
    result = failed(wave);
  } else {
    result = print_peak(wave) || print_report(wave) || print_verdict(wave);
  }
  qarv_wave_free(wave);
  return result;
}

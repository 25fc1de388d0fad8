#pragma once

/// The progress report on standard error. The search asks and writes while it works on a long sequence; the driver
/// writes a line at every sequence.

/// Takes the processor time from which the report counts. Called once, at the start of the program.
void start_run_clock();

/// The next progress line is due a minute from now.
void update_report_time();

/// True, at most about once a minute, when a progress line is due.
bool check_report_status();

/// Writes a line that the search has to say; it ends with a line end.
void write_status(const char* line);

/// Writes one progress line: processor time, record number (1-based), unit length, record name cut at 70 bytes.
/// `kind` is 'r' while running and 'f' for the final line; both look the same.
void report_status(unsigned seqnr, const char* name, unsigned unit_length, char kind);

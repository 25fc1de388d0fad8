#pragma once

/// Formats a number as the parameter summary shows it: "%d", "%u", "%lg" or "%g". All four write into one static
/// buffer, so the result must be used before the next call.
const char* number2str(int value);
const char* number2str(unsigned int value);
const char* number2str(double value);
const char* number2str(float value);

#pragma once

#include <cstdio>

/// The block that lists every parameter in force, every line after `prefix`.
void print_search_parameters(std::FILE* out, const char* prefix);

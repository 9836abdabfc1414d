// Alone in its file: a program that links these sources beside the library finds the library's, and has no second one.
#include "basics/systeme.h"

const char* REPERTOIRE_SYSTEME = "/usr/local/orvan/etc";

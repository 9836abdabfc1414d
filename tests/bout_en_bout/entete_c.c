/* The public header, as a C99 program uses it: it must compile without a warning. */
#include <string.h>

#include "noxlux/noxlux.h"

/* 0 when every answer is the one expected; otherwise the number of the line that is not. */
int noxlux_entete_en_c(void) {
  void* zone = NULL;
  unsigned int taille = 1;
  if (NOX_AllouerZoneMem(&zone, 4) != NOX_CR_OK || zone == NULL) {
    return __LINE__;
  }
  memset(zone, 0, 4);
  NOX_LibererZoneMem(zone);
  if (NOX_LireVersion(&zone, &taille) != NOX_CR_NON_CHARGE || zone != NULL || taille != 0) {
    return __LINE__;
  }
  if (strcmp(REPERTOIRE_SYSTEME, "/usr/local/orvan/etc") != 0) {
    return __LINE__;
  }
  return 0;
}

/* The unit price of act HHFA001, activity 1, phase 0, on 1 January 2026.
 * Usage: premier CONFIGURATION_DIRECTORY, that of an orvan.ini */
#include <noxlux/noxlux.h>
#include <stdio.h>

int main(int argc, char** argv) {
  /* One group 3012, 12 bytes: three fields, each a length and its bytes. */
  char demande[] = "\x0B\xC4\x0C\x07HHFA001\x01" "1\x01" "0";
  unsigned char* reponse = NULL;
  unsigned int taille = 0;
  if (argc != 2) return 2;
  REPERTOIRE_SYSTEME = argv[1];
  unsigned short code = NOX_InitLIB(); /* without follow-up files the library is loaded all the same */
  if (code == NOX_CR_OK || code == NOX_CR_SUIVI_REPERTOIRE || code == NOX_CR_SUIVI_ECRITURE)
    code = NOX_ConsulterDonnee("CCAM_37", "20260101", demande, sizeof demande - 1, (void**)&reponse, &taille);
  if (code == NOX_CR_OK) /* group 3117: identifier, length, then the amount in cents */
    printf("HHFA001 : %.*s centimes\n", reponse[3], (char*)reponse + 4);
  else
    printf("code 0x%04X\n", code);
  NOX_LibererZoneMem(reponse);
  return NOX_TermLIB();
}

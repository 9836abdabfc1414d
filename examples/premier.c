/* The unit price of act HHFA001, activity 1, phase 0, on 1 January 2026. Usage: premier DIRECTORY/ */
#include <noxlux/noxlux.h>
#include <stdio.h>

int main(int argc, char** argv) {
  /* One group 3012, 12 bytes: three fields, each a length and its bytes. */
  char demande[] = "\x0B\xC4\x0C\x07HHFA001\x01" "1\x01" "0";
  unsigned char* reponse = NULL;
  unsigned int taille = 0;
  FILE* ini = fopen("orvan.ini", "w");
  if (argc != 2 || ini == NULL) return 2;
  fprintf(ini, "[NOX]\nrepertoiretable=%s\n[COMMUN]\nrepertoiretravail=.\n", argv[1]);
  fclose(ini);
  REPERTOIRE_SYSTEME = ".";
  if (NOX_InitLIB() != NOX_CR_OK) return 1;
  unsigned short code = NOX_ConsulterDonnee("CCAM_37", "20260101", demande, sizeof demande - 1,
                                            (void**)&reponse, &taille);
  if (code == NOX_CR_OK) /* group 3117: identifier, length, then the amount in cents */
    printf("HHFA001 : %.*s centimes\n", reponse[3], (char*)reponse + 4);
  else
    printf("code 0x%04X\n", code);
  NOX_LibererZoneMem(reponse);
  return NOX_TermLIB();
}

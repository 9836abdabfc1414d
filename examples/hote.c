/* A host program: loads the library with dlopen, checks an invoice, changes a price, checks again, saves.
 * Usage: hote LIBRARY CONFIGURATION_DIRECTORY, the directory being that of an orvan.ini. */
#include <dlfcn.h>
#include <noxlux/noxlux.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The functions used, found by name. The casts go through an object pointer, as POSIX wants it. */
static unsigned short (*initialiser)(void);
static unsigned short (*terminer)(void);
static unsigned short (*controler)(void*, unsigned int, void**, unsigned int*);
static unsigned short (*modifier)(const char*, const char*, void*, unsigned int);
static unsigned short (*sauvegarder)(const char*);
static void (*liberer)(void*);

static int trouver(void* bibliotheque, const char* nom, void* adresse) {
  void* symbole = dlsym(bibliotheque, nom);
  memcpy(adresse, &symbole, sizeof symbole);
  return symbole != NULL;
}

/* A zone under construction. All lengths here are below 128: one byte says them. */
struct zone {
  unsigned char octets[1024];
  unsigned int taille, debut_groupe;
};

static void groupe(struct zone* z, unsigned int numero) {
  z->debut_groupe = z->taille;
  z->octets[z->taille++] = (unsigned char)(numero >> 8);
  z->octets[z->taille++] = (unsigned char)(numero & 0xFF);
  z->octets[z->taille++] = 0;
}

static void champs(struct zone* z, const char* const* valeurs) {
  for (; *valeurs != NULL; ++valeurs) {
    const unsigned int n = (unsigned int)strlen(*valeurs);
    z->octets[z->taille++] = (unsigned char)n;
    memcpy(z->octets + z->taille, *valeurs, n);
    z->taille += n;
    z->octets[z->debut_groupe + 2] = (unsigned char)(z->octets[z->debut_groupe + 2] + n + 1);
  }
}

#define GROUPE(z, numero, ...)                       \
  do {                                               \
    const char* valeurs_[] = {__VA_ARGS__, NULL};    \
    groupe(z, numero);                               \
    champs(z, valeurs_);                             \
  } while (0)

static unsigned short controler_facture(void) {
  struct zone z = {{0}, 0, 0};
  void* reponse = NULL;
  unsigned int taille = 0;
  GROUPE(&z, 1110, "75123456", "7", "", "", "1", "04", "", "", "", "", "", "", "19800517");
  GROUPE(&z, 1511, "");
  GROUPE(&z, 1610, "1", "20260115", "1", "ADC", "", "", "", "", "", "", "17679", "17679", "100");
  GROUPE(&z, 1820, "1", "C");
  GROUPE(&z, 2020, "1", "17679");
  GROUPE(&z, 2100, "1", "HHFA001", "", "1", "0", "", "", "", "", "", "", "", "");
  GROUPE(&z, 3500, "751");
  const unsigned short code = controler(z.octets, z.taille, &reponse, &taille);
  printf("facture : code 0x%04X, réponse de %u octets\n", code, taille);
  liberer(reponse);
  return code;
}

int main(int argc, char** argv) {
  void* bibliotheque = argc == 3 ? dlopen(argv[1], RTLD_NOW) : NULL;
  const char** repertoire = NULL;
  if (bibliotheque == NULL || !trouver(bibliotheque, "REPERTOIRE_SYSTEME", &repertoire) ||
      !trouver(bibliotheque, "NOX_InitLIB", &initialiser) || !trouver(bibliotheque, "NOX_TermLIB", &terminer) ||
      !trouver(bibliotheque, "NOX_ControleComplet", &controler) ||
      !trouver(bibliotheque, "NOX_ModifierDonnee", &modifier) ||
      !trouver(bibliotheque, "NOX_SauvegarderReferentiel", &sauvegarder) ||
      !trouver(bibliotheque, "NOX_LibererZoneMem", &liberer)) {
    fprintf(stderr, "hote : %s\n", argc == 3 ? dlerror() : "LIBRARY CONFIGURATION_DIRECTORY");
    return 2;
  }
  *repertoire = argv[2];
  /* Without its follow-up files the library is loaded all the same. */
  const unsigned short code = initialiser();
  if (code != NOX_CR_OK && code != NOX_CR_SUIVI_REPERTOIRE && code != NOX_CR_SUIVI_ECRITURE) {
    return 1;
  }
  int statut = controler_facture() == NOX_CR_OK ? 0 : 1;

  /* From January 2026 on the act costs 200 euros here: the same invoice no longer bills its price. */
  struct zone z = {{0}, 0, 0};
  GROUPE(&z, 3201, "HHFA001", "1", "0", "20000");
  if (modifier("CCAM_37", "20260101", z.octets, z.taille) != NOX_CR_OK ||
      controler_facture() != NOX_CR_CONTROLE_NIVEAU_1 || sauvegarder("Prix de janvier") != NOX_CR_OK) {
    statut = 1;
  }
  return terminer() == NOX_CR_OK ? statut : 1;
}

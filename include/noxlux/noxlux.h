/*
 * noxlux.h - CCAM reference data and invoice checking: the public interface.
 *
 * Conventions
 *   - Every function returns a 16-bit code: NOX_CR_OK (0) or one of the codes below.
 *   - Texts are NUL-terminated ISO-8859-1 strings, owned by the caller.
 *   - Dates are texts "AAAAMMJJ" (8 digits) or "AAAAMMJJ0000" (12 digits).
 *   - A data zone is a byte buffer of numbered groups of fields (docs/formats.md); which groups a
 *     function reads and writes is told in docs/zones.md.
 *   - An input zone (zoneIn, tailleZoneIn bytes) stays the caller's; it is read in place, never kept.
 *   - An output zone is a new block of exactly *tailleZoneOut bytes, which the caller gives back with
 *     NOX_LibererZoneMem; an answer without any group has a size of 0, and a block to give back all the same.
 *     On every failure *zoneOut is NULL and *tailleZoneOut is 0, except for the codes that are told to come
 *     with an answer.
 *   - Every function may be called from any thread. Those that ask (consult, control, apply, full check, search,
 *     version) run side by side; those that change (load, unload, change, cancel, save) run alone. The library
 *     creates no thread and never waits: a call that conflicts with one under way answers 0xDF01 at once, having
 *     done nothing, and may be made again. 0xDF01 also answers the request that needs an act or a table which
 *     another thread is reading from the file for the first time, and NOX_InitTrace while another sets a level.
 */
#ifndef NOXLUX_NOXLUX_H
#define NOXLUX_NOXLUX_H

/* The version of this header, and of the library that it came with (docs/versions.md). */
#define NOXLUX_VERSION_MAJOR 1
#define NOXLUX_VERSION_MINOR 13
#define NOXLUX_VERSION_PATCH 0
#define NOXLUX_VERSION_TEXTE "1.13.0"
/* For comparisons: #if NOXLUX_VERSION >= 11300 */
#define NOXLUX_VERSION (NOXLUX_VERSION_MAJOR * 10000 + NOXLUX_VERSION_MINOR * 100 + NOXLUX_VERSION_PATCH)

#if defined(__GNUC__)
#define NOX_API __attribute__((visibility("default")))
#else
#define NOX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Return codes. Families that carry a position are given by their base: NOX_CR_CHAMP_INVALIDE + 5 says
 * that the fifth field of the input zone is invalid. Places too far for their family have its last code
 * (0x9FFF, 0xA7FF, 0xAFFF, 0xCFFF, 0xE0FF).
 *
 * Below, each function lists every code it may answer. Three lists recur:
 *   "those of the input zone": 0x9000+f; 0xA000+n; 0xA001+n; 0xA800+n; 0xB000+id; 0xF803; 0xF805; 0xF810.
 *   "those of the store": 0xDF00; 0xDF01; 0xD610 and 0xD640, since acts, menus and keywords are read from
 *     tablebin.nox at their first use; 0xDFFC, also for a number too large for its type; 0xDFFE; 0xDFFF.
 *   "those of an answer zone": 0xF800; 0xF801. */
enum NOX_CodeRetour {
  NOX_CR_OK = 0x0000,

  /* Input zone against its description; f, n: positions counted from 1, id: group identifier. */
  NOX_CR_CHAMP_INVALIDE = 0x9000,     /* + f: content of field f (counted over the whole zone) refused */
  NOX_CR_GROUPE_INATTENDU = 0xA000,   /* + n: group n not expected there; + 0: zone given, none expected */
  NOX_CR_DONNEES_EN_TROP = 0xA001,    /* + n: data left after the n groups expected */
  NOX_CR_NOMBRE_CHAMPS = 0xA800,      /* + n: group n has too few or too many fields */
  NOX_CR_NOMBRE_OCCURRENCES = 0xB000, /* + id: group id too few or too many times */

  /* Reference data: what was asked is not there, or not allowed. */
  NOX_CR_IDENTIFIANT_INCONNU = 0xD000,   /* no function of that identifier */
  NOX_CR_RECHERCHE_VIDE = 0xD001,        /* search found no act */
  NOX_CR_CODE_INCONNU = 0xD002,          /* code not in its table */
  NOX_CR_PAS_D_HISTORIQUE = 0xD003,      /* nothing valid at the reference date */
  NOX_CR_DATE_EFFET = 0xD004,            /* effect date out of the allowed range */
  NOX_CR_NON_MODIFIE = 0xD005,           /* nothing to cancel */
  NOX_CR_CAISSE_NON_DOM = 0xD006,        /* fund is not one of 971 to 974 */
  NOX_CR_REGROUPEMENT_INCONNU = 0xD007,  /* grouping code not in the reference */
  NOX_CR_REGROUPEMENT_EXISTANT = 0xD008, /* grouping code already in the grouping-code table */
  NOX_CR_OBLIGATION_EXISTANTE = 0xD009,  /* grouping code already in the coding-obligation table */

  /* Data control, rules, full check. */
  NOX_CR_REGLE_IDENTIFIANT = 0xD100, /* as 0xD000, from these three entry points */
  NOX_CR_REGLE_CODE = 0xD102,        /* as 0xD002 */
  NOX_CR_REGLE_HISTORIQUE = 0xD103,  /* as 0xD003 */
  NOX_CR_DATE_DEPLACEMENT = 0xD106,  /* travel line on another date than its act */
  NOX_CR_MODIFICATEURS = 0xD107,     /* gap in the list of modifiers */
  NOX_CR_DENTS = 0xD108,             /* tooth repeated, or gap in the list of teeth */
  NOX_CR_NATURE_ASSURANCE = 0xD109,  /* no nature of insurance, or more than one */
  NOX_CR_REGLE_NEGATIVE_1 = 0xD110,  /* negative outcome of a regulation check */
  NOX_CR_REGLE_NEGATIVE_2 = 0xD111,  /* negative outcome of a regulation check */
  NOX_CR_REGLE_REPONSE_1 = 0xD112,   /* rule outcome that comes with an answer zone */
  NOX_CR_REGLE_NEGATIVE_3 = 0xD113,  /* negative outcome of a regulation check */
  NOX_CR_BASE_AMO_ABSENTE = 0xD114,  /* CCAM line without theoretical AMO base */
  NOX_CR_REGLE_REPONSE_2 = 0xD115,   /* rule outcome that comes with an answer zone */
  NOX_CR_CONTROLE = 0xD120,          /* + level: errors found by the full check; answer zone given */
  NOX_CR_CONTROLE_NIVEAU_1 = 0xD121, /* errors, all of which may be overridden */
  NOX_CR_CONTROLE_NIVEAU_2 = 0xD122, /* at least one error that may not be overridden */

  /* Trace. */
  NOX_CR_MODULE_TRACE = 0xD200,  /* module number above 9 */
  NOX_CR_FICHIER_TRACE = 0xD201, /* trace file not opened */

  /* Reference files. */
  NOX_CR_DEJA_CHARGE = 0xD600,         /* reference already loaded */
  NOX_CR_OUVERTURE_REFERENCE = 0xD610, /* tablebin.nox not opened or closed */
  NOX_CR_OUVERTURE_MODIF = 0xD611,     /* modifref.nox not opened or closed */
  NOX_CR_VERSION_REFERENCE = 0xD620,   /* version of the reference or of the software refused */
  NOX_CR_VERSION_MODIF = 0xD621,       /* modifref.nox belongs to another reference version */
  NOX_CR_CRC_REFERENCE = 0xD630,       /* tablebin.nox damaged */
  NOX_CR_CRC_MODIF = 0xD631,           /* modifref.nox damaged */
  NOX_CR_LECTURE_REFERENCE = 0xD640,   /* read or format error */
  NOX_CR_LECTURE_MODIF = 0xD641,       /* read error in the header of modifref.nox */
  NOX_CR_TABLES_REFERENCE = 0xD650,    /* tables missing in tablebin.nox */
  NOX_CR_TABLES_MODIF = 0xD651,        /* tables missing in modifref.nox */
  NOX_CR_CONFIGURATION = 0xD680,       /* orvan.ini or its key repertoiretable not found */
  NOX_CR_ECRITURE_MODIF = 0xD700,      /* write error while saving */

  /* State of the library, internal faults. */
  NOX_CR_NON_CHARGE = 0xDF00,       /* reference not loaded */
  NOX_CR_OCCUPE = 0xDF01,           /* reference in use: ask again later */
  NOX_CR_INI_OUVERTURE = 0xDF10,    /* INI file not opened */
  NOX_CR_INI_SYNTAXE = 0xDF11,      /* INI syntax error */
  NOX_CR_INI_HORS_SECTION = 0xDF12, /* INI key outside any section */
  NOX_CR_INI_LIMITE = 0xDF13,       /* INI: more than 30 sections or keys */
  NOX_CR_MEMOIRE = 0xDFFC,          /* out of memory */
  NOX_CR_DONNEE_ABSENTE = 0xDFFE,   /* data expected in the reference not found */
  NOX_CR_INCOHERENCE = 0xDFFF,      /* internal inconsistency */

  /* Invoice lines. */
  NOX_CR_NUMERO_LIGNE = 0xE000,    /* + n: line numbers disagree at line n */
  NOX_CR_TROP_DE_GROUPES = 0xE100, /* more than 200 lines */

  /* Version follow-up. */
  NOX_CR_SUIVI_REPERTOIRE = 0xF6F1, /* repertoiretravail not configured; the library is loaded */
  NOX_CR_SUIVI_ECRITURE = 0xF6F2,   /* version file not written; the library is loaded */

  /* Parameters and zone encoding. */
  NOX_CR_PARAMETRE_SORTIE = 0xF800, /* output address is NULL */
  NOX_CR_MEMOIRE_ZONE = 0xF801,     /* zone not allocated, or resized below its data */
  NOX_CR_PARAMETRE_ENTREE = 0xF802, /* input parameter refused */
  NOX_CR_ZONE_ENTREE = 0xF803,      /* input zone NULL or of size 0 */
  NOX_CR_ZONE_PLEINE = 0xF804,      /* zone buffer full */
  NOX_CR_FIN_ZONE = 0xF805,         /* end of zone or of group, no current field */
  NOX_CR_GROUPE_ABSENT = 0xF806,    /* that occurrence of the group is not in the zone */
  NOX_CR_GROUPE_COURANT = 0xF809,   /* no current group */
  NOX_CR_ZONE_MAL_FORMEE = 0xF810   /* zone encoding error */
};

/*
 * Directory of orvan.ini, initially "/usr/local/orvan/etc". A host may point it at another text before
 * NOX_InitLIB; NULL means the current directory. Not copied: the text must stay valid, and neither it nor the
 * variable may change while a thread is in NOX_InitLIB.
 */
extern NOX_API const char* REPERTOIRE_SYSTEME;

/*
 * Loads the library: reads orvan.ini (section NOX: repertoiretable, repertoireModification, FichierTrace,
 * ModeTrace, ModulesTrace; section COMMUN: repertoiretravail), then tablebin.nox and modifref.nox.
 * Directories in orvan.ini end with '/'.
 * Acts and some tables are read from tablebin.nox when they are first asked: while another file stands at its
 * place, such requests answer 0xD640. Install a new reference by renaming it into place, then NOX_TermLIB and
 * NOX_InitLIB in each host.
 * Codes: 0; 0xD600 already loaded (nothing changes); 0xD680; 0xD610; 0xD611; 0xD620; 0xD621; 0xD630; 0xD631; 0xD640;
 * 0xD641; 0xD650; 0xD651; 0xDF01; those of a saved change that cannot be made again: 0xD002, 0xD003, 0xD004, 0xD008;
 * 0xDFFC; 0xDFFE; 0xDFFF; and 0xF6F1, 0xF6F2, which leave the library loaded and usable.
 */
NOX_API unsigned short NOX_InitLIB(void);

/*
 * Unloads the library. Changes that were not saved are lost.
 * Codes: 0; 0xDF00 not loaded; 0xDF01 in use.
 */
NOX_API unsigned short NOX_TermLIB(void);

/*
 * Asks the reference one question at a date.
 *   identifiant    one of the consultation identifiers (docs/zones.md), any letter case: "CCAM_37" for the
 *                  unit price of an act; "Dump" writes the whole reference to the trace, without answer
 *   dateReference  the date at which the answer must hold
 *   zoneIn         input groups of the identifier; not looked at (tailleZoneIn 0) when it expects none
 * Codes: 0; those of the input zone; 0xD000; 0xD002; 0xD003; 0xD006; 0xF802; those of an answer zone; those of the
 * store.
 */
NOX_API unsigned short NOX_ConsulterDonnee(const char* identifiant, const char* dateReference, void* zoneIn,
                                           unsigned int tailleZoneIn, void** zoneOut,
                                           unsigned int* tailleZoneOut);

/*
 * Changes one value of the reference from an effect date on, in memory (NOX_SauvegarderReferentiel keeps it).
 * Codes: 0; those of the input zone; 0xD000; 0xD002; 0xD003; 0xD004; 0xD006 to 0xD009; 0xF802; those of the store.
 */
NOX_API unsigned short NOX_ModifierDonnee(const char* identifiant, const char* dateEffet, void* zoneIn,
                                          unsigned int tailleZoneIn);

/*
 * Cancels the changes of one value.
 * Codes: 0; those of the input zone; 0xD000; 0xD002; 0xD005; 0xD006; 0xF802; those of the store.
 */
NOX_API unsigned short NOX_AnnulerModification(const char* identifiant, void* zoneIn,
                                               unsigned int tailleZoneIn);

/*
 * Checks one datum against the reference: *resultat receives 'O' (yes) or 'N' (no). It is left untouched
 * when a step before the question itself fails.
 * Codes: 0; those of the input zone; 0xD100; 0xD102; 0xD103; 0xF802; those of the store.
 */
NOX_API unsigned short NOX_ControlerDonnees(const char* identifiant, const char* dateReference, void* zoneIn,
                                            unsigned int tailleZoneIn, char* resultat);

/*
 * Applies one regulation or tariff rule to the lines of the input zone (200 at most).
 * An amount in an answer is cut to the cent below. NOX_ControleComplet compares the price billed with the
 * computed one rounded to the nearest cent: where the third decimal is 5 or more, which an overseas increase
 * makes, the price that C_Pu answers is one cent too low to be billed. The price to bill is the amount of
 * CCAM_37 times the coefficient of CCAM_47a, to the nearest cent.
 * Codes: 0; 0xD112 and 0xD115, which also come with an answer zone; those of the input zone; 0xD100; 0xD102; 0xD103;
 * 0xD106 to 0xD108; 0xE000+n; 0xE100; 0xF802; those of an answer zone; those of the store.
 */
NOX_API unsigned short NOX_AppliquerRegle(const char* identifiant, void* zoneIn, unsigned int tailleZoneIn,
                                          void** zoneOut, unsigned int* tailleZoneOut);

/*
 * Checks a whole invoice of up to 200 lines: regulation rules, prices, bases, exemption.
 * Codes: 0 no error; 0xD121 and 0xD122, errors of level 1 or 2, which come with an answer zone; those of the
 * input zone; 0xD102; 0xD103; 0xD106 to 0xD109; 0xD114; 0xE000+n; 0xE100; those of an answer zone; those of the
 * store.
 */
NOX_API unsigned short NOX_ControleComplet(void* zoneIn, unsigned int tailleZoneIn, void** zoneOut,
                                           unsigned int* tailleZoneOut);

/*
 * Acts indexed under a keyword (accents and letter case do not matter).
 *   cadreRecherche  sum of 1 short label, 2 long label, 4 notes, 8 general conditions, 16 menu titles; 0: all
 * Answer: one group 3000: the number of acts (5 digits), then one field of 13 characters per act.
 * Codes: 0; 0xD001 no act in that frame; 0xD002 keyword unknown; 0xF802; those of an answer zone; those of the store.
 */
NOX_API unsigned short NOX_RechercherParMotCle(const char* motCle, unsigned long cadreRecherche,
                                               void** zoneOut, unsigned int* tailleZoneOut);

/*
 * Acts whose code begins with the filter: 0 to 4 capital letters; "" gives all acts.
 * Answer: as NOX_RechercherParMotCle, in ascending order of codes.
 * Codes: 0; 0xD001; 0xF802; those of an answer zone; those of the store.
 */
NOX_API unsigned short NOX_RechercherParFiltre(const char* filtre, void** zoneOut,
                                               unsigned int* tailleZoneOut);

/*
 * Saves the changes made in memory to modifref.nox.
 *   commentaire  at most 200 characters, replaces the comment of the reference; NULL or "" keeps it
 * Waits up to 2 seconds for another process that saves there, then answers 0xD700. The version that another
 * process saved since the load is replaced all the same; the trace tells it, and modif~.nox keeps it
 * (docs/integration.md tells how to lose nothing).
 * Codes: 0 (also when there is nothing to save); 0xF802; 0xD700; 0xDFFC; 0xDF00; 0xDF01.
 */
NOX_API unsigned short NOX_SauvegarderReferentiel(const char* commentaire);

/*
 * Versions. Answer: one group 3600: reference version, CCAM base version, date of last modification, variant,
 * comment, revision number, software version.
 * Codes: 0; those of an answer zone; 0xDF00; 0xDF01; 0xDFFC.
 */
NOX_API unsigned short NOX_LireVersion(void** zoneOut, unsigned int* tailleZoneOut);

/*
 * Sets the trace level of a module, opening or closing the trace file as needed. Works without reference.
 *   nomFichier, modeOuverture  file and "w" or "a"; looked at only when the file is not open yet
 *   module  0 to 9
 *   niveau  0 silent, 1 start and end lines to depth 8, 2 all of them, 3 and above details
 * Codes: 0; 0xD200 module above 9; 0xD201 file not opened; 0xDF01; 0xF802 name or mode refused.
 */
NOX_API unsigned short NOX_InitTrace(const char* nomFichier, const char* modeOuverture, unsigned short module,
                                     unsigned char niveau);

/*
 * Allocates a block of tailleZone bytes for an input zone.
 * Codes: 0; 0xF800 zone is NULL; 0xF802 size 0; 0xF801 out of memory.
 */
NOX_API unsigned short NOX_AllouerZoneMem(void** zone, unsigned int tailleZone);

/* Frees an output zone, or a block of NOX_AllouerZoneMem. NULL is ignored. */
NOX_API void NOX_LibererZoneMem(void* zone);

/*
 * Session variants: the same functions for a host whose zones travel through a session data manager. The host
 * process provides the manager as the two functions below; the library works without them, and a variant that
 * needs one that is missing answers 0xDFFF.
 *
 * KEP_LireZoneIn gives the address and size of the session's input zone, which stays the manager's.
 * KEP_EcrireZoneOut takes an output zone over, and frees it in its time with `liberer`; when it fails the
 * library frees the zone. Both answer 0 or a code that the variant answers in its turn.
 */
NOX_API unsigned short KEP_LireZoneIn(unsigned short numeroSession, void** zone, unsigned int* taille);
NOX_API unsigned short KEP_EcrireZoneOut(unsigned short numeroSession, void* zone, unsigned int taille,
                                         void (*liberer)(void* zone));

/*
 * Each variant answers the first code that is not 0 among those of KEP_LireZoneIn (functions with an input
 * zone), of the function itself, and of KEP_EcrireZoneOut (functions with an answer zone). The answer zone
 * goes to the session on code 0; that of NOX_ControleComplet_S on 0xD121 and 0xD122 too. The answer zone of
 * any other code does not reach the host: call the function itself to have it.
 */
NOX_API unsigned short NOX_RechercherParMotCle_S(const char* motCle, unsigned long cadreRecherche,
                                                 unsigned short numeroSession);
NOX_API unsigned short NOX_RechercherParFiltre_S(const char* filtre, unsigned short numeroSession);
NOX_API unsigned short NOX_ConsulterDonnee_S(const char* identifiant, const char* dateReference,
                                             unsigned short numeroSession);
NOX_API unsigned short NOX_ModifierDonnee_S(const char* identifiant, const char* dateEffet,
                                            unsigned short numeroSession);
NOX_API unsigned short NOX_AnnulerModification_S(const char* identifiant, unsigned short numeroSession);
NOX_API unsigned short NOX_ControlerDonnees_S(const char* identifiant, const char* dateReference,
                                              unsigned short numeroSession, char* resultat);
NOX_API unsigned short NOX_AppliquerRegle_S(const char* identifiant, unsigned short numeroSession);
NOX_API unsigned short NOX_ControleComplet_S(unsigned short numeroSession);
NOX_API unsigned short NOX_LireVersion_S(unsigned short numeroSession);

#ifdef __cplusplus
}
#endif

#endif
